#pragma once

#include <QMessageBox>
#include <QString>
#include <QTimer>

#include <functional>
#include <vector>

/** What a message box showed when the test answered it. */
struct SeenBox
{
    QString caption;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton default_button = QMessageBox::NoButton;
    bool has_parent = false;
};

/**
 * Answers the modal boxes and dialogs that come up, in the order in which the answers were given.
 *
 * Each answer waits for one modal widget; boxes are recorded in `seen`. A widget for which no answer
 * is left is recorded as well and dismissed, so that a test fails on `seen` and does not hang.
 */
class ModalAnswer
{
public:
    ModalAnswer();
    ~ModalAnswer();
    ModalAnswer(const ModalAnswer&) = delete;
    ModalAnswer& operator=(const ModalAnswer&) = delete;

    /** Clicks this button of the next message box. */
    void click(QMessageBox::StandardButton button);
    /** Calls `action` with the next modal widget, which must end by itself or by the action. */
    void handle(std::function<void(QWidget*)> action);
    /** Chooses these files or this directory in the next file dialog; an empty path cancels it. */
    void choose_path(const QString& path);

    /** Answers that no widget has used yet. */
    int pending() const;

    std::vector<SeenBox> seen;

private:
    void look();
    void record(const QMessageBox& box);

    QTimer timer;
    QWidget* last_widget = nullptr;
    std::vector<std::function<void(QWidget*)>> actions;
};
