#include "service/ClientAdmission.h"

#include "service/ClientConnections.h"
#include "service/OriginDesk.h"

#include <QTimer>
#include <QWebSocket>

namespace {

/// How often it is looked whether clients that wait are still there.
constexpr int nLookMs = 500;

/// Ends the connection with the reason that the client is not welcome.
void TurnAway(QWebSocket *pClient)
{
    pClient->close(QWebSocketProtocol::CloseCodePolicyViolated);
}

} // namespace

ClientAdmission::ClientAdmission(const AccessPolicy &policy, OriginDesk *pDesk, ClientConnections &connections,
                                 QObject *parent)
    : QObject(parent), m_gate(policy, pDesk), m_pDesk(pDesk), m_connections(connections), m_pLookTimer(new QTimer(this))
{
    m_pLookTimer->setInterval(nLookMs);
    connect(m_pLookTimer, &QTimer::timeout, this, &ClientAdmission::EndThoseWhoLeft);
    if (m_pDesk) {
        connect(m_pDesk, &OriginDesk::answered, this, &ClientAdmission::TakeAnswer);
        connect(m_pDesk, &OriginDesk::answersChanged, this, &ClientAdmission::TakeAnswersAnew);
    }
}

ClientAdmission::~ClientAdmission()
{
    if (m_pDesk)
        Q_EMIT m_pDesk->allWithdrawn();
}

bool ClientAdmission::AcceptsHandshake(const QString &strOrigin) const
{
    return m_gate.Judge(strOrigin) != OriginGate::Verdict::Refused;
}

void ClientAdmission::Enter(QWebSocket *pClient)
{
    const QString strOrigin = pClient->origin();
    switch (m_gate.Judge(strOrigin)) {
    case OriginGate::Verdict::Admitted:
        return Admit(pClient);
    case OriginGate::Verdict::Refused:
        return TurnAway(pClient);
    case OriginGate::Verdict::ToBeAsked:
        break;
    }
    m_connections.HoldRequests(pClient);
    m_pLookTimer->start();
    if (m_gate.LetWait(pClient, strOrigin))
        Q_EMIT m_pDesk->asked(strOrigin);
}

void ClientAdmission::Leave(QWebSocket *pClient)
{
    if (m_gate.Remove(pClient, pClient->origin()))
        Q_EMIT m_pDesk->withdrawn(pClient->origin());
}

void ClientAdmission::Admit(QWebSocket *pClient)
{
    m_gate.Admit(pClient, pClient->origin());
    Q_EMIT admitted(pClient);
}

void ClientAdmission::TakeAnswer(const QString &strOrigin, OriginAnswer answer)
{
    LetGo(m_gate.TakeAnswer(strOrigin, answer),
          answer == OriginAnswer::AllowThisTime || answer == OriginAnswer::AllowAlways);
    EndBlocked();
}

void ClientAdmission::TakeAnswersAnew()
{
    const std::optional<OriginAnswers> answers = OriginAnswers::Read();
    if (!answers) // what was known before stays
        return;
    m_gate.SetAnswers(*answers);
    EndBlocked();
    const QStringList origins = m_gate.WaitingOrigins();
    for (const QString &strOrigin : origins) {
        const bool bAdmitted = m_gate.Judge(strOrigin) == OriginGate::Verdict::Admitted;
        if (!bAdmitted && !m_gate.IsBlocked(strOrigin))
            continue;
        LetGo(m_gate.TakeWaiting(strOrigin), bAdmitted);
        Q_EMIT m_pDesk->withdrawn(strOrigin);
    }
}

void ClientAdmission::LetGo(const QList<QWebSocket *> &clients, bool bAdmitted)
{
    for (QWebSocket *pClient : clients) {
        if (!bAdmitted) {
            TurnAway(pClient);
            continue;
        }
        Admit(pClient);
        m_connections.ReleaseRequests(pClient);
    }
}

void ClientAdmission::EndBlocked()
{
    const QList<QWebSocket *> clients = m_gate.AdmittedButBlocked();
    for (QWebSocket *pClient : clients)
        TurnAway(pClient);
}

void ClientAdmission::EndThoseWhoLeft()
{
    const QList<QWebSocket *> clients = m_gate.Waiting();
    for (QWebSocket *pClient : clients) {
        if (m_connections.HasLeft(pClient))
            pClient->abort();
    }
    if (!m_gate.HasWaiting())
        m_pLookTimer->stop();
}
