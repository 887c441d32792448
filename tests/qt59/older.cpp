// Interface that Qt 5.9 has, also where later versions resolve the same call anew: the check must report nothing here.
#include <QDateTime>
#include <QFontMetrics>
#include <QJsonObject>
#include <QMetaObject>
#include <QMutex>
#include <QProcess>
#include <QSet>
#include <QStringList>
#include <QTextStream>
#include <QThread>
#include <QTimer>
#include <QWaitCondition>
#include <QWebSocket>
#include <QWebSocketServer>

#include "base/QtCompat.h"

class Uncopied
{
public:
    Uncopied() = default;
    Q_DISABLE_COPY(Uncopied)
};

int UseOlder(QObject *object, const QString &text, QThread *thread, QWebSocketServer *server, QWebSocket *socket)
{
    QMetaObject::invokeMethod(object, "deleteLater");
    QMetaObject::invokeMethod(object, "deleteLater", Qt::QueuedConnection);
    const QStringList parts = text.split(QLatin1Char(','));
    const QStringList words = text.split(QStringLiteral(", "));
    const QVector<QStringRef> references = text.splitRef(QLatin1Char(','));
    const QString shorter = text.left(text.size() - 1) + text.mid(1, 2).toUpper();
    QJsonObject named;
    named.insert(QLatin1String("name"), QStringLiteral("%1").arg(QLatin1String("pad")));
    thread->wait();
    thread->wait(1000);
    QMutex mutex;
    QWaitCondition().wait(&mutex, 1);
    QTimer::singleShot(0, object, [] {});
    server->setMaxPendingConnections(3);
    server->setServerName(text);
    socket->sendTextMessage(text);
    QObject::connect(socket, &QWebSocket::disconnected, object, &QObject::deleteLater);
    for (const QString &part : qAsConst(parts))
        QTextStream(stdout) << part;
    QProcess process;
    process.start(QStringLiteral("true"), parts);
    const QDateTime now = QDateTime::currentDateTime();
    const bool same = now.toString(QStringLiteral("yyyy")) == shorter || text.startsWith(shorter, Qt::CaseInsensitive);
    return TextWidth(QFontMetrics(QFont()), text) + references.size() + words.toSet().size() + same;
}
