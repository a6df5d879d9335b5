#include "dialogs/preexisting_log_file_dialog.h"

#include "ui_preexisting_log_file_dialog.h"

PreexistingLogFileDialog::PreexistingLogFileDialog(QWidget* parent)
    : QDialog(parent), ui(new Ui::PreexistingLogFileDialog)
{
    ui->setupUi(this);
}

PreexistingLogFileDialog::~PreexistingLogFileDialog() = default;

int PreexistingLogFileDialog::get_choice()
{
    exec();
    return choice;
}

void PreexistingLogFileDialog::on_rbAppend_clicked()
{
    choose('A');
}

void PreexistingLogFileDialog::on_rbOverwrite_clicked()
{
    choose('O');
}

void PreexistingLogFileDialog::on_rbSuffix_clicked()
{
    choose('S');
}

void PreexistingLogFileDialog::on_pbConfirm_clicked()
{
    accept();
}

void PreexistingLogFileDialog::on_pbCancel_clicked()
{
    choice = 'X';
    reject();
}

void PreexistingLogFileDialog::choose(char new_choice)
{
    choice = new_choice;
    ui->pbConfirm->setEnabled(true);
}
