#include "tests/panels/Panel.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

/// The socket's name is the first one that is free.
const char waylandDisplay[] = "wayland-1";

/// In a window that fills the X server's screen, whose pointer and pictures the test uses: without a screen at all sway
/// has no pointer.
const char swayConfiguration[] = R"(output X11-1 resolution 800x600
output X11-1 background #202020 solid_color
exec waybar
)";

const char waybarConfiguration[] = R"({"position": "bottom", "height": 32, "modules-left": ["tray"],
 "tray": {"icon-size": 24}}
)";

bool writeFile(const QString &path, const char *content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == qint64(qstrlen(content));
}

bool startShell(DesktopSession &desktop, const QString &command)
{
    return desktop.startHelper(QStringLiteral("sh"), {QStringLiteral("-c"), QStringLiteral("exec ") + command});
}

bool waitForHost(const DesktopSession &desktop)
{
    return QTest::qWaitFor([&] { return desktop.hasStatusNotifierHost(); }, patienceMs);
}

QProcessEnvironment plainEnvironment(const DesktopSession &desktop)
{
    return desktop.environment();
}

// -- UKUI -------------------------------------------------------------------------------------------------------------
bool startUkui(DesktopSession &desktop)
{
    const auto hasWatcher = [&] { return desktop.isNameOnTheBus(QStringLiteral("org.kde.StatusNotifierWatcher")); };
    return desktop.startWindowManager() && startShell(desktop, QStringLiteral("sni-daemon"))
           && QTest::qWaitFor(hasWatcher, patienceMs)
           && startShell(desktop, QStringLiteral("env XDG_CURRENT_DESKTOP=UKUI QT_QPA_PLATFORMTHEME=ukui ukui-panel"))
           && waitForHost(desktop);
}

QProcessEnvironment ukuiEnvironment(const DesktopSession &desktop)
{
    QProcessEnvironment environment = desktop.environment();
    environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("UKUI"));
    environment.insert(QStringLiteral("QT_QPA_PLATFORMTHEME"), QStringLiteral("ukui"));
    return environment;
}

// -- Xfce -------------------------------------------------------------------------------------------------------------
bool startXfce(DesktopSession &desktop)
{
    const auto hasSettings = [&] { return desktop.isNameOnTheBus(QStringLiteral("org.xfce.Xfconf")); };
    return desktop.startWindowManager() && startShell(desktop, QStringLiteral("/usr/lib/*/xfce4/xfconf/xfconfd"))
           && QTest::qWaitFor(hasSettings, patienceMs)
           && startShell(desktop, QStringLiteral("xfce4-panel --disable-wm-check")) && waitForHost(desktop);
}

// -- MATE -------------------------------------------------------------------------------------------------------------
/// A program of its own for each applet: the panel has the bus start it, and the bus of the tests starts nothing.
bool startMateApplet(DesktopSession &desktop, const char *program, const char *factory)
{
    const QString name = QStringLiteral("org.mate.panel.applet.") + QLatin1String(factory);
    return startShell(desktop, QStringLiteral("/usr/lib/mate-panel/") + QLatin1String(program))
           && QTest::qWaitFor([&] { return desktop.isNameOnTheBus(name); }, patienceMs);
}

bool startMate(DesktopSession &desktop)
{
    return desktop.startWindowManager()
           && startMateApplet(desktop, "notification-area-applet", "NotificationAreaAppletFactory")
           && startMateApplet(desktop, "clock-applet", "ClockAppletFactory")
           && startMateApplet(desktop, "wnck-applet", "WnckletFactory")
           && startShell(desktop, QStringLiteral("env GSETTINGS_BACKEND=memory mate-panel")) && waitForHost(desktop);
}

// -- Wayland ----------------------------------------------------------------------------------------------------------
bool startSway(DesktopSession &desktop)
{
    const QString configuration = desktop.home() + QStringLiteral("/.config/sway/config");
    return writeFile(configuration, swayConfiguration)
           && writeFile(desktop.home() + QStringLiteral("/.config/waybar/config"), waybarConfiguration)
           && startShell(desktop, QStringLiteral("env WLR_BACKENDS=x11 WLR_RENDERER=pixman sway"))
           && waitForHost(desktop);
}

QProcessEnvironment waylandEnvironment(const DesktopSession &desktop)
{
    QProcessEnvironment environment = desktop.environment();
    environment.remove(QStringLiteral("DISPLAY"));
    environment.insert(QStringLiteral("WAYLAND_DISPLAY"), QLatin1String(waylandDisplay));
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("wayland"));
    return environment;
}

} // namespace

const std::vector<Panel> &allPanels()
{
    static const std::vector<Panel> panels = {
        {"ukui", startUkui, ukuiEnvironment},
        {"xfce", startXfce, plainEnvironment},
        {"mate", startMate, plainEnvironment},
        {"sway", startSway, waylandEnvironment},
    };
    return panels;
}
