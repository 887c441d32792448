#include "tests/desktop/DesktopSession.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <csignal>

namespace {

/// How long a menu may take to come; without one the click was lost.
const int clickPatienceMs = 10000;

const char watcherService[] = "org.kde.StatusNotifierWatcher";

const char panelConfiguration[] = R"(panels=panel1

[panel1]
plugins=statusnotifier
position=Bottom
desktop=0
panelSize=40
iconSize=32
width=100
width-percent=true

[statusnotifier]
type=statusnotifier
alignment=Left
)";

bool writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QProcessEnvironment plainEnvironment()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QStringList keys = environment.keys();
    for (const QString &key : keys) {
        if (key.startsWith(QLatin1String("QT_")) || key.startsWith(QLatin1String("XDG_"))
            || key == QLatin1String("WAYLAND_DISPLAY") || key == QLatin1String("XAUTHORITY"))
            environment.remove(key);
    }
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    return environment;
}

/// The two colours that no tray and no wallpaper of these desktops has: the pad's blue body, the pen's orange.
bool isPadBlue(const QColor &colour)
{
    return colour.hsvHue() >= 205 && colour.hsvHue() <= 225 && colour.hsvSaturation() >= 160 && colour.value() >= 160;
}

bool isPenOrange(const QColor &colour)
{
    return colour.hsvHue() >= 25 && colour.hsvHue() <= 45 && colour.hsvSaturation() >= 170 && colour.value() >= 190;
}

QRgb mostFrequentColour(const QImage &image)
{
    QHash<QRgb, int> count;
    QRgb most = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (++count[image.pixel(x, y)] > count.value(most))
                most = image.pixel(x, y);
    return most;
}

/// Reads a menu's picture: below each other, tall runs of inked rows are entries, thin and wide ones separators.
void readMenuRows(const QImage &image, MenuPicture &menu)
{
    const int frame = 2;
    const QRgb paper = mostFrequentColour(image);
    int runStart = -1;
    int widest = 0;
    for (int y = frame; y <= image.height() - frame; ++y) {
        int inked = 0;
        for (int x = frame; y < image.height() - frame && x < image.width() - frame; ++x)
            inked += image.pixel(x, y) != paper ? 1 : 0;
        if (inked > 0) {
            runStart = runStart < 0 ? y : runStart;
            widest = qMax(widest, inked);
        } else if (runStart >= 0) {
            const bool isLine = y - runStart <= 2 && widest > image.width() * 8 / 10;
            (isLine ? menu.separatorRows : menu.entryRows).append((runStart + y - 1) / 2);
            runStart = -1;
            widest = 0;
        }
    }
}

} // namespace

DesktopSession::DesktopSession() : m_environment(plainEnvironment())
{
    const QString runtime = m_directory.filePath(QStringLiteral("run"));
    QDir().mkpath(home());
    QDir().mkpath(runtime);
    QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    m_environment.insert(QStringLiteral("HOME"), home());
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtime);
    m_usable = m_directory.isValid() && startXServer() && startBus();
}

DesktopSession::~DesktopSession()
{
    QDBusConnection::disconnectFromBus(busAddress());
    // The last comes down first: the X server and the bus outlive their clients.
    while (!m_helpers.empty())
        endLastHelper();
}

void DesktopSession::suspendLastHelper()
{
    ::kill(static_cast<pid_t>(m_helpers.back()->processId()), SIGSTOP);
}

void DesktopSession::resumeLastHelper()
{
    ::kill(static_cast<pid_t>(m_helpers.back()->processId()), SIGCONT);
}

void DesktopSession::endLastHelper()
{
    resumeLastHelper();
    QProcess &helper = *m_helpers.back();
    helper.terminate();
    if (!helper.waitForFinished(3000))
        helper.kill();
    helper.waitForFinished(3000);
    m_helpers.pop_back();
}

QString DesktopSession::settingsFile() const
{
    return home() + QStringLiteral("/.config/mvsignpadsdk/MVSignPadSDK_WSSvr.conf");
}

QStringList DesktopSession::settingsLines() const
{
    QFile file(settingsFile());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    lines.removeAll(QString());
    lines.sort();
    return lines;
}

bool DesktopSession::writeSettings(const QStringList &lines) const
{
    const QString text = QStringLiteral("[Settings]\n") + lines.join(QLatin1Char('\n')) + QLatin1Char('\n');
    return writeFile(settingsFile(), text.toUtf8());
}

QString DesktopSession::busAddress() const
{
    return m_environment.value(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
}

QProcess *DesktopSession::startHelper(const QString &program, const QStringList &arguments)
{
    m_helpers.emplace_back(new QProcess);
    QProcess *helper = m_helpers.back().get();
    helper->setProcessEnvironment(m_environment);
    helper->setStandardErrorFile(m_directory.filePath(QFileInfo(program).fileName() + QStringLiteral(".stderr")));
    helper->setWorkingDirectory(m_directory.path());
    helper->start(program, arguments);
    return helper->waitForStarted(patienceMs) ? helper : nullptr;
}

bool DesktopSession::startXServer()
{
    // The server picks a free display itself and tells its number on its standard output.
    QProcess *server = startHelper(QStringLiteral("Xvfb"),
                                   {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-screen"),
                                    QStringLiteral("0"), QStringLiteral("800x600x24"), QStringLiteral("-nolisten"),
                                    QStringLiteral("tcp"), QStringLiteral("-noreset")});
    if (!server)
        return false;
    if (!QTest::qWaitFor([server] { return server->canReadLine(); }, patienceMs)) {
        QFile complaints(m_directory.filePath(QStringLiteral("Xvfb.stderr")));
        complaints.open(QIODevice::ReadOnly);
        qWarning("Xvfb says nothing in its state %d: %s", int(server->state()), complaints.readAll().constData());
        return false;
    }
    m_environment.insert(QStringLiteral("DISPLAY"),
                         QStringLiteral(":") + QString::fromLatin1(server->readLine().trimmed()));
    return true;
}

bool DesktopSession::startBus()
{
    m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_bus.address());
    return !m_bus.address().isEmpty() && QDBusConnection::connectToBus(busAddress(), busAddress()).isConnected();
}

bool DesktopSession::startTrayer()
{
    const QStringList place = QStringLiteral("--edge bottom --align left --widthtype pixel --width 64 "
                                             "--heighttype pixel --height 32 --SetDockType false --expand false")
                                  .split(QLatin1Char(' '));
    return startHelper(QStringLiteral("trayer"), place)
           && QTest::qWaitFor(
               [this] {
                   return !run(QStringLiteral("xdotool"), {QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                                                           QStringLiteral("--class"), QStringLiteral("trayer")})
                               .isEmpty();
               },
               patienceMs);
}

bool DesktopSession::startWindowManager()
{
    const auto isThere = [this] {
        return run(QStringLiteral("xprop"), {QStringLiteral("-root"), QStringLiteral("_NET_SUPPORTING_WM_CHECK")})
            .contains("window id");
    };
    return startHelper(QStringLiteral("openbox"), {}) && QTest::qWaitFor(isThere, patienceMs);
}

bool DesktopSession::startStatusNotifierHost()
{
    return writeFile(home() + QStringLiteral("/.config/lxqt/panel.conf"), panelConfiguration)
           && startHelper(QStringLiteral("lxqt-panel"), {})
           && QTest::qWaitFor([this] { return hasStatusNotifierHost(); }, patienceMs);
}

bool DesktopSession::isNameOnTheBus(const QString &name) const
{
    return QDBusConnection(busAddress()).interface()->isServiceRegistered(name);
}

bool DesktopSession::hasStatusNotifierHost() const
{
    if (!isNameOnTheBus(QLatin1String(watcherService)))
        return false;
    const QDBusConnection bus(busAddress());
    const QDBusInterface watcher(QLatin1String(watcherService), QStringLiteral("/StatusNotifierWatcher"),
                                 QLatin1String(watcherService), bus);
    return watcher.property("IsStatusNotifierHostRegistered").toBool();
}

bool DesktopSession::isOnTheBus(qint64 process) const
{
    QDBusConnectionInterface *const bus = QDBusConnection(busAddress()).interface();
    const QStringList names = bus->registeredServiceNames();
    return std::any_of(names.begin(), names.end(),
                       [&](const QString &name) { return bus->servicePid(name).value() == process; });
}

QByteArray DesktopSession::run(const QString &program, const QStringList &arguments) const
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(program, arguments);
    process.waitForFinished(patienceMs);
    return process.readAllStandardOutput();
}

QImage DesktopSession::screenshot() const
{
    return QImage::fromData(run(QStringLiteral("import"), {QStringLiteral("-silent"), QStringLiteral("-window"),
                                                           QStringLiteral("root"), QStringLiteral("ppm:-")}));
}

QRect DesktopSession::padPaper() const
{
    const QImage screen = screenshot();
    QRect paper;
    for (int y = 0; y < screen.height(); ++y)
        for (int x = 0; x < screen.width(); ++x)
            if (screen.pixel(x, y) == qRgb(0xf4, 0xf6, 0xf1))
                paper |= QRect(x, y, 1, 1);
    return paper;
}

bool DesktopSession::keepScreenshot(const QString &name) const
{
    return QDir().mkpath(QStringLiteral(MVSIGNPAD_TEST_OUTPUT))
           && screenshot().save(QStringLiteral(MVSIGNPAD_TEST_OUTPUT "/") + name);
}

QRect DesktopSession::iconArea() const
{
    const QImage screen = screenshot();
    QRect blue;
    int bluePixels = 0;
    int orangePixels = 0;
    for (int y = 0; y < screen.height(); ++y) {
        for (int x = 0; x < screen.width(); ++x) {
            if (!m_background.isNull() && screen.pixel(x, y) == m_background.pixel(x, y))
                continue;
            const QColor colour(screen.pixel(x, y));
            if (isPadBlue(colour)) {
                blue |= QRect(x, y, 1, 1);
                ++bluePixels;
            }
            orangePixels += isPenOrange(colour) ? 1 : 0;
        }
    }
    const bool isIcon = bluePixels >= 20 && orangePixels >= 5 && blue.width() <= 64 && blue.height() <= 64;
    return isIcon ? blue : QRect();
}

bool DesktopSession::waitForIcon(int timeoutMs) const
{
    return QTest::qWaitFor([this] { return !iconArea().isEmpty(); }, timeoutMs);
}

void DesktopSession::click(const QPoint &point, int button) const
{
    run(QStringLiteral("xdotool"), {QStringLiteral("mousemove"), QString::number(point.x()), QString::number(point.y()),
                                    QStringLiteral("click"), QString::number(button)});
}

void DesktopSession::press(const QString &keys) const
{
    run(QStringLiteral("xdotool"), {QStringLiteral("key"), keys});
}

QList<qint64> DesktopSession::visibleWindows() const
{
    return searchWindows(QStringLiteral(".*"));
}

QList<qint64> DesktopSession::visibleWindows(const QString &title) const
{
    return searchWindows(QStringLiteral("^%1$").arg(title));
}

QList<qint64> DesktopSession::searchWindows(const QString &namePattern) const
{
    QList<qint64> windows;
    const QList<QByteArray> lines =
        run(QStringLiteral("xdotool"),
            {QStringLiteral("search"), QStringLiteral("--onlyvisible"), QStringLiteral("--name"), namePattern})
            .split('\n');
    for (const QByteArray &line : lines)
        if (!line.isEmpty())
            windows.append(line.toLongLong());
    return windows;
}

QRect DesktopSession::windowArea(qint64 window) const
{
    QHash<QByteArray, int> values;
    const QList<QByteArray> lines = run(QStringLiteral("xdotool"), {QStringLiteral("getwindowgeometry"),
                                                                    QStringLiteral("--shell"), QString::number(window)})
                                        .split('\n');
    for (const QByteArray &line : lines)
        values.insert(line.left(line.indexOf('=')), line.mid(line.indexOf('=') + 1).toInt());
    return QRect(values.value("X"), values.value("Y"), values.value("WIDTH"), values.value("HEIGHT"));
}

MenuPicture DesktopSession::openMenu() const
{
    // A click that falls between two states of the tray is lost; as a person would, click again.
    MenuPicture menu;
    for (int attempt = 0; attempt < patienceMs / clickPatienceMs && menu.entryRows.isEmpty(); ++attempt)
        menu = clickForMenu();
    return menu;
}

MenuPicture DesktopSession::clickForMenu() const
{
    MenuPicture menu;
    const QRect icon = iconArea();
    if (icon.isEmpty())
        return menu;
    const QList<qint64> before = visibleWindows();
    click(icon.center(), 3);
    // A menu is a new window that is larger than a tool-tip is high and lies beside the icon.
    const auto newMenu = [&] {
        const QList<qint64> windows = visibleWindows();
        for (const qint64 window : windows) {
            const QRect area = windowArea(window);
            if (!before.contains(window) && area.height() > 40 && area.width() > 60) {
                menu.window = window;
                menu.area = area;
            }
        }
        return menu.window != 0;
    };
    // Its window is there before its picture is.
    const auto isDrawn = [&] {
        menu.entryRows.clear();
        menu.separatorRows.clear();
        readMenuRows(screenshot().copy(menu.area), menu);
        return menu.entryRows.size() > 1;
    };
    return QTest::qWaitFor(newMenu, clickPatienceMs) && QTest::qWaitFor(isDrawn, clickPatienceMs) ? menu
                                                                                                  : MenuPicture();
}

bool DesktopSession::closeMenu(const MenuPicture &menu) const
{
    press(QStringLiteral("Escape"));
    return QTest::qWaitFor([&] { return !visibleWindows().contains(menu.window); }, patienceMs);
}

bool DesktopSession::chooseMenuEntry(int index) const
{
    const MenuPicture menu = openMenu();
    if (index >= menu.entryRows.size())
        return false;
    click(menu.area.topLeft() + QPoint(menu.area.width() / 2, menu.entryRows.at(index)));
    return true;
}
