#include "common/message_boxes.h"

#include <QMessageBox>

namespace
{
/** Plain on purpose: a path or a name that looks like markup is shown as it stands. */
void show_box(QMessageBox::Icon icon, const QString& caption, const QString& text)
{
    QMessageBox box(icon, caption, text, QMessageBox::Ok);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}
}  // namespace

int show_notice(const QString& text)
{
    show_box(QMessageBox::Information, "Notice", text);
    return 0;
}

int show_error(const QString& text)
{
    show_box(QMessageBox::Warning, "Error", text);
    return 0;
}

bool failed_assumption(bool condition, const QString& text)
{
    if (!condition)
        show_box(QMessageBox::Information, "Failed Assumption", text);
    return condition;
}
