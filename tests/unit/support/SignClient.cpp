#include "tests/unit/support/SignClient.h"

#include <QTest>

SignClient::SignClient(QObject *parent) : QObject(parent)
{
    connect(&m_socket, &QWebSocket::textMessageReceived, this,
            [this](const QString &message) { m_messages.append(message); });
    connect(&m_socket, &QWebSocket::binaryMessageReceived, this,
            [this](const QByteArray &message) { m_binaryMessages.append(message); });
}

bool SignClient::connectTo(quint16 port, const QString &path, const QString &host)
{
    return open(port, QUrl(QStringLiteral("ws://%1:%2%3").arg(host).arg(port).arg(path)));
}

bool SignClient::connectFrom(const QString &origin, quint16 port)
{
    QNetworkRequest request(QUrl(QStringLiteral("ws://127.0.0.1:%1/").arg(port)));
    request.setRawHeader("Origin", origin.toUtf8());
    m_port = port;
    m_socket.open(request);
    return QTest::qWaitFor([this] { return isConnected(); });
}

bool SignClient::open(quint16 port, const QUrl &url)
{
    m_port = port;
    m_socket.open(url);
    return QTest::qWaitFor([this] { return isConnected(); });
}

QString SignClient::request(const QString &text, int timeoutMs)
{
    const int before = m_messages.size();
    send(text);
    return waitForMessages(before + 1, timeoutMs) ? m_messages.at(before) : QString();
}

QString SignClient::command(const QString &command, int timeoutMs)
{
    return request(QStringLiteral("ws://localhost:%1/MVSignSDK/").arg(m_port) + command, timeoutMs);
}

void SignClient::sendCommand(const QString &command)
{
    send(QStringLiteral("ws://localhost:%1/MVSignSDK/").arg(m_port) + command);
}

bool SignClient::waitForMessages(int count, int timeoutMs)
{
    return QTest::qWaitFor([this, count] { return m_messages.size() >= count; }, timeoutMs);
}

QByteArray SignClient::binaryRequest(const QByteArray &bytes, int timeoutMs)
{
    const int before = m_binaryMessages.size();
    m_socket.sendBinaryMessage(bytes);
    const bool came = QTest::qWaitFor([&] { return m_binaryMessages.size() > before; }, timeoutMs);
    return came ? m_binaryMessages.at(before) : QByteArray();
}

bool SignClient::waitForDisconnect(int timeoutMs)
{
    return QTest::qWaitFor([this] { return m_socket.state() == QAbstractSocket::UnconnectedState; }, timeoutMs);
}

bool SignClient::close()
{
    m_socket.close();
    return waitForDisconnect();
}
