#pragma once

#include <QStringList>

/// The main log of a copy that was let in, masked, up to where it begins to look for the tray.
QStringList linesOfFirstCopy(int argc, const QString &processName);

/// The whole main log of a copy that gave way, masked; it found these processes besides itself.
QStringList linesOfSecondCopy(int argc, const QString &processName, const QStringList &others);
