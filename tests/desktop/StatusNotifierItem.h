#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

/// What a StatusNotifier host gets to know of the one item on a session bus: read over the bus, as the host does.
class StatusNotifierItem
{
public:
    /// One row of the menu. A separator has no label; the toggle state is -1 where there is nothing to toggle.
    struct Entry {
        bool isSeparator;
        QString label;
        int toggleState;
    };

    explicit StatusNotifierItem(const QString &busAddress);

    /// The names under which items are registered with the host.
    QStringList registeredItems() const;
    QString toolTip() const;
    QList<Entry> menu() const;

private:
    QVariant property(const QString &name) const;

    QString m_busAddress;
};
