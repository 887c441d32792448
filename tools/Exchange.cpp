#include "tools/Exchange.h"

#include "tools/Text.h"

#include <QEventLoop>
#include <QJsonDocument>
#include <QJsonObject>

Exchange::Exchange(const Target &target, const QString &origin) : m_nPort(target.nPort), m_socket(origin)
{
    m_url.setScheme(QStringLiteral("ws"));
    m_url.setHost(target.host);
    m_url.setPort(target.nPort);
    connect(&m_socket, &QWebSocket::connected, this, [this] {
        if (!m_request.isEmpty())
            m_socket.sendTextMessage(m_request);
    });
    connect(&m_socket, &QWebSocket::textMessageReceived, this, &Exchange::TakeMessage);
    connect(&m_socket, &QWebSocket::disconnected, this, [this] {
        GiveUp(Fill(Text::tr("no connection to %1: %2"), {m_url.toString(), m_socket.errorString()}));
    });
    connect(&m_timeout, &QTimer::timeout, this, [this] {
        GiveUp(Text::tr("no answer from %1 within %2 s").arg(m_url.toString()).arg(m_timeout.interval() / 1000.0));
    });
    m_timeout.setSingleShot(true);
    m_timeout.start(target.nTimeoutMs);
    m_socket.open(m_url);
}

Exchange::~Exchange()
{
    m_socket.disconnect(this); // its end is nobody's concern any more
}

void Exchange::Ask(const QString &call)
{
    m_api = call.section(QLatin1Char('?'), 0, 0);
    // The service knows its requests by this address, whatever host it is reached through.
    m_request = QStringLiteral("ws://localhost:%1/MVSignSDK/").arg(m_nPort) + call;
    m_reply.reset();
    m_timeout.start();
    if (m_socket.state() == QAbstractSocket::ConnectedState)
        m_socket.sendTextMessage(m_request);
}

bool Exchange::AskAndWait(const QString &call, Reply &reply)
{
    QEventLoop loop;
    connect(this, &Exchange::failed, &loop, &QEventLoop::quit);
    connect(this, &Exchange::answered, &loop, &QEventLoop::quit);
    Ask(call);
    loop.exec();
    if (m_reply)
        reply = *m_reply;
    return m_reply.has_value();
}

void Exchange::TakeMessage(const QString &message)
{
    const QJsonObject envelope = QJsonDocument::fromJson(message.toUtf8()).object();
    const QJsonValue result = envelope.value(QLatin1String("Result"));
    Reply reply{envelope.value(QLatin1String("API")).toString(), result.toString(), message, false};
    if (reply.api.isEmpty() || !result.isString())
        return GiveUp(Text::tr("what answers at %1 is not the signature pad service").arg(m_url.toString()));
    reply.bInvalid = reply.api == QLatin1String("Invalid API request");
    if (m_api.isEmpty() || (!reply.bInvalid && !m_api.startsWith(reply.api))) {
        Q_EMIT pushed(reply);
        return;
    }
    m_api = QString();
    m_timeout.stop();
    m_reply = reply;
    Q_EMIT answered(reply);
}

void Exchange::GiveUp(const QString &why)
{
    m_socket.disconnect(this);
    m_timeout.stop();
    Q_EMIT failed(why);
}
