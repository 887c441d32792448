#pragma once

#include "device/WithPenAndLcd.h"

/// The pad with a fingerprint sensor.
class SignObjCedar : public WithPenAndLcd<CedarSdk>
{
public:
    QString GetFingerPrintImage(bool bFPImageOnly) override;
    void SetDisplayedFPImageAt(int nCanvasWidth, int nCanvasHeight, int nFPLeft, int nFPTop, int nFPWidth,
                               int nFPHeight) override;

private:
    QByteArray m_strLastFPImageBase64Content; // apart from the ink pictures' cache, never cleared
};
