#include "tray/DetectSigngleInstance.h"

#include "base/Logging.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFileInfo>
#include <QList>
#include <QProcess>

DetectSigngleInstance::DetectSigngleInstance(QObject *parent) : QObject(parent)
{
    static const char tag[] = "DetectSigngleInstance::DetectSigngleInstance()";
    MV_LOG(tag, "Enter...");
    MV_LOG(tag, "Leave !");
}

bool DetectSigngleInstance::IsSingleInstance()
{
    static const char tag[] = "DetectSigngleInstance::IsSingleInstance()";
    MV_LOG(tag, "Enter...");
    const bool bRet = !IsProcessRunning(QFileInfo(QCoreApplication::applicationFilePath()).fileName());
    MV_LOG(tag, "Leave with bRet=%d", bRet);
    return bRet;
}

bool DetectSigngleInstance::IsProcessRunning(const QString &processName)
{
    static const char tag[] = "DetectSigngleInstance::IsProcessRunning()";
    MV_LOG(tag, "Enter...");
    MV_LOG(tag, "stdprocessName=%s", processName.toUtf8().constData());

    QProcess pgrep;
    pgrep.start(QStringLiteral("pgrep"), {QStringLiteral("-f"), processName});
    pgrep.waitForFinished(30000);
    const QByteArray output = pgrep.readAllStandardOutput();
    const QList<QByteArray> parts = QByteArray(output.constData()).replace('\r', '\n').split('\n');

    MV_LOG(tag, "strOutputParts.size=%d", parts.size());
    for (int i = 0; g_bEnableLog && i < parts.size(); ++i)
        MV_LOG(tag, "stdstrOutput[%d]=%s", i, parts.at(i).constData());

    // One identifier and its line feed make two parts: this process alone. The empty last part counts on purpose.
    const bool bRet = parts.size() > 2;
    MV_LOG(tag, "Leave with bRet=%d", bRet);
    return bRet;
}
