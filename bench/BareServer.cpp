// The measure of the comparison: QWebSocketServer as it comes, which does the same work with QJsonDocument.
// "BareServer PORT", until standard input ends.

#include "bench/Work.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>
#include <QTimer>
#include <QUrlQuery>
#include <QWebSocket>
#include <QWebSocketServer>

#include <memory>
#include <unistd.h>

namespace {

QString Compact(const QJsonArray &array)
{
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

QString Envelope(const QString &api, const QString &result)
{
    const QJsonObject reply{{QStringLiteral("API"), api}, {QStringLiteral("Result"), result}};
    return QString::fromUtf8(QJsonDocument(reply).toJson(QJsonDocument::Compact));
}

class BareServer : public QObject
{
public:
    explicit BareServer(quint16 port) : m_server(QStringLiteral("bare"), QWebSocketServer::NonSecureMode)
    {
        connect(&m_server, &QWebSocketServer::newConnection, this, &BareServer::Accept);
        if (!m_server.listen(QHostAddress::LocalHost, port))
            qFatal("cannot listen");
    }

private:
    void Accept()
    {
        QWebSocket *const client = m_server.nextPendingConnection();
        m_clients.append(client);
        connect(client, &QWebSocket::textMessageReceived, this,
                [this, client](const QString &message) { Answer(client, message); });
        connect(client, &QWebSocket::disconnected, this, [this, client] {
            m_clients.removeAll(client);
            client->deleteLater();
        });
    }

    void Answer(QWebSocket *client, const QString &message)
    {
        const int nName = message.lastIndexOf(QLatin1Char('/')) + 1;
        const QString api = message.mid(nName, message.indexOf(QLatin1Char('?'), nName) - nName);
        client->sendTextMessage(Envelope(api, Result(api, message)));
        if (api == QLatin1String("Clear"))
            QTimer::singleShot(1, this, [this] { // when the reply has gone
                Push([] { return Envelope(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus"), QStringLiteral("1")); });
            });
        else if (api == QLatin1String("OpenLCD"))
            QTimer::singleShot(0, this, [this] {
                const char *const picture = m_pushed.Next();
                Push([=] { return Envelope(QStringLiteral("GetInks"), ImageArray(picture)); });
            });
    }

    QString Result(const QString &api, const QString &message)
    {
        if (api == QLatin1String("InitialDevice")) {
            const QUrlQuery query(message.mid(message.indexOf(QLatin1Char('?')) + 1));
            m_picture = std::make_unique<PictureText>(query.queryItemValue(QStringLiteral("width")).toInt());
            m_pointCount = query.queryItemValue(QStringLiteral("height")).toInt();
            return QStringLiteral("1");
        }
        if (api == QLatin1String("GetInks"))
            return ImageArray(m_picture->Next());
        if (api == QLatin1String("GetPointer"))
            return PointArray();
        if (api == QLatin1String("GetSize"))
            return QString::number(m_pointCount);
        return QStringLiteral("0");
    }

    static QString ImageArray(const char *picture)
    {
        const QString base64 = QString::fromUtf8(picture);
        return Compact({QJsonObject{{QStringLiteral("EventType"), QStringLiteral("0")},
                                    {QStringLiteral("Image"), base64},
                                    {QStringLiteral("ImageLength"), QString::number(base64.size())}}});
    }

    QString PointArray() const
    {
        QJsonArray array;
        for (int i = 0; i < m_pointCount; ++i) {
            const WorkPoint point = PointAt(i);
            array.append(QJsonObject{{QStringLiteral("x"), QString::number(point.x)},
                                     {QStringLiteral("y"), QString::number(point.y)},
                                     {QStringLiteral("pressure"), QString::number(point.pressure)},
                                     {QStringLiteral("bStrokeEnd"), QString::number(point.strokeEnd)},
                                     {QStringLiteral("Time"), QString::number(point.timeMs)}});
        }
        return Compact(array);
    }

    template <class Message>
    void Push(Message message)
    {
        for (QWebSocket *client : qAsConst(m_clients))
            client->sendTextMessage(message());
    }

    QWebSocketServer m_server;
    QList<QWebSocket *> m_clients;
    std::unique_ptr<PictureText> m_picture;
    PictureText m_pushed{200 * 1024};
    int m_pointCount = 0;
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    BareServer server(application.arguments().value(1).toUShort());
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &QCoreApplication::quit);
    return QCoreApplication::exec();
}
