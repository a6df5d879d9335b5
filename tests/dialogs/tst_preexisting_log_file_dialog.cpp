#include "dialogs/preexisting_log_file_dialog.h"
#include "support/form_slots.h"
#include "support/modal_answer.h"
#include "support/test_program.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <QtTest>

/** The question about a battery's earlier log. */
class PreexistingLogFileDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void the_form_is_exact_data();
    void the_form_is_exact();
    void buttons_stand_at_the_right();
    void nothing_is_chosen_beforehand();
    void each_button_makes_its_choice_data();
    void each_button_makes_its_choice();
    void the_last_choice_counts();
    void cancel_beats_a_choice();
    void closing_without_a_button_cancels_data();
    void closing_without_a_button_cancels();
    void closing_leaves_a_choice_as_it_was();
    void texts_are_not_clipped();
    void every_slot_finds_its_widget();
};

namespace
{
void click(QWidget* dialog, const char* button)
{
    QTest::mouseClick(dialog->findChild<QWidget*>(button), Qt::LeftButton, Qt::NoModifier,
                      QPoint(8, 8));
}
}  // namespace

void PreexistingLogFileDialogTest::the_form_is_exact_data()
{
    QTest::addColumn<int>("place");
    add_columns<QString>({"kind", "text"});
    add_row("label", 0, "QLabel",
            "A log file already exists for the specified battery and serial number.");
    add_row("label_2", 1, "QLabel", "What do you want to do?");
    add_row("rbAppend", 2, "QRadioButton", "Append to existing log");
    add_row("rbOverwrite", 3, "QRadioButton", "Overwrite (delete) existing log");
    add_row("rbSuffix", 4, "QRadioButton",
            "Begin a new log file with a suffix to differentiate it");
    add_row("frame", 5, "QFrame", "");
}

void PreexistingLogFileDialogTest::the_form_is_exact()
{
    QFETCH(int, place);
    QFETCH(QString, kind);
    QFETCH(QString, text);
    PreexistingLogFileDialog dialog(nullptr);
    QCOMPARE(dialog.windowTitle(), QString("Dialog"));
    QCOMPARE(dialog.size(), QSize(385, 205));
    auto* layout = qobject_cast<QVBoxLayout*>(dialog.layout());
    QVERIFY(layout != nullptr);
    QCOMPARE(layout->count(), 6);
    const QWidget* widget = layout->itemAt(place)->widget();
    QCOMPARE(widget->objectName(), QString(QTest::currentDataTag()));
    QCOMPARE(QString(widget->metaObject()->className()), kind);
    QCOMPARE(widget->property("text").toString(), text);
    if (const auto* label = qobject_cast<const QLabel*>(widget))
        QCOMPARE(label->wordWrap(), place == 0);
}

void PreexistingLogFileDialogTest::buttons_stand_at_the_right()
{
    PreexistingLogFileDialog dialog(nullptr);
    const auto* frame = dialog.findChild<QFrame*>("frame");
    QCOMPARE(frame->frameShape(), QFrame::NoFrame);
    QCOMPARE(frame->frameShadow(), QFrame::Raised);
    const QLayout* layout = frame->layout();
    QCOMPARE(layout->objectName(), QString("horizontalLayout"));
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(layout->count(), 3);
    QCOMPARE(layout->itemAt(0)->expandingDirections(), Qt::Orientations(Qt::Horizontal));
    const auto* confirm = qobject_cast<QPushButton*>(layout->itemAt(1)->widget());
    const auto* cancel = qobject_cast<QPushButton*>(layout->itemAt(2)->widget());
    QCOMPARE(confirm->objectName(), QString("pbConfirm"));
    QCOMPARE(confirm->text(), QString("Confirm"));
    QCOMPARE(cancel->objectName(), QString("pbCancel"));
    QCOMPARE(cancel->text(), QString("Cancel"));
}

void PreexistingLogFileDialogTest::nothing_is_chosen_beforehand()
{
    PreexistingLogFileDialog dialog(nullptr);
    for (const char* name : {"rbAppend", "rbOverwrite", "rbSuffix"})
        QVERIFY(!dialog.findChild<QRadioButton*>(name)->isChecked());
    QVERIFY(!dialog.findChild<QPushButton*>("pbConfirm")->isEnabled());
    QVERIFY(dialog.findChild<QPushButton*>("pbCancel")->isEnabled());
}

void PreexistingLogFileDialogTest::each_button_makes_its_choice_data()
{
    QTest::addColumn<int>("choice");
    QTest::newRow("rbAppend") << int('A');
    QTest::newRow("rbOverwrite") << int('O');
    QTest::newRow("rbSuffix") << int('S');
}

void PreexistingLogFileDialogTest::each_button_makes_its_choice()
{
    QFETCH(int, choice);
    PreexistingLogFileDialog dialog(nullptr);
    ModalAnswer answers;
    bool confirmable = false;
    answers.handle([&confirmable](QWidget* widget) {
        click(widget, QTest::currentDataTag());
        confirmable = widget->findChild<QWidget*>("pbConfirm")->isEnabled();
        click(widget, "pbConfirm");
    });
    QCOMPARE(dialog.get_choice(), choice);
    QVERIFY(confirmable);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void PreexistingLogFileDialogTest::the_last_choice_counts()
{
    PreexistingLogFileDialog dialog(nullptr);
    ModalAnswer answers;
    answers.handle([](QWidget* widget) {
        click(widget, "rbOverwrite");
        click(widget, "rbSuffix");
        click(widget, "pbConfirm");
    });
    QCOMPARE(dialog.get_choice(), int('S'));
}

void PreexistingLogFileDialogTest::cancel_beats_a_choice()
{
    PreexistingLogFileDialog dialog(nullptr);
    ModalAnswer answers;
    answers.handle([](QWidget* widget) {
        click(widget, "rbOverwrite");
        click(widget, "pbCancel");
    });
    QCOMPARE(dialog.get_choice(), int('X'));
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
}

void PreexistingLogFileDialogTest::closing_without_a_button_cancels_data()
{
    QTest::addColumn<bool>("by_key");
    QTest::newRow("Escape") << true;
    QTest::newRow("window frame") << false;
}

void PreexistingLogFileDialogTest::closing_without_a_button_cancels()
{
    QFETCH(bool, by_key);
    PreexistingLogFileDialog dialog(nullptr);
    ModalAnswer answers;
    answers.handle([by_key](QWidget* widget) {
        // The key that confirms has nothing to confirm.
        QTest::keyClick(widget, Qt::Key_Return);
        QVERIFY(widget->isVisible());
        if (by_key)
            QTest::keyClick(widget, Qt::Key_Escape);
        else
            widget->close();
    });
    QCOMPARE(dialog.get_choice(), int('X'));
}

void PreexistingLogFileDialogTest::closing_leaves_a_choice_as_it_was()
{
    PreexistingLogFileDialog dialog(nullptr);
    ModalAnswer answers;
    answers.handle([](QWidget* widget) {
        click(widget, "rbSuffix");
        QTest::keyClick(widget, Qt::Key_Escape);
    });
    QCOMPARE(dialog.get_choice(), int('S'));
}

void PreexistingLogFileDialogTest::texts_are_not_clipped()
{
    PreexistingLogFileDialog dialog(nullptr);
    dialog.show();
    QCoreApplication::processEvents();
    for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
        const bool fits = widget->minimumSizeHint().width() <= widget->width() &&
                          widget->fontMetrics().height() <= widget->height();
        QVERIFY2(fits, qPrintable(widget->objectName()));
    }
}

void PreexistingLogFileDialogTest::every_slot_finds_its_widget()
{
    PreexistingLogFileDialog dialog(nullptr);
    QCOMPARE(slots_without_widget(&dialog), QStringList());
}

KEST_TEST(PreexistingLogFileDialogTest)
#include "tst_preexisting_log_file_dialog.moc"
