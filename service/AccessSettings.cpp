#include "service/AccessSettings.h"

#include "base/SettingsFile.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <cstdio>

namespace {

/// What the package mvsignpad-secure brings; the machine's file goes before it.
constexpr char szPackagedSettings[] = "/usr/share/mvsignpadsdk/MVSignPadSDK_Access.conf";

struct AccessKey {
    const char *szName;
    const char *szExpected;
    /// Takes the value over into the policy; false when it is not what is expected.
    bool (*take)(const QVariant &value, AccessPolicy &policy);
};

bool TakeListenAddress(const QVariant &value, AccessPolicy &policy)
{
    const QString strAddress = value.toString();
    const QHostAddress address(strAddress);
    // Short forms are refused, since "0" would be every interface.
    const bool bShort = address.protocol() == QAbstractSocket::IPv4Protocol && address.toString() != strAddress;
    if (value.type() != QVariant::String || address.isNull() || bShort)
        return false;
    policy.listenAddress = address;
    return true;
}

/// Takes a list over, each entry of which is as the pattern says; an empty text is an empty list.
bool TakeList(const QVariant &value, const QString &strPattern, std::optional<QStringList> &list)
{
    const QRegularExpression pattern(QStringLiteral("\\A(?:%1)\\z").arg(strPattern));
    const bool bList = !value.isValid() || value.type() == QVariant::String || value.type() == QVariant::StringList;
    QStringList entries = value.toStringList();
    if (entries == QStringList(QString()))
        entries.clear();
    list = entries;
    return bList && std::all_of(entries.begin(), entries.end(), [&pattern](const QString &strEntry) {
               return pattern.match(strEntry).hasMatch();
           });
}

bool TakeAllowedOrigins(const QVariant &value, AccessPolicy &policy)
{
    return TakeList(value, QStringLiteral("null|file://|[a-z][a-z0-9+.-]*://[^/?#@\\s]+"), policy.allowedOrigins);
}

bool TakeSaveFolders(const QVariant &value, AccessPolicy &policy)
{
    return TakeList(value, QStringLiteral("/.*"), policy.saveFolders);
}

bool TakeUnknownOrigins(const QVariant &value, AccessPolicy &policy)
{
    static const struct {
        const char *szValue;
        UnknownOrigins meaning;
    } meanings[] = {{"allow", UnknownOrigins::Allow}, {"block", UnknownOrigins::Block}, {"ask", UnknownOrigins::Ask}};
    policy.unknownOrigins.reset(); // the last word may be one that is not understood
    for (const auto &each : meanings) {
        if (value.type() == QVariant::String && value.toString() == QLatin1String(each.szValue))
            policy.unknownOrigins = each.meaning;
    }
    return policy.unknownOrigins.has_value();
}

bool TakeRequireOrigin(const QVariant &value, AccessPolicy &policy)
{
    const QString strFlag = value.toString();
    policy.bRequireOrigin = strFlag == QLatin1String("true");
    return value.type() == QVariant::String && (policy.bRequireOrigin || strFlag == QLatin1String("false"));
}

const AccessKey accessKeys[] = {
    {"ListenAddress", "one IP address in full", TakeListenAddress},
    {"AllowedOrigins", "a list of origins such as https://sign.example.org", TakeAllowedOrigins},
    {"RequireOrigin", "true or false", TakeRequireOrigin},
    {"UnknownOrigins", "allow, block or ask", TakeUnknownOrigins},
    {"SaveFolders", "a list of folders such as /tmp", TakeSaveFolders},
};

/// Why the service stays closed; nothing when all is understood.
using Flaw = QByteArray;

/// Takes over the setting of this group and key.
Flaw TakeSetting(const QString &strName, const QVariant &value, AccessPolicy &policy)
{
    for (const AccessKey &key : accessKeys) {
        if (strName == QLatin1String("Access/") + QLatin1String(key.szName))
            return key.take(value, policy) ? Flaw() : Flaw(key.szName) + " is not " + key.szExpected;
    }
    return "a key is not known, or not in the group Access"; // a misspelt one must not leave the door open
}

/// Takes over all settings of a file.
Flaw TakeFile(const QString &strPath, AccessPolicy &policy)
{
    const std::optional<QVariantMap> settings = ReadSettings(strPath);
    if (!settings)
        return "it cannot be read";
    if (HasOtherLines(ReadSettingsText(strPath).value_or(QByteArray())))
        return "a line is no setting";
    Flaw flaw;
    for (auto setting = settings->begin(); flaw.isEmpty() && setting != settings->end(); ++setting)
        flaw = TakeSetting(setting.key(), setting.value(), policy);
    return flaw;
}

/// Version 1.0 had the group in the tray settings: what it closed must not open because nobody looks there any more.
Flaw FormerGroupIn(const QString &strPath)
{
    const QByteArray text = ReadSettingsText(strPath).value_or(QByteArray());
    return text.contains("Access") ? Flaw("the group Access belongs into ") + accessSettingsName + ".conf" : Flaw();
}

Flaw TakeOriginAnswers(AccessPolicy &policy)
{
    const std::optional<OriginAnswers> answers = OriginAnswers::Read();
    policy.originAnswers = answers.value_or(OriginAnswers());
    return answers ? Flaw() : Flaw("it cannot be read, or something in it is not understood");
}

bool IsWithout(const Flaw &flaw, const QString &strPath, AccessPolicy &policy)
{
    if (!flaw.isEmpty())
        policy.strClosedReason = strPath + QStringLiteral(": ") + QString::fromLatin1(flaw);
    return flaw.isEmpty();
}

} // namespace

AccessPolicy ReadAccessPolicy()
{
    AccessPolicy policy;
    const QStringList formerPaths = SettingsPaths(traySettingsName);
    const QStringList paths = QStringList(QString::fromLatin1(szPackagedSettings)) + SettingsPaths(accessSettingsName);
    policy.bServesAnybody =
        std::all_of(formerPaths.begin(), formerPaths.end(),
                    [&policy](const QString &strPath) { return IsWithout(FormerGroupIn(strPath), strPath, policy); })
        && std::all_of(
            paths.begin(), paths.end(),
            [&policy](const QString &strPath) { return IsWithout(TakeFile(strPath, policy), strPath, policy); })
        && IsWithout(TakeOriginAnswers(policy), OriginAnswers::Path(), policy);
    return policy;
}

AccessPolicy LoadAccessPolicy()
{
    AccessPolicy policy = ReadAccessPolicy();
    if (!policy.bServesAnybody)
        std::fprintf(stderr, "mvsignpadsdk_wssvr: the service stays closed: %s\n",
                     QFile::encodeName(policy.strClosedReason).constData());
    return policy;
}
