#include "tests/unit/support/Replies.h"

#include <QJsonDocument>
#include <QJsonObject>

QString resultOf(const QString &reply)
{
    return QJsonDocument::fromJson(reply.toUtf8()).object().value(QLatin1String("Result")).toString();
}

QString settingsReply(const char *width, const char *autoFit, const char *dateTime, const QString &name)
{
    return QStringLiteral(R"({"API":"GetWPSSettings","Result":"{\"CurrentPenWidth\":\"%1\",\"EnableAutoFit\":\"%2\",)"
                          R"(\"EnableDateTime\":\"%3\",\"Name\":\"%4\"}"})")
        .arg(QLatin1String(width), QLatin1String(autoFit), QLatin1String(dateTime), name);
}

QString keyMessage(int event)
{
    return QStringLiteral(R"({"API":"GetDeviceConfirmOrCancelKeyStatus","Result":"%1"})").arg(event);
}

QString imageMessage(const QString &image, int length)
{
    return QStringLiteral(R"({"API":"GetInks","Result":"[{\"EventType\":\"0\",\"Image\":\"%1\",)"
                          R"(\"ImageLength\":\"%2\"}]"})")
        .arg(image, QString::number(length));
}
