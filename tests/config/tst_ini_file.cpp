#include "config/ini_file.h"
#include "support/ini_memory.h"
#include "support/modal_answer.h"
#include "support/ordinary_user.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QtTest>

class INIFileTest : public QObject
{
    Q_OBJECT

private slots:
    void a_new_store_reads_nothing();
    void files_are_read_line_by_line_data();
    void files_are_read_line_by_line();
    void malformed_files_keep_what_was_read_before_data();
    void malformed_files_keep_what_was_read_before();
    void a_file_that_cannot_be_opened_changes_nothing();
    void an_unreadable_file_changes_nothing();
    void loading_adds_to_what_is_there();
    void after_a_failure_the_file_can_be_loaded_again();
    void sections_are_made_once();
    void a_section_that_is_absent_is_not_made_by_asking();
    void a_value_makes_its_section();
    void typed_values_go_through_the_section();
    void deleting_a_section_takes_its_variables();
};

void INIFileTest::a_new_store_reads_nothing()
{
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("a.cfg"), "[a]\nb=c\n"));
    const INIFile ini(dir.filePath("a.cfg"));
    QCOMPARE(ini.get_section_names(), QStringList());
    QCOMPARE(ini.get_file()->fileName(), dir.filePath("a.cfg"));
    QVERIFY(!ini.get_file()->isOpen());
}

void INIFileTest::files_are_read_line_by_line_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("memory");

    const auto row = [](const char* name, const QByteArray& content, const QStringList& memory) {
        QTest::newRow(name) << content << memory;
    };
    row("empty file", "", {});
    row("only white space", " \n\t\n\r\n", {});
    row("plain", "[a]\nb=c\n", {"a/", "a/b=c"});
    row("no line end", "[a]\nb=c", {"a/", "a/b=c"});
    row("carriage returns", "[a]\r\nb=c\r\n", {"a/", "a/b=c"});
    row("white space around", "  [ a ]\t\n\tb \t=  c d \n", {"a/", "a/b=c d"});
    row("blank lines", "\n[a]\n\nb=c\n   \nd=e\n\n", {"a/", "a/b=c", "a/d=e"});
    row("further equal signs", "[a]\nb=c=d==\n", {"a/", "a/b=c=d=="});
    row("repeated header", "[a]\nb=1\nc=1\n[z]\n[a]\nc=2\n", {"a/", "a/b=1", "a/c=2", "z/"});
    row("repeated name", "[a]\nb=1\nb=2\n", {"a/", "a/b=2"});
    row("text behind the header", "[a]b]\nc=d\n", {"a/", "a/c=d"});
    row("header with an equal sign", "[a]=[b]\n", {"a/"});
    row("header [x=1]", "[x=1]\n", {"x=1/"});
    row("header with inner blanks", "[a b]\n", {"a b/"});
    row("header [[a]", "[[a]\n", {"[a/"});
    row("empty header", "[]\nb=c\n", {"/", "/b=c"});
    row("blank header", "[ ]\nb=c\n", {"/", "/b=c"});
    row("open bracket", "[a]\n[x=1\n", {"a/", "a/[x=1"});
    row("closing bracket", "[a]\nx=1]\n", {"a/", "a/x=1]"});
    row("empty name", "[a]\n=x\n", {"a/", "a/=x"});
    row("empty value", "[a]\nx=\n", {"a/", "a/x="});
    row("only an equal sign", "[a]\n=\n", {"a/", "a/="});
    row("hash is no comment", "[a]\n# a=b\n", {"a/", "a/# a=b"});
    row("semicolon is no comment", "[a]\n;a=b ; c\n", {"a/", "a/;a=b ; c"});
    row("quotes stay", "[a]\nb=\"c \"\n", {"a/", "a/b=\"c \""});
    row("backslashes stay", "[a]\nb=c\\n\\\nd=e\n", {"a/", "a/b=c\\n\\", "a/d=e"});
    row("mark that the codec drops", "\xef\xbb\xbf[a]\nb=c\n", {"a/", "a/b=c"});
    row("names differ in case", "[a]\nB=1\nb=2\n[A]\n", {"A/", "a/", "a/B=1", "a/b=2"});
}

void INIFileTest::files_are_read_line_by_line()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, memory);
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("a.cfg"), content));
    INIFile ini(dir.filePath("a.cfg"));
    QVERIFY(ini.load());
    QCOMPARE(memory_of(ini), memory);
    QVERIFY(!ini.get_file()->isOpen());
    QCOMPARE(content_of(dir.filePath("a.cfg")), content);
}

void INIFileTest::malformed_files_keep_what_was_read_before_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("memory");

    const auto row = [](const char* name, const QByteArray& content, const QStringList& memory) {
        QTest::newRow(name) << content << memory;
    };
    row("variable first", "b=c\n[a]\n", {});
    row("variable with a bracket first", "[b=c\n", {});
    row("word first", "word\n[a]\n", {});
    row("comment with a semicolon", "[a]\nb=c\n; note\nd=e\n", {"a/", "a/b=c"});
    row("comment with a hash", "[a]\n# note\nb=c\n", {"a/"});
    row("word", "[a]\nb=c\nword\n[z]\n", {"a/", "a/b=c"});
    row("half a header", "[a]\nb=c\n[z\n", {"a/", "a/b=c"});
    row("other half of a header", "[a]\nz]\n", {"a/"});
    row("lone bracket", "[a]\n[\n", {"a/"});
    row("text behind a header", "[a] b\n", {});
    row("in the second section", "[a]\nb=c\n[d]\ne=f\nword\n", {"a/", "a/b=c", "d/", "d/e=f"});
    row("NUL bytes", QByteArray("[a]\nb=c\n\0\0\0\n", 12), {"a/", "a/b=c"});
    row("binary rubbish", QByteArray("\x7f\x45\x4c\x46\x02\xff\xfe", 7), {});
    row("two bytes a character", QByteArray("\xff\xfe[\0a\0]\0\n\0b\0=\0c\0", 16), {});
}

void INIFileTest::malformed_files_keep_what_was_read_before()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, memory);
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("a.cfg"), content));
    ModalAnswer answer;
    INIFile ini(dir.filePath("a.cfg"));
    QVERIFY(!ini.load());
    QCOMPARE(memory_of(ini), memory);
    QVERIFY(!ini.get_file()->isOpen());
    QCOMPARE(content_of(dir.filePath("a.cfg")), content);
    QVERIFY(answer.seen.empty());
}

void INIFileTest::a_file_that_cannot_be_opened_changes_nothing()
{
    QTemporaryDir dir;
    ModalAnswer answer;
    for (const QString& path : {dir.filePath("absent"), dir.path()}) {
        INIFile ini(path);
        ini.set_value("a", "b", QString("c"));
        QVERIFY(!ini.load());
        QCOMPARE(memory_of(ini), QStringList({"a/", "a/b=c"}));
    }
    QVERIFY(answer.seen.empty());
}

void INIFileTest::an_unreadable_file_changes_nothing()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("a.cfg"), "[a]\nb=c\n"));
    QVERIFY(QFile::setPermissions(dir.filePath("a.cfg"), QFile::WriteOwner));
    INIFile ini(dir.filePath("a.cfg"));
    QVERIFY(!ini.load());
    QCOMPARE(memory_of(ini), QStringList());
}

void INIFileTest::loading_adds_to_what_is_there()
{
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("a.cfg"), "[a]\nb=new\n[c]\n"));
    INIFile ini(dir.filePath("a.cfg"));
    ini.set_value("a", "b", QString("old"));
    ini.set_value("a", "kept", 1);
    ini.set_value("z", "kept", 2);
    QVERIFY(ini.load());
    QVERIFY(ini.load());
    QCOMPARE(memory_of(ini), QStringList({"a/", "a/b=new", "a/kept=1", "c/", "z/", "z/kept=2"}));
}

void INIFileTest::after_a_failure_the_file_can_be_loaded_again()
{
    QTemporaryDir dir;
    QVERIFY(write_file(dir.filePath("a.cfg"), "word\n"));
    INIFile ini(dir.filePath("a.cfg"));
    QVERIFY(!ini.load());
    QVERIFY(write_file(dir.filePath("a.cfg"), "[a]\nb=c\n"));
    QVERIFY(ini.load());
    QCOMPARE(memory_of(ini), QStringList({"a/", "a/b=c"}));
}

void INIFileTest::sections_are_made_once()
{
    INIFile ini("unused");
    INISection* first = nullptr;
    ini.add_section("a", first);
    first->set_value("b", 1);
    INISection* second = nullptr;
    ini.add_section("a", second);
    QCOMPARE(second, first);
    QCOMPARE(memory_of(ini), QStringList({"a/", "a/b=1"}));
    INISection* found = nullptr;
    QVERIFY(ini.get_section("a", found));
    QCOMPARE(found, first);
}

void INIFileTest::a_section_that_is_absent_is_not_made_by_asking()
{
    INIFile ini("unused");
    INISection other;
    INISection* section = &other;
    QVERIFY(!ini.get_section("a", section));
    QCOMPARE(section, &other);
    QString text = "before";
    int number = 17;
    bool flag = true;
    float real = 1.5f;
    QVERIFY(!ini.get_value("a", "b", text));
    QVERIFY(!ini.get_value("a", "b", number));
    QVERIFY(!ini.get_value("a", "b", flag));
    QVERIFY(!ini.get_value("a", "b", real));
    QCOMPARE(text, QString("before"));
    QCOMPARE(number, 17);
    QCOMPARE(flag, true);
    QCOMPARE(real, 1.5f);
    ini.delete_section("a");
    QCOMPARE(ini.get_section_names(), QStringList());
}

void INIFileTest::a_value_makes_its_section()
{
    INIFile ini("unused");
    ini.set_value("text", "n", QString("x"));
    ini.set_value("literal", "n", "x");
    ini.set_value("int", "n", 1);
    ini.set_value("bool", "n", true);
    ini.set_value("float", "n", 0.5f);
    QCOMPARE(memory_of(ini),
             QStringList({"bool/", "bool/n=Yes", "float/", "float/n=0.5", "int/", "int/n=1",
                          "literal/", "literal/n=x", "text/", "text/n=x"}));
}

void INIFileTest::typed_values_go_through_the_section()
{
    INIFile ini("unused");
    ini.set_value("a", "int", QString("0x1F"));
    ini.set_value("a", "bool", QString("Yes"));
    ini.set_value("a", "one", QString("1"));
    ini.set_value("a", "word", QString("word"));
    int number = 0;
    QVERIFY(ini.get_value("a", "int", number));
    QCOMPARE(number, 31);
    QVERIFY(!ini.get_value("a", "bool", number));
    QCOMPARE(number, 31);
    bool flag = false;
    QVERIFY(ini.get_value("a", "bool", flag));
    QVERIFY(flag);
    QVERIFY(!ini.get_value("a", "one", flag));
    QVERIFY(flag);
    float real = 1.5f;
    QVERIFY(!ini.get_value("a", "word", real));
    QCOMPARE(real, 0.0f);
}

void INIFileTest::deleting_a_section_takes_its_variables()
{
    INIFile ini("unused");
    ini.set_value("a", "b", 1);
    ini.set_value("c", "d", 2);
    ini.delete_section("a");
    QCOMPARE(memory_of(ini), QStringList({"c/", "c/d=2"}));
    ini.set_value("a", "e", 3);
    QCOMPARE(memory_of(ini), QStringList({"a/", "a/e=3", "c/", "c/d=2"}));
}

KEST_TEST(INIFileTest)
#include "tst_ini_file.moc"
