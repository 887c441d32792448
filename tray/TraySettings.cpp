#include "tray/TraySettings.h"

#include "base/SettingsFile.h"
#include "tray/DesktopVariant.h"

#include <QFile>

namespace {

QString AutoLaunchKey()
{
    return QStringLiteral("AutoLaunch");
}

/// Calls visit(key, field) for every setting, in the order of the file.
template <class Settings, class Visitor>
void ForEachSetting(Settings &settings, Visitor visit)
{
    visit(AutoLaunchKey(), settings.bAutoLaunch);
    visit(QStringLiteral("StartWebService"), settings.bStartWebService);
    visit(QStringLiteral("StartWebServiceWithSSL"), settings.bStartWebServiceWithSSL);
    visit(QStringLiteral("WebSocketPort"), settings.nWebSocketPort);
    visit(QStringLiteral("WebSocketSecurePort"), settings.nWebSocketSecurePort);
    visit(QStringLiteral("UILangID"), settings.nUILangID);
}

} // namespace

void TraySettings::Load(int nOSProductID)
{
    const SettingsReader file(traySettingsName);
    ForEachSetting(*this, [&file](const QString &key, auto &field) { file.Load(key, field); });
    // The stored value only says that the user has chosen once; the entry on disk is the truth. Without the key the
    // default stays, even beside an entry: on purpose.
    if (file.Contains(AutoLaunchKey()))
        bAutoLaunch = QFile::exists(AutostartTarget(nOSProductID));
}

QStringList TraySettings::Keys()
{
    QStringList keys;
    const TraySettings anySettings;
    ForEachSetting(anySettings, [&keys](const QString &key, const auto &) { keys.append(key); });
    return keys;
}

void TraySettings::Save() const
{
    SettingsWriter file(traySettingsName);
    ForEachSetting(*this, [&file](const QString &key, const auto &field) { file.Save(key, field); });
}
