#pragma once

#include "device/SignObjModel.h"

/// Adds what a pad with a pen identifier and a switchable LCD can do to a model.
template <class Sdk>
class WithPenAndLcd : public SignObjModel<Sdk>
{
public:
    QString PenID() override { return this->ReadIdentifier("PenID", this->fnGetHWPenID()); }

    void DisplayDeviceInfoInLCD(bool bShow) override
    {
        MV_LOG_PAD("DisplayDeviceInfoInLCD", "Enter, bShow=%d", bShow);
        this->CallAndLogResult("DisplayDeviceInfoInLCD", this->fnDisplayHWVersion(), bShow);
        MV_LOG_PAD("DisplayDeviceInfoInLCD", "Leave !");
    }

    void CloseLCD() override { SwitchLcd("CloseLCD", 0); }
    void OpenLCD() override { SwitchLcd("OpenLCD", 1); }

private:
    void SwitchLcd(const char *operation, int bOpen)
    {
        MV_LOG_PAD(operation, "Enter...");
        this->CallAndLogResult(operation, this->fnOpenLCD(), bOpen);
        MV_LOG_PAD(operation, "Leave !");
    }
};
