#pragma once

#include "tests/unit/support/Patience.h"
#include "tests/unit/support/PrivateBus.h"

#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <vector>

/// The tray's context menu as it stands on the screen; all empty when no menu came up.
struct MenuPicture {
    qint64 window = 0;        ///< the X window
    QRect area;               ///< of that window, in pixels of the screen
    QList<int> entryRows;     ///< the middle of each entry, from the menu's upper edge
    QList<int> separatorRows; ///< the middle of each separator, likewise
};

/// A desktop of the test's own: an X server, a session bus, a home, a runtime directory, and the tray that a test
/// puts on it. All that it started ends with it. Needs Xvfb, dbus-daemon, trayer, lxqt-panel, xdotool and import.
class DesktopSession
{
public:
    DesktopSession();
    ~DesktopSession();

    /// False when the X server or the bus did not start.
    bool isUsable() const { return m_usable; }

    QString home() const { return m_directory.filePath(QStringLiteral("home")); }
    /// The tray's settings file in that home.
    QString settingsFile() const;
    /// Its lines, sorted, without the empty ones. Empty when there is no file.
    QStringList settingsLines() const;
    /// Writes the settings file: the group's heading and these lines.
    bool writeSettings(const QStringList &lines) const;
    /// What a program of this desktop gets as its environment.
    QProcessEnvironment environment() const { return m_environment; }
    QString busAddress() const;

    /// An XEmbed tray in the lower left corner; returns once it owns the tray.
    bool startTrayer();
    /// Returns once it manages windows: one that was there before would keep its place, with its frame off the screen.
    bool startWindowManager();
    /// A StatusNotifier host in the same place; returns once it is registered on the bus.
    bool startStatusNotifierHost();
    bool hasStatusNotifierHost() const;
    bool isNameOnTheBus(const QString &name) const;
    /// Whether the process has connected to the session bus.
    bool isOnTheBus(qint64 process) const;

    QImage screenshot() const;
    /// The paper of the virtual pad's window; empty when it is not on the screen.
    QRect padPaper() const;
    /// Keeps a picture of the screen among the test's outputs.
    bool keepScreenshot(const QString &name) const;
    /// Takes what the screen shows now for its background, in which no icon is looked for.
    void takeScreenAsBackground() { m_background = screenshot(); }
    QImage background() const { return m_background; }
    /// The area in which the program's icon shows; empty when it is nowhere on the screen.
    QRect iconArea() const;
    bool waitForIcon(int timeoutMs = patienceMs) const;

    void click(const QPoint &point, int button = 1) const;
    /// Clicks on the icon with the right button and waits for the menu.
    MenuPicture openMenu() const;
    bool closeMenu(const MenuPicture &menu) const;
    /// Opens the menu and clicks on its entry number index, from 0. False when there is no such entry.
    bool chooseMenuEntry(int index) const;

    /// Presses the keys, which are as xdotool names them, in the window that has the focus.
    void press(const QString &keys) const;

    QList<qint64> visibleWindows() const;
    /// Those with this title.
    QList<qint64> visibleWindows(const QString &title) const;
    QRect windowArea(qint64 window) const;
    /// Starts a helper program that ends with the session.
    QProcess *startHelper(const QString &program, const QStringList &arguments);
    /// Ends the helper that was started last.
    void endLastHelper();
    /// Makes that helper stand still, holding all that it has but answering nobody, and lets it go on.
    void suspendLastHelper();
    void resumeLastHelper();

private:
    bool startXServer();
    bool startBus();
    QByteArray run(const QString &program, const QStringList &arguments) const;
    QList<qint64> searchWindows(const QString &namePattern) const;
    MenuPicture clickForMenu() const;

    QTemporaryDir m_directory;
    QProcessEnvironment m_environment;
    PrivateBus m_bus;                                 ///< outlives the helpers
    QImage m_background;                              ///< null until one is taken
    std::vector<std::unique_ptr<QProcess>> m_helpers; ///< in order of their start
    bool m_usable = false;
};
