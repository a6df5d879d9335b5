#include "dialogs/widget_font_debug_dialog.h"

#include "support/form_slots.h"
#include "support/test_program.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

namespace
{
const char* const EXAMPLES[] = {"pbExample", "laExample", "cbExample"};

struct Bench
{
    Bench()
    {
        dialog.show();
    }

    template <typename Widget = QWidget> Widget* find(const char* name) const
    {
        return dialog.findChild<Widget*>(name);
    }

    void press(const char* button) const
    {
        QTest::mouseClick(find<QPushButton>(button), Qt::LeftButton);
    }

    QList<int> point_sizes() const
    {
        QList<int> sizes;
        for (const char* example : EXAMPLES)
            sizes.append(find(example)->font().pointSize());
        return sizes;
    }

    QStringList texts() const
    {
        QStringList texts;
        for (const char* example : EXAMPLES)
            texts.append(find(example)->property("text").toString());
        return texts;
    }

    QString metrics() const
    {
        return find<QLabel>("laMetrics")->text();
    }

    /** What the measurements are to say of the button as it is. */
    QString measured() const
    {
        const auto* button = find<QPushButton>("pbExample");
        const int text_width = QFontMetrics(button->font()).horizontalAdvance(button->text());
        return QString("Pushbutton: %1 px x %2 px, Text: %3 px")
            .arg(button->width())
            .arg(button->height())
            .arg(text_width);
    }

    WidgetFontDebugDialog dialog{nullptr};
};
}  // namespace

class WidgetFontDebugDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void the_widgets_stand_from_top_to_bottom();
    void every_slot_finds_its_widget();
    void the_boxes_offer_all_families_and_24_sizes();
    void it_begins_with_the_font_of_the_application();
    void it_begins_with_the_example_text();
    void the_label_is_gray();
    void a_typed_text_reaches_all_examples();
    void a_size_reaches_all_examples();
    void a_family_reaches_all_examples();
    void narrower_begins_at_150();
    void wider_widens();
    void the_frame_ends_at_nothing();
    void shorter_begins_at_the_present_height();
    void taller_goes_on_from_the_pinned_height();
    void text_is_fitted_from_12_points_each();
    void text_is_fitted_down_to_one_point();
    void a_family_after_fitting_gives_all_the_buttons_size();
    void ok_accepts();
};

void WidgetFontDebugDialogTest::the_widgets_stand_from_top_to_bottom()
{
    const Bench bench;
    const auto names_in = [&bench](const char* layout) {
        QStringList names;
        const auto* box = bench.find<QBoxLayout>(layout);
        for (int i = 0; i < box->count(); ++i)
            names.append(box->itemAt(i)->widget()->objectName());
        return names.join(' ');
    };
    QCOMPARE(names_in("verticalLayout"),
             QString("frame frame_2 frame_3 pbResizeText laMetrics leText cbFontSize cbFontFamily "
                     "pbOK"));
    QCOMPARE(names_in("verticalLayout_2"), QString("pbExample laExample cbExample"));
    QCOMPARE(names_in("horizontalLayout"), QString("pbNarrower pbWider"));
    QCOMPARE(names_in("horizontalLayout_2"), QString("pbShorter pbTaller"));
    const QMap<QString, QString> texts = {
        {"pbNarrower", "X -"},      {"pbWider", "X +"}, {"pbShorter", "Y -"},
        {"pbTaller", "Y +"},        {"pbOK", "OK"},     {"pbResizeText", "Resize Text to Fit"},
        {"laMetrics", "laMetrics"},
    };
    for (auto text = texts.begin(); text != texts.end(); ++text)
        QCOMPARE(bench.find(text.key().toLatin1())->property("text").toString(), text.value());
    QCOMPARE(bench.find("frame")->maximumWidth(), 150);
}

void WidgetFontDebugDialogTest::every_slot_finds_its_widget()
{
    const Bench bench;
    QCOMPARE(slots_without_widget(&bench.dialog), QStringList());
}

void WidgetFontDebugDialogTest::the_boxes_offer_all_families_and_24_sizes()
{
    const Bench bench;
    const auto items = [&bench](const char* name) {
        QStringList texts;
        const auto* box = bench.find<QComboBox>(name);
        for (int i = 0; i < box->count(); ++i)
            texts.append(box->itemText(i));
        return texts;
    };
    QCOMPARE(items("cbFontFamily"), QFontDatabase().families());
    QStringList sizes;
    for (int size = 1; size <= 24; ++size)
        sizes.append(QString::number(size));
    QCOMPARE(items("cbFontSize"), sizes);
}

void WidgetFontDebugDialogTest::it_begins_with_the_font_of_the_application()
{
    const QString family = QFontDatabase().families().last();
    const QFont former = QApplication::font();
    QApplication::setFont(QFont(family, 13));
    {
        const Bench bench;
        QCOMPARE(bench.find<QComboBox>("cbFontFamily")->currentText(), family);
        QCOMPARE(bench.find<QComboBox>("cbFontSize")->currentText(), QString("13"));
        for (const char* example : EXAMPLES)
            QCOMPARE(bench.find(example)->font().family(), family);
        QCOMPARE(bench.point_sizes(), (QList<int>{13, 13, 13}));
    }
    QApplication::setFont(former);
}

void WidgetFontDebugDialogTest::it_begins_with_the_example_text()
{
    const Bench bench;
    QCOMPARE(bench.find<QLineEdit>("leText")->text(), QString("Example Text"));
    QCOMPARE(bench.texts(), (QStringList{"Example Text", "Example Text", "Example Text"}));
}

void WidgetFontDebugDialogTest::the_label_is_gray()
{
    const Bench bench;
    const auto* label = bench.find<QLabel>("laExample");
    QCOMPARE(label->palette().color(QPalette::Window), QColor(Qt::gray));
    QVERIFY(label->autoFillBackground());
}

void WidgetFontDebugDialogTest::a_typed_text_reaches_all_examples()
{
    const Bench bench;
    auto* edit = bench.find<QLineEdit>("leText");
    edit->selectAll();
    QTest::keyClicks(edit, "<b>1</b>");
    QCOMPARE(bench.texts(), (QStringList{"<b>1</b>", "<b>1</b>", "<b>1</b>"}));
    QCOMPARE(bench.find<QLabel>("laExample")->textFormat(), Qt::PlainText);
}

void WidgetFontDebugDialogTest::a_size_reaches_all_examples()
{
    const Bench bench;
    for (const int size : {1, 24, 7}) {
        bench.find<QComboBox>("cbFontSize")->setCurrentText(QString::number(size));
        QCOMPARE(bench.point_sizes(), (QList<int>{size, size, size}));
    }
}

void WidgetFontDebugDialogTest::a_family_reaches_all_examples()
{
    const Bench bench;
    const QStringList families = QFontDatabase().families();
    for (const QString& family : {families.last(), families.first()}) {
        bench.find<QComboBox>("cbFontFamily")->setCurrentText(family);
        for (const char* example : EXAMPLES)
            QCOMPARE(bench.find(example)->font().family(), family);
    }
}

void WidgetFontDebugDialogTest::narrower_begins_at_150()
{
    const Bench bench;
    const auto* frame = bench.find("frame");
    bench.press("pbNarrower");
    QCOMPARE(frame->minimumWidth(), 149);
    QCOMPARE(frame->maximumWidth(), 149);
    QCOMPARE(bench.metrics(), bench.measured());
    bench.press("pbNarrower");
    QCOMPARE(frame->maximumWidth(), 148);
}

void WidgetFontDebugDialogTest::wider_widens()
{
    const Bench bench;
    const auto* frame = bench.find("frame");
    bench.press("pbWider");
    QCOMPARE(frame->minimumWidth(), 151);
    QCOMPARE(frame->maximumWidth(), 151);
    QCOMPARE(bench.metrics(), bench.measured());
}

void WidgetFontDebugDialogTest::the_frame_ends_at_nothing()
{
    const Bench bench;
    auto* frame = bench.find("frame");
    auto* button = bench.find("pbExample");
    frame->setFixedWidth(0);
    button->setFixedHeight(0);
    bench.press("pbNarrower");
    bench.press("pbShorter");
    QCOMPARE(frame->maximumWidth(), 0);
    QCOMPARE(button->maximumHeight(), 0);
}

void WidgetFontDebugDialogTest::shorter_begins_at_the_present_height()
{
    const Bench bench;
    const auto* button = bench.find("pbExample");
    const int height = button->height();
    bench.press("pbShorter");
    QCOMPARE(button->minimumHeight(), height - 1);
    QCOMPARE(button->maximumHeight(), height - 1);
    QCOMPARE(bench.metrics(), bench.measured());
}

void WidgetFontDebugDialogTest::taller_goes_on_from_the_pinned_height()
{
    const Bench bench;
    auto* button = bench.find("pbExample");
    button->setFixedHeight(40);
    bench.press("pbTaller");
    bench.press("pbTaller");
    QCOMPARE(button->minimumHeight(), 42);
    QCOMPARE(button->maximumHeight(), 42);
    QCOMPARE(bench.metrics(), bench.measured());
}

void WidgetFontDebugDialogTest::text_is_fitted_from_12_points_each()
{
    const Bench bench;
    bench.find<QComboBox>("cbFontSize")->setCurrentText("3");
    bench.press("pbResizeText");
    QCOMPARE(bench.find("pbExample")->font().pointSize() <= 12, true);
    QVERIFY(bench.find("laExample")->font().pointSize() > 3);

    bench.find("laExample")->setFixedWidth(1000);
    bench.find("pbExample")->setFixedWidth(60);
    bench.press("pbResizeText");
    QCOMPARE(bench.find("laExample")->font().pointSize(), 12);
    QVERIFY(bench.find("pbExample")->font().pointSize() < 12);

    bench.find("cbExample")->setFixedWidth(1000);
    bench.press("pbResizeText");
    QCOMPARE(bench.find("cbExample")->font().pointSize(), 12);
}

void WidgetFontDebugDialogTest::text_is_fitted_down_to_one_point()
{
    const Bench bench;
    for (const char* example : EXAMPLES)
        bench.find(example)->setFixedWidth(1);
    bench.press("pbResizeText");
    QCOMPARE(bench.point_sizes(), (QList<int>{1, 1, 1}));
}

void WidgetFontDebugDialogTest::a_family_after_fitting_gives_all_the_buttons_size()
{
    const Bench bench;
    bench.find("laExample")->setFixedWidth(1000);
    bench.find("pbExample")->setFixedWidth(60);
    bench.press("pbResizeText");
    const int of_button = bench.point_sizes().first();
    QVERIFY(bench.point_sizes().at(1) != of_button);
    auto* families = bench.find<QComboBox>("cbFontFamily");
    families->setCurrentIndex(families->currentIndex() == 0 ? 1 : 0);
    QCOMPARE(bench.point_sizes(), (QList<int>{of_button, of_button, of_button}));
}

void WidgetFontDebugDialogTest::ok_accepts()
{
    const Bench bench;
    const QSignalSpy accepted(&bench.dialog, &QDialog::accepted);
    bench.press("pbOK");
    QCOMPARE(accepted.size(), 1);
    QVERIFY(!bench.dialog.isVisible());
}

KEST_TEST(WidgetFontDebugDialogTest)
#include "tst_widget_font_debug_dialog.moc"
