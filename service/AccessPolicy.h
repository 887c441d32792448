#pragma once

#include "service/OriginAnswers.h"

#include <QHostAddress>
#include <QStringList>

#include <optional>

/// What becomes of pages of origins about which nobody has said anything.
enum class UnknownOrigins { Allow, Block, Ask };

/// Who may reach the service. As it stands here: everybody.
struct AccessPolicy {
    bool bServesAnybody = true;                ///< false: the service does not listen at all
    QString strClosedReason;                   ///< why it does not, in one line of English
    std::optional<QHostAddress> listenAddress; ///< absent: every interface
    std::optional<QStringList> allowedOrigins; ///< absent: none is named
    bool bRequireOrigin = false;               ///< whether a client without an origin is turned away
    std::optional<QStringList> saveFolders;    ///< absolute; where clients may have files written; absent: anywhere
    std::optional<UnknownOrigins>
        unknownOrigins;          ///< absent: what allowedOrigins does not name is blocked, if it is there
    OriginAnswers originAnswers; ///< as they were when the settings were read

    UnknownOrigins ForUnknownOrigins() const
    {
        return unknownOrigins.value_or(allowedOrigins ? UnknownOrigins::Block : UnknownOrigins::Allow);
    }
    /// Whether the user is asked about pages.
    bool AsksTheUser() const { return ForUnknownOrigins() == UnknownOrigins::Ask; }
    /// The origins whose pages are served without a question, but for those that the user has blocked.
    QStringList NamedOrigins() const
    {
        return allowedOrigins.value_or(QStringList()) + (AsksTheUser() ? originAnswers.Allowed() : QStringList());
    }
};
