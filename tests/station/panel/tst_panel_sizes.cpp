#include "station/test_station.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include "common/unicode.h"

#include <QApplication>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

/** Widths, heights and fonts of the panel, at the size of the system's font and at others. */
class PanelSizesTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup();
    void each_width_is_pinned_data();
    void each_width_is_pinned();
    void three_buttons_are_squares_data();
    void three_buttons_are_squares();
    void the_summary_is_a_fifth_larger_data();
    void the_summary_is_a_fifth_larger();
    void a_label_that_changes_asks_for_no_new_layout();
    void captions_and_rules_stand_on_one_line();
    void nothing_is_clipped_in_a_usual_test();

private:
    const QFont usual_font = QApplication::font();
};

namespace
{
const char* const SUMMARY[] = {"laStationID", "laPhase",         "laVoltage",
                               "laCurrent",   "laCummAmpHours2", "laCycleNumber"};

int text_width(const QWidget* widget, const QString& text)
{
    return QFontMetrics(widget->font()).horizontalAdvance(text);
}

/** The measures that the widths are made of. */
struct Measures
{
    explicit Measures(StationBench& bench)
        : w(text_width(bench.widget<QLabel>("laTestParameters"), "12345678901234567890123")),
          h(bench.widget<QLabel>("laTestParameters")->minimumSizeHint().height()),
          c(bench.widget<QLabel>("laMaxChargeTime")->minimumSizeHint().width()),
          s(bench.widget<QWidget>("frMaxChargeTime")->layout()->spacing()),
          t(bench.widget<QWidget>("frFinalCharge")->layout()->spacing()),
          b(text_width(bench.widget<QLabel>("laStationID"),
                       QString(Unicode::thin_space) + "Preview 00" + Unicode::thin_space)),
          every(text_width(bench.widget<QLabel>("laInternalResistanceInterval"), "every ") +
                bench.widget<QWidget>("cbMeasureInternalResistance")->minimumSizeHint().height())
    {
    }

    int w, h, c, s, t, b, every;
};

struct Width
{
    const char* widgets;
    int (*wanted)(const Measures&);
};

const Width WIDTHS[] = {
    {"laTestParameters laProfileName leProfileName frDirectory laDirectory cbProfile frSaveDelete "
     "cbPromptToDischarge cbDetectFullCharge cbMeasureInternalResistance frInternalResistance "
     "laTestResults laCummAmpHours laCummWattHours laIntResistance laElapsedTime laPhase "
     "leSerialNumber",
     [](const Measures& m) {
         return m.w;
     }},
    {"laNumberOfCycles laMaxChargeTime laLowVoltageCutoff laFinalCharge",
     [](const Measures& m) {
         return m.c;
     }},
    {"sbNumberOfCycles frMaxChargeTime frLowVoltageCutoff frFinalCharge",
     [](const Measures& m) {
         return m.w - m.c - m.s;
     }},
    {"laMaxChargeTimeUnits laLowVoltageCutoffUnits laFinalChargeUnits",
     [](const Measures& m) {
         return m.h;
     }},
    {"laInternalResistanceInterval",
     [](const Measures& m) {
         return m.every;
     }},
    {"leInternalResistanceTestIntervalAh",
     [](const Measures& m) {
         return m.w - 2 * m.w / 3 - m.h - 2 * m.t;
     }},
    {"laStationID laSerialNumberCaption",
     [](const Measures& m) {
         return m.b;
     }},
    {"pbStartSkip pbNewTest pbLoadLog pbGeneratePDF laVoltage laCurrent laCummAmpHours2 "
     "laCycleNumber",
     [](const Measures& m) {
         return m.w / 2;
     }},
};

void add_font_rows()
{
    QTest::addColumn<int>("points");
    for (const int points : {8, 9, 11, 16})
        QTest::newRow(qPrintable(QString("%1 point").arg(points))) << points;
}

void use_font_of(int points)
{
    QFont font = QApplication::font();
    font.setPointSize(points);
    QApplication::setFont(font);
}
}  // namespace

void PanelSizesTest::cleanup()
{
    QApplication::setFont(usual_font);
}

void PanelSizesTest::each_width_is_pinned_data()
{
    add_font_rows();
}

void PanelSizesTest::each_width_is_pinned()
{
    QFETCH(int, points);
    use_font_of(points);
    StationBench bench;
    const Measures measures(bench);
    QCOMPARE(bench.station->minimumWidth(), 4 * measures.w + 78);
    QCOMPARE(bench.station->maximumWidth(), 4 * measures.w + 78);
    for (const Width& width : WIDTHS) {
        for (const QByteArray& name : QByteArray(width.widgets).split(' ')) {
            const auto* widget = bench.widget<QWidget>(name);
            const QSize widths(widget->minimumWidth(), widget->maximumWidth());
            QVERIFY2(widths == QSize(width.wanted(measures), width.wanted(measures)), name);
        }
    }
}

void PanelSizesTest::three_buttons_are_squares_data()
{
    add_font_rows();
}

void PanelSizesTest::three_buttons_are_squares()
{
    QFETCH(int, points);
    use_font_of(points);
    StationBench bench;
    for (const char* name : {"pbDirectory", "pbClose", "pbExpandCollapse"}) {
        const auto* button = bench.widget<QPushButton>(name);
        const int side = button->minimumSizeHint().height();
        QCOMPARE(button->minimumSize(), QSize(side, side));
        QCOMPARE(button->maximumSize(), QSize(side, side));
    }
}

void PanelSizesTest::the_summary_is_a_fifth_larger_data()
{
    QTest::addColumn<int>("points");
    QTest::addColumn<int>("larger");
    QTest::newRow("9 point") << 9 << 10;
    QTest::newRow("10 point") << 10 << 12;
    QTest::newRow("12 point") << 12 << 14;
    QTest::newRow("14 point") << 14 << 16;
}

void PanelSizesTest::the_summary_is_a_fifth_larger()
{
    QFETCH(int, points);
    use_font_of(points);
    StationBench bench;
    const QFont reference = bench.widget<QLabel>("laNotCharging")->font();
    QCOMPARE(reference.pointSize(), points);
    for (const char* name : SUMMARY) {
        const QFont font = bench.widget<QLabel>(name)->font();
        QTEST(font.pointSize(), "larger");
        QCOMPARE(font.family(), reference.family());
        QVERIFY(!font.bold());
    }
}

void PanelSizesTest::a_label_that_changes_asks_for_no_new_layout()
{
    StationBench bench;
    bench.type_names("Pack A", "1042");
    // The first layout asks for more of them on its way up.
    for (int i = 0; i < 5; ++i)
        QCoreApplication::processEvents();
    int requests = 0;
    struct Counter : QObject
    {
        explicit Counter(int& new_requests) : requests(new_requests)
        {
        }
        bool eventFilter(QObject*, QEvent* event) override
        {
            requests += event->type() == QEvent::LayoutRequest ? 1 : 0;

            return false;
        }
        int& requests;
    } counter(requests);
    for (QWidget* widget : bench.station->findChildren<QWidget*>())
        widget->installEventFilter(&counter);
    bench.station->installEventFilter(&counter);
    for (const char* name :
         {"laStationID", "laPhase", "laVoltage", "laCurrent", "laCummAmpHours2", "laCycleNumber",
          "laCummAmpHours", "laCummWattHours", "laIntResistance", "laElapsedTime"})
        bench.widget<QLabel>(name)->setText("a longer text than before");
    QCoreApplication::processEvents();
    QCOMPARE(requests, 0);
    // What the counter would see.
    bench.widget<QLabel>("laNotDischarging")->show();
    QCoreApplication::processEvents();
    QVERIFY(requests > 0);
}

void PanelSizesTest::captions_and_rules_stand_on_one_line()
{
    for (const int points : {9, 12, 16}) {
        use_font_of(points);
        StationBench bench;
        QCoreApplication::processEvents();
        const auto height_of = [&bench](const char* name) {
            const auto* widget = bench.widget<QWidget>(name);
            return widget->mapTo(bench.station.get(), widget->rect().center()).y();
        };
        QVERIFY(qAbs(height_of("laTestResults") - height_of("laTestParameters")) <= 1);
        QCOMPARE(height_of("line_10"), height_of("line_9"));
    }
}

void PanelSizesTest::nothing_is_clipped_in_a_usual_test()
{
    // The widths are those of digits: a font whose letters are wider beside them does get clipped.
    QApplication::setFont(QFont("DejaVu Sans", usual_font.pointSize()));
    StationBench bench;
    bench.type_names("Pack A", "1042");
    const QPair<const char*, QString> longest[] = {
        {"laStationID", Unicode::thin_space + QString("Station 31")},
        {"laPhase", "Ready for 22nd Discharge"},
        {"laPhase", "Recovering from IR Test"},
        {"laVoltage", "120.5 V"},
        {"laCurrent", "03h 05m 09s"},
        {"laCurrent", "100.25 A"},
        {"laCummAmpHours2", "1000.25 Ah"},
        {"laCycleNumber", "Cycle 99/99"},
    };
    for (const auto& text : longest) {
        auto* label = bench.widget<QLabel>(text.first);
        label->setText(text.second);
        QVERIFY2(label->minimumSizeHint().width() <= label->width(), text.first);
        QVERIFY2(label->minimumSizeHint().height() <= label->height(), text.first);
    }
}

KEST_TEST(PanelSizesTest)
#include "tst_panel_sizes.moc"
