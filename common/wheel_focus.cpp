#include "common/wheel_focus.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>

namespace
{
class WheelFilter : public QObject
{
public:
    explicit WheelFilter(QObject* owner) : QObject(owner)
    {
    }

    /** An event that is stopped but not accepted goes on to what the box lies in. */
    bool eventFilter(QObject* box, QEvent* event) override
    {
        if (event->type() != QEvent::Wheel || static_cast<QWidget*>(box)->hasFocus())
            return false;
        event->ignore();
        return true;
    }
};

template <typename Box> QList<QWidget*> boxes_of(QWidget* form)
{
    QList<QWidget*> boxes;
    for (Box* box : form->findChildren<Box*>())
        boxes << box;
    if (qobject_cast<Box*>(form) != nullptr)
        boxes << form;
    return boxes;
}
}  // namespace

void leave_wheel_without_focus(QWidget* form)
{
    for (QWidget* box : boxes_of<QAbstractSpinBox>(form) + boxes_of<QComboBox>(form)) {
        box->setFocusPolicy(Qt::StrongFocus);
        box->installEventFilter(new WheelFilter(box));
    }
}
