#pragma once

#include "device/SignObjInterface.h"

#include <memory>

/// Holds the one live pad object, picks its model by device ID and forwards every operation to it. Without a pad
/// object each operation answers with its neutral value: false, 0, -1 for the key status, "[]" for the points, an
/// empty text. The operations are those of SignObjInterface. Service thread only.
class SignObjManager
{
public:
    SignObjManager();
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

private:
    struct NumberLog;

    void DeletePadObject(const char *operation);

    template <class... Parameters, class... Arguments>
    void Forward(const char *operation, void (SignObjInterface::*target)(Parameters...), Arguments &&...arguments);
    template <class Number, class... Parameters, class... Arguments>
    Number ForwardNumber(const NumberLog &log, Number noObject, Number (SignObjInterface::*target)(Parameters...),
                         Arguments &&...arguments);
    template <class... Parameters, class... Arguments>
    QString ForwardText(const char *operation, const char *loggedCall, const char *noObject,
                        QString (SignObjInterface::*target)(Parameters...), Arguments &&...arguments);

    std::unique_ptr<SignObjInterface> m_pCurrentActiveSignObj;
};
