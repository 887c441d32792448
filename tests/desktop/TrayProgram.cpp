#include "tests/desktop/TrayProgram.h"

#include "tests/unit/support/LogFiles.h"

#include <QHostAddress>
#include <QTcpSocket>
#include <QTest>

namespace {

const int exitEntry = 2;

bool takesConnections(quint16 port)
{
    QTcpSocket probe;
    probe.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    return probe.waitForConnected(500);
}

} // namespace

TrayProgram::TrayProgram(const DesktopSession &desktop, const QString &file) : m_file(file)
{
    m_process.setProcessEnvironment(desktop.environment());
    m_process.setWorkingDirectory(desktop.home());
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

TrayProgram::~TrayProgram()
{
    if (isRunning()) {
        m_process.kill();
        m_process.waitForFinished(5000);
    }
}

void TrayProgram::switchLogOn()
{
    QProcessEnvironment environment = m_process.processEnvironment();
    environment.insert(QStringLiteral("MVSIGNPAD_LOG"), QStringLiteral("1"));
    m_process.setProcessEnvironment(environment);
}

int TrayProgram::startsOfAService()
{
    return maskedLines(threadLog()).filter(QStringLiteral("[WebSocketThread::WebSocketThread()]:<N>-Enter")).size();
}

bool TrayProgram::start()
{
    m_process.start(m_file, QStringList());
    return m_process.waitForStarted(patienceMs);
}

bool TrayProgram::waitForEnd(int timeoutMs)
{
    return QTest::qWaitFor([this] { return !isRunning(); }, timeoutMs);
}

QString TrayProgram::exitThroughMenu(const DesktopSession &desktop)
{
    if (!desktop.chooseMenuEntry(exitEntry))
        return QStringLiteral("the menu did not come up");
    if (!waitForEnd())
        return QStringLiteral("the program did not end");
    if (exitStatus() == 0 && output().isEmpty())
        return QString();
    return QStringLiteral("the program ended with status %1 and wrote: %2")
        .arg(exitStatus())
        .arg(QString::fromUtf8(output()));
}

int TrayProgram::exitStatus() const
{
    return !isRunning() && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QByteArray TrayProgram::output()
{
    m_output += m_process.readAll();
    return m_output;
}

bool TrayProgram::waitForListening(quint16 port)
{
    return QTest::qWaitFor([port] { return takesConnections(port); }, patienceMs);
}

bool TrayProgram::waitForSilence(quint16 port)
{
    return QTest::qWaitFor([port] { return !takesConnections(port); }, patienceMs);
}
