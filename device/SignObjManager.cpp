#include "device/SignObjManager.h"

#include "device/LoggedAddress.h"
#include "device/SignObjAlder.h"
#include "device/SignObjBirch.h"
#include "device/SignObjCedar.h"
#include "device/SignObjMaple.h"
#include "device/SignObjRowan.h"
#include "sdk/SdkNumbers.h"

namespace {

template <class Model>
std::unique_ptr<SignObjInterface> Create()
{
    return std::make_unique<Model>();
}

struct PadModel {
    int nDeviceID;
    std::unique_ptr<SignObjInterface> (*create)();
};

#define MV_PAD_MODEL(Model, nDeviceID) {nDeviceID, Create<SignObj##Model>},
const PadModel padModels[] = {MV_SDK_MODELS(MV_PAD_MODEL)};

std::unique_ptr<SignObjInterface> CreatePadObject(int nID)
{
    for (const PadModel &model : padModels) {
        if (model.nDeviceID == nID)
            return model.create();
    }
    return nullptr;
}

} // namespace

SignObjManager::SignObjManager(std::optional<QStringList> saveFolders) : m_saveFolders(std::move(saveFolders))
{
    MV_LOG_MANAGER("SignObjManager", "Enter...");
    MV_LOG_MANAGER("SignObjManager", "Leave !");
}

SignObjManager::~SignObjManager()
{
    MV_LOG_MANAGER("~SignObjManager", "Enter...");
    UnInitialDevice();
    MV_LOG_MANAGER("~SignObjManager", "Leave !");
}

void SignObjManager::DeletePadObject(const char *operation)
{
    m_pCurrentActiveSignObj.reset();
    MV_LOG_MANAGER(operation, "after call m_pCurrentActiveSignObj = nullptr...");
}

bool SignObjManager::InitialDevice(int nID, int nWidth, int nHeight)
{
    MV_LOG_MANAGER("InitialDevice", "Enter, nID=%d, nWidth=%d, nHeight=%d", nID, nWidth, nHeight);
    if (m_pCurrentActiveSignObj) {
        m_pCurrentActiveSignObj->UnInitialDevice();
        MV_LOG_MANAGER("InitialDevice", "after call m_pCurrentActiveSignObj->UnInitialDevice()");
        DeletePadObject("InitialDevice"); // before the next one loads the library
    }
    m_pCurrentActiveSignObj = CreatePadObject(nID);
    if (m_pCurrentActiveSignObj)
        m_pCurrentActiveSignObj->RestrictSaving(m_saveFolders);
    m_bStatusChanged = true;
    m_bOpen = Forward({"InitialDevice"}, &SignObjInterface::InitialDevice, nID, nWidth, nHeight);
    return m_bOpen;
}

bool SignObjManager::UnInitialDevice()
{
    MV_LOG_MANAGER("UnInitialDevice", "Enter...");
    bool bResult = false;
    if (m_pCurrentActiveSignObj) {
        bResult = m_pCurrentActiveSignObj->UnInitialDevice();
        MV_LOG_MANAGER("UnInitialDevice", "after call m_pCurrentActiveSignObj->UnInitialDevice(), bResult=%d", bResult);
        DeletePadObject("UnInitialDevice");
        m_bStatusChanged = true;
    }
    MV_LOG_MANAGER("UnInitialDevice", "Leave, bResult=%d", bResult);
    return bResult;
}

PadStatus SignObjManager::Status() const
{
    PadStatus status = m_pCurrentActiveSignObj ? m_pCurrentActiveSignObj->Status() : PadStatus();
    if (!m_bOpen)
        status.strModel = QString();
    return status;
}

bool SignObjManager::IsValid()
{
    MV_LOG_MANAGER("IsValid", "Enter...");
    return Forward({"IsValid"}, &SignObjInterface::IsValid);
}

void SignObjManager::Clear()
{
    MV_LOG_MANAGER("Clear", "Enter...");
    Forward("Clear", &SignObjInterface::Clear);
}

int SignObjManager::GetSize()
{
    MV_LOG_MANAGER("GetSize", "Enter...");
    return Forward({"GetSize", 0, "nInksCount"}, &SignObjInterface::GetSize);
}

QString SignObjManager::GetPointer()
{
    MV_LOG_MANAGER("GetPointer", "Enter...");
    return Forward({"GetPointer", QStringLiteral("[]")}, &SignObjInterface::GetPointer);
}

void SignObjManager::SetPenWidth(int nWidth)
{
    MV_LOG_MANAGER("SetPenWidth", "Enter, nWidth=%d", nWidth);
    Forward("SetPenWidth", &SignObjInterface::SetPenWidth, nWidth);
}

void SignObjManager::SetPenStyle(bool bPressureOn)
{
    MV_LOG_MANAGER("SetPenStyle", "Enter, bPressureOn=%d", bPressureOn);
    Forward("SetPenStyle", &SignObjInterface::SetPenStyle, bPressureOn);
}

void SignObjManager::SetPenColor(int nR, int nG, int nB)
{
    MV_LOG_MANAGER("SetPenColor", "Enter, nR=%d, nG=%d, nB=%d", nR, nG, nB);
    Forward("SetPenColor", &SignObjInterface::SetPenColor, nR, nG, nB);
}

void SignObjManager::SetClip(int nWidth, int nHeight)
{
    MV_LOG_MANAGER("SetClip", "Enter, nWidth=%d, nHeight=%d", nWidth, nHeight);
    Forward("SetClip", &SignObjInterface::SetClip, nWidth, nHeight);
}

void SignObjManager::DisplayDeviceInfoInLCD(bool bShow)
{
    MV_LOG_MANAGER("DisplayDeviceInfoInLCD", "Enter, bShow=%d", bShow);
    Forward("DisplayDeviceInfoInLCD", &SignObjInterface::DisplayDeviceInfoInLCD, bShow);
}

void SignObjManager::CloseLCD()
{
    MV_LOG_MANAGER("CloseLCD", "Enter...");
    Forward("CloseLCD", &SignObjInterface::CloseLCD);
}

void SignObjManager::OpenLCD()
{
    MV_LOG_MANAGER("OpenLCD", "Enter...");
    Forward("OpenLCD", &SignObjInterface::OpenLCD);
}

int SignObjManager::GetDeviceConfirmOrCancelKeyStatus()
{
    MV_LOG_MANAGER("GetDeviceConfirmOrCancelKeyStatus", "Enter...");
    // Where a pad without keys would answer 0: on purpose.
    return Forward({"GetDeviceConfirmOrCancelKeyStatus", sdk::SIGNPAD_NO_BUTTON, "nKeyStatus", "Leave with"},
                   &SignObjInterface::GetDeviceConfirmOrCancelKeyStatus);
}

QString SignObjManager::GetAboutInfo()
{
    MV_LOG_MANAGER("GetAboutInfo", "Enter...");
    return Forward({"GetAboutInfo"}, &SignObjInterface::GetAboutInfo);
}

QString SignObjManager::GetDeviceInfo(int nType)
{
    MV_LOG_MANAGER("GetDeviceInfo", "Enter, nType=%d", nType);
    return Forward({"GetDeviceInfo"}, &SignObjInterface::GetDeviceInfo, nType);
}

QString SignObjManager::VersionID()
{
    MV_LOG_MANAGER("VersionID", "Enter...");
    return Forward({"VersionID"}, &SignObjInterface::VersionID);
}

QString SignObjManager::PenID()
{
    MV_LOG_MANAGER("PenID", "Enter...");
    return Forward({"PenID"}, &SignObjInterface::PenID);
}

QString SignObjManager::PadID()
{
    MV_LOG_MANAGER("PadID", "Enter...");
    return Forward({"PadID"}, &SignObjInterface::PadID);
}

QString SignObjManager::Encode(int nType)
{
    MV_LOG_MANAGER("Encode", "Enter, nType=%d", nType);
    return Forward({"Encode"}, &SignObjInterface::Encode, nType);
}

QString SignObjManager::Decode(int nType, QString strPath, QString strData)
{
    MV_LOG_MANAGER("Decode", "Enter, nType=%d, strPath=%s, strData.length=%d", nType, strPath.toUtf8().constData(),
                   strData.size());
    return Forward({"Decode"}, &SignObjInterface::Decode, nType, std::move(strPath), std::move(strData));
}

QString SignObjManager::GetDecodeFilePath()
{
    MV_LOG_MANAGER("GetDecodeFilePath", "Enter...");
    return Forward({"GetDecodeFilePath"}, &SignObjInterface::GetDecodeFilePath);
}

QString SignObjManager::SaveDrawImage(int nType, int nDPI, QString strPath)
{
    MV_LOG_MANAGER("SaveDrawImage", "Enter, nType=%d, nDPI=%d, strPath=%s", nType, nDPI, strPath.toUtf8().constData());
    return Forward({"SaveDrawImage"}, &SignObjInterface::SaveDrawImage, nType, nDPI, std::move(strPath));
}

QString SignObjManager::GetInks()
{
    MV_LOG_MANAGER("GetInks", "Enter...");
    return Forward({"GetInks"}, &SignObjInterface::GetInks);
}

QString SignObjManager::GetOpaqueInks()
{
    MV_LOG_MANAGER("GetOpaqueInks", "Enter...");
    return Forward({"GetOpaqueInks"}, &SignObjInterface::GetOpaqueInks);
}

QString SignObjManager::WPSGetInks()
{
    MV_LOG_MANAGER("WPSGetInks", "Enter...");
    return Forward({"WPSGetInks"}, &SignObjInterface::WPSGetInks);
}

QString SignObjManager::GetSVGImageBase64Data()
{
    MV_LOG_MANAGER("GetSVGImageBase64Data", "Enter...");
    return Forward({"GetSVGImageBase64Data"}, &SignObjInterface::GetSVGImageBase64Data);
}

QString SignObjManager::GetFingerPrintImage(bool bFPImageOnly)
{
    MV_LOG_MANAGER("GetFingerPrintImage", "Enter, bFPImageOnly=%d", bFPImageOnly);
    return Forward({"GetFingerPrintImage"}, &SignObjInterface::GetFingerPrintImage, bFPImageOnly);
}

void SignObjManager::SetDisplayedFPImageAt(int nCanvasWidth, int nCanvasHeight, int nFPLeft, int nFPTop, int nFPWidth,
                                           int nFPHeight)
{
    MV_LOG_MANAGER("SetDisplayedFPImageAt",
                   "Enter, nCanvasWidth=%d, nCanvasHeight=%d, nFPLeft=%d, nFPTop=%d, nFPWidth=%d, nFPHeight=%d",
                   nCanvasWidth, nCanvasHeight, nFPLeft, nFPTop, nFPWidth, nFPHeight);
    Forward("SetDisplayedFPImageAt", &SignObjInterface::SetDisplayedFPImageAt, nCanvasWidth, nCanvasHeight, nFPLeft,
            nFPTop, nFPWidth, nFPHeight);
}

QString SignObjManager::WPSSignConfirmed(bool bEnableDateTime, QString strName)
{
    MV_LOG_MANAGER("WPSSignConfirmed", "Enter, bEnableDateTime=%d, strName=%s", bEnableDateTime,
                   strName.toUtf8().constData());
    Forwarding<QString> forwarding{"WPSSignConfirmed"};
    forwarding.szLoggedCall = "SaveDrawImage"; // the name of another call, on purpose
    return Forward(forwarding, &SignObjInterface::WPSSignConfirmed, bEnableDateTime, std::move(strName));
}

bool SignObjManager::SetRealTimeSignBase64DataCallback(int nType, void (*pfnSignPadEventCallback)(int),
                                                       void (*pfnSignBase64DataCallback)(char *))
{
    MV_LOG_MANAGER("SetRealTimeSignBase64DataCallback",
                   "Enter, nType=%d, pfnSignPadEventCallback=%x,pfnSignBase64DataCallback=%x", nType,
                   LoggedAddress(pfnSignPadEventCallback), LoggedAddress(pfnSignBase64DataCallback));
    return Forward({"SetRealTimeSignBase64DataCallback", false, "bRet", "Leave with"},
                   &SignObjInterface::SetRealTimeSignBase64DataCallback, nType, pfnSignPadEventCallback,
                   pfnSignBase64DataCallback);
}

bool SignObjManager::InitialWPSSignCanvas(int nWidth, int nHeight)
{
    MV_LOG_MANAGER("InitialWPSSignCanvas", "Enter, nWidth=%d, nHeight=%d", nWidth, nHeight);
    return Forward({"InitialWPSSignCanvas"}, &SignObjInterface::InitialWPSSignCanvas, nWidth, nHeight);
}
