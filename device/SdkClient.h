#pragma once

#include "base/Logging.h"
#include "device/InkJson.h"
#include "device/SdkBinding.h"
#include "device/SdkTexts.h"
#include "device/SignObjInterface.h"
#include "sdk/SdkNumbers.h"

#include <QByteArray>
#include <QFileInfo>
#include <QString>

/// Log line of a pad operation, under the model's own class name.
#define MV_LOG_PAD(operation, ...) MV_LOG_INSIDE_THREAD(this->LogTag(operation).constData(), __VA_ARGS__)

/// A pad object's connection to the maker's library: loads it, resolves the function family that Sdk binds, and makes
/// the guarded calls that the operations share. A call is made only when the library is there and the function was
/// found; otherwise the operation answers with its failure value.
template <class Sdk>
class SdkClient : public SignObjInterface, protected Sdk
{
public:
    SdkClient();
    ~SdkClient() override;
    SdkClient(const SdkClient &) = delete;
    SdkClient &operator=(const SdkClient &) = delete;

    PadStatus Status() final;

protected:
    static QByteArray LogTag(const char *operation) { return QByteArray(Sdk::szClassName) + "::" + operation + "()"; }

    /// Both guards of every SDK call: the library object and each function that the operation needs.
    template <class... Functions>
    bool IsBound(const Functions &...functions) const
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

    /// Reads a picture like ReadText; the image reply, or an empty text when it equals last. szChanged is logged
    /// when it does not.
    template <class Producer, class Produce>
    QString ReadChangedImage(const char *operation, ImageEvent event, QByteArray &last, SdkFunction<Producer> producer,
                             SdkFunction<void (*)(int, char *)> release, Produce produce,
                             const char *szChanged = nullptr);

private:
    bool LoadMVSignPadSDK();
};

template <class Sdk>
SdkClient<Sdk>::SdkClient()
{
    MV_LOG_PAD(Sdk::szClassName, "Enter...");
    [[maybe_unused]] const bool bResult = LoadMVSignPadSDK(); // a library that lacks names still serves the others
    MV_LOG_PAD(Sdk::szClassName, "Leave, bResult=%d", bResult);
}

template <class Sdk>
SdkClient<Sdk>::~SdkClient()
{
    const QByteArray destructor = QByteArray("~") + Sdk::szClassName;
    MV_LOG_PAD(destructor.constData(), "Enter...");
    this->m_pSDKLibrary->unload();
    MV_LOG_PAD(destructor.constData(), "Leave !");
}

template <class Sdk>
bool SdkClient<Sdk>::LoadMVSignPadSDK()
{
    // The failure lines carry this name instead of the model's, on purpose.
    static const char failureTag[] = "WebSocketService::LoadMVSignPadSDK()";
    MV_LOG_PAD("LoadMVSignPadSDK", "Enter...");
    bool bRet = false;
    this->m_pSDKLibrary = std::make_unique<QLibrary>(QStringLiteral("./libmvsignpadsdk.so"));
    QLibrary &library = *this->m_pSDKLibrary;
    if (!library.load()) {
        // The quotation mark without its twin is part of the line.
        MV_LOG_INSIDE_THREAD(failureTag, "libmvsignpadsdk.so' Library is not loaded, stdstrErrorString=%s",
                             library.errorString().toUtf8().constData());
    } else {
        bRet = true;
        this->ForEachFunction([&](const char *name, auto &pfn) {
            pfn = reinterpret_cast<std::decay_t<decltype(pfn)>>(library.resolve(name));
            bRet = bRet && pfn;
        });
        if (!bRet)
            MV_LOG_INSIDE_THREAD(failureTag, "APIs of 'libmvsignpadsdk.so' Library loaded Failed, stdstrErrorString=%s",
                                 library.errorString().toUtf8().constData());
    }
    MV_LOG_PAD("LoadMVSignPadSDK", "Leave, bRet=%d", bRet);
    return bRet;
}

template <class Sdk>
PadStatus SdkClient<Sdk>::Status()
{
    PadStatus status;
    status.strModel = QString::fromLatin1(Sdk::szClassName).remove(QStringLiteral("SignObj"));
    if (!this->m_pSDKLibrary->isLoaded()) {
        status.strLibraryError = this->m_pSDKLibrary->errorString();
        return status;
    }
    status.strLibrary = QFileInfo(this->m_pSDKLibrary->fileName()).canonicalFilePath();
    this->ForEachFunction([&status](const char *name, auto &pfn) {
        if (!pfn)
            status.missingFunctions.append(QString::fromLatin1(name));
    });
    return status;
}

template <class Sdk>
QString SdkClient<Sdk>::ReadIdentifier(const char *operation, SdkFunction<int (*)(int, char *, int)> function)
{
    MV_LOG_PAD(operation, "Enter...");
    char buffer[sdk::IdentifierBufferBytes] = {};
    CallAndLogResult(operation, function, buffer, static_cast<int>(sizeof buffer));
    QString strResult = TextFromBuffer(buffer, sizeof buffer);
    MV_LOG_PAD(operation, "Leave with strResult.length=%d", strResult.size());
    return strResult;
}

template <class Sdk>
template <class Producer, class Produce>
QString SdkClient<Sdk>::ReadText(const char *operation, SdkFunction<Producer> producer,
                                 SdkFunction<void (*)(int, char *)> release, Produce produce)
{
    QString strResult;
    if (IsBound(producer, release)) {
        char *pText = produce(producer.pfn);
        strResult = TextFromLibrary(pText);
        release.pfn(Sdk::nDeviceID, pText); // also when there is no text, on purpose
        MV_LOG_PAD(operation, "after call m_pfn_%s()", release.szName);
    }
    MV_LOG_PAD(operation, "Leave with strResult.length=%d", strResult.size());
    return strResult;
}

template <class Sdk>
template <class Producer, class Produce>
QString SdkClient<Sdk>::ReadChangedImage(const char *operation, ImageEvent event, QByteArray &last,
                                         SdkFunction<Producer> producer, SdkFunction<void (*)(int, char *)> release,
                                         Produce produce, const char *szChanged)
{
    QString strResult;
    char *pText = IsBound(producer, release) ? produce(producer.pfn) : nullptr;
    if (pText) {
        const QString strBase64 = TextFromLibrary(pText);
        QByteArray base64 = strBase64.toUtf8(); // kept in half the memory of the text
        if (base64 != last) {
            if (szChanged)
                MV_LOG_PAD(operation, "%s", szChanged);
            last = std::move(base64);
            last.squeeze(); // the conversion leaves room to grow, which the reply takes
            strResult = ImageReply(event, strBase64);
        }
        release.pfn(Sdk::nDeviceID, pText);
        MV_LOG_PAD(operation, "after call m_pfn_%s()", release.szName);
    }
    MV_LOG_PAD(operation, "Leave with strResult.length=%d", strResult.size());
    return strResult;
}
