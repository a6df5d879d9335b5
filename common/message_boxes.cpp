#include "common/message_boxes.h"

#include <QMessageBox>

int show_notice(const QString& text)
{
    QMessageBox::information(nullptr, "Notice", text);
    return 0;
}

int show_error(const QString& text)
{
    QMessageBox::warning(nullptr, "Error", text);
    return 0;
}

bool failed_assumption(bool condition, const QString& text)
{
    if (!condition)
        QMessageBox::information(nullptr, "Failed Assumption", text);
    return condition;
}
