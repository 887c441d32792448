#include "service/OriginGate.h"

#include "service/OriginDesk.h"
#include "service/OriginText.h"

#include <utility>

OriginGate::OriginGate(AccessPolicy policy, OriginDesk *pDesk, int nGraceMs)
    : m_policy(std::move(policy)), m_pDesk(pDesk), m_nGraceMs(nGraceMs)
{
}

OriginGate::Verdict OriginGate::Judge(const QString &strOrigin) const
{
    const OriginAnswers &answers = m_policy.originAnswers;
    if (strOrigin.isEmpty())
        return m_policy.bRequireOrigin ? Verdict::Refused : Verdict::Admitted;
    if (IsBlocked(strOrigin))
        return Verdict::Refused;
    if (m_policy.allowedOrigins && m_policy.allowedOrigins->contains(strOrigin))
        return Verdict::Admitted;
    switch (m_policy.ForUnknownOrigins()) {
    case UnknownOrigins::Block:
        return Verdict::Refused;
    case UnknownOrigins::Allow: { // where nothing is configured, whatever the text is
        const bool bAnything = !m_policy.unknownOrigins && answers.Blocked().isEmpty();
        return bAnything || IsOrigin(strOrigin) ? Verdict::Admitted : Verdict::Refused;
    }
    case UnknownOrigins::Ask:
        break;
    }
    if (answers.Allowed().contains(strOrigin) || IsAllowedThisTime(strOrigin))
        return Verdict::Admitted;
    return CanBeAsked(strOrigin) ? Verdict::ToBeAsked : Verdict::Refused;
}

bool OriginGate::IsAllowedThisTime(const QString &strOrigin) const
{
    const auto grace = m_allowedThisTime.constFind(strOrigin);
    return grace != m_allowedThisTime.constEnd() && (m_admitted.contains(strOrigin) || !grace->hasExpired());
}

bool OriginGate::CanBeAsked(const QString &strOrigin) const
{
    if (!m_pDesk || !m_pDesk->CanAsk() || !IsOrigin(strOrigin) || m_pDesk->Refusals().IsSilenced(strOrigin))
        return false;
    const int nWaiting = m_waiting.value(strOrigin).size();
    return nWaiting > 0 ? nWaiting < nMostWaiting : m_waiting.size() < nMostAsked;
}

void OriginGate::Admit(QWebSocket *pClient, const QString &strOrigin)
{
    if (!strOrigin.isEmpty())
        m_admitted.insert(strOrigin, pClient);
}

bool OriginGate::LetWait(QWebSocket *pClient, const QString &strOrigin)
{
    QList<QWebSocket *> &waiting = m_waiting[strOrigin];
    waiting.append(pClient);
    return waiting.size() == 1;
}

bool OriginGate::Remove(QWebSocket *pClient, const QString &strOrigin)
{
    if (m_admitted.remove(strOrigin, pClient) > 0 && m_allowedThisTime.contains(strOrigin))
        m_allowedThisTime[strOrigin] = QDeadlineTimer(m_nGraceMs);
    const auto waiting = m_waiting.find(strOrigin);
    if (waiting == m_waiting.end() || !waiting->removeOne(pClient) || !waiting->isEmpty())
        return false;
    m_waiting.erase(waiting);
    m_pDesk->Refusals().NoteWithdrawal(strOrigin);
    return true;
}

QList<QWebSocket *> OriginGate::TakeAnswer(const QString &strOrigin, OriginAnswer answer)
{
    if (answer == OriginAnswer::AllowAlways)
        m_policy.originAnswers.SetAllowed(strOrigin);
    if (answer == OriginAnswer::Never)
        m_policy.originAnswers.SetBlocked(strOrigin);
    QList<QWebSocket *> clients = TakeWaiting(strOrigin);
    if (clients.isEmpty()) // the answer came too late for those who had asked
        return clients;
    if (answer == OriginAnswer::NotNow)
        m_pDesk->Refusals().NoteRefusal(strOrigin);
    else
        m_pDesk->Refusals().Forgive(strOrigin);
    if (answer == OriginAnswer::AllowThisTime)
        AllowThisTime(strOrigin);
    return clients;
}

void OriginGate::AllowThisTime(const QString &strOrigin)
{
    for (auto grace = m_allowedThisTime.begin(); grace != m_allowedThisTime.end();) {
        const bool bOver = grace->hasExpired() && !m_admitted.contains(grace.key());
        grace = bOver ? m_allowedThisTime.erase(grace) : std::next(grace);
    }
    m_allowedThisTime.insert(strOrigin, QDeadlineTimer(m_nGraceMs));
}

QList<QWebSocket *> OriginGate::TakeWaiting(const QString &strOrigin)
{
    return m_waiting.take(strOrigin);
}

QList<QWebSocket *> OriginGate::Waiting() const
{
    QList<QWebSocket *> clients;
    for (const QList<QWebSocket *> &waiting : m_waiting)
        clients += waiting;
    return clients;
}

QList<QWebSocket *> OriginGate::AdmittedButBlocked() const
{
    QList<QWebSocket *> clients;
    const QStringList blocked = m_policy.originAnswers.Blocked();
    for (const QString &strOrigin : blocked)
        clients += m_admitted.values(strOrigin);
    return clients;
}
