#pragma once

#include "device/InkJson.h"
#include "device/SdkClient.h"
#include "device/SdkTexts.h"
#include "device/WpsPicture.h"

#include <QByteArray>
#include <QDateTime>
#include <QImage>
#include <QString>

/// The operations that every pad model has.
template <class Sdk>
class SignObjModel : public SdkClient<Sdk>
{
public:
    QString GetAboutInfo() override;
    bool InitialDevice(int nID, int nWidth, int nHeight) override;
    bool UnInitialDevice() override;
    bool IsValid() override;
    void Clear() override;
    int GetSize() override;
    QString GetPointer() override;
    void SetPenWidth(int nWidth) override;
    void SetPenStyle(bool bPressureOn) override;
    void SetPenColor(int nR, int nG, int nB) override;
    QString Encode(int nType) override;
    QString Decode(int nType, QString strPath, QString strData) override;
    QString GetDecodeFilePath() override;
    QString GetDeviceInfo(int nType) override;
    void SetClip(int nWidth, int nHeight) override;
    QString SaveDrawImage(int nType, int nDPI, QString strPath) override;
    QString GetInks() override;
    QString GetOpaqueInks() override;
    QString VersionID() override;
    QString PadID() override;
    int GetDeviceConfirmOrCancelKeyStatus() override;
    QString WPSSignConfirmed(bool bEnableDateTime, QString strName) override;
    QString WPSGetInks() override;
    QString GetSVGImageBase64Data() override;

private:
    QString DecodedPoints();
    QString ComposeWpsPicture(bool bEnableDateTime, const QString &strName);

    QString m_strDecodeFilePath;
    QByteArray m_strLastInksBase64Content; // one cache for all ink pictures, never cleared
};

#include "device/SignObjModel.inl"
