#include "tray/StatusNotifierHost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>

bool IsStatusNotifierHostRegistered()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question.setArguments(
        {QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("IsStatusNotifierHostRegistered")});
    question.setAutoStartService(false);
    const QDBusReply<QDBusVariant> answer = QDBusConnection::sessionBus().call(question, QDBus::Block, 500);
    return answer.isValid() && answer.value().variant().toBool();
}
