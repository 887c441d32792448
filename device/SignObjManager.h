#pragma once

#include "base/Logging.h"
#include "device/PadStatus.h"
#include "device/SignObjInterface.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

/// Holds the one live pad object, picks its model by device ID and forwards every operation to it. Without a pad
/// object each operation answers with its neutral value: false, 0, -1 for the key status, "[]" for the points, an
/// empty text. The operations are those of SignObjInterface. Service thread only.
class SignObjManager
{
public:
    /// Every pad object may save below these folders only; absent: anywhere.
    explicit SignObjManager(std::optional<QStringList> saveFolders = std::nullopt);
    /// Closes and deletes a live pad object.
    ~SignObjManager();
    SignObjManager(const SignObjManager &) = delete;
    SignObjManager &operator=(const SignObjManager &) = delete;

    QString GetAboutInfo();
    /// Closes and deletes a live pad object first, also when the ID is the same; false for an unknown ID.
    bool InitialDevice(int nID, int nWidth, int nHeight);
    bool UnInitialDevice();
    bool IsValid();
    void Clear();
    int GetSize();
    QString GetPointer();
    void SetPenWidth(int nWidth);
    void SetPenStyle(bool bPressureOn);
    void SetPenColor(int nR, int nG, int nB);
    QString Encode(int nType);
    QString Decode(int nType, QString strPath, QString strData);
    QString GetDecodeFilePath();
    QString GetDeviceInfo(int nType);
    void SetClip(int nWidth, int nHeight);
    QString SaveDrawImage(int nType, int nDPI, QString strPath);
    QString GetInks();
    QString GetOpaqueInks();
    QString VersionID();
    QString PenID();
    QString PadID();
    void DisplayDeviceInfoInLCD(bool bShow);
    void CloseLCD();
    void OpenLCD();
    int GetDeviceConfirmOrCancelKeyStatus();
    QString GetFingerPrintImage(bool bFPImageOnly);
    void SetDisplayedFPImageAt(int nCanvasWidth, int nCanvasHeight, int nFPLeft, int nFPTop, int nFPWidth,
                               int nFPHeight);
    QString WPSSignConfirmed(bool bEnableDateTime, QString strName);
    QString WPSGetInks();
    QString GetSVGImageBase64Data();
    bool SetRealTimeSignBase64DataCallback(int nType, void (*pfnSignPadEventCallback)(int),
                                           void (*pfnSignBase64DataCallback)(char *));
    bool InitialWPSSignCanvas(int nWidth, int nHeight);

    PadStatus Status() const;
    /// True when the status may have changed since the last call.
    bool TakeStatusChange() { return std::exchange(m_bStatusChanged, false); }

private:
    /// What an operation with a result writes and, without a pad object, answers.
    template <class Result>
    struct Forwarding {
        const char *szOperation;
        Result noObject{};
        const char *szResult = std::is_same_v<Result, QString> ? "strResult.length" : "bResult";
        const char *szLeave = std::is_same_v<Result, QString> ? "Leave with" : "Leave,";
        const char *szLoggedCall = szOperation;
    };

    static QByteArray LogTag(const char *operation) { return QByteArray("SignObjManager::") + operation + "()"; }
    static int LoggedValue(int result) { return result; }
    static int LoggedValue(const QString &result) { return result.size(); }

    void DeletePadObject(const char *operation);

    template <class Result, class... Parameters, class... Arguments>
    Result Forward(const Forwarding<Result> &forwarding, Result (SignObjInterface::*target)(Parameters...),
                   Arguments &&...arguments);
    template <class... Parameters, class... Arguments>
    void Forward(const char *operation, void (SignObjInterface::*target)(Parameters...), Arguments &&...arguments);

    std::unique_ptr<SignObjInterface> m_pCurrentActiveSignObj;
    bool m_bOpen = false; // as the pad object answered
    bool m_bStatusChanged = false;
    std::optional<QStringList> m_saveFolders;
};

#define MV_LOG_MANAGER(operation, ...) MV_LOG_INSIDE_THREAD(LogTag(operation).constData(), __VA_ARGS__)

template <class Result, class... Parameters, class... Arguments>
Result SignObjManager::Forward(const Forwarding<Result> &forwarding, Result (SignObjInterface::*target)(Parameters...),
                               Arguments &&...arguments)
{
    const char *const operation = forwarding.szOperation;
    Result result = forwarding.noObject;
    if (m_pCurrentActiveSignObj) {
        result = ((*m_pCurrentActiveSignObj).*target)(std::forward<Arguments>(arguments)...);
        if constexpr (std::is_same_v<Result, QString>)
            MV_LOG_MANAGER(operation, "after call m_pCurrentActiveSignObj->%s()", forwarding.szLoggedCall);
        else
            MV_LOG_MANAGER(operation, "after call m_pCurrentActiveSignObj->%s(), %s=%d", forwarding.szLoggedCall,
                           forwarding.szResult, result);
    }
    MV_LOG_MANAGER(operation, "%s %s=%d", forwarding.szLeave, forwarding.szResult, LoggedValue(result));
    return result;
}

template <class... Parameters, class... Arguments>
void SignObjManager::Forward(const char *operation, void (SignObjInterface::*target)(Parameters...),
                             Arguments &&...arguments)
{
    if (m_pCurrentActiveSignObj) {
        ((*m_pCurrentActiveSignObj).*target)(std::forward<Arguments>(arguments)...);
        MV_LOG_MANAGER(operation, "after call m_pCurrentActiveSignObj->%s()", operation);
    }
    MV_LOG_MANAGER(operation, "Leave !");
}
