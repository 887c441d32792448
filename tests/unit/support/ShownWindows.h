#pragma once

#include <QApplication>
#include <QList>
#include <QWidget>

/// The windows of this class that are on the screen.
template <class Window>
QList<Window *> shownWindows()
{
    QList<Window *> shown;
    const QWidgetList widgets = QApplication::topLevelWidgets();
    for (QWidget *widget : widgets) {
        auto *const window = qobject_cast<Window *>(widget);
        if (window && window->isVisible())
            shown.append(window);
    }
    return shown;
}
