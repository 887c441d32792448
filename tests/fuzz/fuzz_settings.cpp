/// One text as every settings file: loading, then saving and loading again, which must change nothing.

#include "service/AccessSettings.h"
#include "service/WpsSettings.h"
#include "tests/fuzz/FuzzHome.h"
#include "tray/TraySettings.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <tuple>

namespace {

auto valuesOf(const TraySettings &tray)
{
    return std::make_tuple(tray.bAutoLaunch, tray.bStartWebService, tray.bStartWebServiceWithSSL, tray.nWebSocketPort,
                           tray.nWebSocketSecurePort, tray.nUILangID);
}

auto valuesOf(const WpsApplicationSettings &application)
{
    return std::make_tuple(application.bEnableDateTime, application.bEnableAutoFit, application.nPenWidth,
                           application.strName);
}

auto valuesOf(const _STRUCT_WPS_SETTINGS_INIDATA &wps)
{
    return std::tuple_cat(valuesOf(wps.WPS), valuesOf(wps.ET), valuesOf(wps.WPP));
}

template <class Record, class Load>
Record loaded(Load load)
{
    Record record;
    load(record);
    return record;
}

template <class Record, class Load>
void mustSurviveSaving(const char *what, Load load, void (*save)(const Record &))
{
    const Record before = loaded<Record>(load);
    save(before);
    if (valuesOf(before) != valuesOf(loaded<Record>(load))) {
        std::fprintf(stderr, "saving has changed the %s settings\n", what);
        std::abort();
    }
}

/// Qt reads a file again only when its time or size has changed, and the clock of the files is coarse.
void writeFile(const QString &path, const char *data, std::size_t size)
{
    static time_t second = 1;
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data, static_cast<qint64>(size)) != static_cast<qint64>(size))
        qFatal("cannot write the settings");
    file.close();
    const timespec times[2] = {{++second, 0}, {second, 0}};
    utimensat(AT_FDCWD, QFile::encodeName(path).constData(), times, 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const FuzzHome *const home = new FuzzHome;
    for (const char *application : {"MVSignPadSDK_WSSvr", "MVeSign_WPS", "MVSignPadSDK_Access"})
        writeFile(home->settingsFile(QLatin1String(application)), reinterpret_cast<const char *>(data), size);

    LoadAccessPolicy();
    // The automatic launch is not the file's to say: no autostart entry lies in this home.
    mustSurviveSaving<TraySettings>(
        "tray", [](TraySettings &tray) { tray.Load(1); }, [](const TraySettings &tray) { tray.Save(); });
    mustSurviveSaving<_STRUCT_WPS_SETTINGS_INIDATA>(
        "WPS", [](_STRUCT_WPS_SETTINGS_INIDATA &wps) { wps.LoadWPSSettingsFromConfigureFile(); },
        [](const _STRUCT_WPS_SETTINGS_INIDATA &wps) { wps.UpdateWPSSettingsToConfigureFile(); });
    return 0;
}
