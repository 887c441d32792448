#include "tests/unit/support/PrivateBus.h"

#include "tests/unit/support/Patience.h"

#include <QFile>
#include <QTest>

#include <csignal>
#include <sys/stat.h>

namespace {

const char configuration[] = R"(<busconfig>
<type>session</type><listen>%1</listen><auth>EXTERNAL</auth>
<policy context="default">
<allow user="*"/><allow own="*"/><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/>
</policy>
</busconfig>)";

} // namespace

PrivateBus::PrivateBus(const QString &listen)
{
    const QString socket = QStringLiteral("unix:path=") + m_folder.filePath(QStringLiteral("bus"));
    QFile file(m_folder.filePath(QStringLiteral("bus.conf")));
    if (!file.open(QIODevice::WriteOnly) || ::chmod(QFile::encodeName(m_folder.path()).constData(), 0711) != 0)
        return;
    file.write(QString::fromLatin1(configuration).arg(listen.isEmpty() ? socket : listen).toUtf8());
    file.close();
    m_daemon.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_daemon.start(QStringLiteral("dbus-daemon"), {QStringLiteral("--nofork"), QStringLiteral("--print-address=1"),
                                                   QStringLiteral("--config-file=") + file.fileName()});
    if (QTest::qWaitFor([this] { return m_daemon.canReadLine(); }, patienceMs))
        m_address = QString::fromUtf8(m_daemon.readLine().trimmed());
}

PrivateBus::~PrivateBus()
{
    if (m_daemon.state() == QProcess::NotRunning)
        return;
    ::kill(static_cast<pid_t>(m_daemon.processId()), SIGCONT); // a test that failed may have left it standing still
    m_daemon.terminate();                                      // it removes its socket
    m_daemon.waitForFinished(patienceMs);
}
