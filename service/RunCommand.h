#pragma once

#include <QString>

#include <optional>

class WebSocketService;

/// Runs the request, which names the command of this number, to completion; no value means that it is invalid.
std::optional<QString> RunCommand(int nCommand, WebSocketService &service, const QString &strMsg);
