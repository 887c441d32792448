#pragma once

#include "device/SignObjModel.h"

/// Adds what a pad with a pen identifier and a switchable LCD can do to a model.
template <class Sdk>
class WithPenAndLcd : public SignObjModel<Sdk>
{
public:
    QString PenID() override;
    void DisplayDeviceInfoInLCD(bool bShow) override;
    void CloseLCD() override;
    void OpenLCD() override;

private:
    void SwitchLcd(const char *operation, int bOpen);
};

template <class Sdk>
QString WithPenAndLcd<Sdk>::PenID()
{
    return this->ReadIdentifier("PenID", this->fnGetHWPenID());
}

template <class Sdk>
void WithPenAndLcd<Sdk>::DisplayDeviceInfoInLCD(bool bShow)
{
    MV_LOG_PAD("DisplayDeviceInfoInLCD", "Enter, bShow=%d", bShow);
    this->CallAndLogResult("DisplayDeviceInfoInLCD", this->fnDisplayHWVersion(), bShow);
    MV_LOG_PAD("DisplayDeviceInfoInLCD", "Leave !");
}

template <class Sdk>
void WithPenAndLcd<Sdk>::CloseLCD()
{
    SwitchLcd("CloseLCD", 0);
}

template <class Sdk>
void WithPenAndLcd<Sdk>::OpenLCD()
{
    SwitchLcd("OpenLCD", 1);
}

template <class Sdk>
void WithPenAndLcd<Sdk>::SwitchLcd(const char *operation, int bOpen)
{
    MV_LOG_PAD(operation, "Enter...");
    this->CallAndLogResult(operation, this->fnOpenLCD(), bOpen);
    MV_LOG_PAD(operation, "Leave !");
}
