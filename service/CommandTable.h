#pragma once

#include <QString>
#include <QStringList>

#include <optional>

class WebSocketService;

/// One row per API name; the row's position is the command number.
struct Command {
    const char *szName;
    const char *szLogName;
    /// Keys of the parameters in the order in which they are passed on; a request must carry exactly as many.
    const char *keys[6];
    /// Runs the request; no value means that it is invalid.
    std::optional<QString> (*run)(WebSocketService &service, const Command &command, const QString &strMsg);

    QStringList Keys() const;
    /// The request's values in the order of the keys, a missing key's as the empty text; none when the number of
    /// distinct keys in the request differs from the row's.
    std::optional<QStringList> Values(const QString &strMsg) const;
};

const int nCommandCount = 34;

extern const Command commandTable[nCommandCount];
