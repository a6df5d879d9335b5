#include "support/form_slots.h"

#include <QMetaMethod>
#include <QObject>

namespace
{
/** As the connection by name has it: a slot may take fewer arguments than its signal brings. */
bool has_signal(const QMetaObject* meta, const QByteArray& slot_signature)
{
    const QByteArray beginning = slot_signature.chopped(1);
    for (int i = 0; i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        if (method.methodType() == QMetaMethod::Signal &&
            method.methodSignature().startsWith(beginning))
            return true;
    }
    return false;
}

bool finds_its_widget(const QObject* form, const QByteArray& slot)
{
    const auto objects = form->findChildren<QObject*>();
    for (const QObject* object : objects) {
        const QByteArray prefix = "on_" + object->objectName().toLatin1() + "_";
        if (object->objectName().isEmpty() || !slot.startsWith(prefix))
            continue;
        if (has_signal(object->metaObject(), slot.mid(prefix.size())))
            return true;
    }
    return false;
}
}  // namespace

QStringList slots_without_widget(const QObject* form)
{
    QStringList lost;
    const QMetaObject* meta = form->metaObject();
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i) {
        const QMetaMethod method = meta->method(i);
        const QByteArray signature = method.methodSignature();
        const bool by_name =
            method.methodType() == QMetaMethod::Slot && signature.startsWith("on_");
        if (by_name && !finds_its_widget(form, signature))
            lost.append(QString::fromLatin1(signature));
    }
    return lost;
}
