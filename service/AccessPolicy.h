#pragma once

#include <QHostAddress>
#include <QStringList>

#include <optional>

/// Who may reach the service. As it stands here: everybody.
struct AccessPolicy {
    bool bServesAnybody = true;                ///< false: the service does not listen at all
    QString strClosedReason;                   ///< why it does not, in one line of English
    std::optional<QHostAddress> listenAddress; ///< absent: every interface
    std::optional<QStringList> allowedOrigins; ///< absent: all
    bool bRequireOrigin = false;               ///< whether a client without an origin is turned away
    std::optional<QStringList> saveFolders;    ///< absolute; where clients may have files written; absent: anywhere

    /// Whether any client can be turned away for its origin.
    bool LooksAtOrigins() const { return bRequireOrigin || allowedOrigins; }
    /// The origin as the client's handshake names it, compared exactly; empty when it names none, as programs do.
    bool AllowsOrigin(const QString &strOrigin) const;
};
