// Signing in the virtual pad's window: the real program, real pointer motion, a window manager that closes windows.
#include "tests/desktop/DesktopSession.h"
#include "tests/desktop/TrayProgram.h"
#include "tests/unit/support/FreePort.h"
#include "tests/unit/support/Replies.h"
#include "tests/unit/support/SignClient.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <algorithm>
#include <random>
#include <utility>

namespace {

/// A hand that writes stroke after stroke in the background, with the real pointer.
class BusyHand
{
public:
    /// On a pad whose screen has its upper left corner at the origin.
    BusyHand(const QProcessEnvironment &environment, const QPoint &origin) : m_origin(origin)
    {
        m_pointer.setProcessEnvironment(environment);
    }
    ~BusyHand() { rest(); }

    /// Begins anew, for some seconds.
    void write();
    /// Lifts the pen and lets the pointer go.
    void rest();

private:
    void xdotool(const QStringList &arguments) { m_pointer.start(QStringLiteral("xdotool"), arguments); }

    QPoint m_origin;
    QProcess m_pointer;
};

void BusyHand::write()
{
    constexpr int kPoints = 600;
    constexpr int kStroke = 20;
    QStringList arguments;
    for (int i = 0; i < kPoints; ++i) {
        const QPoint point = m_origin + QPoint(40 + i % 320, 120 + qRound(80 * std::sin(i / 5.0)));
        arguments << QStringLiteral("mousemove") << QString::number(point.x()) << QString::number(point.y());
        if (i % kStroke == 0)
            arguments << QStringLiteral("mousedown") << QStringLiteral("1");
        if (i % kStroke == kStroke - 1)
            arguments << QStringLiteral("mouseup") << QStringLiteral("1");
        arguments << QStringLiteral("sleep") << QStringLiteral("0.005");
    }
    rest();
    xdotool(arguments);
}

void BusyHand::rest()
{
    if (m_pointer.state() == QProcess::NotRunning)
        return;
    m_pointer.kill();
    m_pointer.waitForFinished(patienceMs);
    xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
    m_pointer.waitForFinished(patienceMs);
}

} // namespace

class PadWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void pointerSigns();
    void inkFileKeepsTheWindowAway();
    void closingUnplugsThePad();
    void everythingHappensWhileTheHandWrites();

private:
    bool start(const QString &inkFile = QString());
    QString ask(const QString &command);
    QString initialise(int model) { return ask(QStringLiteral("InitialDevice?id=%1&width=400&height=240").arg(model)); }
    QByteArray xdotool(const QStringList &arguments) const;
    QByteArray windowsNamedPad(const QStringList &restrictions = {}) const;
    qint64 padWindow() const;
    /// The screen of the pad that is shown now, in pixels of the desktop; empty when there is none.
    QRect padScreen() const;
    /// Waits until the window has found its place.
    bool waitForPad() const;
    /// Draws one stroke on an empty pad, each point when the pad has the one before.
    bool draw(const QList<QPoint> &way);
    void pressConfirm() const;
    /// Closes it as a person would: who sees that a click was lost clicks again.
    bool closePadWindow() const;
    bool stopAndStartService(BusyHand *pHand);

    std::unique_ptr<DesktopSession> m_desktop;
    std::unique_ptr<TrayProgram> m_program;
    std::unique_ptr<SignClient> m_client;
    quint16 m_port = 0;
};

namespace {

/// How long a click on the close button has until it is taken for lost.
const int clickPatienceMs = 10000;

/// Where the confirm key is, seen from the middle of the screen's lower edge.
const QPoint confirmKey(76, 40);
/// Where the window manager puts its close button, seen from the screen's upper right corner.
const QPoint closeButton(17, -56);

QList<QPoint> wave()
{
    QList<QPoint> way;
    for (int i = 0; i <= 60; ++i)
        way.append(QPoint(60 + 4 * i, 120 + qRound(50 * std::sin(i / 7.0))));
    return way;
}

} // namespace

void PadWindowTest::init()
{
    m_desktop.reset(new DesktopSession);
    QVERIFY(m_desktop->isUsable());
    QVERIFY(m_desktop->startTrayer());
    QVERIFY(m_desktop->startWindowManager());
    m_port = freePort();
}

void PadWindowTest::cleanup()
{
    if (QTest::currentTestFailed())
        m_desktop->keepScreenshot(
            QStringLiteral("pad-window-%1-failed.png").arg(QLatin1String(QTest::currentTestFunction())));
    const QByteArray output = m_program ? m_program->output() : QByteArray();
    m_client.reset();
    m_program.reset();
    m_desktop.reset();
    if (!output.isEmpty())
        qWarning("%s", output.constData());
    QVERIFY(output.isEmpty()); // a sanitizer's report would be in it
}

bool PadWindowTest::start(const QString &inkFile)
{
    m_program.reset(new TrayProgram(*m_desktop));
    if (!inkFile.isEmpty()) {
        QProcessEnvironment environment = m_desktop->environment();
        environment.insert(QStringLiteral("MVSIGNPAD_VIRTUAL_INK"), inkFile);
        m_program->process().setProcessEnvironment(environment);
    }
    m_client.reset(new SignClient);
    return m_desktop->writeSettings(
               {QStringLiteral("StartWebService=true"), QStringLiteral("WebSocketPort=%1").arg(m_port)})
           && m_program->start() && TrayProgram::waitForListening(m_port) && m_client->connectTo(m_port);
}

/// Takes no late reply, which belongs to another command, for this one's.
QString PadWindowTest::ask(const QString &command)
{
    const QString reply = m_client->command(command);
    const QString api = QStringLiteral("{\"API\":\"%1\",").arg(command.section(QLatin1Char('?'), 0, 0));
    [&] { QVERIFY2(reply.startsWith(api), qPrintable(command + QStringLiteral(" got: ") + reply)); }();
    return resultOf(reply);
}

QByteArray PadWindowTest::xdotool(const QStringList &arguments) const
{
    QProcess process;
    process.setProcessEnvironment(m_desktop->environment());
    process.start(QStringLiteral("xdotool"), arguments);
    [&process] { QVERIFY2(process.waitForFinished(patienceMs), "xdotool does not end"); }();
    return process.readAllStandardOutput();
}

QByteArray PadWindowTest::windowsNamedPad(const QStringList &restrictions) const
{
    return xdotool(QStringList{QStringLiteral("search")} + restrictions
                   + QStringList{QStringLiteral("--name"), QStringLiteral("virtual signature pad")});
}

qint64 PadWindowTest::padWindow() const
{
    return windowsNamedPad({QStringLiteral("--onlyvisible")}).split('\n').first().toLongLong();
}

QRect PadWindowTest::padScreen() const
{
    // Found by its paper: what a window manager tells of a framed window's place is not to be relied on.
    const QRect paper = m_desktop->padPaper();
    // A dark line runs around it, and its upper end is shaded.
    return paper.isEmpty() ? QRect() : QRect(paper.left() - 1, paper.bottom() + 2 - 240, 400, 240);
}

bool PadWindowTest::waitForPad() const
{
    QRect last;
    const auto standsStill = [&] {
        const QRect before = std::exchange(last, padScreen());
        return !last.isEmpty() && last == before;
    };
    return QTest::qWaitFor(standsStill, patienceMs);
}

bool PadWindowTest::draw(const QList<QPoint> &way)
{
    const QPoint origin = padScreen().topLeft();
    int drawn = 0;
    for (const QPoint &point : way) {
        const QPoint position = origin + point;
        QStringList arguments{QStringLiteral("mousemove"), QString::number(position.x()),
                              QString::number(position.y())};
        if (drawn == 0)
            arguments << QStringLiteral("mousedown") << QStringLiteral("1");
        xdotool(arguments);
        ++drawn;
        if (!QTest::qWaitFor([&] { return ask(QStringLiteral("GetSize")).toInt() == drawn; }, patienceMs))
            return false;
    }
    xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
    const auto isLifted = [this] {
        return ask(QStringLiteral("GetPointer")).contains(QLatin1String("\"bStrokeEnd\":\"1\""));
    };
    return QTest::qWaitFor(isLifted, patienceMs);
}

void PadWindowTest::pressConfirm() const
{
    const QRect screen = padScreen();
    m_desktop->click(QPoint(screen.center().x(), screen.bottom()) + confirmKey);
}

bool PadWindowTest::closePadWindow() const
{
    const auto isGone = [this] { return padWindow() == 0; };
    for (int attempt = 0; attempt < patienceMs / clickPatienceMs; ++attempt) {
        const QRect screen = padScreen();
        if (!screen.isEmpty())
            m_desktop->click(screen.topRight() + closeButton);
        if (QTest::qWaitFor(isGone, clickPatienceMs))
            return true;
    }
    return false;
}

void PadWindowTest::pointerSigns()
{
    QVERIFY(start());
    QCOMPARE(initialise(2), QStringLiteral("1"));
    QVERIFY(waitForPad());
    ask(QStringLiteral("SetPenWidth?Width=6"));
    ask(QStringLiteral("SetPenStyle?Style=1")); // without pressure
    ask(QStringLiteral("SetPenColor?R=20&G=40&B=140"));
    QVERIFY(draw(wave()));
    QList<QPoint> drawn;
    for (const QJsonValue &value : QJsonDocument::fromJson(ask(QStringLiteral("GetPointer")).toUtf8()).array()) {
        const QJsonObject point = value.toObject();
        drawn.append(QPoint(point.value(QLatin1String("x")).toString().toInt(),
                            point.value(QLatin1String("y")).toString().toInt()));
    }
    QCOMPARE(drawn, wave());

    const QJsonObject reply =
        QJsonDocument::fromJson(ask(QStringLiteral("GetInks")).toUtf8()).array().first().toObject();
    const QImage picture =
        QImage::fromData(QByteArray::fromBase64(reply.value(QLatin1String("Image")).toString().toLatin1()), "PNG");
    QCOMPARE(picture.size(), QSize(400, 240));
    for (const QPoint &point : {QPoint(60, 120), QPoint(104, 170), QPoint(192, 70)}) {
        QVERIFY(wave().contains(point));
        QCOMPARE(picture.pixel(point), qRgb(20, 40, 140));
        QTRY_COMPARE_WITH_TIMEOUT(m_desktop->screenshot().copy(padScreen()).pixel(point), qRgb(20, 40, 140),
                                  patienceMs);
    }
    QCOMPARE(qAlpha(picture.pixel(30, 30)), 0);

    QCOMPARE(ask(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")), QStringLiteral("-1"));
    pressConfirm();
    QTRY_COMPARE_WITH_TIMEOUT(ask(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")), QStringLiteral("1"),
                              patienceMs);
    QVERIFY(m_desktop->keepScreenshot(QStringLiteral("pad-window.png")));
    ask(QStringLiteral("Clear"));
    QCOMPARE(ask(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus")), QStringLiteral("-1"));
    QCOMPARE(ask(QStringLiteral("GetSize")), QStringLiteral("0"));
}

void PadWindowTest::inkFileKeepsTheWindowAway()
{
    QFile file(m_desktop->home() + QStringLiteral("/ink.json"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[]");
    file.close();
    QVERIFY(start(file.fileName()));
    QCOMPARE(initialise(2), QStringLiteral("1"));
    // A window would have been made, shown or not, before the program came to its menu.
    QVERIFY(m_desktop->openMenu().window != 0);
    QCOMPARE(windowsNamedPad(), QByteArray());
}

void PadWindowTest::closingUnplugsThePad()
{
    QVERIFY(start());
    QCOMPARE(initialise(2), QStringLiteral("1"));
    QVERIFY(waitForPad());
    QVERIFY(draw(wave().mid(0, 3)));
    QVERIFY(closePadWindow());
    QTRY_COMPARE_WITH_TIMEOUT(ask(QStringLiteral("IsValid")), QStringLiteral("0"), patienceMs);
    QCOMPARE(ask(QStringLiteral("GetSize")), QStringLiteral("0"));
    QCOMPARE(ask(QStringLiteral("GetPointer")), QStringLiteral("[]"));
    QVERIFY(m_program->isRunning());

    QCOMPARE(initialise(3), QStringLiteral("1"));
    QCOMPARE(ask(QStringLiteral("IsValid")), QStringLiteral("1"));
    QVERIFY(waitForPad());
    QVERIFY(draw(wave().mid(0, 3)));
    QCOMPARE(ask(QStringLiteral("UninitialDevice")), QStringLiteral("1"));
    QTRY_COMPARE_WITH_TIMEOUT(padWindow(), qint64(0), patienceMs);
}

/// The hand rests only as long as the menu needs the pointer.
bool PadWindowTest::stopAndStartService(BusyHand *pHand)
{
    pHand->rest();
    if (!m_desktop->chooseMenuEntry(0))
        return false;
    pHand->write();
    if (!TrayProgram::waitForSilence(m_port))
        return false;
    pHand->rest();
    m_client.reset(new SignClient);
    return QTest::qWaitFor([this] { return padWindow() == 0; }, patienceMs) && m_desktop->chooseMenuEntry(0)
           && TrayProgram::waitForListening(m_port) && m_client->connectTo(m_port);
}

/// Takes five seconds, or MVSIGNPAD_STRESS_SECONDS, and longer until a pad was written on. Each
/// round opens the five models one upon the other and ends each in another way.
void PadWindowTest::everythingHappensWhileTheHandWrites()
{
    enum Ending { Replaced, Closed, Unloaded, ServiceStopped };
    std::vector<Ending> endings = {Replaced, Replaced, Closed, Unloaded, ServiceStopped};
    std::vector<int> models = {2, 5, 7, 3, 4};
    bool isNumber = false;
    const int wanted = qEnvironmentVariableIntValue("MVSIGNPAD_STRESS_SECONDS", &isNumber);
    const int seconds = isNumber && wanted > 0 ? wanted : 5;
    std::mt19937 random(1);
    QVERIFY(start());
    QCOMPARE(initialise(2), QStringLiteral("1"));
    QTRY_VERIFY_WITH_TIMEOUT(!padScreen().isEmpty(), patienceMs);
    BusyHand hand(m_desktop->environment(), padScreen().topLeft());
    int rounds = 0;
    int points = 0;
    QElapsedTimer timer;
    timer.start();
    for (; timer.elapsed() < seconds * 1000 || (points == 0 && timer.elapsed() < patienceMs); ++rounds) {
        std::shuffle(models.begin(), models.end(), random);
        std::shuffle(endings.begin(), endings.end(), random);
        for (size_t i = 0; i < models.size(); ++i) {
            hand.write();
            QCOMPARE(initialise(models[i]), QStringLiteral("1"));
            QTest::qWait(int(random() % 500));
            points += ask(QStringLiteral("GetSize")).toInt();
            switch (endings[i]) {
            case Replaced:
                break;
            case Closed:
                xdotool({QStringLiteral("key"), QStringLiteral("alt+F4")});
                QTest::qWait(int(random() % 100));
                if (ask(QStringLiteral("IsValid")) == QLatin1String("0"))
                    break;
                // The keys came too early or to no window: the button is pressed once there is one.
                hand.rest();
                QTRY_VERIFY_WITH_TIMEOUT(padWindow() != 0 || ask(QStringLiteral("IsValid")) == QLatin1String("0"),
                                         patienceMs);
                QVERIFY(closePadWindow());
                QTRY_COMPARE_WITH_TIMEOUT(ask(QStringLiteral("IsValid")), QStringLiteral("0"), patienceMs);
                break;
            case Unloaded:
                QCOMPARE(ask(QStringLiteral("UninitialDevice")), QStringLiteral("1"));
                break;
            case ServiceStopped:
                QVERIFY(stopAndStartService(&hand));
                break;
            }
        }
    }
    hand.rest();
    qInfo("%d rounds, %d points", rounds, points);
    QVERIFY(points > 0);
    // Its last act, with the window open.
    QCOMPARE(initialise(2), QStringLiteral("1"));
    QTRY_VERIFY_WITH_TIMEOUT(padWindow() != 0, patienceMs);
    QVERIFY(m_desktop->chooseMenuEntry(2));
    QVERIFY(m_program->waitForEnd());
    QCOMPARE(m_program->exitStatus(), 0);
}

QTEST_GUILESS_MAIN(PadWindowTest)
#include "tst_padwindow.moc"
