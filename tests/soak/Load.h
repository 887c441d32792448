#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWebSocket>

#include <random>

/// What all clients of a run have done together.
struct LoadCounts {
    long requests = 0;
    long initialisations = 0;
    long wrongReplies = 0; ///< no reply of the service's form, or one to another command
    long overdue = 0;      ///< no reply within 20 seconds on a connection that stood
    long connections = 0;
};

/// A client that asks one request after the other, chosen at random, and connects again when it was dropped.
class LoadClient : public QObject
{
    Q_OBJECT

public:
    LoadClient(quint16 port, unsigned seed, LoadCounts &counts);

private:
    void connectAgain();
    void askNext();
    void check(const QString &reply);
    QString nextRequest();

    QWebSocket m_socket;
    QTimer m_patience;
    quint16 m_port;
    std::mt19937 m_random;
    LoadCounts &m_counts;
    QString m_asked; ///< the API name of the request that is under way
    QString m_inkData = QStringLiteral("W10=");
};
