#pragma once

#include "service/OriginGate.h"

#include <QObject>

class ClientConnections;
class OriginDesk;
class QTimer;
class QWebSocket;

/// Lets clients in as the OriginGate decides, has the user asked where it says so, and lets clients wait meanwhile:
/// their requests stay unread. Refuses and ends connections, but owns none. Lives on the service thread.
class ClientAdmission : public QObject
{
    Q_OBJECT

public:
    /// The desk, which the caller keeps, outlives this; null when nobody can be asked.
    ClientAdmission(const AccessPolicy &policy, OriginDesk *pDesk, ClientConnections &connections, QObject *parent);
    /// Withdraws all questions.
    ~ClientAdmission() override;

    /// Whether the opening handshake of a client of this origin is to be accepted.
    bool AcceptsHandshake(const QString &strOrigin) const;
    /// To be called for each client once the connections know it; it is let in now or later, or ended.
    void Enter(QWebSocket *pClient);
    /// To be called when the client is gone.
    void Leave(QWebSocket *pClient);

Q_SIGNALS:
    /// The client is let in.
    void admitted(QWebSocket *pClient);

private:
    void TakeAnswer(const QString &strOrigin, OriginAnswer answer);
    void TakeAnswersAnew();
    void Admit(QWebSocket *pClient);
    /// Lets clients go that have waited: on, or away.
    void LetGo(const QList<QWebSocket *> &clients, bool bAdmitted);
    void EndBlocked();
    void EndThoseWhoLeft();

    OriginGate m_gate;
    OriginDesk *m_pDesk;
    ClientConnections &m_connections;
    QTimer *m_pLookTimer; // child; runs while clients wait
};
