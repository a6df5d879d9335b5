#include "records/condition.h"
#include "support/test_program.h"

#include <QRegularExpression>
#include <QSet>
#include <QtTest>

Q_DECLARE_METATYPE(Condition)

/** The words for what a test is found at. */
class WatchConditionsTest : public QObject
{
    Q_OBJECT

private slots:
    void each_has_a_key_and_words_of_its_own();
    void what_happened_once_has_no_end_data();
    void what_happened_once_has_no_end();
};

namespace
{
QList<ConditionTraits> all_conditions()
{
    QList<ConditionTraits> all;
    for (int i = 0; i <= int(Condition::WokeFromSleep); ++i)
        all << traits_of(Condition(i));
    return all;
}
}  // namespace

void WatchConditionsTest::each_has_a_key_and_words_of_its_own()
{
    static const QRegularExpression key("^[a-z]+(-[a-z]+)*$");
    QSet<QString> keys;
    QSet<QString> texts;
    for (const ConditionTraits& traits : all_conditions()) {
        QVERIFY2(key.match(traits.key).hasMatch(), traits.key);
        keys << traits.key;
        texts << traits.text;
    }
    QCOMPARE(keys.size(), int(Condition::WokeFromSleep) + 1);
    QCOMPARE(texts.size(), keys.size());
}

void WatchConditionsTest::what_happened_once_has_no_end_data()
{
    QTest::addColumn<Condition>("condition");
    QTest::addColumn<bool>("moment");
    QTest::newRow("done") << Condition::Done << false;
    QTest::newRow("program gone") << Condition::ProgramGone << false;
    QTest::newRow("ended") << Condition::Ended << true;
    QTest::newRow("clock stepped") << Condition::ClockStepped << true;
    QTest::newRow("woke") << Condition::WokeFromSleep << true;
}

void WatchConditionsTest::what_happened_once_has_no_end()
{
    QFETCH(Condition, condition);
    QTEST(traits_of(condition).moment, "moment");
}

KEST_GUILESS_TEST(WatchConditionsTest)
#include "tst_watch_conditions.moc"
