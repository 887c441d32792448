#include "tray/AccessSettings.h"

#include "base/SettingsFile.h"
#include "tray/TraySettings.h"

#include <QRegularExpression>

#include <algorithm>
#include <cstdio>

namespace {

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

bool TakeAllowedOrigins(const QVariant &value, AccessPolicy &policy)
{
    static const QRegularExpression origin(QStringLiteral("\\A(null|file://|[a-z][a-z0-9+.-]*://[^/?#@\\s]+)\\z"));
    const bool bList = !value.isValid() || value.type() == QVariant::String || value.type() == QVariant::StringList;
    QStringList origins = value.toStringList();
    if (origins == QStringList(QString()))
        origins.clear();
    for (const QString &strOrigin : qAsConst(origins)) {
        if (!origin.match(strOrigin).hasMatch())
            return false;
    }
    policy.allowedOrigins = origins;
    return bList;
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
};

const AccessKey *FindKey(const QString &strName)
{
    for (const AccessKey &key : accessKeys) {
        if (strName == QLatin1String(key.szName))
            return &key;
    }
    return nullptr;
}

bool Refuse(AccessPolicy &policy, const char *szWhat, const char *szWhy)
{
    std::fprintf(stderr, "mvsignpadsdk_wssvr: the service stays closed: %s in the settings group Access %s\n", szWhat,
                 szWhy);
    policy.bServesAnybody = false;
    return false;
}

/// Reading the settings passes over such a line in silence.
bool HasLineWithoutValue(const QByteArray &text)
{
    bool bInGroup = false;
    const QList<QByteArray> lines = QByteArray(text).replace('\r', '\n').split('\n');
    for (const QByteArray &rawLine : lines) {
        const QByteArray line = rawLine.trimmed();
        if (line.startsWith('['))
            bInGroup = line.mid(1, line.indexOf(']') - 1).trimmed() == accessGroup;
        else if (bInGroup && !line.isEmpty() && !line.startsWith(';') && !line.contains('='))
            return true;
    }
    return false;
}

bool TakeKey(const SettingsFile &file, const QString &strName, AccessPolicy &policy)
{
    const AccessKey *const key = FindKey(strName);
    if (!key)
        return Refuse(policy, "a key", "is not known"); // a misspelt key must not leave the door open
    QByteArray expected = QByteArray("is not ") + key->szExpected;
    return key->take(file.Value(strName), policy) || Refuse(policy, key->szName, expected.constData());
}

} // namespace

bool IsAccessGroupReadable()
{
    const QByteArrayList texts = SettingsFile(TraySettingsFileName()).RawTexts();
    return std::none_of(texts.begin(), texts.end(), HasLineWithoutValue);
}

AccessPolicy LoadAccessPolicy()
{
    AccessPolicy policy;
    if (!IsAccessGroupReadable()) {
        Refuse(policy, "a line", "has no value");
        return policy;
    }
    const SettingsFile file(TraySettingsFileName(), QLatin1String(accessGroup));
    if (file.MayHideAccess())
        Refuse(policy, "what may be", "is hidden by a value that is not decoded");
    const QStringList names = file.Keys();
    for (const QString &strName : names) {
        if (!TakeKey(file, strName, policy))
            break;
    }
    return policy;
}
