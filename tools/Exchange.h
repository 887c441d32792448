#pragma once

#include <QString>
#include <QTimer>
#include <QUrl>
#include <QWebSocket>

#include <optional>

/// Where the service is, and how long to wait for it.
struct Target {
    QString host;
    int nPort = 0;
    int nTimeoutMs = 0;
};

/// A message of the service, taken apart.
struct Reply {
    QString api;
    QString result;
    QString raw;
    bool bInvalid = false; ///< the service calls the request invalid
};

/// A connection to the service that asks one request at a time.
class Exchange : public QObject
{
    Q_OBJECT

public:
    /// Connects at once; the origin is what a page's browser would name, if any.
    explicit Exchange(const Target &target, const QString &origin = QString());
    ~Exchange() override;

    /// Sends a command with its parameters, as in "SetPenColor?R=0&G=0&B=255", now or when the connection is there.
    /// Not before the last one was answered.
    void Ask(const QString &call);

    /// Ask, and wait for what comes of it; nothing is told on failure.
    bool AskAndWait(const QString &call, Reply &reply);

    const QString &Request() const { return m_request; }

Q_SIGNALS:
    void answered(const Reply &reply);
    /// A message to all clients, which nobody here has asked for.
    void pushed(const Reply &reply);
    /// No connection, no answer in time, or another server; nothing comes after that.
    void failed(const QString &why);

private:
    void TakeMessage(const QString &message);
    void GiveUp(const QString &why);

    QUrl m_url;
    int m_nPort;
    QString m_api;                // of the request that waits for its reply; empty when none does
    QString m_request;            // the last one
    std::optional<Reply> m_reply; // to it
    QWebSocket m_socket;
    QTimer m_timeout;
};
