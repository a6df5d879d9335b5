#include "config/settings.h"
#include "support/edit_settings_bench.h"
#include "support/ordinary_user.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QFileDialog>
#include <QtTest>

namespace
{
struct ChooserLooks
{
    QString caption;
    QString start;
    QStringList filters;
    QString filter;
    bool only_directories = false;
    bool has_parent = true;
    QFileDialog::FileMode mode = QFileDialog::AnyFile;
};

/** Presses the button and cancels the chooser that comes up, after a look at it. */
ChooserLooks looks_of_chooser(EditSettingsBench& bench, const char* button)
{
    ChooserLooks looks;
    bench.answer.handle([&looks](QWidget* widget) {
        auto* chooser = qobject_cast<QFileDialog*>(widget);
        if (chooser != nullptr) {
            looks.caption = chooser->windowTitle();
            looks.start = chooser->directory().absolutePath();
            looks.filters = chooser->nameFilters();
            looks.filter = chooser->selectedNameFilter();
            looks.only_directories = chooser->testOption(QFileDialog::ShowDirsOnly);
            looks.has_parent = chooser->parentWidget() != nullptr;
            looks.mode = chooser->fileMode();
        }
        static_cast<QDialog*>(widget)->reject();
    });
    bench.press(button);
    return looks;
}

struct DirectoryRow
{
    const char* label;
    const char* button;
    const char* key;
    const char* caption;
    const char* missing;
};

constexpr DirectoryRow DIRECTORIES[] = {
    {"laLogDirectory", "pbChangeLogDirectory", "log_directory", "Select Log File Directory",
     "The selected log directory (%1) does not exist."},
    {"laPDFDirectory", "pbChangePDFDirectory", "pdf_directory", "Select PDF Directory",
     "The selected PDF directory (%1) does not exist."},
};

void add_directory_rows()
{
    QTest::addColumn<int>("index");
    QTest::newRow("log directory") << 0;
    QTest::newRow("PDF directory") << 1;
}
}  // namespace

class EditSettingsChoosersTest : public QObject
{
    Q_OBJECT

private slots:
    void a_directory_chooser_has_its_looks_data();
    void a_directory_chooser_has_its_looks();
    void without_a_setting_the_chooser_takes_its_own_start_data();
    void without_a_setting_the_chooser_takes_its_own_start();
    void a_chosen_directory_is_shown_and_stored_data();
    void a_chosen_directory_is_shown_and_stored();
    void a_cancelled_directory_chooser_changes_nothing_data();
    void a_cancelled_directory_chooser_changes_nothing();
    void the_directory_already_shown_is_no_change_data();
    void the_directory_already_shown_is_no_change();
    void a_directory_that_is_not_writable_is_refused_data();
    void a_directory_that_is_not_writable_is_refused();
    void a_directory_that_vanished_holds_the_dialog_data();
    void a_directory_that_vanished_holds_the_dialog();
    void the_log_directory_is_looked_at_first();

    void the_header_image_chooser_has_its_looks();
    void a_chosen_header_image_is_shown_and_stored();
    void cancelling_the_header_image_chooser_clears_the_setting();
    void cancel_brings_a_cleared_header_image_back();
    void the_header_image_already_stored_is_no_change();
    void no_header_image_before_and_after_is_no_change();
};

void EditSettingsChoosersTest::a_directory_chooser_has_its_looks_data()
{
    add_directory_rows();
}

void EditSettingsChoosersTest::a_directory_chooser_has_its_looks()
{
    QFETCH(int, index);
    const DirectoryRow& row = DIRECTORIES[index];
    EditSettingsBench bench("[directories]\n" + QByteArray(row.key) + "=%1\n");
    const ChooserLooks looks = looks_of_chooser(bench, row.button);
    QCOMPARE(looks.caption, QString(row.caption));
    QCOMPARE(looks.start, bench.folder.path());
    QVERIFY(looks.only_directories);
    QVERIFY(!looks.has_parent);
}

void EditSettingsChoosersTest::without_a_setting_the_chooser_takes_its_own_start_data()
{
    add_directory_rows();
}

void EditSettingsChoosersTest::without_a_setting_the_chooser_takes_its_own_start()
{
    QFETCH(int, index);
    EditSettingsBench bench;
    // "(Not Set)" is no place, and it keeps the settings directory from being taken.
    const ChooserLooks looks = looks_of_chooser(bench, DIRECTORIES[index].button);
    QVERIFY(QDir(looks.start).exists() && !looks.start.isEmpty());
    QVERIFY(looks.start != bench.home.directory);
}

void EditSettingsChoosersTest::a_chosen_directory_is_shown_and_stored_data()
{
    add_directory_rows();
}

void EditSettingsChoosersTest::a_chosen_directory_is_shown_and_stored()
{
    QFETCH(int, index);
    const DirectoryRow& row = DIRECTORIES[index];
    EditSettingsBench bench;
    const QString chosen = bench.make_directory("chosen");
    bench.choose(row.button, chosen);
    QCOMPARE(bench.text(row.label), chosen);
    bench.press("pbOK");
    const QByteArray line = "\n" + QByteArray(row.key) + "=" + chosen.toLocal8Bit() + "\n";
    QVERIFY(bench.home.file_content().contains(line));
    QVERIFY(bench.answer.seen.empty());
}

void EditSettingsChoosersTest::a_cancelled_directory_chooser_changes_nothing_data()
{
    add_directory_rows();
}

void EditSettingsChoosersTest::a_cancelled_directory_chooser_changes_nothing()
{
    QFETCH(int, index);
    const DirectoryRow& row = DIRECTORIES[index];
    EditSettingsBench bench;
    bench.choose(row.button, "");
    QCOMPARE(bench.answer.pending(), 0);
    QCOMPARE(bench.text(row.label), QString("(Not Set)"));
    bench.press("pbOK");
    QVERIFY(bench.file_is(FIRST_SETTINGS_FILE));
}

void EditSettingsChoosersTest::the_directory_already_shown_is_no_change_data()
{
    add_directory_rows();
}

void EditSettingsChoosersTest::the_directory_already_shown_is_no_change()
{
    QFETCH(int, index);
    const DirectoryRow& row = DIRECTORIES[index];
    EditSettingsBench bench("[directories]\n" + QByteArray(row.key) + "=%1\n");
    const QByteArray before = bench.home.file_content();
    bench.choose(row.button, bench.folder.path());
    QCOMPARE(bench.answer.pending(), 0);
    bench.press("pbOK");
    QVERIFY(bench.file_is(before));
}

void EditSettingsChoosersTest::a_directory_that_is_not_writable_is_refused_data()
{
    add_directory_rows();
}

void EditSettingsChoosersTest::a_directory_that_is_not_writable_is_refused()
{
    QFETCH(int, index);
    const DirectoryRow& row = DIRECTORIES[index];
    const OrdinaryUser user;
    QVERIFY(user.active());
    EditSettingsBench bench;
    const QString closed = bench.make_directory("closed");
    QVERIFY(QFile::setPermissions(closed, QFile::ReadOwner | QFile::ExeOwner));
    bench.answer.choose_path(closed);
    bench.answer.click(QMessageBox::Ok);
    bench.press(row.button);
    QCOMPARE(bench.answer.seen.size(), size_t(1));
    QCOMPARE(bench.answer.seen[0].caption, QString("Error"));
    QCOMPARE(bench.answer.seen[0].text, "The directory " + closed + " is not writable.");
    QCOMPARE(bench.text(row.label), QString("(Not Set)"));
    bench.press("pbOK");
    QVERIFY(bench.file_is(FIRST_SETTINGS_FILE));
}

void EditSettingsChoosersTest::a_directory_that_vanished_holds_the_dialog_data()
{
    add_directory_rows();
}

void EditSettingsChoosersTest::a_directory_that_vanished_holds_the_dialog()
{
    QFETCH(int, index);
    const DirectoryRow& row = DIRECTORIES[index];
    EditSettingsBench bench("[directories]\n" + QByteArray(row.key) + "=%1/gone\n");
    const QByteArray before = bench.home.file_content();
    bench.answer.click(QMessageBox::Ok);
    bench.press("pbOK");
    QCOMPARE(bench.answer.seen.size(), size_t(1));
    QCOMPARE(bench.answer.seen[0].caption, QString("Error"));
    QCOMPARE(bench.answer.seen[0].text, QString(row.missing).arg(bench.folder.filePath("gone")));
    QVERIFY(bench.dialog->isVisible());
    QVERIFY(bench.file_is(before));

    bench.choose(row.button, bench.make_directory("chosen"));
    bench.press("pbOK");
    QVERIFY(!bench.dialog->isVisible());
    QVERIFY(!bench.file_is(before));
}

void EditSettingsChoosersTest::the_log_directory_is_looked_at_first()
{
    EditSettingsBench bench("[directories]\nlog_directory=%1/no_logs\npdf_directory=%1/no_pdfs\n");
    bench.answer.click(QMessageBox::Ok);
    bench.press("pbOK");
    QCOMPARE(bench.answer.seen.size(), size_t(1));
    QCOMPARE(bench.answer.seen[0].text, "The selected log directory (" +
                                            bench.folder.filePath("no_logs") + ") does not exist.");
}

void EditSettingsChoosersTest::the_header_image_chooser_has_its_looks()
{
    EditSettingsBench bench;
    const ChooserLooks looks = looks_of_chooser(bench, "pbChangeHeaderImageFile");
    QCOMPARE(looks.caption, QString("Select Header Image File (10:1 aspect ratio is best)"));
    QCOMPARE(looks.start, bench.home.directory);
    QCOMPARE(looks.filters,
             QStringList({"All Files (*.*)", "PNG Files (*.png)", "JPEG Files (*.jpg)"}));
    QCOMPARE(looks.filter, QString("PNG Files (*.png)"));
    QCOMPARE(looks.mode, QFileDialog::ExistingFile);
    QVERIFY(!looks.has_parent);
}

void EditSettingsChoosersTest::a_chosen_header_image_is_shown_and_stored()
{
    EditSettingsBench bench;
    const QString header = bench.folder.filePath("header.png");
    QVERIFY(write_file(header, "no image is needed"));
    bench.choose("pbChangeHeaderImageFile", header);
    QCOMPARE(bench.text("laHeaderImageFilename"), header);
    bench.press("pbOK");
    QCOMPARE(Settings::get_header_image_filename(), header);
    QVERIFY(!bench.file_is(FIRST_SETTINGS_FILE));
}

void EditSettingsChoosersTest::cancelling_the_header_image_chooser_clears_the_setting()
{
    EditSettingsBench bench("[misc]\nheader_image_filename=/old.png\n");
    bench.choose("pbChangeHeaderImageFile", "");
    QCOMPARE(bench.text("laHeaderImageFilename"), QString("(Use Kest Header)"));
    QCOMPARE(Settings::get_header_image_filename(), QString("/old.png"));
    bench.press("pbOK");
    QCOMPARE(Settings::get_header_image_filename(), QString());
    QVERIFY(bench.home.file_content().contains("\nheader_image_filename=\n"));
}

void EditSettingsChoosersTest::cancel_brings_a_cleared_header_image_back()
{
    const QByteArray content = "[misc]\nheader_image_filename=/old.png\n";
    EditSettingsBench bench(content);
    bench.choose("pbChangeHeaderImageFile", "");
    bench.press("pbCancel");
    QCOMPARE(Settings::get_header_image_filename(), QString("/old.png"));
    QVERIFY(bench.file_is(content));
}

void EditSettingsChoosersTest::the_header_image_already_stored_is_no_change()
{
    EditSettingsBench bench("[misc]\nheader_image_filename=%1/header.png\n");
    const QByteArray before = bench.home.file_content();
    const QString header = bench.folder.filePath("header.png");
    QVERIFY(write_file(header, "no image is needed"));
    bench.choose("pbChangeHeaderImageFile", header);
    QCOMPARE(bench.text("laHeaderImageFilename"), header);
    bench.press("pbOK");
    QVERIFY(bench.file_is(before));
}

void EditSettingsChoosersTest::no_header_image_before_and_after_is_no_change()
{
    EditSettingsBench bench;
    bench.choose("pbChangeHeaderImageFile", "");
    QCOMPARE(bench.text("laHeaderImageFilename"), QString("(Use Kest Header)"));
    bench.press("pbOK");
    QVERIFY(bench.file_is(FIRST_SETTINGS_FILE));
}

KEST_TEST(EditSettingsChoosersTest)
#include "tst_edit_settings_choosers.moc"
