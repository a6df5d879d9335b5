#include "device/kestrometer_state.h"
#include "support/test_program.h"

#include <QtTest>

class KestrometerStateTest : public QObject
{
    Q_OBJECT

private slots:
    void the_values_are_those_of_the_protocol();
    void three_letters_name_a_state_and_all_others_none();
    void each_state_but_unknown_has_a_command();
};

void KestrometerStateTest::the_values_are_those_of_the_protocol()
{
    QCOMPARE(int(Off), 0);
    QCOMPARE(int(Charging), 1);
    QCOMPARE(int(Discharging), 2);
    QCOMPARE(int(Unknown), 3);
}

void KestrometerStateTest::three_letters_name_a_state_and_all_others_none()
{
    for (int code = 0; code <= 0xFFFF; ++code) {
        KestrometerState expected = Unknown;
        if (code == 'O')
            expected = Off;
        else if (code == 'C')
            expected = Charging;
        else if (code == 'D')
            expected = Discharging;
        QCOMPARE(state_from_letter(QChar(code)), expected);
    }
}

void KestrometerStateTest::each_state_but_unknown_has_a_command()
{
    QCOMPARE(command_for_state(Off), QByteArray("O"));
    QCOMPARE(command_for_state(Charging), QByteArray("C"));
    QCOMPARE(command_for_state(Discharging), QByteArray("D"));
    QCOMPARE(command_for_state(Unknown), QByteArray());
}

KEST_GUILESS_TEST(KestrometerStateTest)
#include "tst_kestrometer_state.moc"
