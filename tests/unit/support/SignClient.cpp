#include "tests/unit/support/SignClient.h"

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

/// Runs the event loop until the condition holds; asks again whenever something has come.
template <class Condition>
bool SignClient::waitFor(const Condition &condition, int timeoutMs)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        const qint64 left = timeoutMs - timer.elapsed();
        if (left <= 0)
            return false;
        QEventLoop loop;
        connect(this, &SignClient::changed, &loop, &QEventLoop::quit);
        QTimer::singleShot(static_cast<int>(left), &loop, &QEventLoop::quit);
        loop.exec();
    }
    return true;
}

SignClient::SignClient(QObject *parent) : QObject(parent)
{
    connect(&m_socket, &QWebSocket::textMessageReceived, this, [this](const QString &message) {
        m_messages.append(message);
        Q_EMIT changed();
    });
    connect(&m_socket, &QWebSocket::binaryMessageReceived, this, [this](const QByteArray &message) {
        m_binaryMessages.append(message);
        Q_EMIT changed();
    });
    connect(&m_socket, &QWebSocket::stateChanged, this, &SignClient::changed);
}

bool SignClient::connectTo(quint16 port, const QString &path, const QString &host)
{
    m_port = port;
    return open(QNetworkRequest(QUrl(QStringLiteral("ws://%1:%2%3").arg(host).arg(port).arg(path))));
}

bool SignClient::connectFrom(const QString &origin, quint16 port)
{
    m_port = port;
    QNetworkRequest request(QUrl(QStringLiteral("ws://127.0.0.1:%1/").arg(port)));
    request.setRawHeader("Origin", origin.toUtf8());
    return open(request);
}

bool SignClient::open(const QNetworkRequest &request)
{
    m_socket.open(request);
    const auto isDecided = [this] { return isConnected() || m_socket.state() == QAbstractSocket::UnconnectedState; };
    return waitFor(isDecided, patienceMs) && isConnected();
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
    return waitFor([this, count] { return m_messages.size() >= count; }, timeoutMs);
}

QByteArray SignClient::binaryRequest(const QByteArray &bytes, int timeoutMs)
{
    const int before = m_binaryMessages.size();
    m_socket.sendBinaryMessage(bytes);
    const bool came = waitFor([&] { return m_binaryMessages.size() > before; }, timeoutMs);
    return came ? m_binaryMessages.at(before) : QByteArray();
}

bool SignClient::waitForDisconnect(int timeoutMs)
{
    return waitFor([this] { return m_socket.state() == QAbstractSocket::UnconnectedState; }, timeoutMs);
}

bool SignClient::close()
{
    m_socket.close();
    return waitForDisconnect();
}
