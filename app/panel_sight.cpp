#include "app/panel_sight.h"

#include <QEvent>
#include <QScrollArea>

PanelSight::PanelSight(QScrollArea* new_area) : QObject(new_area), area(new_area)
{
    area->viewport()->installEventFilter(this);
    area->widget()->installEventFilter(this);
}

void PanelSight::watch(QWidget* panel)
{
    panel->installEventFilter(this);
}

void PanelSight::look()
{
    for (QObject* child : area->widget()->children())
        if (auto* panel = qobject_cast<QWidget*>(child))
            look_at(panel);
}

/** All that brings a panel into sight moves or resizes it, what it lies on, or the opening. */
bool PanelSight::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::Move && event->type() != QEvent::Resize)
        return false;
    if (watched == area->viewport() || watched == area->widget())
        look();
    else
        look_at(static_cast<QWidget*>(watched));
    return false;
}

void PanelSight::look_at(QWidget* panel)
{
    // A panel that has no place in the area yet is none of its panels.
    if (panel->parentWidget() != area->widget())
        return;
    const QRect opening = area->viewport()->rect().translated(-area->widget()->pos());
    const bool in_sight = panel->geometry().intersects(opening);
    // On, all of it is painted again.
    if (panel->updatesEnabled() != in_sight)
        panel->setUpdatesEnabled(in_sight);
}
