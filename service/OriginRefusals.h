#pragma once

#include <QHash>
#include <QString>

/// Which origins the user is not asked about any more until the program starts afresh: nobody can make the same window
/// come up again and again. One thread at a time.
class OriginRefusals
{
public:
    static constexpr int nMostRefusals = 2;     ///< in a row
    static constexpr int nMostWithdrawals = 20; ///< pages that went away before an answer, in a row
    static constexpr int nMostOrigins = 1000;   ///< when so many are known, the user is asked about none besides

    bool IsSilenced(const QString &strOrigin) const;

    void NoteRefusal(const QString &strOrigin) { Add(strOrigin, nMostWithdrawals); }
    void NoteWithdrawal(const QString &strOrigin) { Add(strOrigin, nMostRefusals); }
    void Forgive(const QString &strOrigin) { m_points.remove(strOrigin); }

private:
    /// Refusals and withdrawals weigh so that the most of either makes the same sum.
    static constexpr int nMostPoints = nMostRefusals * nMostWithdrawals;

    void Add(const QString &strOrigin, int nPoints);

    QHash<QString, int> m_points;
};
