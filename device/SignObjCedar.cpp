#include "device/SignObjCedar.h"

QString SignObjCedar::GetFingerPrintImage(bool bFPImageOnly)
{
    MV_LOG_PAD("GetFingerPrintImage", "Enter");
    return ReadChangedImage(
        "GetFingerPrintImage", ImageEvent::Fingerprint, m_strLastFPImageBase64Content, fnGetFPImageBase64Data(),
        fnFreeFPImageBase64Data(),
        [bFPImageOnly](auto getPicture) { return getPicture(nDeviceID, sdk::PngImage, bFPImageOnly ? 1 : 0); },
        "(strResult != m_strLastFPImageBase64Content)");
}

void SignObjCedar::SetDisplayedFPImageAt(int nCanvasWidth, int nCanvasHeight, int nFPLeft, int nFPTop, int nFPWidth,
                                         int nFPHeight)
{
    MV_LOG_PAD("SetDisplayedFPImageAt",
               "Enter, nCanvasWidth=%d, nCanvasHeight=%d, nFPLeft=%d, nFPTop=%d, nFPWidth=%d, nFPHeight=%d",
               nCanvasWidth, nCanvasHeight, nFPLeft, nFPTop, nFPWidth, nFPHeight);
    CallAndLogResult("SetDisplayedFPImageAt", fnSetDisplayedFPImageAt(), nullptr, nCanvasWidth, nCanvasHeight, nFPLeft,
                     nFPTop, nFPWidth, nFPHeight);
    MV_LOG_PAD("SetDisplayedFPImageAt", "Leave !");
}
