#include "support/modal_answer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QPushButton>

ModalAnswer::ModalAnswer()
{
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { look(); });
    timer.start(0);
}

ModalAnswer::~ModalAnswer() = default;

void ModalAnswer::click(QMessageBox::StandardButton button)
{
    handle([button](QWidget* widget) {
        auto* box = qobject_cast<QMessageBox*>(widget);
        if (box != nullptr && box->button(button) != nullptr)
            box->button(button)->click();
        else if (auto* dialog = qobject_cast<QDialog*>(widget))
            dialog->reject();
    });
}

void ModalAnswer::handle(std::function<void(QWidget*)> action)
{
    actions.push_back(std::move(action));
}

void ModalAnswer::choose_path(const QString& path)
{
    handle([path](QWidget* widget) {
        auto* dialog = qobject_cast<QFileDialog*>(widget);
        if (dialog == nullptr || path.isEmpty()) {
            static_cast<QDialog*>(widget)->reject();
            return;
        }
        dialog->setDirectory(QFileInfo(path).absolutePath());
        dialog->selectFile(path);
        // done() and not accept(): the toolkit's own check of the name would open boxes of its own.
        static_cast<QDialog*>(dialog)->done(QDialog::Accepted);
    });
}

int ModalAnswer::pending() const
{
    return int(actions.size());
}

void ModalAnswer::look()
{
    QWidget* widget = QApplication::activeModalWidget();
    if (widget == nullptr || !widget->isVisible()) {
        last_widget = nullptr;
        return;
    }
    if (widget == last_widget)
        return;
    last_widget = widget;
    if (const auto* box = qobject_cast<QMessageBox*>(widget))
        record(*box);
    if (actions.empty()) {
        if (auto* dialog = qobject_cast<QDialog*>(widget))
            dialog->reject();
        // The next box may stand at the same place in memory.
        last_widget = nullptr;
        return;
    }
    const auto action = actions.front();
    actions.erase(actions.begin());
    action(widget);
    last_widget = nullptr;
}

void ModalAnswer::record(const QMessageBox& box)
{
    SeenBox one;
    one.caption = box.windowTitle();
    one.text = box.text();
    one.icon = box.icon();
    one.buttons = box.standardButtons();
    one.default_button = box.standardButton(box.defaultButton());
    one.has_parent = box.parentWidget() != nullptr;
    seen.push_back(one);
}
