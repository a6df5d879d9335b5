#include "support/test_files.h"
#include "support/test_program.h"
#include "watch/log_index.h"
#include "watch/log_folder.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

/** What is kept of earlier logs. */
class WatchIndexTest : public QObject
{
    Q_OBJECT

private slots:
    void each_log_is_read_once();
    void a_log_that_has_changed_is_read_again();
    void a_log_that_is_being_written_is_left_for_later();
    void what_is_gone_is_forgotten();
    void legs_are_found_by_pack_and_by_battery();
    void a_file_that_is_no_index_is_made_anew_data();
    void a_file_that_is_no_index_is_made_anew();
    void the_reading_may_be_broken_off();
};

namespace
{
constexpr int LONG = 600000;  // milliseconds

QByteArray log_of(const QByteArray& battery, const QByteArray& serial, const QByteArray& amp_hours)
{
    return "Kestrometer Log\nBattery Name:  " + battery + "\nSerial Number: " + serial +
           "\nCharge Number:               1\n"
           "Timestamp:                   2020-04-03 09:15:02\n"
           "Max Charge Time (h):         2\n"
           "Time (s),Voltage (V)\n1.0,25.10\n7201.0,25.20\n"
           "Discharge Number:            1\n"
           "Timestamp:                   2020-04-03 11:15:02\n"
           "Low Voltage Cutoff (V):      19.5\n"
           "Time (s),Amp-Hours (Ah),Voltage (V),Current (A),IR (mOhms)\n"
           "1800.0," +
           amp_hours + ",19.40,5.00\n";
}

/** A folder of logs, and its index in another one. */
class Shelf
{
public:
    Shelf()
    {
        add("a", "Pack A", "1", "2.500");
        add("b", "Pack A", "2", "2.400");
        add("c", "Pack C", "1", "9.000");
    }

    void add(const QString& name, const QByteArray& battery, const QByteArray& serial,
             const QByteArray& amp_hours)
    {
        QVERIFY(write_file(path(name), log_of(battery, serial, amp_hours)));
    }
    QString path(const QString& name) const
    {
        return folder.filePath(name + ".csv");
    }
    QString index_file() const
    {
        return state.filePath("state/index");
    }
    /** How many logs an index reads that finds what an earlier one has left. */
    int reads(const QSet<QByteArray>& written = {})
    {
        LogFolder logs(QFile::encodeName(folder.path()), false);
        logs.look();
        index = std::make_unique<LogIndex>(index_file());
        const bool complete = index->read_on(logs.logs, written, LONG);
        const QList<QByteArray> paths = logs.logs.keys();
        const bool saved = index->save(QSet<QByteArray>(paths.begin(), paths.end()));
        return complete && saved ? index->logs_read : -1;
    }

    QTemporaryDir folder;
    QTemporaryDir state;
    std::unique_ptr<LogIndex> index;
};

QString text_of(const QList<Leg>& legs)
{
    QStringList words;
    for (const Leg& leg : legs)
        words << QString("%1 %2 s %3 Ah to %4 V of %5 V, %6 s")
                     .arg(leg.kind == SectionKind::Charge ? "charge" : "discharge")
                     .arg(leg.seconds)
                     .arg(leg.amp_hours)
                     .arg(leg.last_volts)
                     .arg(leg.cutoff)
                     .arg(leg.max_charge_time);
    return words.join("; ");
}
}  // namespace

void WatchIndexTest::each_log_is_read_once()
{
    Shelf shelf;
    QCOMPARE(shelf.reads(), 3);
    QCOMPARE(shelf.reads(), 0);
    QCOMPARE(text_of(shelf.index->of_pack("Pack A", "1")),
             QString("charge 7201 s 0 Ah to 25.2 V of 19 V, 7200 s; "
                     "discharge 1800 s 2.5 Ah to 19.4 V of 19.5 V, 7200 s"));
}

void WatchIndexTest::a_log_that_has_changed_is_read_again()
{
    Shelf shelf;
    shelf.reads();
    shelf.add("b", "Pack A", "2", "2.3001");
    QCOMPARE(shelf.reads(), 1);
    QCOMPARE(shelf.index->of_pack("Pack A", "2").last().amp_hours, 2.3001);
}

void WatchIndexTest::a_log_that_is_being_written_is_left_for_later()
{
    Shelf shelf;
    QCOMPARE(shelf.reads({QFile::encodeName(shelf.path("a"))}), 2);
    QVERIFY(shelf.index->of_pack("Pack A", "1").isEmpty());
    QCOMPARE(shelf.reads(), 1);
}

void WatchIndexTest::what_is_gone_is_forgotten()
{
    Shelf shelf;
    shelf.reads();
    QVERIFY(QFile::remove(shelf.path("a")));
    QCOMPARE(shelf.reads(), 0);
    QVERIFY(shelf.index->of_pack("Pack A", "1").isEmpty());
    QVERIFY(!shelf.index->of_pack("Pack A", "2").isEmpty());
}

void WatchIndexTest::legs_are_found_by_pack_and_by_battery()
{
    Shelf shelf;
    shelf.reads();
    QCOMPARE(shelf.index->of_pack("Pack A", "2").size(), 2);
    QCOMPARE(shelf.index->of_pack("Pack B", "2").size(), 0);
    QCOMPARE(shelf.index->of_battery("Pack A").size(), 4);
    QCOMPARE(shelf.index->of_battery("Pack").size(), 0);
}

void WatchIndexTest::a_file_that_is_no_index_is_made_anew_data()
{
    QTest::addColumn<QByteArray>("content");
    Shelf shelf;
    shelf.reads();
    const QByteArray whole = content_of(shelf.index_file());
    add_row("nothing", QByteArray());
    add_row("a text", QByteArray("a text\n"));
    add_row("another form", QByteArray(whole).replace("index 1", "index 0"));
    add_row("cut", whole.left(whole.size() / 2));
    add_row("a byte short", whole.left(whole.size() - 1));
}

void WatchIndexTest::a_file_that_is_no_index_is_made_anew()
{
    QFETCH(QByteArray, content);
    Shelf shelf;
    shelf.reads();
    QVERIFY(write_file(shelf.index_file(), content));
    QCOMPARE(shelf.reads(), 3);
    QCOMPARE(shelf.reads(), 0);
}

void WatchIndexTest::the_reading_may_be_broken_off()
{
    Shelf shelf;
    LogFolder logs(QFile::encodeName(shelf.folder.path()), false);
    logs.look();
    LogIndex index{QString()};
    QVERIFY(!index.read_on(logs.logs, {}, 0));
    QCOMPARE(index.logs_read, 0);
    QVERIFY(index.read_on(logs.logs, {}, LONG));
    QCOMPARE(index.logs_read, 3);
}

KEST_GUILESS_TEST(WatchIndexTest)
#include "tst_watch_index.moc"
