#include "config/ini_file.h"
#include "config/settings.h"
#include "support/modal_answer.h"
#include "support/ordinary_user.h"
#include "support/settings_home.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QtTest>

namespace
{
const QByteArray FIRST_FILE = "[misc]\nchart_refresh_rate_hz=3\n\n";
}  // namespace

class SettingsTest : public QObject
{
    Q_OBJECT

private slots:
    void the_directory_is_asked_for_anew();
    void the_installation_is_not_portable();
    void a_first_run_creates_directory_and_file();
    void a_directory_without_file_gets_one();
    void a_directory_that_cannot_be_created_ends_the_start();
    void a_file_that_cannot_be_created_ends_the_start_in_silence();
    void a_read_only_directory_ends_the_start();
    void a_read_only_file_ends_the_start();
    void a_malformed_file_ends_the_start_and_stays_data();
    void a_malformed_file_ends_the_start_and_stays();
    void an_unreadable_file_ends_the_start();
    void an_empty_file_is_fine();
    void the_archive_directory_becomes_the_pdf_directory_data();
    void the_archive_directory_becomes_the_pdf_directory();
    void an_empty_archive_directory_stays();
    void loading_a_complete_file_writes_nothing();
    void absent_settings_have_their_fallback();
    void every_setting_has_its_key();
    void odd_values_data();
    void odd_values();
    void setters_leave_the_disk_alone();
    void saving_a_read_only_file_keeps_the_memory();
    void loading_again_forgets_the_former_values();
    void a_directory_with_a_line_break_does_not_keep_the_program_from_starting();
};

void SettingsTest::the_directory_is_asked_for_anew()
{
    for (int i = 0; i < 2; ++i) {
        const SettingsHome home;
        QCOMPARE(Settings::get_settings_dir(), home.directory);
        QCOMPARE(Settings::get_default_log_dir(), home.directory);
        QCOMPARE(Settings::get_settings_filename(), home.filename);
    }
}

void SettingsTest::the_installation_is_not_portable()
{
    QCOMPARE(Settings::get_installation_type(), 0);
    QCOMPARE(Settings::get_installation_type_string(), QString("Non-Portable"));
}

void SettingsTest::a_first_run_creates_directory_and_file()
{
    const SettingsHome home;
    ModalAnswer answer;
    QVERIFY(Settings::load());
    QCOMPARE(home.file_content(), FIRST_FILE);
    QCOMPARE(QDir(home.directory).entryList(QDir::Files), QStringList("kestrometer.cfg"));
    QCOMPARE(Settings::get_chart_refresh_rate(), 3);
    QVERIFY(answer.seen.empty());
}

void SettingsTest::a_directory_without_file_gets_one()
{
    const SettingsHome home;
    QVERIFY(QDir().mkpath(home.directory));
    QVERIFY(Settings::load());
    QCOMPARE(home.file_content(), FIRST_FILE);
}

void SettingsTest::a_directory_that_cannot_be_created_ends_the_start()
{
    const SettingsHome home;
    QVERIFY(write_file(home.root.path() + "/data", "a file in the way"));
    ModalAnswer answer;
    answer.click(QMessageBox::Ok);
    QVERIFY(!Settings::load());
    QCOMPARE(answer.seen.size(), size_t(1));
    QCOMPARE(answer.seen[0].caption, QString("Error"));
    QCOMPARE(answer.seen[0].text, "Cannot create settings directory (" + home.directory + ").");
}

void SettingsTest::a_file_that_cannot_be_created_ends_the_start_in_silence()
{
    const SettingsHome home;
    QVERIFY(QDir().mkpath(home.directory));
    QVERIFY(QFile::link(home.root.filePath("absent/file"), home.filename));
    ModalAnswer answer;
    QVERIFY(!Settings::load());
    QVERIFY(answer.seen.empty());
}

void SettingsTest::a_read_only_directory_ends_the_start()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    const SettingsHome home;
    QVERIFY(QDir().mkpath(home.directory));
    QVERIFY(QFile::setPermissions(home.directory, QFile::ReadOwner | QFile::ExeOwner));
    ModalAnswer answer;
    answer.click(QMessageBox::Ok);
    QVERIFY(!Settings::load());
    QCOMPARE(answer.seen.size(), size_t(1));
    QCOMPARE(answer.seen[0].caption, QString("Error"));
    QCOMPARE(answer.seen[0].text, "Settings directory (" + home.directory + ") is read-only.");
}

void SettingsTest::a_read_only_file_ends_the_start()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    const SettingsHome home;
    QVERIFY(home.put_file(FIRST_FILE));
    QVERIFY(QFile::setPermissions(home.filename, QFile::ReadOwner));
    ModalAnswer answer;
    answer.click(QMessageBox::Ok);
    QVERIFY(!Settings::load());
    QCOMPARE(answer.seen.size(), size_t(1));
    QCOMPARE(answer.seen[0].caption, QString("Error"));
    QCOMPARE(answer.seen[0].text, "Settings file (" + home.filename + ") is read-only.");
    QCOMPARE(home.file_content(), FIRST_FILE);
}

void SettingsTest::a_malformed_file_ends_the_start_and_stays_data()
{
    QTest::addColumn<QByteArray>("content");

    QTest::newRow("no equal sign") << QByteArray("[misc]\nchart_refresh_rate_hz\n");
    QTest::newRow("variable first") << QByteArray("chart_refresh_rate_hz=3\n[misc]\n");
    QTest::newRow("comment") << QByteArray("; note\n[misc]\n");
    QTest::newRow("rubbish") << QByteArray("\xff\xfe\x01\x02", 4);
    // The former key was read before the bad line, and is not moved all the same.
    add_row("archive directory before",
            QByteArray("[directories]\narchive_directory=/old\nrubbish\n"));
}

void SettingsTest::a_malformed_file_ends_the_start_and_stays()
{
    QFETCH(QByteArray, content);
    const SettingsHome home;
    QVERIFY(home.put_file(content));
    ModalAnswer answer;
    answer.click(QMessageBox::Ok);
    QVERIFY(!Settings::load());
    QCOMPARE(answer.seen.size(), size_t(1));
    QCOMPARE(answer.seen[0].caption, QString("Error"));
    QCOMPARE(answer.seen[0].text, "Unable to read " + home.filename + ".");
    QCOMPARE(home.file_content(), content);
}

void SettingsTest::an_unreadable_file_ends_the_start()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    const SettingsHome home;
    QVERIFY(home.put_file(FIRST_FILE));
    QVERIFY(QFile::setPermissions(home.filename, QFile::WriteOwner));
    ModalAnswer answer;
    answer.click(QMessageBox::Ok);
    QVERIFY(!Settings::load());
    QCOMPARE(answer.seen.size(), size_t(1));
    QCOMPARE(answer.seen[0].text, "Unable to read " + home.filename + ".");
}

void SettingsTest::an_empty_file_is_fine()
{
    const SettingsHome home;
    QVERIFY(home.put_file(""));
    QVERIFY(Settings::load());
    QCOMPARE(home.file_content(), QByteArray());
    QCOMPARE(Settings::get_chart_refresh_rate(), 3);
}

void SettingsTest::the_archive_directory_becomes_the_pdf_directory_data()
{
    QTest::addColumn<QByteArray>("before");

    QTest::newRow("alone") << QByteArray("[directories]\narchive_directory=/old\n");
    add_row("with a PDF directory",
            QByteArray("[directories]\narchive_directory=/old\npdf_directory=/new\n"));
}

void SettingsTest::the_archive_directory_becomes_the_pdf_directory()
{
    QFETCH(QByteArray, before);
    const SettingsHome home;
    QVERIFY(home.put_file(before));
    QVERIFY(Settings::load());
    QCOMPARE(Settings::get_pdf_dir(), QString("/old"));
    QCOMPARE(Settings::get_archive_dir(), QString());
    QCOMPARE(home.file_content(), QByteArray("[directories]\npdf_directory=/old\n\n"));
}

void SettingsTest::an_empty_archive_directory_stays()
{
    const QByteArray content = "[directories]\npdf_directory=/new\narchive_directory=\n";
    const SettingsHome home;
    QVERIFY(home.put_file(content));
    QVERIFY(Settings::load());
    QCOMPARE(home.file_content(), content);
    QCOMPARE(Settings::get_pdf_dir(), QString("/new"));
    QVERIFY(Settings::save());
    QCOMPARE(home.file_content(),
             QByteArray("[directories]\narchive_directory=\npdf_directory=/new\n\n"));
}

void SettingsTest::loading_a_complete_file_writes_nothing()
{
    const QByteArray content = "[z]\nq=1\n\n\n[misc]\nchart_refresh_rate_hz = 5\n[a]\n";
    const SettingsHome home;
    QVERIFY(home.put_file(content));
    QVERIFY(Settings::load());
    QCOMPARE(home.file_content(), content);
    QCOMPARE(Settings::get_chart_refresh_rate(), 5);
}

void SettingsTest::absent_settings_have_their_fallback()
{
    const SettingsHome home;
    QVERIFY(home.put_file(""));
    QVERIFY(Settings::load());
    QCOMPARE(Settings::get_log_dir(), QString());
    QCOMPARE(Settings::get_pdf_dir(), QString());
    QCOMPARE(Settings::get_archive_dir(), QString());
    QCOMPARE(Settings::get_show_debug_info(), false);
    QCOMPARE(Settings::get_copy_logs(), false);
    QCOMPARE(Settings::get_test_station_width_px(), 0);
    QCOMPARE(Settings::get_header_image_filename(), QString());
    QCOMPARE(Settings::get_chart_refresh_rate(), 3);
    QCOMPARE(Settings::get_log_all_telemetry(), false);
    QCOMPARE(Settings::ini_file->get_section_names(), QStringList());
}

void SettingsTest::every_setting_has_its_key()
{
    const SettingsHome home;
    QVERIFY(Settings::load());
    Settings::set_log_dir("/logs");
    Settings::set_pdf_dir("/pdfs");
    Settings::set_archive_dir("/archive");
    Settings::set_show_debug_info(true);
    Settings::set_copy_logs(true);
    Settings::set_test_station_width_px(321);
    Settings::set_header_image_filename("/header.png");
    Settings::set_chart_refresh_rate(7);
    Settings::set_log_all_telemetry(true);
    QVERIFY(Settings::save());
    QCOMPARE(home.file_content(), QByteArray("[directories]\n"
                                             "archive_directory=/archive\n"
                                             "log_directory=/logs\n"
                                             "pdf_directory=/pdfs\n"
                                             "\n"
                                             "[misc]\n"
                                             "chart_refresh_rate_hz=7\n"
                                             "copy_logs_when_pdf_generated=Yes\n"
                                             "header_image_filename=/header.png\n"
                                             "log_all_telemetry=Yes\n"
                                             "show_debug_info=Yes\n"
                                             "test_station_width_px=321\n"
                                             "\n"));
    QCOMPARE(Settings::get_log_dir(), QString("/logs"));
    QCOMPARE(Settings::get_pdf_dir(), QString("/pdfs"));
    QCOMPARE(Settings::get_archive_dir(), QString("/archive"));
    QCOMPARE(Settings::get_show_debug_info(), true);
    QCOMPARE(Settings::get_copy_logs(), true);
    QCOMPARE(Settings::get_test_station_width_px(), 321);
    QCOMPARE(Settings::get_header_image_filename(), QString("/header.png"));
    QCOMPARE(Settings::get_chart_refresh_rate(), 7);
    QCOMPARE(Settings::get_log_all_telemetry(), true);
    Settings::set_log_all_telemetry(false);
    QCOMPARE(Settings::get_log_all_telemetry(), false);
}

void SettingsTest::odd_values_data()
{
    QTest::addColumn<QByteArray>("line");
    add_columns<int>({"rate", "width"});
    QTest::addColumn<bool>("debug");

    QTest::newRow("rate is a word") << QByteArray("chart_refresh_rate_hz=abc") << 3 << 0 << false;
    QTest::newRow("rate is empty") << QByteArray("chart_refresh_rate_hz=") << 3 << 0 << false;
    add_row("rate beyond 32 bits", QByteArray("chart_refresh_rate_hz=4294967301"), 3, 0, false);
    add_row("rate is not checked", QByteArray("chart_refresh_rate_hz=0"), 0, 0, false);
    QTest::newRow("nor its range") << QByteArray("chart_refresh_rate_hz=-20") << -20 << 0 << false;
    add_row("rate in hexadecimal", QByteArray("chart_refresh_rate_hz=0x0A"), 10, 0, false);
    QTest::newRow("width is a word") << QByteArray("test_station_width_px=wide") << 3 << 0 << false;
    QTest::newRow("width") << QByteArray("test_station_width_px=300") << 3 << 300 << false;
    QTest::newRow("yes") << QByteArray("show_debug_info=yes") << 3 << 0 << false;
    QTest::newRow("Yes") << QByteArray("show_debug_info=Yes") << 3 << 0 << true;
    QTest::newRow("1") << QByteArray("show_debug_info=1") << 3 << 0 << false;
    QTest::newRow("key in other case") << QByteArray("Show_Debug_Info=Yes") << 3 << 0 << false;
}

void SettingsTest::odd_values()
{
    QFETCH(QByteArray, line);
    QFETCH(int, rate);
    QFETCH(int, width);
    QFETCH(bool, debug);
    const SettingsHome home;
    QVERIFY(home.put_file("[misc]\n" + line + "\n"));
    QVERIFY(Settings::load());
    QCOMPARE(Settings::get_chart_refresh_rate(), rate);
    QCOMPARE(Settings::get_test_station_width_px(), width);
    QCOMPARE(Settings::get_show_debug_info(), debug);
}

void SettingsTest::setters_leave_the_disk_alone()
{
    const SettingsHome home;
    QVERIFY(Settings::load());
    Settings::set_log_dir("/logs");
    Settings::set_chart_refresh_rate(9);
    QCOMPARE(home.file_content(), FIRST_FILE);
    QVERIFY(Settings::save());
    QCOMPARE(
        home.file_content(),
        QByteArray("[directories]\nlog_directory=/logs\n\n[misc]\nchart_refresh_rate_hz=9\n\n"));
}

void SettingsTest::saving_a_read_only_file_keeps_the_memory()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    const SettingsHome home;
    QVERIFY(Settings::load());
    QVERIFY(QFile::setPermissions(home.filename, QFile::ReadOwner));
    Settings::set_log_dir("/logs");
    ModalAnswer answer;
    answer.click(QMessageBox::Ok);
    QVERIFY(!Settings::save());
    QCOMPARE(answer.seen.size(), size_t(1));
    QCOMPARE(answer.seen[0].caption, QString("Error"));
    QCOMPARE(answer.seen[0].text, "Settings file (" + home.filename + ") is read-only.");
    QCOMPARE(home.file_content(), FIRST_FILE);
    QCOMPARE(Settings::get_log_dir(), QString("/logs"));
}

void SettingsTest::loading_again_forgets_the_former_values()
{
    const SettingsHome home;
    QVERIFY(Settings::load());
    Settings::set_log_dir("/logs");
    QVERIFY(Settings::load());
    QCOMPARE(Settings::get_log_dir(), QString());
}

void SettingsTest::a_directory_with_a_line_break_does_not_keep_the_program_from_starting()
{
    const SettingsHome home;
    QVERIFY(Settings::load());
    Settings::set_log_dir("/logs\nof March");
    QVERIFY(Settings::save());
    ModalAnswer answer;
    answer.click(QMessageBox::Ok);
    QVERIFY(Settings::load());
    QCOMPARE(Settings::get_log_dir(), QString("/logs of March"));
}

KEST_TEST(SettingsTest)
#include "tst_settings.moc"
