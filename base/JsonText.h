// Compact JSON text built in place, for the texts that are too large to go through a document object: an image of
// several megabytes or a list of many points is written once, where it is needed.
#pragma once

#include <QByteArray>
#include <QString>

/// The longest text that is still taken in: its UTF-8 and JSON forms, too, fit into Qt's texts.
constexpr int nMostTextUnits = 500000000;

/// Appends text as a JSON string with its quotation marks, character for character as QJsonDocument writes it. A
/// text that would not fit counts as empty.
void AppendJsonString(QString &json, const QString &text);
/// The same in UTF-8.
void AppendJsonString(QByteArray &json, const QString &text);

/// Appends a number as a JSON string: 7 becomes "7" with its quotation marks.
void AppendJsonNumberText(QString &json, int number);
