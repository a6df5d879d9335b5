#include "config/settings.h"
#include "device/kestrometer.h"
#include "dialogs/edit_settings_dialog.h"
#include "support/edit_settings_bench.h"
#include "station/test_station.h"
#include "support/form_slots.h"
#include "support/ordinary_user.h"
#include "support/station_bench.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QCheckBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QtTest>

namespace
{
int screen_width()
{
    return QGuiApplication::primaryScreen()->availableGeometry().width();
}
}  // namespace

class EditSettingsDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void every_slot_finds_its_widget();
    void the_form_has_its_texts_in_order();
    void the_captions_share_a_width_and_the_buttons_are_square();
    void empty_settings_are_shown_as_words();
    void settings_are_shown_as_stored();
    void a_path_that_looks_like_markup_is_shown_as_it_stands();
    void a_stored_path_of_any_length_leaves_the_dialog_on_the_screen();
    void a_chosen_path_of_any_length_leaves_the_dialog_on_the_screen();
    void ok_without_a_change_writes_nothing();
    void cancel_keeps_nothing();
    void every_change_reaches_the_file();
    void a_check_box_alone_is_a_change_data();
    void a_check_box_alone_is_a_change();
    void a_rate_alone_is_a_change();
    void a_rate_stays_changed_when_it_goes_back();
    void a_rate_out_of_range_is_clipped_and_stored_data();
    void a_rate_out_of_range_is_clipped_and_stored();
    void not_set_is_stored_as_an_empty_text();
    void a_save_that_fails_accepts_all_the_same();

    void running_stations_take_up_raw_logging_at_once();
    void an_unchanged_dialog_leaves_running_stations_alone();
};

void EditSettingsDialogTest::every_slot_finds_its_widget()
{
    const EditSettingsBench bench;
    QCOMPARE(slots_without_widget(bench.dialog.get()), QStringList());
}

void EditSettingsDialogTest::the_form_has_its_texts_in_order()
{
    const EditSettingsBench bench;
    QCOMPARE(bench.dialog->windowTitle(), QString("Settings"));
    QCOMPARE(bench.dialog->layout()->objectName(), QString("verticalLayout"));
    const QStringList order = {"frame_2",           "frame_3", "cbCopyLogs",
                               "frame_4",           "frame_5", "cbShowDebugInformation",
                               "cbLogAllTelemetry", "frame"};
    QStringList found;
    for (int i = 0; i < bench.dialog->layout()->count(); ++i)
        found.append(bench.dialog->layout()->itemAt(i)->widget()->objectName());
    QCOMPARE(found, order);
    QCOMPARE(bench.text("laLogDirectoryCaption"), QString("Log Directory"));
    QCOMPARE(bench.text("laPDFDirectoryCaption"), QString("PDF Directory"));
    QCOMPARE(bench.text("laHeaderImageCaption"), QString("Header Image for PDFs"));
    QCOMPARE(bench.text("laChartRefreshRateCaption"), QString("Chart Refresh Rate (Hz)"));
    QCOMPARE(bench.find<QCheckBox>("cbCopyLogs")->text(),
             QString("Also copy logs to PDF directory when PDFs are generated"));
    QCOMPARE(bench.find<QCheckBox>("cbShowDebugInformation")->text(),
             QString("Show Debug Information"));
    QCOMPARE(bench.find<QCheckBox>("cbLogAllTelemetry")->text(),
             QString("Log All Kestrometer Telemetry"));
    for (const char* name :
         {"pbChangeLogDirectory", "pbChangePDFDirectory", "pbChangeHeaderImageFile"})
        QCOMPARE(bench.find<QPushButton>(name)->text(), QString("..."));
    QCOMPARE(bench.find<QPushButton>("pbOK")->text(), QString("OK"));
    QCOMPARE(bench.find<QPushButton>("pbCancel")->text(), QString("Cancel"));
}

void EditSettingsDialogTest::the_captions_share_a_width_and_the_buttons_are_square()
{
    const EditSettingsBench bench;
    const auto* widest = bench.find<QLabel>("laChartRefreshRateCaption");
    QWidget parent;
    // The values have not been laid out yet when the captions get their width.
    const int extra = QLabel(&parent).height();
    for (const char* name : {"laLogDirectoryCaption", "laPDFDirectoryCaption",
                             "laHeaderImageCaption", "laChartRefreshRateCaption"}) {
        const auto* caption = bench.find<QLabel>(name);
        QCOMPARE(caption->minimumWidth(), caption->maximumWidth());
        QCOMPARE(caption->minimumWidth(), widest->minimumWidth());
        QCOMPARE(caption->minimumWidth(), widest->minimumSizeHint().width() + extra);
    }
    for (const char* name :
         {"pbChangeLogDirectory", "pbChangePDFDirectory", "pbChangeHeaderImageFile"}) {
        const auto* button = bench.find<QPushButton>(name);
        const int side = button->minimumSizeHint().height();
        QCOMPARE(button->size(), QSize(side, side));
        QCOMPARE(button->minimumSize(), button->maximumSize());
    }
    const auto* rate = bench.find<QSpinBox>("sbChartRefreshRate");
    QCOMPARE(rate->width(), 5 * QFontMetrics(QSpinBox().font()).horizontalAdvance('m'));
    QCOMPARE(rate->minimum(), 1);
    QCOMPARE(rate->maximum(), 10);
}

void EditSettingsDialogTest::empty_settings_are_shown_as_words()
{
    const EditSettingsBench bench;
    QCOMPARE(EditSettingsDialog::NOT_SET_TEXT, QString("(Not Set)"));
    QCOMPARE(EditSettingsDialog::DEFAULT_HEADER_TEXT, QString("(Use Kest Header)"));
    QCOMPARE(bench.text("laLogDirectory"), QString("(Not Set)"));
    QCOMPARE(bench.text("laPDFDirectory"), QString("(Not Set)"));
    QCOMPARE(bench.text("laHeaderImageFilename"), QString("(Use Kest Header)"));
    // In a wide font the screen has no room for all of the words.
    const int room =
        screen_width() - 2 * bench.find<QLabel>("laLogDirectoryCaption")->minimumWidth();
    for (const char* name : {"laLogDirectory", "laPDFDirectory", "laHeaderImageFilename"}) {
        const auto* label = bench.find<QLabel>(name);
        QCOMPARE(label->minimumWidth(), qMin(room, label->sizeHint().width()));
    }
    QCOMPARE(bench.find<QSpinBox>("sbChartRefreshRate")->value(), 3);
    for (const char* name : {"cbCopyLogs", "cbShowDebugInformation", "cbLogAllTelemetry"})
        QVERIFY(!bench.find<QCheckBox>(name)->isChecked());
}

void EditSettingsDialogTest::settings_are_shown_as_stored()
{
    const EditSettingsBench bench("[directories]\nlog_directory=/logs\npdf_directory=/pdfs\n"
                                  "[misc]\nchart_refresh_rate_hz=7\nheader_image_filename=/h.png\n"
                                  "copy_logs_when_pdf_generated=Yes\nshow_debug_info=Yes\n"
                                  "log_all_telemetry=Yes\n");
    QCOMPARE(bench.text("laLogDirectory"), QString("/logs"));
    QCOMPARE(bench.text("laPDFDirectory"), QString("/pdfs"));
    QCOMPARE(bench.text("laHeaderImageFilename"), QString("/h.png"));
    QCOMPARE(bench.find<QSpinBox>("sbChartRefreshRate")->value(), 7);
    for (const char* name : {"cbCopyLogs", "cbShowDebugInformation", "cbLogAllTelemetry"})
        QVERIFY(bench.find<QCheckBox>(name)->isChecked());
}

void EditSettingsDialogTest::a_path_that_looks_like_markup_is_shown_as_it_stands()
{
    const EditSettingsBench bench;
    for (const char* name : {"laLogDirectory", "laPDFDirectory", "laHeaderImageFilename"})
        QCOMPARE(bench.find<QLabel>(name)->textFormat(), Qt::PlainText);
}

void EditSettingsDialogTest::a_stored_path_of_any_length_leaves_the_dialog_on_the_screen()
{
    const QByteArray path = "/" + QByteArray(4000, 'x');
    const EditSettingsBench bench("[directories]\nlog_directory=" + path + "\npdf_directory=" +
                                  path + "\n[misc]\nheader_image_filename=" + path + "\n");
    QVERIFY(bench.dialog->width() <= screen_width());
    for (const char* name : {"laLogDirectory", "laPDFDirectory", "laHeaderImageFilename"})
        QCOMPARE(bench.text(name), QString(path));
}

void EditSettingsDialogTest::a_chosen_path_of_any_length_leaves_the_dialog_on_the_screen()
{
    EditSettingsBench bench;
    const QString logs = bench.make_directory(QString(150, 'x'));
    const QString pdfs = bench.make_directory(QString(150, 'y'));
    const QString header = bench.folder.filePath(QString(150, 'z'));
    QVERIFY(write_file(header, "no image is needed"));
    bench.choose("pbChangeLogDirectory", logs);
    bench.choose("pbChangePDFDirectory", pdfs);
    bench.choose("pbChangeHeaderImageFile", header);
    QCOMPARE(bench.text("laLogDirectory"), logs);
    QCOMPARE(bench.text("laPDFDirectory"), pdfs);
    QCOMPARE(bench.text("laHeaderImageFilename"), header);
    QVERIFY(bench.dialog->minimumSizeHint().width() <= screen_width());
    // As wide as the screen lets them be.
    const int room = screen_width() - 2 * bench.find<QLabel>("laLogDirectoryCaption")->width();
    for (const char* name : {"laLogDirectory", "laPDFDirectory", "laHeaderImageFilename"})
        QCOMPARE(bench.find<QLabel>(name)->minimumWidth(), room);
}

void EditSettingsDialogTest::ok_without_a_change_writes_nothing()
{
    const QByteArray odd_but_valid = "[misc]\n\nchart_refresh_rate_hz = 5\n";
    EditSettingsBench bench(odd_but_valid);
    bench.press("pbOK");
    QCOMPARE(bench.dialog->result(), int(QDialog::Accepted));
    QVERIFY(!bench.dialog->isVisible());
    QVERIFY(bench.file_is(odd_but_valid));
    QVERIFY(bench.answer.seen.empty());
}

void EditSettingsDialogTest::cancel_keeps_nothing()
{
    EditSettingsBench bench;
    bench.choose("pbChangeLogDirectory", bench.make_directory("logs"));
    bench.find<QSpinBox>("sbChartRefreshRate")->setValue(9);
    bench.find<QCheckBox>("cbCopyLogs")->click();
    bench.press("pbCancel");
    QCOMPARE(bench.dialog->result(), int(QDialog::Rejected));
    QVERIFY(!bench.dialog->isVisible());
    QVERIFY(bench.file_is(FIRST_SETTINGS_FILE));
    QCOMPARE(Settings::get_log_dir(), QString());
    QCOMPARE(Settings::get_chart_refresh_rate(), 3);
    QCOMPARE(Settings::get_copy_logs(), false);
}

void EditSettingsDialogTest::every_change_reaches_the_file()
{
    EditSettingsBench bench;
    const QString logs = bench.make_directory("logs");
    const QString pdfs = bench.make_directory("pdfs");
    const QString header = bench.folder.filePath("header.png");
    QVERIFY(write_file(header, "no image is needed"));
    bench.choose("pbChangeLogDirectory", logs);
    bench.choose("pbChangePDFDirectory", pdfs);
    bench.choose("pbChangeHeaderImageFile", header);
    bench.find<QSpinBox>("sbChartRefreshRate")->setValue(9);
    bench.find<QCheckBox>("cbCopyLogs")->click();
    bench.find<QCheckBox>("cbShowDebugInformation")->click();
    bench.find<QCheckBox>("cbLogAllTelemetry")->click();
    QVERIFY(bench.file_is(FIRST_SETTINGS_FILE));
    bench.press("pbOK");
    QCOMPARE(bench.dialog->result(), int(QDialog::Accepted));
    const QString expected = "[directories]\nlog_directory=" + logs + "\npdf_directory=" + pdfs +
                             "\n\n[misc]\nchart_refresh_rate_hz=9\n"
                             "copy_logs_when_pdf_generated=Yes\nheader_image_filename=" +
                             header + "\nlog_all_telemetry=Yes\nshow_debug_info=Yes\n\n";
    QCOMPARE(bench.home.file_content(), expected.toLocal8Bit());
}

void EditSettingsDialogTest::a_check_box_alone_is_a_change_data()
{
    add_columns<QByteArray>({"check_box", "line"});

    add_row("copy logs", QByteArray("cbCopyLogs"),
            QByteArray("copy_logs_when_pdf_generated=Yes\n"));
    add_row("debug", QByteArray("cbShowDebugInformation"), QByteArray("show_debug_info=Yes\n"));
    add_row("telemetry", QByteArray("cbLogAllTelemetry"), QByteArray("log_all_telemetry=Yes\n"));
}

void EditSettingsDialogTest::a_check_box_alone_is_a_change()
{
    QFETCH(QByteArray, check_box);
    QFETCH(QByteArray, line);
    EditSettingsBench bench;
    bench.find<QCheckBox>(check_box.constData())->click();
    bench.press("pbOK");
    QVERIFY(bench.home.file_content().contains("\n" + line));
    QCOMPARE(bench.home.file_content().count("=Yes\n"), 1);
}

void EditSettingsDialogTest::a_rate_alone_is_a_change()
{
    EditSettingsBench bench;
    bench.find<QSpinBox>("sbChartRefreshRate")->setValue(10);
    bench.press("pbOK");
    QVERIFY(bench.home.file_content().contains("\nchart_refresh_rate_hz=10\n"));
}

void EditSettingsDialogTest::a_rate_stays_changed_when_it_goes_back()
{
    EditSettingsBench bench;
    bench.find<QSpinBox>("sbChartRefreshRate")->setValue(4);
    bench.find<QSpinBox>("sbChartRefreshRate")->setValue(3);
    bench.press("pbOK");
    QVERIFY(!bench.file_is(FIRST_SETTINGS_FILE));
    QVERIFY(bench.home.file_content().contains("\nchart_refresh_rate_hz=3\n"));
}

void EditSettingsDialogTest::a_rate_out_of_range_is_clipped_and_stored_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<int>("clipped");
    QTest::addColumn<bool>("changed");

    QTest::newRow("above") << QByteArray("20") << 10 << true;
    // The box stands at 1 from the start, so that nothing tells of a change.
    QTest::newRow("below") << QByteArray("0") << 1 << false;
    QTest::newRow("least") << QByteArray("1") << 1 << false;
    QTest::newRow("greatest") << QByteArray("10") << 10 << false;
}

void EditSettingsDialogTest::a_rate_out_of_range_is_clipped_and_stored()
{
    QFETCH(QByteArray, stored);
    QFETCH(int, clipped);
    QFETCH(bool, changed);
    const QByteArray content = "[misc]\nchart_refresh_rate_hz=" + stored + "\n";
    EditSettingsBench bench(content);
    QCOMPARE(bench.find<QSpinBox>("sbChartRefreshRate")->value(), clipped);
    bench.press("pbOK");
    QCOMPARE(bench.file_is(content), !changed);
    QCOMPARE(Settings::get_chart_refresh_rate(), changed ? clipped : stored.toInt());
}

void EditSettingsDialogTest::not_set_is_stored_as_an_empty_text()
{
    EditSettingsBench bench;
    bench.find<QCheckBox>("cbCopyLogs")->click();
    bench.press("pbOK");
    QVERIFY(bench.answer.seen.empty());
    QCOMPARE(bench.home.file_content(),
             QByteArray("[directories]\nlog_directory=\npdf_directory=\n\n[misc]\n"
                        "chart_refresh_rate_hz=3\ncopy_logs_when_pdf_generated=Yes\n"
                        "header_image_filename=\nlog_all_telemetry=No\nshow_debug_info=No\n\n"));
}

void EditSettingsDialogTest::a_save_that_fails_accepts_all_the_same()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    EditSettingsBench bench;
    QVERIFY(QFile::setPermissions(bench.home.filename, QFile::ReadOwner));
    bench.find<QCheckBox>("cbCopyLogs")->click();
    bench.answer.click(QMessageBox::Ok);
    bench.press("pbOK");
    QCOMPARE(bench.answer.seen.size(), size_t(1));
    QCOMPARE(bench.answer.seen[0].text,
             "Settings file (" + bench.home.filename + ") is read-only.");
    QCOMPARE(bench.dialog->result(), int(QDialog::Accepted));
    QCOMPARE(Settings::get_copy_logs(), true);
}

void EditSettingsDialogTest::running_stations_take_up_raw_logging_at_once()
{
    StationBench running;
    running.start();
    QVERIFY(running.instrument->telemetry_log == nullptr);
    const TestStation preview(nullptr, nullptr);
    for (const bool on : {true, false}) {
        EditSettingsDialog dialog(nullptr);
        dialog.findChild<QCheckBox*>("cbLogAllTelemetry")->click();
        QCOMPARE(running.instrument->telemetry_log != nullptr, !on);
        dialog.findChild<QPushButton*>("pbOK")->click();
        QCOMPARE(running.instrument->telemetry_log != nullptr, on);
        QCOMPARE(Settings::get_log_all_telemetry(), on);
    }
}

void EditSettingsDialogTest::an_unchanged_dialog_leaves_running_stations_alone()
{
    StationBench running;
    running.start();
    running.station->set_log_all_telemetry(true);
    EditSettingsDialog dialog(nullptr);
    dialog.findChild<QPushButton*>("pbOK")->click();
    QVERIFY(running.instrument->telemetry_log != nullptr);
}

KEST_TEST(EditSettingsDialogTest)
#include "tst_edit_settings_dialog.moc"
