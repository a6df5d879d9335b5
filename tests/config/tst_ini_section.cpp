#include "config/ini_section.h"
#include "support/test_program.h"

#include <QtTest>

#include <cmath>
#include <limits>

class INISectionTest : public QObject
{
    Q_OBJECT

private slots:
    void a_new_section_is_empty();
    void names_come_back_sorted_by_code_unit();
    void a_text_comes_back_as_stored();
    void an_absent_name_leaves_the_value_alone();
    void asking_inserts_nothing();
    void names_are_told_apart_by_case();
    void a_value_is_replaced();
    void a_literal_is_text();
    void integers_are_read_data();
    void integers_are_read();
    void booleans_are_read_data();
    void booleans_are_read();
    void floats_are_read_data();
    void floats_are_read();
    void values_are_stored_as_text();
    void floats_keep_six_digits_data();
    void floats_keep_six_digits();
    void deleting_tells_how_many_went();

private:
    QString text_of(const INISection& section, const QString& name);
};

QString INISectionTest::text_of(const INISection& section, const QString& name)
{
    QString text = "(absent)";
    section.get_value(name, text);
    return text;
}

void INISectionTest::a_new_section_is_empty()
{
    INISection section;
    QCOMPARE(section.get_variable_names(), QStringList());
}

void INISectionTest::names_come_back_sorted_by_code_unit()
{
    INISection section;
    for (const char* name : {"b", "a", "B", "", "_", "a1", "10", "9", "ä"})
        section.set_value(name, QString("x"));
    QCOMPARE(section.get_variable_names(),
             QStringList({"", "10", "9", "B", "_", "a", "a1", "b", "ä"}));
}

void INISectionTest::a_text_comes_back_as_stored()
{
    INISection section;
    section.set_value("name", QString("  \"quoted\" = \\n; # "));
    QCOMPARE(text_of(section, "name"), QString("  \"quoted\" = \\n; # "));
    section.set_value("", QString());
    QCOMPARE(text_of(section, ""), QString());
}

void INISectionTest::an_absent_name_leaves_the_value_alone()
{
    const INISection section;
    QString text = "before";
    int number = 17;
    bool flag = true;
    float real = 1.5f;
    QVERIFY(!section.get_value("name", text));
    QVERIFY(!section.get_value("name", number));
    QVERIFY(!section.get_value("name", flag));
    QVERIFY(!section.get_value("name", real));
    QCOMPARE(text, QString("before"));
    QCOMPARE(number, 17);
    QCOMPARE(flag, true);
    QCOMPARE(real, 1.5f);
}

void INISectionTest::asking_inserts_nothing()
{
    INISection section;
    QString text;
    section.get_value("name", text);
    QCOMPARE(section.get_variable_names(), QStringList());
}

void INISectionTest::names_are_told_apart_by_case()
{
    INISection section;
    section.set_value("name", QString("lower"));
    section.set_value("Name", QString("upper"));
    QCOMPARE(text_of(section, "name"), QString("lower"));
    QCOMPARE(text_of(section, "Name"), QString("upper"));
    QCOMPARE(text_of(section, "NAME"), QString("(absent)"));
}

void INISectionTest::a_value_is_replaced()
{
    INISection section;
    section.set_value("name", QString("one"));
    section.set_value("name", 2);
    QCOMPARE(text_of(section, "name"), QString("2"));
    QCOMPARE(section.get_variable_names(), QStringList("name"));
}

void INISectionTest::a_literal_is_text()
{
    INISection section;
    section.set_value("name", "No text of a bool");
    QCOMPARE(text_of(section, "name"), QString("No text of a bool"));
}

void INISectionTest::integers_are_read_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<int>("value");

    constexpr int untouched = 17;
    QTest::newRow("decimal") << "42" << true << 42;
    QTest::newRow("negative") << "-42" << true << -42;
    QTest::newRow("leading zero") << "010" << true << 10;
    QTest::newRow("hexadecimal") << "0x1F" << true << 31;
    QTest::newRow("binary") << "0b101" << true << 5;
    QTest::newRow("octal") << "0o17" << true << 15;
    QTest::newRow("empty") << "" << false << untouched;
    QTest::newRow("word") << "abc" << false << untouched;
    QTest::newRow("boolean") << "Yes" << false << untouched;
    QTest::newRow("fraction") << "1.5" << false << untouched;
    QTest::newRow("beyond 32 bits") << "4294967301" << false << 5;
    QTest::newRow("beyond 64 bits") << "99999999999999999999" << false << untouched;
}

void INISectionTest::integers_are_read()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(int, value);
    INISection section;
    section.set_value("name", text);
    int read = 17;
    QCOMPARE(section.get_value("name", read), ok);
    QCOMPARE(read, value);
}

void INISectionTest::booleans_are_read_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<bool>("value");

    QTest::newRow("Yes") << "Yes" << true << true;
    QTest::newRow("No") << "No" << true << false;
    for (const char* text : {"yes", "no", "YES", "NO", "true", "false", "1", "0", "", "Yes ", "Y"})
        QTest::newRow(qPrintable(QString("\"%1\"").arg(text))) << text << false << false;
}

void INISectionTest::booleans_are_read()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(bool, value);
    INISection section;
    section.set_value("name", text);
    for (const bool before : {false, true}) {
        bool read = before;
        QCOMPARE(section.get_value("name", read), ok);
        QCOMPARE(read, ok ? value : before);
    }
}

void INISectionTest::floats_are_read_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<float>("value");

    QTest::newRow("fraction") << "1.5" << true << 1.5f;
    QTest::newRow("exponent") << "1.23457e+06" << true << 1234570.0f;
    QTest::newRow("integer") << "-3" << true << -3.0f;
    QTest::newRow("word") << "abc" << false << 0.0f;
    QTest::newRow("empty") << "" << false << 0.0f;
    QTest::newRow("decimal comma") << "1,5" << false << 0.0f;
    QTest::newRow("hexadecimal") << "0x1F" << false << 0.0f;
}

void INISectionTest::floats_are_read()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(float, value);
    INISection section;
    section.set_value("name", text);
    float read = 17.0f;
    QCOMPARE(section.get_value("name", read), ok);
    QCOMPARE(read, value);
}

void INISectionTest::values_are_stored_as_text()
{
    INISection section;
    section.set_value("int", -31);
    section.set_value("least", std::numeric_limits<int>::min());
    section.set_value("yes", true);
    section.set_value("no", false);
    section.set_value("float", 0.25f);
    QCOMPARE(text_of(section, "int"), QString("-31"));
    QCOMPARE(text_of(section, "least"), QString("-2147483648"));
    QCOMPARE(text_of(section, "yes"), QString("Yes"));
    QCOMPARE(text_of(section, "no"), QString("No"));
    QCOMPARE(text_of(section, "float"), QString("0.25"));
}

void INISectionTest::floats_keep_six_digits_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("large") << 1234567.0f << "1.23457e+06";
    QTest::newRow("six digits") << 123456.0f << "123456";
    QTest::newRow("a tenth") << 0.1f << "0.1";
    QTest::newRow("small") << 0.00001234567f << "1.23457e-05";
    QTest::newRow("zero") << 0.0f << "0";
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << "inf";
    QTest::newRow("no number") << std::nanf("") << "nan";
}

void INISectionTest::floats_keep_six_digits()
{
    QFETCH(float, value);
    QFETCH(QString, text);
    INISection section;
    section.set_value("name", value);
    QCOMPARE(text_of(section, "name"), text);
}

void INISectionTest::deleting_tells_how_many_went()
{
    INISection section;
    section.set_value("name", 1);
    QCOMPARE(section.delete_variable("other"), 0);
    QCOMPARE(section.delete_variable("name"), 1);
    QCOMPARE(section.delete_variable("name"), 0);
    QCOMPARE(section.get_variable_names(), QStringList());
}

KEST_GUILESS_TEST(INISectionTest)
#include "tst_ini_section.moc"
