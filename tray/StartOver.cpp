#include "tray/StartOver.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QList>

#include <unistd.h>

#include <vector>

namespace {

/// Holds the process's identifier after it has started over: what a child inherits means nothing.
const char startedOverVariable[] = "MVSIGNPAD_STARTED_OVER";

QByteArray ProcessIdentifier()
{
    return QByteArray::number(getpid());
}

/// The process's own arguments as they were given, which QCoreApplication::arguments() no longer holds all of.
QList<QByteArray> CommandLine()
{
    QFile file(QStringLiteral("/proc/self/cmdline"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QByteArray> arguments = file.readAll().split('\0');
    if (!arguments.isEmpty())
        arguments.removeLast(); // what stands behind the last terminator
    return arguments;
}

} // namespace

void StartOver()
{
    if (HasStartedOver())
        return;
    QList<QByteArray> arguments = CommandLine();
    if (arguments.isEmpty())
        return;
    std::vector<char *> pointers;
    for (QByteArray &argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    qputenv(startedOverVariable, ProcessIdentifier());
    execv(QFile::encodeName(QCoreApplication::applicationFilePath()).constData(), pointers.data());
}

bool HasStartedOver()
{
    return qgetenv(startedOverVariable) == ProcessIdentifier();
}
