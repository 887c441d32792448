// Ink as text: the JSON array of points that the service's command GetPointer returns.
#pragma once

#include "virtualpad/Ink.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace virtualpad {

/// The ink as compact JSON: one object per point with the texts "Time", "bStrokeEnd", "pressure", "x" and "y".
QByteArray inkToText(const Ink &ink);

/// The ink that the text holds. Takes nothing but what inkToText writes (white space between the JSON tokens and
/// another order of the members aside); otherwise nothing, with the reason in *pError.
std::optional<Ink> inkFromText(const QByteArray &text, QString *pError);

/// As inkFromText, from a regular file.
std::optional<Ink> inkFromFile(const QString &path, QString *pError);

} // namespace virtualpad
