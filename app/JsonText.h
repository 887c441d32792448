// Compact JSON text built in place, for the texts that are too large to go through a document object: an image of
// several megabytes or a list of many points is written once, where it is needed.
#pragma once

#include <QString>

/// Appends text as a JSON string with its quotation marks, character for character as QJsonDocument writes it.
void AppendJsonString(QString &json, const QString &text);

/// Appends a number as a JSON string: 7 becomes "7" with its quotation marks.
void AppendJsonNumberText(QString &json, int number);
