#include "config/ini_file.h"
#include "support/ini_memory.h"
#include "support/modal_answer.h"
#include "support/ordinary_user.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QtTest>

class INIFileSavingTest : public QObject
{
    Q_OBJECT

private slots:
    void files_come_out_sorted_data();
    void files_come_out_sorted();
    void saving_nothing_truncates_the_file();
    void a_section_without_variables_is_a_header_and_an_empty_line();
    void a_value_of_several_lines_is_written_in_one();
    void what_was_saved_is_read_back();
    void text_beyond_ascii_comes_back();
    void a_float_comes_back_with_six_digits();
    void a_read_only_file_is_told_and_stays();
    void a_file_that_cannot_be_opened_for_writing_fails_in_silence();
    void saving_follows_a_link();
};

void INIFileSavingTest::files_come_out_sorted_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    const auto row = [](const char* name, const QByteArray& before, const QByteArray& after) {
        QTest::newRow(name) << before << after;
    };
    row("as it was", "[misc]\nchart_refresh_rate_hz=3\nshow_debug_info=No\n\n",
        "[misc]\nchart_refresh_rate_hz=3\nshow_debug_info=No\n\n");
    row("blank line between variables", "[a]\nb=1\n \nc=2\n", "[a]\nb=1\nc=2\n\n");
    row("duplicate sections", "[a]\nb=1\nc=1\n[a]\nc=2\nd=2\n", "[a]\nb=1\nc=2\nd=2\n\n");
    row("order", "[b]\nz=1\ny=2\n[a]\nx=3\n", "[a]\nx=3\n\n[b]\ny=2\nz=1\n\n");
    row("case", "[b]\n[a]\n[B]\n[A]\n", "[A]\n\n[B]\n\n[a]\n\n[b]\n\n");
    row("case of names", "[s]\nb=1\nB=2\na=3\n", "[s]\nB=2\na=3\nb=1\n\n");
    row("white space", " [ a ] \r\n b = c \r\n", "[a]\nb=c\n\n");
    row("text behind the header", "[a]b]\nc=d\n", "[a]\nc=d\n\n");
    row("empty names", "[]\n=\n", "[]\n=\n\n");
    row("nothing is escaped", "[a]\n# b=\"c\"\\=;\n", "[a]\n# b=\"c\"\\=;\n\n");
}

void INIFileSavingTest::files_come_out_sorted()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    QTemporaryDir dir;
    const QString path = dir.filePath("a.cfg");
    QVERIFY(write_file(path, before));
    INIFile ini(path);
    QVERIFY(ini.load());
    QCOMPARE(content_of(path), before);
    QVERIFY(ini.save());
    QCOMPARE(content_of(path), after);
    QVERIFY(!ini.get_file()->isOpen());
    QVERIFY(ini.save());
    QCOMPARE(content_of(path), after);
}

void INIFileSavingTest::saving_nothing_truncates_the_file()
{
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("a.cfg"), "[a]\nb=c\n\n"));
    INIFile ini(dir.filePath("a.cfg"));
    QVERIFY(ini.save());
    QCOMPARE(content_of(dir.filePath("a.cfg")), QByteArray());
}

void INIFileSavingTest::a_section_without_variables_is_a_header_and_an_empty_line()
{
    QTemporaryDir dir;
    INIFile ini(dir.filePath("a.cfg"));
    INISection* section = nullptr;
    ini.add_section("a", section);
    ini.set_value("b", "c", 1);
    QVERIFY(ini.save());
    QCOMPARE(content_of(dir.filePath("a.cfg")), QByteArray("[a]\n\n[b]\nc=1\n\n"));
}

void INIFileSavingTest::a_value_of_several_lines_is_written_in_one()
{
    QTemporaryDir dir;
    INIFile ini(dir.filePath("a.cfg"));
    ini.set_value("a", "b", "/one\ntwo\n[c]");
    QVERIFY(ini.save());
    QCOMPARE(content_of(dir.filePath("a.cfg")), QByteArray("[a]\nb=/one two [c]\n\n"));
    QString value;
    QVERIFY(ini.get_value("a", "b", value));
    QCOMPARE(value, QString("/one\ntwo\n[c]"));
}

void INIFileSavingTest::what_was_saved_is_read_back()
{
    QTemporaryDir dir;
    INIFile written(dir.filePath("a.cfg"));
    written.set_value("a", "text", QString("some = text"));
    written.set_value("a", "int", -5);
    written.set_value("b", "bool", true);
    QVERIFY(written.save());
    INIFile read(dir.filePath("a.cfg"));
    QVERIFY(read.load());
    QCOMPARE(memory_of(read), memory_of(written));
}

void INIFileSavingTest::text_beyond_ascii_comes_back()
{
    QTemporaryDir dir;
    const QString path = QString::fromUtf8("/Säule/Ω €");
    INIFile written(dir.filePath("a.cfg"));
    written.set_value("a", "b", path);
    QVERIFY(written.save());
    QCOMPARE(content_of(dir.filePath("a.cfg")), "[a]\nb=" + path.toLocal8Bit() + "\n\n");
    INIFile read(dir.filePath("a.cfg"));
    QVERIFY(read.load());
    QString value;
    QVERIFY(read.get_value("a", "b", value));
    QCOMPARE(value, path);
}

void INIFileSavingTest::a_float_comes_back_with_six_digits()
{
    QTemporaryDir dir;
    INIFile ini(dir.filePath("a.cfg"));
    ini.set_value("a", "b", 1234567.0f);
    QVERIFY(ini.save());
    QCOMPARE(content_of(dir.filePath("a.cfg")), QByteArray("[a]\nb=1.23457e+06\n\n"));
    float value = 0.0f;
    QVERIFY(ini.get_value("a", "b", value));
    QCOMPARE(value, 1234570.0f);
}

void INIFileSavingTest::a_read_only_file_is_told_and_stays()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    QTemporaryDir dir;
    const QString path = dir.filePath("<b>a<br> %1.cfg");
    QVERIFY(write_file(path, "[a]\nb=old\n"));
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
    INIFile ini(path);
    ini.set_value("a", "b", QString("new"));
    ModalAnswer answer;
    answer.click(QMessageBox::Ok);
    QVERIFY(!ini.save());
    QCOMPARE(answer.seen.size(), size_t(1));
    QCOMPARE(answer.seen[0].caption, QString("Error"));
    QCOMPARE(answer.seen[0].text, "Settings file (" + path + ") is read-only.");
    QCOMPARE(content_of(path), QByteArray("[a]\nb=old\n"));
    QCOMPARE(memory_of(ini), QStringList({"a/", "a/b=new"}));
}

void INIFileSavingTest::a_file_that_cannot_be_opened_for_writing_fails_in_silence()
{
    QTemporaryDir dir;
    ModalAnswer answer;
    for (const QString& path : {dir.path(), dir.filePath("absent/a.cfg"), QString()}) {
        INIFile ini(path);
        ini.set_value("a", "b", 1);
        QVERIFY(!ini.save());
        QCOMPARE(memory_of(ini), QStringList({"a/", "a/b=1"}));
    }
    QVERIFY(answer.seen.empty());
}

void INIFileSavingTest::saving_follows_a_link()
{
    // Written in place, not renamed over: a link stays a link.
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("real.cfg"), ""));
    QVERIFY(QFile::link(dir.filePath("real.cfg"), dir.filePath("link.cfg")));
    INIFile ini(dir.filePath("link.cfg"));
    ini.set_value("a", "b", 1);
    QVERIFY(ini.save());
    QVERIFY(QFileInfo(dir.filePath("link.cfg")).isSymLink());
    QCOMPARE(content_of(dir.filePath("real.cfg")), QByteArray("[a]\nb=1\n\n"));
}

KEST_TEST(INIFileSavingTest)
#include "tst_ini_file_saving.moc"
