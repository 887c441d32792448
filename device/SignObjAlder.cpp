#include "device/SignObjAlder.h"

#include "device/LoggedAddress.h"
#include "sdk/SdkNumbers.h"

void SignObjAlderEventCallback(int /*nEventID*/) {}

void SignObjAlderSignBase64DataCallback(char * /*pData*/) {}

bool SignObjAlder::UnInitialDevice()
{
    m_pfnSignPadEventCallback = nullptr;
    m_pfnSignBase64DataCallback = nullptr;
    return WithPenAndLcd::UnInitialDevice();
}

bool SignObjAlder::SetRealTimeSignBase64DataCallback(int nType, SignPadEventCallback pfnSignPadEventCallback,
                                                     SignBase64DataCallback pfnSignBase64DataCallback)
{
    MV_LOG_PAD("SetRealTimeSignBase64DataCallback",
               "Enter, nType=%d, pfnSignPadEventCallback=%x,pfnSignBase64DataCallback=%x", nType,
               LoggedAddress(pfnSignPadEventCallback), LoggedAddress(pfnSignBase64DataCallback));
    m_pfnSignPadEventCallback = pfnSignPadEventCallback;
    m_pfnSignBase64DataCallback = pfnSignBase64DataCallback;
    bool bRet = false;
    const auto function = fnSetRealTimeSignBase64DataCallback();
    if (IsBound(function)) {
        bRet = function.pfn(nDeviceID, nType, SignObjAlderSignBase64DataCallback) != 0;
        MV_LOG_PAD("SetRealTimeSignBase64DataCallback", "after call m_pfn_%s(), bRet=%d", function.szName, bRet);
    }
    MV_LOG_PAD("SetRealTimeSignBase64DataCallback", "Leave with bRet=%d", bRet);
    return bRet;
}

bool SignObjAlder::InitialWPSSignCanvas(int nWidth, int nHeight)
{
    MV_LOG_PAD("InitialWPSSignCanvas", "Enter, nWidth=%d, nHeight=%d", nWidth, nHeight);
    bool bResult = false;
    const auto function = fnInitialWPSSignCanvas();
    if (IsBound(function)) {
        bResult = function.pfn(nDeviceID, nWidth, nHeight) != 0;
        MV_LOG_PAD("InitialWPSSignCanvas", "after call m_pfn_%s(), bResult=%d", function.szName, bResult);
    }
    MV_LOG_PAD("InitialWPSSignCanvas", "Leave, bResult=%d", bResult);
    return bResult;
}

void SignObjAlder::ProcessSignPadEvent(int nEventID)
{
    MV_LOG_PAD("ProcessSignPadEvent", "Enter, nEventID=%d", nEventID);
    if (m_pfnSignPadEventCallback) {
        if (nEventID == sdk::SIGNPAD_ENTER_BUTTON)
            MV_LOG_PAD("ProcessSignPadEvent", "nEventID == SIGNPAD_ENTER_BUTTON");
        else if (nEventID == sdk::SIGNPAD_CANCEL_BUTTON)
            MV_LOG_PAD("ProcessSignPadEvent", "nEventID == SIGNPAD_CANCEL_BUTTON");
        m_pfnSignPadEventCallback(nEventID);
    }
    MV_LOG_PAD("ProcessSignPadEvent", "Leave !");
}

void SignObjAlder::ProcessSignBase64Data(char *pData)
{
    MV_LOG_PAD("ProcessSignBase64Data", "Enter...");
    if (m_pfnSignBase64DataCallback)
        m_pfnSignBase64DataCallback(pData);
    MV_LOG_PAD("ProcessSignBase64Data", "Leave !");
}
