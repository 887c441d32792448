#include "tests/desktop/StatusNotifierItem.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>

namespace {

const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString watcherInterface = QStringLiteral("org.kde.StatusNotifierWatcher");

QVariant readProperty(const QString &bus, const QString &service, const QString &path, const QString &interface,
                      const QString &name)
{
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, QStringLiteral("org.freedesktop.DBus.Properties"),
                                                       QStringLiteral("Get"));
    call << interface << name;
    const QDBusMessage reply = QDBusConnection(bus).call(call, QDBus::Block, 3000);
    return reply.arguments().isEmpty() ? QVariant() : reply.arguments().constFirst().value<QDBusVariant>().variant();
}

/// One node of the menu's layout: (i id, a{sv} properties, av children).
struct LayoutNode {
    int id = 0;
    QVariantMap properties;
    QVariantList children;
};

LayoutNode readNode(const QDBusArgument &argument)
{
    LayoutNode node;
    argument.beginStructure();
    argument >> node.id >> node.properties;
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        node.children.append(child.variant());
    }
    argument.endArray();
    argument.endStructure();
    return node;
}

} // namespace

StatusNotifierItem::StatusNotifierItem(const QString &busAddress) : m_busAddress(busAddress) {}

QStringList StatusNotifierItem::registeredItems() const
{
    return readProperty(m_busAddress, watcherInterface, QStringLiteral("/StatusNotifierWatcher"), watcherInterface,
                        QStringLiteral("RegisteredStatusNotifierItems"))
        .toStringList();
}

QVariant StatusNotifierItem::property(const QString &name) const
{
    const QStringList items = registeredItems();
    if (items.size() != 1)
        return QVariant();
    const QString &item = items.constFirst(); // service name, then object path
    const int slash = item.indexOf(QLatin1Char('/'));
    return readProperty(m_busAddress, item.left(slash), item.mid(slash), itemInterface, name);
}

QString StatusNotifierItem::toolTip() const
{
    const QVariant value = property(QStringLiteral("ToolTip")); // (s icon, a(iiay) pixmaps, s title, s text)
    if (!value.canConvert<QDBusArgument>())
        return QString();
    const QDBusArgument argument = value.value<QDBusArgument>();
    QString icon;
    QString title;
    QString text;
    argument.beginStructure();
    argument >> icon;
    argument.beginArray();
    while (!argument.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray pixels;
        argument.beginStructure();
        argument >> width >> height >> pixels;
        argument.endStructure();
    }
    argument.endArray();
    argument >> title >> text;
    argument.endStructure();
    return title;
}

QList<StatusNotifierItem::Entry> StatusNotifierItem::menu() const
{
    const QString item = registeredItems().value(0);
    const QString path = property(QStringLiteral("Menu")).value<QDBusObjectPath>().path();
    QDBusMessage call =
        QDBusMessage::createMethodCall(item.section(QLatin1Char('/'), 0, 0), path,
                                       QStringLiteral("com.canonical.dbusmenu"), QStringLiteral("GetLayout"));
    call << 0 << -1 << QStringList();
    const QDBusMessage reply = QDBusConnection(m_busAddress).call(call, QDBus::Block, 3000);
    QList<Entry> entries;
    if (reply.arguments().size() != 2)
        return entries;
    const LayoutNode root = readNode(reply.arguments().at(1).value<QDBusArgument>());
    for (const QVariant &child : root.children) {
        const LayoutNode node = readNode(child.value<QDBusArgument>());
        const bool isSeparator = node.properties.value(QStringLiteral("type")).toString() == QLatin1String("separator");
        const bool isToggle = !node.properties.value(QStringLiteral("toggle-type")).toString().isEmpty();
        const int state = isToggle ? node.properties.value(QStringLiteral("toggle-state")).toInt() : -1;
        entries.append({isSeparator, node.properties.value(QStringLiteral("label")).toString(), state});
    }
    return entries;
}
