#include "tools/BusStatus.h"
#include "tools/Subcommands.h"
#include "tools/Text.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace {

void PrintLine(const QString &name, const QVariant &value)
{
    if (value.type() == QVariant::StringList)
        return PrintLine(name, value.toStringList().join(QLatin1Char(' ')));
    Print(stdout, QStringLiteral("%1 %2").arg(name + QLatin1Char(':'), -18).arg(value.toString()).trimmed());
}

/// One line each, in the order of their names; each client has its own.
void PrintProperties(const QVariantMap &properties)
{
    for (auto property = properties.begin(); property != properties.end(); ++property) {
        if (property.value().type() != QVariant::List) {
            PrintLine(property.key(), property.value());
            continue;
        }
        const QVariantList clients = property.value().toList();
        for (const QVariant &client : clients)
            PrintLine(QStringLiteral("Client"),
                      (client.toMap().value(QStringLiteral("Address")).toString() + QLatin1Char(' ')
                       + client.toMap().value(QStringLiteral("Origin")).toString())
                          .trimmed());
    }
}

} // namespace

int PrintStatus(const Invocation &invocation)
{
    const BusStatus bus;
    const QVariantMap properties = bus.HasBus() ? bus.Properties() : QVariantMap();
    if (properties.isEmpty())
        return Fail(bus.HasBus() ? Text::tr("the program does not run in this session")
                                 : Text::tr("there is no session bus that answers"));
    if (invocation.bJson)
        Print(stdout,
              QString::fromUtf8(QJsonDocument(QJsonObject::fromVariantMap(properties)).toJson(QJsonDocument::Compact)));
    else
        PrintProperties(properties);
    const bool bListening = properties.value(QStringLiteral("State")).toString() == QLatin1String("listening");
    return bListening ? 0 : 1;
}

int SwitchLog(const Invocation &invocation)
{
    const QString wanted = invocation.arguments.constFirst();
    if (wanted != QLatin1String("on") && wanted != QLatin1String("off"))
        return WrongUsage(Text::tr("neither on nor off: %1").arg(wanted));
    const QString error = BusStatus().Call("SetLog", {wanted == QLatin1String("on")});
    return error.isEmpty() ? Success : Fail(error);
}
