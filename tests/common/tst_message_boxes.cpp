#include "common/message_boxes.h"
#include "support/modal_answer.h"
#include "support/test_program.h"

#include <QLabel>
#include <QtTest>

namespace
{
bool call_notice(const QString& text)
{
    return show_notice(text) == 0;
}

bool call_error(const QString& text)
{
    return show_error(text) == 0;
}

bool call_failed_assumption(const QString& text)
{
    return !failed_assumption(false, text);
}
}  // namespace

using Function = bool (*)(const QString&);
Q_DECLARE_METATYPE(Function)

class MessageBoxesTest : public QObject
{
    Q_OBJECT

private slots:
    void a_box_has_its_caption_icon_and_one_button_data();
    void a_box_has_its_caption_icon_and_one_button();
    void a_text_stands_as_it_is_data();
    void a_text_stands_as_it_is();
    void a_box_is_modal_and_ends_with_escape_data();
    void a_box_is_modal_and_ends_with_escape();
    void a_true_assumption_shows_nothing();

private:
    void add_function_rows();
};

void MessageBoxesTest::add_function_rows()
{
    QTest::addColumn<Function>("function");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("icon");

    QTest::newRow("notice") << &call_notice << "Notice" << int(QMessageBox::Information);
    QTest::newRow("error") << &call_error << "Error" << int(QMessageBox::Warning);
    QTest::newRow("failed assumption")
        << &call_failed_assumption << "Failed Assumption" << int(QMessageBox::Information);
}

void MessageBoxesTest::a_box_has_its_caption_icon_and_one_button_data()
{
    add_function_rows();
}

void MessageBoxesTest::a_box_has_its_caption_icon_and_one_button()
{
    QFETCH(Function, function);
    QFETCH(QString, caption);
    QFETCH(int, icon);
    ModalAnswer answer;
    answer.click(QMessageBox::Ok);
    QVERIFY(function("The text."));
    QCOMPARE(answer.seen.size(), size_t(1));
    const SeenBox& box = answer.seen.front();
    QCOMPARE(box.caption, caption);
    QCOMPARE(box.text, QString("The text."));
    QCOMPARE(int(box.icon), icon);
    QCOMPARE(int(box.buttons), int(QMessageBox::Ok));
    QVERIFY(!box.has_parent);
}

void MessageBoxesTest::a_text_stands_as_it_is_data()
{
    add_function_rows();
}

void MessageBoxesTest::a_text_stands_as_it_is()
{
    QFETCH(Function, function);
    const QString text = "/logs/<b>Säule</b> &amp; &Co %1 <br>\nsecond line";
    QString shown;
    Qt::TextFormat format = Qt::AutoText;
    ModalAnswer answer;
    answer.handle([&](QWidget* widget) {
        const auto* label = widget->findChild<QLabel*>("qt_msgbox_label");
        shown = label->text();
        format = label->textFormat();
        static_cast<QDialog*>(widget)->accept();
    });
    QVERIFY(function(text));
    QCOMPARE(shown, text);
    QCOMPARE(format, Qt::PlainText);
}

void MessageBoxesTest::a_box_is_modal_and_ends_with_escape_data()
{
    add_function_rows();
}

void MessageBoxesTest::a_box_is_modal_and_ends_with_escape()
{
    QFETCH(Function, function);
    bool modal = false;
    ModalAnswer answer;
    answer.handle([&](QWidget* widget) {
        modal = widget->isModal();
        QTest::keyClick(widget, Qt::Key_Escape);
    });
    QVERIFY(function("The text."));
    QVERIFY(modal);
    QCOMPARE(answer.pending(), 0);
}

void MessageBoxesTest::a_true_assumption_shows_nothing()
{
    ModalAnswer answer;
    QVERIFY(failed_assumption(true, "never seen"));
    QVERIFY(answer.seen.empty());
}

KEST_TEST(MessageBoxesTest)
#include "tst_message_boxes.moc"
