// The program on the desktops' own panels: its icon, its menu, a signature in the pad's window.
#include "tests/desktop/TrayProgram.h"
#include "tests/panels/Panel.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/Replies.h"
#include "tests/unit/support/SignClient.h"

#include <QTest>

#include <cmath>
#include <utility>

class PanelsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void panel_data();
    void panel();

private:
    bool startPanel(const Panel &panel);
    bool startProgram(const Panel &panel);
    QRect menuArea() const;
    QRect openMenu() const;
    bool chooseMenuEntry(int index) const;
    bool keepScreenshot(const char *what) const;
    QString ask(const QString &command);
    bool writeOnPad(const QRect &pad);
    void captureSignature();

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    std::unique_ptr<SignClient> m_client;
    quint16 m_port = 0;
};

namespace {

const int menuEntries = 3;

/// Where the confirm key is, seen from the middle of the pad's lower edge.
const QPoint confirmKey(76, 40);

/// Waits until what look() finds stands still, and returns it; empty when it does not.
template <class Look>
QRect waitForStill(Look look, int timeoutMs)
{
    QRect last;
    const auto standsStill = [&] {
        const QRect before = std::exchange(last, look());
        return !last.isEmpty() && last == before;
    };
    return QTest::qWaitFor(standsStill, timeoutMs) ? last : QRect();
}

} // namespace

void PanelsTest::init()
{
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    m_port = freePort();
}

void PanelsTest::cleanup()
{
    if (QTest::currentTestFailed())
        keepScreenshot("failed");
    m_client.reset();
    m_program.reset();
    m_desktop.reset();
}

bool PanelsTest::keepScreenshot(const char *what) const
{
    return m_desktop->keepScreenshot(
        QStringLiteral("panel-%1-%2.png").arg(QLatin1String(QTest::currentDataTag()), QLatin1String(what)));
}

/// Returns once the panel shows all that it shows without the program.
bool PanelsTest::startPanel(const Panel &panel)
{
    if (!panel.start(*m_desktop))
        return false;
    QImage last;
    const auto standsStill = [&] {
        QTest::qWait(1000); // a panel that draws itself bit by bit rests in between
        const QImage before = std::exchange(last, m_desktop->screenshot());
        return last == before && last != QImage();
    };
    if (!QTest::qWaitFor(standsStill, patienceMs))
        return false;
    m_desktop->takeScreenAsBackground();
    return true;
}

bool PanelsTest::startProgram(const Panel &panel)
{
    m_program.reset(new TrayProgram(*m_desktop));
    m_program->process().setProcessEnvironment(panel.environment(*m_desktop));
    return m_desktop->writeSettings({QStringLiteral("UILangID=2"), QStringLiteral("WebSocketPort=%1").arg(m_port)})
           && m_program->start();
}

/// The menu is what covers the background in wide rows; the icon and what the panel draws around it are narrow, and a
/// tool-tip is lower than a menu. Empty when there is none.
QRect PanelsTest::menuArea() const
{
    const int leastWidth = 100;
    const int leastHeight = 60;
    const QImage screen = m_desktop->screenshot();
    const QImage background = m_desktop->background();
    QRect menu;
    for (int y = 0; y < screen.height(); ++y) {
        int run = 0;
        for (int x = 0; x < screen.width(); ++x) {
            run = screen.pixel(x, y) != background.pixel(x, y) ? run + 1 : 0;
            if (run >= leastWidth)
                menu |= QRect(x - run + 1, y, run, 1);
        }
    }
    return menu.height() >= leastHeight ? menu : QRect();
}

QRect PanelsTest::openMenu() const
{
    const int clickPatienceMs = 10000;
    QRect menu;
    // A click that falls between two states of the panel is lost; as a person would, click again.
    for (int attempt = 0; attempt < patienceMs / clickPatienceMs && menu.isEmpty(); ++attempt) {
        const QRect icon = m_desktop->iconArea();
        if (!icon.isEmpty())
            m_desktop->click(icon.center(), 3);
        menu = waitForStill([this] { return menuArea(); }, clickPatienceMs);
    }
    return menu;
}

/// The entries share the menu's height.
bool PanelsTest::chooseMenuEntry(int index) const
{
    const QRect menu = openMenu();
    if (menu.isEmpty())
        return false;
    m_desktop->click(QPoint(menu.center().x(), menu.top() + menu.height() * (2 * index + 1) / (2 * menuEntries)));
    return QTest::qWaitFor([this] { return menuArea().isEmpty(); }, patienceMs);
}

QString PanelsTest::ask(const QString &command)
{
    return resultOf(m_client->command(command));
}

bool PanelsTest::writeOnPad(const QRect &pad)
{
    QStringList way;
    for (int i = 0; i <= 40; ++i) {
        const QPoint point = pad.center() + QPoint(-120 + 6 * i, qRound(50 * std::sin(i / 5.0)));
        way << QStringLiteral("mousemove") << QString::number(point.x()) << QString::number(point.y());
        way << (i == 0 ? QStringList{QStringLiteral("mousedown"), QStringLiteral("1")}
                       : QStringList{QStringLiteral("sleep"), QStringLiteral("0.02")});
    }
    way << QStringLiteral("mouseup") << QStringLiteral("1");
    QProcess *const hand = m_desktop->startHelper(QStringLiteral("xdotool"), way);
    return hand && hand->waitForFinished(patienceMs)
           && QTest::qWaitFor([this] { return ask(QStringLiteral("GetSize")).toInt() > 20; }, patienceMs);
}

void PanelsTest::captureSignature()
{
    m_client.reset(new SignClient);
    QVERIFY(m_client->connectTo(m_port));
    QCOMPARE(ask(QStringLiteral("InitialDevice?id=2&width=400&height=240")), QStringLiteral("1"));
    const QRect pad = waitForStill([this] { return m_desktop->padPaper(); }, patienceMs);
    QVERIFY(!pad.isEmpty());
    QVERIFY(writeOnPad(pad));
    QCOMPARE(ask(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")), QStringLiteral("-1"));
    m_desktop->click(QPoint(pad.center().x(), pad.bottom()) + confirmKey);
    QTRY_COMPARE_WITH_TIMEOUT(ask(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")), QStringLiteral("1"),
                              patienceMs);
    QVERIFY(keepScreenshot("pad"));
    const QString file = m_desktop->home() + QStringLiteral("/signature.png");
    QCOMPARE(ask(QStringLiteral("SaveDrawingImage?type=3&dpi=300&path=") + file), file);
    QVERIFY(!QImage(file).isNull());
    QCOMPARE(ask(QStringLiteral("UninitialDevice")), QStringLiteral("1"));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->padPaper().isEmpty(), patienceMs);
}

void PanelsTest::panel_data()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < allPanels().size(); ++i)
        QTest::newRow(allPanels()[i].name) << int(i);
}

void PanelsTest::panel()
{
    QFETCH(int, index);
    const Panel &panel = allPanels()[size_t(index)];
    QVERIFY(startPanel(panel));
    QVERIFY(startProgram(panel));
    QVERIFY(m_desktop->waitForIcon());
    const QRect icon = waitForStill([this] { return m_desktop->iconArea(); }, patienceMs);
    qInfo("the icon takes %d x %d pixels", icon.width(), icon.height());

    QVERIFY(TrayProgram::waitForSilence(m_port));
    QVERIFY(chooseMenuEntry(0));
    QVERIFY(TrayProgram::waitForListening(m_port));
    QVERIFY(chooseMenuEntry(1));
    QTRY_VERIFY_WITH_TIMEOUT(m_desktop->settingsLines().contains(QLatin1String("AutoLaunch=true")), patienceMs);

    QVERIFY(!openMenu().isEmpty());
    QVERIFY(keepScreenshot("menu"));
    // A click elsewhere closes it.
    m_desktop->click(QPoint(400, 300));
    QTRY_VERIFY_WITH_TIMEOUT(menuArea().isEmpty(), patienceMs);

    captureSignature();
    if (QTest::currentTestFailed())
        return;
    QVERIFY(chooseMenuEntry(0));
    QVERIFY(TrayProgram::waitForSilence(m_port));
    QVERIFY(chooseMenuEntry(2));
    QVERIFY(m_program->waitForEnd());
    QCOMPARE(m_program->exitStatus(), 0);
    QCOMPARE(m_program->output(), QByteArray());
}

QTEST_GUILESS_MAIN(PanelsTest)

#include "tst_panels.moc"
