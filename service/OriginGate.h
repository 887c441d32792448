#pragma once

#include "service/AccessPolicy.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

class OriginDesk;
enum class OriginAnswer;
class QWebSocket;

/// Decides by its origin who is let in: what the settings say, what the user has answered, and who waits for that. It
/// keeps the clients as they are known by their origins, and touches none. Lives on the service thread.
class OriginGate
{
public:
    static constexpr int nMostAsked = 16;       ///< origins that wait at the same time
    static constexpr int nMostWaiting = 8;      ///< clients of each that wait
    static constexpr int nUsualGraceMs = 10000; ///< in which a page that is loaded again counts as the same time

    enum class Verdict { Admitted, ToBeAsked, Refused };

    /// The desk, which the caller keeps, outlives this; null when nobody can be asked.
    explicit OriginGate(AccessPolicy policy, OriginDesk *pDesk = nullptr, int nGraceMs = nUsualGraceMs);

    /// What is to become of a client that comes now. Empty: the client names no origin.
    Verdict Judge(const QString &strOrigin) const;

    /// Whether the user has blocked the origin.
    bool IsBlocked(const QString &strOrigin) const { return m_policy.originAnswers.Blocked().contains(strOrigin); }

    /// Lets a client in. Clients without an origin are of no interest.
    void Admit(QWebSocket *pClient, const QString &strOrigin);
    /// Lets a client wait. True when it is the first of its origin, about which the user is to be asked.
    bool LetWait(QWebSocket *pClient, const QString &strOrigin);
    /// The client has gone. True when it was the last of its origin that waited.
    bool Remove(QWebSocket *pClient, const QString &strOrigin);

    /// Takes the user's answer over, and returns the clients that waited for it. They wait no more, and are of no
    /// interest until they are let in.
    QList<QWebSocket *> TakeAnswer(const QString &strOrigin, OriginAnswer answer);
    void SetAnswers(const OriginAnswers &answers) { m_policy.originAnswers = answers; }

    bool HasWaiting() const { return !m_waiting.isEmpty(); }
    QStringList WaitingOrigins() const { return m_waiting.keys(); }
    QList<QWebSocket *> Waiting() const;
    /// The clients of that origin, who wait no more then.
    QList<QWebSocket *> TakeWaiting(const QString &strOrigin);
    /// Those that were let in and whose origin the user has blocked since.
    QList<QWebSocket *> AdmittedButBlocked() const;

private:
    bool IsAllowedThisTime(const QString &strOrigin) const;
    void AllowThisTime(const QString &strOrigin);
    bool CanBeAsked(const QString &strOrigin) const;

    AccessPolicy m_policy;
    OriginDesk *m_pDesk;
    int m_nGraceMs;
    QMultiHash<QString, QWebSocket *> m_admitted;
    QHash<QString, QList<QWebSocket *>> m_waiting; // by their origins, in the order in which they came
    /// By the origins that are allowed this time: how long that holds when no client of theirs is there.
    QHash<QString, QDeadlineTimer> m_allowedThisTime;
};
