#pragma once

#include "app/Logging.h"
#include "device/InkJson.h"
#include "device/SdkBinding.h"
#include "device/SdkTexts.h"
#include "device/SignObjInterface.h"
#include "device/WpsPicture.h"

#include <QByteArray>
#include <QDateTime>
#include <QImage>
#include <QString>

/// Log line of a pad operation, under the model's own class name.
#define MV_LOG_PAD(operation, ...) MV_LOG_INSIDE_THREAD(this->LogTag(operation).constData(), __VA_ARGS__)

/// The operations that every pad model has, on the function family that Sdk binds. Each SDK call is made only when
/// the library is there and the function was found; otherwise the operation answers with its failure value.
template <class Sdk> class SignObjModel : public SignObjInterface, protected Sdk {
public:
    SignObjModel();
    ~SignObjModel() override;
    SignObjModel(const SignObjModel &) = delete;
    SignObjModel &operator=(const SignObjModel &) = delete;

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

protected:
    static QByteArray LogTag(const char *operation) { return QByteArray(Sdk::szClassName) + "::" + operation + "()"; }

    /// Both guards of every SDK call: the library object and each function that the operation needs.
    template <class... Functions> bool IsBound(const Functions &...functions) const
    {
        return this->m_pSDKLibrary && (... && (functions.pfn != nullptr));
    }

    /// Calls a function whose result code is only logged.
    template <class... Parameters, class... Arguments>
    void CallAndLogResult(const char *operation, SdkFunction<int (*)(int, Parameters...)> function,
                          Arguments... arguments)
    {
        if (!IsBound(function))
            return;
        const int nResult = function.pfn(Sdk::nDeviceID, arguments...);
        MV_LOG_PAD(operation, "after call m_pfn_%s(), nResult=%d", function.szName, nResult);
    }

    /// Reads one of the pad's short identifiers.
    QString ReadIdentifier(const char *operation, SdkFunction<int (*)(int, char *, int)> function);

    /// Reads a text of the library through produce() and gives it back through release.
    template <class Producer, class Produce>
    QString ReadText(const char *operation, SdkFunction<Producer> producer, SdkFunction<void (*)(int, char *)> release,
                     Produce produce);

    /// Reads a picture like ReadText; the image reply, or an empty text when it equals strLast.
    template <class Producer, class Produce>
    QString ReadChangedImage(const char *operation, ImageEvent event, QString &strLast, SdkFunction<Producer> producer,
                             SdkFunction<void (*)(int, char *)> release, Produce produce);

private:
    bool LoadMVSignPadSDK();
    QString DecodedPoints();
    QString ComposeWpsPicture(bool bEnableDateTime, const QString &strName);

    QString m_strDecodeFilePath = QStringLiteral("");
    QString m_strLastInksBase64Content = QStringLiteral(""); // one cache for all ink pictures, never cleared
};

#include "device/SignObjModel.inl"
