#include "base/SettingsFile.h"
#include "service/WpsSettings.h"
#include "tools/Text.h"
#include "tools/doctor/Checks.h"
#include "tools/doctor/Machine.h"

#include <QFile>

namespace {

/// What is wrong with a settings file; empty when nothing is.
QString FlawOf(const QString &path, const QStringList &knownKeys)
{
    const std::optional<QVariantMap> settings = ReadSettings(path);
    if (!settings)
        return Text::tr("%1 cannot be read: check its owner and its rights, or remove it").arg(path);
    for (auto setting = settings->begin(); setting != settings->end(); ++setting) {
        if (!knownKeys.contains(QString(setting.key()).remove(QStringLiteral("Settings/"))))
            return Fill(Text::tr("%1 has an unknown key, correct or remove it: %2"), {path, setting.key()});
    }
    return {};
}

/// Which pages are served.
QString PagesServed(const AccessPolicy &access)
{
    const UnknownOrigins unknown = access.ForUnknownOrigins();
    const QStringList allowed = access.NamedOrigins();
    const QString named = allowed.join(QLatin1Char(' '));
    const QString blocked = access.originAnswers.Blocked().join(QLatin1Char(' '));
    const QString pages =
        unknown == UnknownOrigins::Allow ? Text::tr("every page")
        : unknown == UnknownOrigins::Ask
            ? (allowed.isEmpty() ? Text::tr("pages when the user allows it")
                                 : Text::tr("the pages of %1, others when the user allows it").arg(named))
        : allowed.isEmpty() ? Text::tr("no page")
                            : Text::tr("the pages of %1").arg(named);
    return blocked.isEmpty() ? pages : Fill(Text::tr("%1, but none of %2"), {pages, blocked});
}

} // namespace

Finding CheckSettingsFiles(const Machine &machine)
{
    struct {
        const char *szName;
        QStringList keys;
    } const files[] = {{traySettingsName, TraySettings::Keys()}, {wpsSettingsName, WpsSettingsKeys()}};
    QStringList found;
    for (const auto &file : files) {
        const QStringList paths = SettingsPaths(file.szName);
        for (const QString &path : paths) {
            const QString flaw = FlawOf(path, file.keys);
            if (!flaw.isEmpty())
                return Bad(flaw);
            if (QFile::exists(path))
                found += path;
        }
    }
    const int nPort = machine.settings.nWebSocketPort;
    if (nPort < 1 || nPort > 65535)
        return Bad(Text::tr("WebSocketPort must be a port from 1 to 65535, not %1").arg(nPort));
    return Ok(found.isEmpty() ? Text::tr("none, so the defaults hold") : found.join(QLatin1Char(' ')));
}

Finding CheckAccess(const Machine &machine)
{
    const AccessPolicy &access = machine.access;
    if (!access.bServesAnybody)
        return Bad(Text::tr("correct what keeps the service closed: %1").arg(access.strClosedReason));
    const QString where = access.listenAddress ? Text::tr("who reaches %1").arg(access.listenAddress->toString())
                                               : Text::tr("every machine that reaches the port");
    const QString programs =
        access.bRequireOrigin ? Text::tr("programs that name an origin") : Text::tr("every program");
    const QString files = access.saveFolders
                              ? Text::tr("files below %1").arg(access.saveFolders->join(QLatin1Char(' ')))
                              : Text::tr("files anywhere");
    return Ok(Fill(Text::tr("served are: %1; %2; %3; %4"), {where, PagesServed(access), programs, files}));
}
