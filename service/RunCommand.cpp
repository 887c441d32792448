#include "service/RunCommand.h"

#include "device/SignObjManager.h"
#include "service/CommandTable.h"
#include "service/PushCallbacks.h"
#include "service/UrlParameters.h"
#include "service/WebSocketService.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <utility>

namespace {

using Reply = std::optional<QString>;

int Number(const QString &text)
{
    return text.toInt(nullptr, 10); // whatever is no decimal integer counts as 0
}

bool Flag(const QString &text)
{
    return Number(text) != 0;
}

/// Walks: among so few keys that is faster than to make the text that the map would look for.
QString ValueOf(const QMap<QString, QString> &parameters, QLatin1String key)
{
    const auto found = std::find(parameters.keyBegin(), parameters.keyEnd(), key);
    return found == parameters.keyEnd() ? QString() : *found.base();
}

/// The request's values in the order of the keys, a missing key's as the empty text; none when the number of distinct
/// keys in the request differs from the command's.
std::optional<QStringList> Values(const Command &command, const QString &strMsg)
{
    const QMap<QString, QString> parameters = ParseUrlParameters(strMsg);
    QStringList values;
    values.reserve(nMostParameters);
    for (const char *key : command.keys) {
        if (key)
            values += ValueOf(parameters, QLatin1String(key));
    }
    if (parameters.size() != values.size())
        return {};
    return values;
}

template <class Parameter>
Parameter FromText(const QString &text)
{
    if constexpr (std::is_same_v<Parameter, int>)
        return Number(text);
    else if constexpr (std::is_same_v<Parameter, bool>)
        return Flag(text);
    else
        return text;
}

template <class Result>
QString ToText(Result result)
{
    if constexpr (std::is_same_v<Result, QString>)
        return result;
    else
        return QString::number(result);
}

template <class Result, class... Parameters, std::size_t... I>
QString CallPad(SignObjManager &manager, Result (SignObjManager::*operation)(Parameters...), const QStringList &values,
                std::index_sequence<I...> /*positions*/)
{
    const auto call = [&] { return (manager.*operation)(FromText<Parameters>(values.at(static_cast<int>(I)))...); };
    if constexpr (std::is_void_v<Result>) {
        call();
        return QStringLiteral("0");
    } else {
        return ToText(call());
    }
}

template <class Result, class... Parameters>
Reply CallPad(WebSocketService &service, Result (SignObjManager::*operation)(Parameters...),
              const std::optional<QStringList> &values)
{
    SignObjManager *const manager = service.Manager();
    if (!values || !manager)
        return {};
    return CallPad(*manager, operation, *values, std::index_sequence_for<Parameters...>());
}

/// A command that is one operation of the pad, with its values converted to what the operation takes. A command
/// without parameters ignores the query.
template <auto Operation>
Reply Pad(WebSocketService &service, const Command &command, const QString &strMsg)
{
    return CallPad(service, Operation, command.keys[0] ? Values(command, strMsg) : QStringList());
}

/// The fields are cut out by their markers, which must come in this order, so that the data may hold "=" and "?".
/// The positions are not checked: the lengths that come of missing markers are part of what clients rely on.
Reply Decode(WebSocketService &service, const Command & /*command*/, const QString &strMsg)
{
    const int nType = strMsg.indexOf(QLatin1String("?type=")) + 6;
    const int nPath = strMsg.indexOf(QLatin1String("&path="));
    const int nData = strMsg.indexOf(QLatin1String("&data="));
    const bool bHasPath = nPath >= 0;
    const QString type = strMsg.mid(nType, (bHasPath ? nPath : nData) - nType);
    const QString path = bHasPath ? strMsg.mid(nPath + 6, nData - (nPath + 6)) : QString();
    const QString data = strMsg.mid(nData + 6);
    if (type.isEmpty() || data.isEmpty() || (bHasPath && path.isEmpty()))
        return {};
    return CallPad(service, &SignObjManager::Decode, QStringList{type, path, data});
}

Reply SetPenStyle(WebSocketService &service, const Command &command, const QString &strMsg)
{
    std::optional<QStringList> values = Values(command, strMsg);
    if (values)
        values->first() = Flag(values->first()) ? QStringLiteral("0") : QStringLiteral("1"); // inverted on purpose
    return CallPad(service, &SignObjManager::SetPenStyle, values);
}

Reply GetWPSSettings(WebSocketService &service, const Command &command, const QString &strMsg)
{
    const std::optional<QStringList> values = Values(command, strMsg);
    if (!values)
        return {};
    const WpsApplicationSettings &settings = service.WPSSettings().Application(Number(values->at(0)));
    QJsonObject object;
    object.insert(QStringLiteral("EnableDateTime"), ToText(settings.bEnableDateTime));
    object.insert(QStringLiteral("EnableAutoFit"), ToText(settings.bEnableAutoFit));
    object.insert(QStringLiteral("CurrentPenWidth"), ToText(settings.nPenWidth));
    object.insert(QStringLiteral("Name"), settings.strName);
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

Reply UpdateWPSSettings(WebSocketService &service, const Command &command, const QString &strMsg)
{
    const std::optional<QStringList> values = Values(command, strMsg);
    if (!values)
        return {};
    service.WPSSettings().Application(Number(values->at(0))) = {Flag(values->at(1)), Flag(values->at(2)),
                                                                Number(values->at(3)), values->at(4)};
    service.WPSSettings().UpdateWPSSettingsToConfigureFile();
    return QStringLiteral("0");
}

Reply WPSSignConfirmed(WebSocketService &service, const Command &command, const QString &strMsg)
{
    const std::optional<QStringList> values = Values(command, strMsg);
    SignObjManager *const manager = service.Manager();
    if (!values || !manager)
        return {};
    const WpsApplicationSettings &settings = service.WPSSettings().Application(Number(values->at(0)));
    return manager->WPSSignConfirmed(settings.bEnableDateTime, settings.strName);
}

Reply EnableRealtimeSigningNotification(WebSocketService &service, const Command &command, const QString &strMsg)
{
    ReceivePushes(service); // before any check, on purpose: a rejected request has this effect too
    const std::optional<QStringList> values = Values(command, strMsg);
    SignObjManager *const manager = service.Manager();
    if (!values || !manager)
        return {};
    return ToText(manager->SetRealTimeSignBase64DataCallback(
        Number(values->at(0)), WebSocketServiceSignPadEventCallback, WebSocketServiceSignBase64DataCallback));
}

using Run = Reply (*)(WebSocketService &service, const Command &command, const QString &strMsg);

/// In the order of the command table.
const Run runs[] = {
    Pad<&SignObjManager::Clear>,
    Pad<&SignObjManager::CloseLCD>,
    Decode,
    Pad<&SignObjManager::DisplayDeviceInfoInLCD>,
    Pad<&SignObjManager::Encode>,
    Pad<&SignObjManager::GetAboutInfo>,
    Pad<&SignObjManager::GetDecodeFilePath>,
    Pad<&SignObjManager::GetDeviceConfirmOrCancelKeyStatus>,
    Pad<&SignObjManager::GetDeviceInfo>,
    Pad<&SignObjManager::GetFingerPrintImage>,
    Pad<&SignObjManager::GetInks>,
    Pad<&SignObjManager::GetPointer>,
    Pad<&SignObjManager::GetSize>,
    Pad<&SignObjManager::InitialDevice>,
    Pad<&SignObjManager::IsValid>,
    Pad<&SignObjManager::OpenLCD>,
    Pad<&SignObjManager::PadID>,
    Pad<&SignObjManager::PenID>,
    Pad<&SignObjManager::SaveDrawImage>,
    Pad<&SignObjManager::SetClip>,
    Pad<&SignObjManager::SetDisplayedFPImageAt>,
    Pad<&SignObjManager::SetPenColor>,
    SetPenStyle,
    Pad<&SignObjManager::SetPenWidth>,
    Pad<&SignObjManager::UnInitialDevice>,
    Pad<&SignObjManager::VersionID>,
    GetWPSSettings,
    UpdateWPSSettings,
    WPSSignConfirmed,
    Pad<&SignObjManager::WPSGetInks>,
    Pad<&SignObjManager::InitialWPSSignCanvas>,
    Pad<&SignObjManager::GetSVGImageBase64Data>,
    EnableRealtimeSigningNotification,
    Pad<&SignObjManager::GetOpaqueInks>,
};
static_assert(std::size(runs) == nCommandCount, "one for each command");

} // namespace

Reply RunCommand(int nCommand, WebSocketService &service, const QString &strMsg)
{
    return runs[nCommand](service, commandTable[nCommand], strMsg);
}
