#pragma once

#include <QDialog>

#include <memory>

namespace Ui
{
class PreexistingLogFileDialog;
}

/** Asks what to do with the log that a battery already has. */
class PreexistingLogFileDialog : public QDialog
{
    Q_OBJECT

public:
    explicit PreexistingLogFileDialog(QWidget* parent);
    ~PreexistingLogFileDialog() override;

    /** Runs the dialog: 'A' append, 'O' overwrite, 'S' new log with a suffix, 'X' cancel. */
    int get_choice();

private slots:
    void on_rbAppend_clicked();
    void on_rbOverwrite_clicked();
    void on_rbSuffix_clicked();
    void on_pbConfirm_clicked();
    void on_pbCancel_clicked();

private:
    void choose(char new_choice);

    std::unique_ptr<Ui::PreexistingLogFileDialog> ui;
    char choice = 'X';  ///< closing the dialog without a button must touch no file
};
