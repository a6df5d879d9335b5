#include "support/test_files.h"
#include "support/test_program.h"
#include "watch/tells/event_text.h"
#include "watch/tells/memory_file.h"
#include "watch/tells/postman.h"
#include "watch_events.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

/** The letters' way out of the memory, and the memory on disk. */
class WatchPostmanTest : public QObject
{
    Q_OBJECT

private slots:
    void letters_go_one_by_one_in_their_order();
    void a_letter_that_does_not_arrive_is_tried_again();
    void a_refused_letter_is_told_and_given_up();
    void a_slow_way_holds_up_no_other();
    void news_are_not_kept_waiting();
    void too_many_letters_give_way_the_urgent_last();
    void too_long_letters_give_way();
    void letters_of_a_way_that_is_gone_are_dropped();
    void the_memory_is_read_as_it_was_written();
    void a_damaged_memory_is_put_aside_data();
    void a_damaged_memory_is_put_aside();
    void a_full_disk_leaves_the_old_memory();
    void a_folder_that_cannot_be_is_told();
};

namespace
{
constexpr int PATIENCE_MS = 60000;
const Patience AT_ONCE = {1, 1};

/** A way of the test, which answers when it is told to. */
struct TestWay
{
    Way way(const QString& name, int most = 100)
    {
        return {name, most, [this](const Event& event, const Answer& answer) {
                    sent << int(event.number);
                    if (answers.isEmpty())
                        waiting << answer;
                    else
                        answer(answers.takeFirst(), "REASON");
                }};
    }

    QList<int> sent;         ///< numbers of events
    QList<Arrival> answers;  ///< given at once; without one the sender has to wait
    QList<Answer> waiting;
};

Event numbered(int number, Condition condition = Condition::Done)
{
    Event event = event_of_condition(condition);
    event.number = number;
    return event;
}

QList<Event> numbered_events(const QList<int>& numbers)
{
    QList<Event> events;
    for (const int number : numbers)
        events << numbered(number);
    return events;
}

QList<int> waiting_in(const Memory& memory)
{
    QList<int> numbers;
    for (const Letter& letter : memory.letters)
        numbers << int(letter.event.number);
    return numbers;
}

bool comes_true(const std::function<bool()>& state)
{
    return QTest::qWaitFor(state, PATIENCE_MS);
}

/** No file may grow beyond so many bytes as long as this lives. */
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit = {bytes, before.rlim_max};
        old_handler = ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &before);
        ::signal(SIGXFSZ, old_handler);
    }

private:
    rlimit before = {};
    void (*old_handler)(int) = nullptr;
};
}  // namespace

void WatchPostmanTest::letters_go_one_by_one_in_their_order()
{
    Memory memory;
    TestWay way;
    Postman postman(memory, {way.way("A")}, AT_ONCE);
    QSignalSpy delivered(&postman, &Postman::sig_delivered);
    postman.take(numbered_events({1, 2, 3}));
    QCOMPARE(waiting_in(memory), QList<int>({1, 2, 3}));
    postman.deliver();
    postman.deliver();
    QCOMPARE(way.sent, QList<int>({1}));
    way.waiting.takeFirst()(Arrival::Arrived, {});
    QCOMPARE(waiting_in(memory), QList<int>({2, 3}));
    way.answers = {Arrival::Arrived, Arrival::Arrived};
    QVERIFY(comes_true([&] { return postman.is_done(); }));
    QCOMPARE(way.sent, QList<int>({1, 2, 3}));
    QCOMPARE(delivered.size(), 3);
}

void WatchPostmanTest::a_letter_that_does_not_arrive_is_tried_again()
{
    Memory memory;
    TestWay way;
    way.answers = {Arrival::Later, Arrival::Later, Arrival::Arrived, Arrival::Later,
                   Arrival::Arrived};
    Postman postman(memory, {way.way("A")}, AT_ONCE);
    QSignalSpy trouble(&postman, &Postman::sig_trouble);
    postman.take(numbered_events({1, 2}));
    postman.deliver();
    QVERIFY(comes_true([&] { return postman.is_done(); }));
    QCOMPARE(way.sent, QList<int>({1, 1, 1, 2, 2}));
    QCOMPARE(trouble.size(), 2);
    QCOMPARE(trouble[0][0].toString(), QString("A: REASON. It is tried again."));
}

void WatchPostmanTest::a_refused_letter_is_told_and_given_up()
{
    Memory memory;
    TestWay way;
    way.answers = {Arrival::Refused};
    Postman postman(memory, {way.way("A")}, AT_ONCE);
    QSignalSpy trouble(&postman, &Postman::sig_trouble);
    postman.take(numbered_events({1}));
    postman.deliver();
    QVERIFY(postman.is_done());
    QCOMPARE(trouble.size(), 1);
    QCOMPARE(trouble[0][0].toString(),
             QString("A: REASON. This message did not arrive: Pack A 1042: is done"));
}

void WatchPostmanTest::a_slow_way_holds_up_no_other()
{
    Memory memory;
    TestWay slow;
    TestWay quick;
    quick.answers = {Arrival::Arrived, Arrival::Arrived};
    Postman postman(memory, {slow.way("A"), quick.way("B")}, AT_ONCE);
    postman.take(numbered_events({1, 2}));
    postman.deliver();
    QVERIFY(comes_true([&] { return quick.sent.size() == 2; }));
    QCOMPARE(waiting_in(memory), QList<int>({1, 2}));
    QCOMPARE(slow.sent, QList<int>({1}));
}

void WatchPostmanTest::news_are_not_kept_waiting()
{
    Memory memory;
    TestWay way;
    way.answers = {Arrival::Later, Arrival::Arrived, Arrival::Arrived};
    const Patience for_ever = {1000000000, 1000000000};
    Postman postman(memory, {way.way("A")}, for_ever);
    postman.take(numbered_events({1}));
    postman.deliver();
    postman.take(numbered_events({2}));
    postman.deliver();
    QVERIFY(comes_true([&] { return postman.is_done(); }));
    QCOMPARE(way.sent, QList<int>({1, 1, 2}));
}

void WatchPostmanTest::too_many_letters_give_way_the_urgent_last()
{
    Memory memory;
    TestWay way;
    Postman postman(memory, {way.way("A", 3)}, AT_ONCE);
    QSignalSpy trouble(&postman, &Postman::sig_trouble);
    postman.take({numbered(1)});
    postman.deliver();
    postman.take({numbered(2, Condition::DiskFull), numbered(3), numbered(4)});
    QCOMPARE(waiting_in(memory), QList<int>({1, 2, 3, 4}));
    postman.take({numbered(5)});
    // The first is in hand, and not among those that wait.
    QCOMPARE(waiting_in(memory), QList<int>({1, 2, 4, 5}));
    postman.take({numbered(6, Condition::DiskFull), numbered(7, Condition::DiskFull),
                  numbered(8, Condition::DiskFull)});
    QCOMPARE(waiting_in(memory), QList<int>({1, 6, 7, 8}));
    QCOMPARE(trouble.size(), 2);
    QCOMPARE(trouble[1][0].toString(), QString("A: too many messages wait; 3 were given up."));
}

void WatchPostmanTest::too_long_letters_give_way()
{
    Memory memory;
    TestWay way;
    Postman postman(memory, {way.way("A", 1000)}, AT_ONCE);
    Event event = numbered(1);
    event.situation.facts.battery = QString(100000, 'x');
    for (event.number = 1; event.number <= 5; ++event.number)
        postman.take({event});
    QCOMPARE(waiting_in(memory), QList<int>({4, 5}));
    // One that is too long by itself is not lost for that.
    event.situation.facts.battery = QString(1000000, 'x');
    postman.take({event});
    QCOMPARE(waiting_in(memory), QList<int>({6}));
}

void WatchPostmanTest::letters_of_a_way_that_is_gone_are_dropped()
{
    Memory memory;
    memory.letters = {{numbered(1), "A"}, {numbered(1), "B"}, {numbered(2), "A"}};
    TestWay way;
    way.answers = {Arrival::Arrived, Arrival::Arrived};
    Postman postman(memory, {way.way("A")}, AT_ONCE);
    postman.deliver();
    QVERIFY(comes_true([&] { return postman.is_done(); }));
    QCOMPARE(way.sent, QList<int>({1, 2}));
}

void WatchPostmanTest::the_memory_is_read_as_it_was_written()
{
    const QTemporaryDir folder;
    Memory memory;
    bool changed = false;
    QList<Situation> situations;
    for (const HostileName& hostile : hostile_names())
        situations << event_named(hostile.name).situation;
    for (int i = 0; i < situations.size(); ++i)
        situations[i].log += QByteArray::number(i);
    const QDateTime now(QDate(2026, 11, 22), QTime(5, 19), Qt::UTC);
    const QList<Event> events = take_look(memory, situations, now, TellRules(), changed);
    QCOMPARE(events.size(), situations.size());
    for (const Event& event : events)
        memory.letters << Letter{event, "mail anna@example.org"};

    MemoryFile file(folder.filePath("state"));
    QVERIFY(file.lock() == Lock::Taken);
    QVERIFY2(file.save(memory), qPrintable(file.error()));
    QCOMPARE(memory_document(file.load()), memory_document(memory));
    QCOMPARE(file.error(), QString());
    QCOMPARE(QDir(folder.filePath("state")).entryList(QDir::Files | QDir::Hidden),
             QStringList({"lock", "memory.json"}));
    QCOMPARE(QFileInfo(folder.filePath("state")).permissions() & 0x77, QFile::Permissions());
}

void WatchPostmanTest::a_damaged_memory_is_put_aside_data()
{
    QTest::addColumn<QByteArray>("content");
    add_row("empty", QByteArray());
    add_row("cut", QByteArray("{\"version\": 1, \"noted\": ["));
    add_row("another form", QByteArray("{\"version\": 2}"));
    add_row("not JSON", QByteArray("\xFF\xFE\0\0", 4));
}

void WatchPostmanTest::a_damaged_memory_is_put_aside()
{
    QFETCH(QByteArray, content);
    const QTemporaryDir folder;
    MemoryFile file(folder.path());
    QVERIFY(write_file(file.path(), content));
    const Memory memory = file.load();
    QVERIFY(!memory.born.isValid());
    QVERIFY(file.error().startsWith(file.path() + " cannot be understood"));
    QCOMPARE(content_of(file.path() + ".damaged"), content);
    QVERIFY(file.save(memory));
    file.load();
    QCOMPARE(file.error(), QString());
}

void WatchPostmanTest::a_full_disk_leaves_the_old_memory()
{
    const QTemporaryDir folder;
    MemoryFile file(folder.path());
    Memory memory;
    memory.born = QDateTime(QDate(2026, 11, 22), QTime(5, 19), Qt::UTC);
    QVERIFY(file.save(memory));
    const QByteArray before = content_of(file.path());
    memory.letters << Letter{event_named(QString(4096, 'x')), "mail anna@example.org"};
    bool saved = true;
    {
        const FullDisk disk(1024);
        saved = file.save(memory);
    }
    QVERIFY(!saved);
    QVERIFY2(file.error().startsWith(file.path() + " cannot be written: "),
             qPrintable(file.error()));
    QCOMPARE(content_of(file.path()), before);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("memory.json"));
    QVERIFY(file.save(memory));
    QCOMPARE(memory_document(file.load()), memory_document(memory));
}

void WatchPostmanTest::a_folder_that_cannot_be_is_told()
{
    MemoryFile nowhere("/proc/nowhere");
    QVERIFY(nowhere.lock() == Lock::Impossible);
    QVERIFY(nowhere.error().startsWith("/proc/nowhere cannot be written"));
}

KEST_GUILESS_TEST(WatchPostmanTest)
#include "tst_watch_postman.moc"
