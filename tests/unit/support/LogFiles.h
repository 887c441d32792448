#pragma once

#include <QString>
#include <QStringList>

/// The two files of the diagnostic log: the main thread's and that of all other threads.
QString mainLog();
QString threadLog();
void removeLogs();

/// A file's lines as they are, without their line breaks. Empty when there is no file.
QStringList loggedLines(const QString &file);
/// The same with everything masked that differs from run to run: ticks as <N>, process identifiers as PID,
/// addresses as P.
QStringList maskedLines(const QString &file);

/// A masked line: tag, message, and the comma and blank at its end.
QString logLine(const char *tag, const QString &message);
QString logLine(const char *tag, const char *message);

/// The first line that is not the expected one; empty when all are. For lines that were written while other threads
/// wrote theirs: all put their messages together in one buffer, so that a line may have got one of the others'.
QString wrongLine(const QStringList &lines, const QStringList &expected, const QStringList &linesOfOthers);
