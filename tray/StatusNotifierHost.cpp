#include "tray/StatusNotifierHost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>

StatusNotifierHost FindStatusNotifierHost()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question.setArguments(
        {QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("IsStatusNotifierHostRegistered")});
    question.setAutoStartService(false);
    const QDBusReply<QDBusVariant> answer = QDBusConnection::sessionBus().call(question, QDBus::Block, 500);
    if (answer.isValid())
        return answer.value().variant().toBool() ? StatusNotifierHost::Registered : StatusNotifierHost::None;
    const QDBusError::ErrorType error = answer.error().type();
    const bool bSilent = error == QDBusError::NoReply || error == QDBusError::Timeout || error == QDBusError::TimedOut;
    return bSilent ? StatusNotifierHost::Silent : StatusNotifierHost::None;
}
