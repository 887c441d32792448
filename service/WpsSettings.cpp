#include "service/WpsSettings.h"

#include "base/Logging.h"
#include "base/SettingsFile.h"

namespace {

template <class Application, class Visitor>
void ForEachSettingOf(Application &application, const QString &suffix, Visitor visit)
{
    visit(QStringLiteral("EnableDateTime_") + suffix, application.bEnableDateTime);
    visit(QStringLiteral("EnableAutoFit_") + suffix, application.bEnableAutoFit);
    visit(QStringLiteral("PenWidth_") + suffix, application.nPenWidth);
    visit(QStringLiteral("Name_") + suffix, application.strName);
}

/// Calls visit(key, field) for every setting, in the order of the file.
template <class Settings, class Visitor>
void ForEachSetting(Settings &settings, Visitor visit)
{
    ForEachSettingOf(settings.WPS, QStringLiteral("WPS"), visit);
    ForEachSettingOf(settings.ET, QStringLiteral("ET"), visit);
    ForEachSettingOf(settings.WPP, QStringLiteral("WPP"), visit);
}

} // namespace

WpsApplicationSettings &_STRUCT_WPS_SETTINGS_INIDATA::Application(int nID)
{
    switch (nID) {
    case 2:
        return ET;
    case 3:
        return WPP;
    default:
        return WPS;
    }
}

void _STRUCT_WPS_SETTINGS_INIDATA::LoadWPSSettingsFromConfigureFile()
{
    static const char tag[] = "WebSocketService::LoadWPSSettingsFromConfigureFile()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    const SettingsReader file(wpsSettingsName);
    ForEachSetting(*this, [&file](const QString &key, auto &field) { file.Load(key, field); });
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

void _STRUCT_WPS_SETTINGS_INIDATA::UpdateWPSSettingsToConfigureFile() const
{
    static const char tag[] = "WebSocketService::UpdateWPSSettingsToConfigureFile()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    SettingsWriter file(wpsSettingsName);
    ForEachSetting(*this, [&file](const QString &key, const auto &field) { file.Save(key, field); });
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

QStringList WpsSettingsKeys()
{
    QStringList keys;
    const _STRUCT_WPS_SETTINGS_INIDATA anySettings;
    ForEachSetting(anySettings, [&keys](const QString &key, const auto &) { keys.append(key); });
    return keys;
}
