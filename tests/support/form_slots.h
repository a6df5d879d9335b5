#pragma once

#include <QStringList>

class QObject;

/**
 * The `on_<widget>_<signal>` slots of a form that no widget of that name can call.
 *
 * They are connected by name, so that renaming a widget would break its slot in silence.
 */
QStringList slots_without_widget(const QObject* form);
