#pragma once

#include "tests/unit/support/Patience.h"

#include <QNetworkRequest>
#include <QObject>
#include <QStringList>
#include <QWebSocket>

/// A WebSocket client of the service as a web page would be one: keeps every message that it gets, in order.
class SignClient : public QObject
{
    Q_OBJECT

public:
    explicit SignClient(QObject *parent = nullptr);

    /// Connects to ws://host:port followed by path. False when that fails or takes longer than patienceMs.
    bool connectTo(quint16 port, const QString &path = QStringLiteral("/"),
                   const QString &host = QStringLiteral("127.0.0.1"));
    /// The same with an Origin header of the caller's choice.
    bool connectFrom(const QString &origin, quint16 port);

    /// Sends one text message and waits for the next message. The null text when none comes in time.
    QString request(const QString &text, int timeoutMs = patienceMs);
    /// request() for "ws://localhost:PORT/MVSignSDK/" + command on the port of the connection.
    QString command(const QString &command, int timeoutMs = patienceMs);

    void send(const QString &text) { m_socket.sendTextMessage(text); }
    void sendCommand(const QString &command);
    /// Waits until that many text messages have come since the connection (or the last forget()).
    bool waitForMessages(int count, int timeoutMs = patienceMs);
    /// Sends one binary message and waits for the next binary message. Null when none comes in time.
    QByteArray binaryRequest(const QByteArray &bytes, int timeoutMs = patienceMs);

    const QStringList &messages() const { return m_messages; }
    void forget() { m_messages.clear(); }

    bool isConnected() const { return m_socket.state() == QAbstractSocket::ConnectedState; }
    bool waitForDisconnect(int timeoutMs = patienceMs);
    /// Closes with the closing handshake and waits for its end.
    bool close();
    /// Breaks the connection off without a closing handshake.
    void abort() { m_socket.abort(); }

    QWebSocket &socket() { return m_socket; }

Q_SIGNALS:
    /// A message came or the connection changed.
    void changed();

private:
    bool open(const QNetworkRequest &request);
    template <class Condition>
    bool waitFor(const Condition &condition, int timeoutMs);

    QWebSocket m_socket;
    quint16 m_port = 0;
    QStringList m_messages;
    QList<QByteArray> m_binaryMessages;
};
