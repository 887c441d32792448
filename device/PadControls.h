#pragma once

#include "device/SdkClient.h"
#include "device/SdkTexts.h"
#include "sdk/SdkNumbers.h"

#include <QString>

/// The controls that every pad model has: opening, closing, the pen, the clip margin, information, the keys.
template <class Sdk>
class PadControls : public SdkClient<Sdk>
{
public:
    QString GetAboutInfo() override;
    bool InitialDevice(int nID, int nWidth, int nHeight) override;
    bool UnInitialDevice() override;
    bool IsValid() override;
    void Clear() override;
    int GetSize() override;
    void SetPenWidth(int nWidth) override;
    void SetPenStyle(bool bPressureOn) override;
    void SetPenColor(int nR, int nG, int nB) override;
    QString GetDeviceInfo(int nType) override;
    void SetClip(int nWidth, int nHeight) override;
    QString VersionID() override;
    QString PadID() override;
    int GetDeviceConfirmOrCancelKeyStatus() override;
};

template <class Sdk>
bool PadControls<Sdk>::InitialDevice(int nID, int nWidth, int nHeight)
{
    MV_LOG_PAD("InitialDevice", "Enter, nID=%d, nWidth=%d, nHeight=%d", nID, nWidth, nHeight);
    bool bResult = false;
    const auto function = this->fnInitialDevice();
    if (this->IsBound(function)) {
        bResult = function.pfn(nID, nullptr, 0, 0, nWidth, nHeight) != 0;
        MV_LOG_PAD("InitialDevice", "after call m_pfn_%s(), bResult=%d", function.szName, bResult);
    }
    MV_LOG_PAD("InitialDevice", "Leave, bResult=%d", bResult);
    return bResult;
}

template <class Sdk>
bool PadControls<Sdk>::UnInitialDevice()
{
    MV_LOG_PAD("UnInitialDevice", "Enter...");
    bool bResult = false;
    const auto function = this->fnUnInitialDevice();
    if (this->IsBound(function)) {
        const int nResult = function.pfn(Sdk::nDeviceID);
        MV_LOG_PAD("UnInitialDevice", "after call m_pfn_%s(), nResult=%d", function.szName, nResult);
        bResult = nResult == sdk::Success; // the other way round than InitialDevice, on purpose
    }
    MV_LOG_PAD("UnInitialDevice", "Leave, bResult=%d", bResult);
    return bResult;
}

template <class Sdk>
void PadControls<Sdk>::Clear()
{
    MV_LOG_PAD("Clear", "Enter...");
    const auto function = this->fnClear();
    if (this->IsBound(function)) {
        function.pfn(Sdk::nDeviceID);
        MV_LOG_PAD("Clear", "after call m_pfn_%s()", function.szName);
    }
    MV_LOG_PAD("Clear", "Leave !");
}

template <class Sdk>
bool PadControls<Sdk>::IsValid()
{
    MV_LOG_PAD("IsValid", "Enter...");
    bool bResult = false;
    const auto function = this->fnGetDeviceInfo();
    if (this->IsBound(function)) {
        DeviceInfo info{};
        const int nResult = function.pfn(Sdk::nDeviceID, sdk::ConnectedInfo, &info);
        MV_LOG_PAD("IsValid", "after call m_pfn_%s(), nResult=%d, bDeviceConnected=%d", function.szName, nResult,
                   info.bDeviceConnected);
        bResult = nResult == sdk::Success && info.bDeviceConnected != 0;
    }
    MV_LOG_PAD("IsValid", "Leave, bResult=%d", bResult);
    return bResult;
}

template <class Sdk>
int PadControls<Sdk>::GetSize()
{
    MV_LOG_PAD("GetSize", "Enter...");
    int nInksCount = 0;
    const auto function = this->fnGetTotalInkPointsNumber();
    if (this->IsBound(function)) {
        nInksCount = function.pfn(Sdk::nDeviceID);
        MV_LOG_PAD("GetSize", "after call m_pfn_%s(), nInksCount=%d", function.szName, nInksCount);
    }
    MV_LOG_PAD("GetSize", "Leave, nInksCount=%d", nInksCount);
    return nInksCount;
}

template <class Sdk>
void PadControls<Sdk>::SetPenWidth(int nWidth)
{
    MV_LOG_PAD("SetPenWidth", "Enter, nWidth=%d", nWidth);
    this->CallAndLogResult("SetPenWidth", this->fnSetPenWidth(), nWidth);
    MV_LOG_PAD("SetPenWidth", "Leave !");
}

template <class Sdk>
void PadControls<Sdk>::SetPenStyle(bool bPressureOn)
{
    MV_LOG_PAD("SetPenStyle", "Enter, bPressureOn=%d", bPressureOn);
    this->CallAndLogResult("SetPenStyle", this->fnSetPenStyle(), bPressureOn);
    MV_LOG_PAD("SetPenStyle", "Leave !");
}

template <class Sdk>
void PadControls<Sdk>::SetPenColor(int nR, int nG, int nB)
{
    MV_LOG_PAD("SetPenColor", "Enter, nR=%d, nG=%d, nB=%d", nR, nG, nB);
    this->CallAndLogResult("SetPenColor", this->fnSetPenColor(), nR, nG, nB);
    MV_LOG_PAD("SetPenColor", "Leave !");
}

template <class Sdk>
void PadControls<Sdk>::SetClip(int nWidth, int nHeight)
{
    MV_LOG_PAD("SetClip", "Enter, nWidth=%d, nHeight=%d", nWidth, nHeight);
    const auto function = this->fnSetSaveClipImageMargin();
    if (nWidth < 0 || nHeight < 0)
        MV_LOG_PAD("SetClip", "after call m_pfn_%s(), nResult=%d", function.szName, -1);
    else
        this->CallAndLogResult("SetClip", function, nWidth != 0 || nHeight != 0 ? 1 : 0, nWidth, nHeight);
    MV_LOG_PAD("SetClip", "Leave !");
}

template <class Sdk>
int PadControls<Sdk>::GetDeviceConfirmOrCancelKeyStatus()
{
    MV_LOG_PAD("GetDeviceConfirmOrCancelKeyStatus", "Enter...");
    int nKeyStatus = sdk::SIGNPAD_NO_BUTTON;
    const auto function = this->fnGetDeviceConfirmOrCancelKeyStatus();
    if (this->IsBound(function)) {
        nKeyStatus = function.pfn(Sdk::nDeviceID);
        MV_LOG_PAD("GetDeviceConfirmOrCancelKeyStatus", "after call m_pfn_%s(), nKeyStatus=%d", function.szName,
                   nKeyStatus);
    }
    MV_LOG_PAD("GetDeviceConfirmOrCancelKeyStatus", "Leave with nKeyStatus=%d", nKeyStatus);
    return nKeyStatus;
}

template <class Sdk>
QString PadControls<Sdk>::GetDeviceInfo(int nType)
{
    MV_LOG_PAD("GetDeviceInfo", "Enter, nType=%d", nType);
    QString strResult;
    int nResult = -1;
    const auto function = this->fnGetDeviceInfo();
    if (this->IsBound(function) && IsDeviceInfoType(nType)) {
        DeviceInfo info{};
        nResult = function.pfn(Sdk::nDeviceID, nType, &info);
        MV_LOG_PAD("GetDeviceInfo", "after call m_pfn_%s(), nResult=%d", function.szName, nResult);
        strResult = FormatDeviceInfo(nType, info); // whether or not the call succeeded
    }
    MV_LOG_PAD("GetDeviceInfo", "Leave with strResult.length=%d, nResult=%d", strResult.size(), nResult);
    return strResult;
}

template <class Sdk>
QString PadControls<Sdk>::VersionID()
{
    return this->ReadIdentifier("VersionID", this->fnGetHWVersion());
}

template <class Sdk>
QString PadControls<Sdk>::PadID()
{
    return this->ReadIdentifier("PadID", this->fnGetHWPadID());
}

template <class Sdk>
QString PadControls<Sdk>::GetAboutInfo()
{
    MV_LOG_PAD("GetAboutInfo", "Enter...");
    char buffer[sdk::AboutBufferBytes] = {};
    const auto function = this->fnGetAboutInfo();
    if (this->IsBound(function)) {
        function.pfn(Sdk::nDeviceID, buffer);
        MV_LOG_PAD("GetAboutInfo", "after call m_pfn_%s()", function.szName);
    }
    QString strResult = TextFromBuffer(buffer, sizeof buffer);
    MV_LOG_PAD("GetAboutInfo", "Leave with strResult.length=%d", strResult.size());
    return strResult;
}
