#include "device/kestrometer.h"

#include "support/test_clock.h"
#include "support/test_program.h"
#include "support/wire.h"

#include <QBuffer>
#include <QtTest>

namespace
{
QByteArray telemetry(int id)
{
    return "x\t48.02\t3.1\tx\tx\tID=" + QByteArray::number(id) + "\tD";
}

/** An instrument whose log of raw traffic tells which lines were cut. */
struct Bench
{
    Bench() : instrument(std::make_unique<Kestrometer>(wire.port_name()))
    {
        log.open(QIODevice::WriteOnly);
        instrument->telemetry_log = &log;
    }

    bool send(const QByteArray& bytes)
    {
        return wire.send_bytes(bytes, *instrument);
    }

    TestClock clock;
    Wire wire;
    QBuffer log;
    std::unique_ptr<Kestrometer> instrument;
};

QByteArray logged(const QStringList& lines)
{
    QByteArray log;
    for (const QString& line : lines)
        log += "2020-04-03 09:15:00 " + line.toUtf8() + "\n";
    return log;
}
}  // namespace

class KestrometerFramingTest : public QObject
{
    Q_OBJECT

private slots:
    void lines_end_at_cr_lf_and_nowhere_else_data();
    void lines_end_at_cr_lf_and_nowhere_else();
    void a_line_may_be_split_at_every_byte();
    void a_line_may_come_byte_by_byte();
    void a_chunk_is_decoded_on_its_own_data();
    void a_chunk_is_decoded_on_its_own();
    void megabytes_without_a_line_end_are_one_line_when_it_comes();
    void a_burst_of_many_lines_is_parsed_in_order();
    void lines_of_a_burst_keep_their_order_under_a_nested_event_loop();
    void telemetry_goes_on_while_a_listener_waits_for_it();
    void a_listener_may_delete_the_object_data();
    void a_listener_may_delete_the_object();
};

void KestrometerFramingTest::lines_end_at_cr_lf_and_nowhere_else_data()
{
    QTest::addColumn<QByteArrayList>("chunks");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("rest");
    using Chunks = QByteArrayList;
    using Lines = QStringList;
    QTest::newRow("a line") << Chunks{"one\r\n"} << Lines{"one"} << "";
    QTest::newRow("no end yet") << Chunks{"one"} << Lines{} << "one";
    QTest::newRow("two in one chunk") << Chunks{"one\r\ntwo\r\n"} << Lines{"one", "two"} << "";
    QTest::newRow("one in three chunks") << Chunks{"o", "n", "e\r\n"} << Lines{"one"} << "";
    QTest::newRow("one and a half") << Chunks{"one\r\ntw"} << Lines{"one"} << "tw";
    QTest::newRow("half and half") << Chunks{"one\r\ntw", "o\r\nth"} << Lines{"one", "two"} << "th";
    QTest::newRow("lone CR") << Chunks{"one\rtwo\r\n"} << Lines{"one\rtwo"} << "";
    QTest::newRow("lone LF") << Chunks{"one\ntwo\r\n"} << Lines{"one\ntwo"} << "";
    QTest::newRow("only lone ones") << Chunks{"one\rtwo\nthree"} << Lines{} << "one\rtwo\nthree";
    QTest::newRow("LF CR") << Chunks{"one\n\rtwo"} << Lines{} << "one\n\rtwo";
    QTest::newRow("CR CR LF") << Chunks{"one\r\r\n"} << Lines{"one\r"} << "";
    QTest::newRow("CR LF LF") << Chunks{"one\r\n\n"} << Lines{"one"} << "\n";
    QTest::newRow("CR at the end of a chunk") << Chunks{"one\r", "\ntwo"} << Lines{"one"} << "two";
    QTest::newRow("CR, CR LF in the next") << Chunks{"one\r", "\r\n"} << Lines{"one\r"} << "";
    QTest::newRow("CR, other in the next") << Chunks{"one\r", "two\r\n"} << Lines{"one\rtwo"} << "";
    add_row("CR behind a line", Chunks{"one\r\n\r", "\n\r\n"}, Lines{"one", "", ""}, "");
    QTest::newRow("empty lines") << Chunks{"\r\n\r\n"} << Lines{"", ""} << "";
    QTest::newRow("blanks stay") << Chunks{" \tone \r\n"} << Lines{" \tone "} << "";
}

void KestrometerFramingTest::lines_end_at_cr_lf_and_nowhere_else()
{
    QFETCH(QByteArrayList, chunks);
    QFETCH(QStringList, lines);
    Bench bench;
    for (const QByteArray& chunk : chunks)
        QVERIFY(bench.send(chunk));
    QCOMPARE(bench.log.data(), logged(lines));
    QTEST(bench.instrument->receive_buffer, "rest");
}

void KestrometerFramingTest::a_line_may_be_split_at_every_byte()
{
    const QByteArray bytes = telemetry(31) + "\r\n" + telemetry(32) + "\r\n";
    const QByteArray expected = logged({telemetry(31), telemetry(32)});
    for (int cut = 1; cut < bytes.size(); ++cut) {
        Bench bench;
        QVERIFY(bench.send(bytes.left(cut)));
        QVERIFY(bench.send(bytes.mid(cut)));
        QCOMPARE(bench.log.data(), expected);
        QCOMPARE(bench.instrument->id, 32);
    }
}

void KestrometerFramingTest::a_line_may_come_byte_by_byte()
{
    Bench bench;
    const QByteArray bytes = telemetry(31) + "\r\n";
    for (const char byte : bytes) {
        QCOMPARE(bench.instrument->id, -1);
        QVERIFY(bench.send(QByteArray(1, byte)));
    }
    QCOMPARE(bench.instrument->id, 31);
    QCOMPARE(bench.log.data(), logged({telemetry(31)}));
}

void KestrometerFramingTest::a_chunk_is_decoded_on_its_own_data()
{
    QTest::addColumn<QByteArrayList>("chunks");
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("rest");
    using Chunks = QByteArrayList;
    using Lines = QStringList;
    const QByteArray nul(1, '\0');
    const QString bad(QChar::ReplacementCharacter);
    QTest::newRow("NUL in a line") << Chunks{"on" + nul + "e\r\n"} << Lines{} << "on";
    QTest::newRow("NUL, then the next chunk")
        << Chunks{"on" + nul + "XX\r\nYY\r\n", "e\r\n"} << Lines{"one"} << "";
    QTest::newRow("NUL behind a line") << Chunks{"one\r\n" + nul + "two\r\n"} << Lines{"one"} << "";
    QTest::newRow("NUL first") << Chunks{nul + "one\r\n", "two\r\n"} << Lines{"two"} << "";
    QTest::newRow("NUL alone") << Chunks{nul, "one\r\n"} << Lines{"one"} << "";
    add_row("NUL between CR and LF", Chunks{"one\r" + nul + "\n", "\n"}, Lines{"one"}, "");
    QTest::newRow("UTF-8") << Chunks{"\xC3\xA9\r\n"} << Lines{QString(QChar(0xE9))} << "";
    QTest::newRow("not UTF-8") << Chunks{"a\xFFz\r\n"} << Lines{"a" + bad + "z"} << "";
    QTest::newRow("character cut in two")
        << Chunks{"a\xC3", "\xA9z\r\n"} << Lines{"a" + bad + bad + "z"} << "";
}

void KestrometerFramingTest::a_chunk_is_decoded_on_its_own()
{
    lines_end_at_cr_lf_and_nowhere_else();
}

void KestrometerFramingTest::megabytes_without_a_line_end_are_one_line_when_it_comes()
{
    Bench bench;
    const QByteArray babble(3000000, 'x');
    QVERIFY(bench.send(babble));
    QCOMPARE(bench.instrument->receive_buffer.size(), babble.size());
    QVERIFY(bench.instrument->last_data_time.isNull());
    QVERIFY(bench.send("\r\n" + telemetry(31) + "\r\n"));
    QCOMPARE(bench.log.data(), logged({babble, telemetry(31)}));
    QCOMPARE(bench.instrument->id, 31);
    QVERIFY(bench.instrument->receive_buffer.isEmpty());
}

void KestrometerFramingTest::a_burst_of_many_lines_is_parsed_in_order()
{
    constexpr int COUNT = 20000;
    Bench bench;
    QByteArray burst;
    QStringList expected;
    for (int id = 0; id < COUNT; ++id) {
        burst += telemetry(id) + "\r\n";
        expected.append(telemetry(id));
    }
    QVERIFY(bench.send(burst));
    QCOMPARE(bench.log.data(), logged(expected));
}

void KestrometerFramingTest::lines_of_a_burst_keep_their_order_under_a_nested_event_loop()
{
    Bench bench;
    QList<int> ids;
    connect(bench.instrument.get(), &Kestrometer::sig_measurement, [&] {
        ids.append(bench.instrument->id);
        // As a box would that a listener opens: more telemetry comes while the burst is being cut.
        if (ids.size() == 1)
            QVERIFY(bench.send(telemetry(4) + "\r\n" + telemetry(5) + "\r\n" + telemetry(6)));
    });
    QVERIFY(bench.send(telemetry(1) + "\r\n" + telemetry(2) + "\r\n" + telemetry(3) + "\r\n"));
    QVERIFY(bench.send("\r\n"));
    QCOMPARE(ids, (QList<int>{1, 2, 3, 4, 5, 6}));
    QCOMPARE(bench.log.data(), logged({telemetry(1), telemetry(2), telemetry(3), telemetry(4),
                                       telemetry(5), telemetry(6)}));
    QVERIFY(bench.instrument->receive_buffer.isEmpty());
}

void KestrometerFramingTest::telemetry_goes_on_while_a_listener_waits_for_it()
{
    Bench bench;
    QList<int> ids;
    connect(bench.instrument.get(), &Kestrometer::sig_measurement, [&] {
        ids.append(bench.instrument->id);
        // Boxes on boxes: every line but the last opens one more.
        if (ids.size() < 4)
            QVERIFY(bench.send(telemetry(ids.size() + 1) + "\r\n"));
    });
    QVERIFY(bench.send(telemetry(1) + "\r\n"));
    QCOMPARE(ids, (QList<int>{1, 2, 3, 4}));
    QCOMPARE(bench.log.data(), logged({telemetry(1), telemetry(2), telemetry(3), telemetry(4)}));
}

void KestrometerFramingTest::a_listener_may_delete_the_object_data()
{
    QTest::addColumn<bool>("at_id_change");
    QTest::newRow("at sig_id_change") << true;
    QTest::newRow("at sig_measurement") << false;
}

void KestrometerFramingTest::a_listener_may_delete_the_object()
{
    QFETCH(bool, at_id_change);
    Bench bench;
    bench.instrument->set_state(Charging);
    int calls = 0;
    const auto signal = at_id_change ? &Kestrometer::sig_id_change : &Kestrometer::sig_measurement;
    connect(bench.instrument.get(), signal, [&] {
        ++calls;
        bench.instrument.reset();
    });
    QVERIFY(bench.send(telemetry(1) + "\r\n" + telemetry(2) + "\r\n"));
    QCOMPARE(calls, 1);
    QCOMPARE(bench.log.data(), "2020-04-03 09:15:00 43\n" + logged({telemetry(1)}));
    QVERIFY(Kestrometer(bench.wire.port_name()).port.isOpen());
}

KEST_GUILESS_TEST(KestrometerFramingTest)
#include "tst_kestrometer_framing.moc"
