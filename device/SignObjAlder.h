#pragma once

#include "device/WithPenAndLcd.h"

/// The pad with a canvas for WPS and with pushed pictures and key events.
class SignObjAlder : public WithPenAndLcd<AlderSdk>
{
public:
    using SignPadEventCallback = void (*)(int nEventID);
    using SignBase64DataCallback = void (*)(char *pData);

    bool UnInitialDevice() override;
    bool SetRealTimeSignBase64DataCallback(int nType, SignPadEventCallback pfnSignPadEventCallback,
                                           SignBase64DataCallback pfnSignBase64DataCallback) override;
    bool InitialWPSSignCanvas(int nWidth, int nHeight) override;

    /// Hands a key event on to the client's function, if one is registered.
    void ProcessSignPadEvent(int nEventID);
    /// Hands a picture on to the client's function, if one is registered; the text stays the caller's.
    void ProcessSignBase64Data(char *pData);

private:
    SignPadEventCallback m_pfnSignPadEventCallback = nullptr;
    SignBase64DataCallback m_pfnSignBase64DataCallback = nullptr;
};

/// Entry points for the library. Both do nothing, on purpose: the pad's own events do not reach the clients.
void SignObjAlderEventCallback(int nEventID);
void SignObjAlderSignBase64DataCallback(char *pData);
