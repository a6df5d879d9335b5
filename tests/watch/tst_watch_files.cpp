#include "support/test_files.h"
#include "support/test_program.h"
#include "watch/file_tail.h"
#include "watch/log_folder.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

/** What is added to files, and what comes and goes in a folder. */
class WatchFilesTest : public QObject
{
    Q_OBJECT

private slots:
    void what_is_added_is_read_once();
    void a_file_that_is_another_is_read_from_its_start_data();
    void a_file_that_is_another_is_read_from_its_start();
    void a_file_is_the_same_under_another_name();
    void reading_leaves_no_trace();
    void a_large_file_comes_in_pieces();
    void logs_come_grow_and_go_data();
    void logs_come_grow_and_go();
    void a_folder_may_go_and_come_back_data();
    void a_folder_may_go_and_come_back();
    void names_of_any_bytes_are_found();
};

namespace
{
/** What a tail hands out: "[" stands for each new begin. */
class Reader
{
public:
    explicit Reader(const QString& path) : tail(QFile::encodeName(path))
    {
    }

    QByteArray look()
    {
        QByteArray read;
        tail.look([&read] { read += '['; }, [&read](const QByteArray& piece) { read += piece; });
        return read;
    }

    FileTail tail;
};

void append(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::Append));
    file.write(bytes);
}

QStringList names(const LogFolder& folder)
{
    QStringList found;
    for (const QByteArray& path : folder.logs.keys())
        found << QFile::decodeName(path).section('/', -1);
    found.sort();
    return found;
}

void add_with_and_without_notices()
{
    QTest::addColumn<bool>("on_network");
    QTest::newRow("by notices") << false;
    QTest::newRow("by looking") << true;
}
}  // namespace

void WatchFilesTest::what_is_added_is_read_once()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.csv");
    Reader reader(path);
    QCOMPARE(reader.look(), QByteArray());
    append(path, "one\ntw");
    QCOMPARE(reader.look(), QByteArray("[one\ntw"));
    QCOMPARE(reader.look(), QByteArray());
    append(path, "o\n");
    QCOMPARE(reader.look(), QByteArray("o\n"));
}

void WatchFilesTest::a_file_that_is_another_is_read_from_its_start_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("in_place");
    for (const bool in_place : {true, false}) {
        const char* const how = in_place ? "in place" : "replaced";
        QTest::addRow("shorter, %s", how) << QByteArray("one\n") << in_place;
        QTest::addRow("other, %s", how) << QByteArray("one\nsix\n") << in_place;
        QTest::addRow("longer, %s", how) << QByteArray("one\nsix\nand more\n") << in_place;
        QTest::addRow("empty, %s", how) << QByteArray() << in_place;
    }
    QTest::newRow("the same again, replaced") << QByteArray("one\ntwo\n") << false;
}

void WatchFilesTest::a_file_that_is_another_is_read_from_its_start()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, in_place);
    const QTemporaryDir folder;
    const QString path = folder.filePath("a.csv");
    append(path, "one\ntwo\n");
    Reader reader(path);
    reader.look();
    const QString written = in_place ? path : folder.filePath("b");
    QVERIFY(write_file(written, content));
    if (!in_place)
        QVERIFY(::rename(qPrintable(written), qPrintable(path)) == 0);
    QCOMPARE(reader.look(), "[" + content);
    append(path, "end\n");
    QCOMPARE(reader.look(), QByteArray("end\n"));
}

void WatchFilesTest::a_file_is_the_same_under_another_name()
{
    const QTemporaryDir folder;
    append(folder.filePath("a.csv"), "one\n");
    Reader reader(folder.filePath("a.csv"));
    reader.look();
    QVERIFY(QFile::rename(folder.filePath("a.csv"), folder.filePath("b.csv")));
    append(folder.filePath("b.csv"), "two\n");
    QCOMPARE(reader.look(), QByteArray());
    QVERIFY(!reader.tail.state.exists);
    reader.tail.rename(QFile::encodeName(folder.filePath("b.csv")));
    QCOMPARE(reader.look(), QByteArray("two\n"));
    QVERIFY(reader.tail.state.exists);
}

void WatchFilesTest::reading_leaves_no_trace()
{
    const QTemporaryDir folder;
    append(folder.filePath("a.csv"), "one\n");
    const qint64 before = state_of_file(QFile::encodeName(folder.filePath("a.csv"))).accessed_ns;
    Reader reader(folder.filePath("a.csv"));
    QCOMPARE(reader.look(), QByteArray("[one\n"));
    QCOMPARE(state_of_file(QFile::encodeName(folder.filePath("a.csv"))).accessed_ns, before);
}

void WatchFilesTest::a_large_file_comes_in_pieces()
{
    const QTemporaryDir folder;
    const QByteArray content(300000, 'x');
    append(folder.filePath("a.csv"), content);
    FileTail tail(QFile::encodeName(folder.filePath("a.csv")));
    int longest = 0;
    int size = 0;
    tail.look([] {},
              [&](const QByteArray& piece) {
                  longest = qMax(longest, piece.size());
                  size += piece.size();
              });
    QCOMPARE(size, content.size());
    QVERIFY(longest <= 65536);
}

void WatchFilesTest::logs_come_grow_and_go_data()
{
    add_with_and_without_notices();
}

void WatchFilesTest::logs_come_grow_and_go()
{
    QFETCH(bool, on_network);
    const QTemporaryDir place;
    append(place.filePath("old.csv"), "1\n");
    append(place.filePath("old.txt"), "1\n");
    LogFolder folder(QFile::encodeName(place.path()), on_network);
    folder.look();
    QCOMPARE(names(folder), QStringList({"old.csv"}));
    QVERIFY(folder.grown.isEmpty());
    append(place.filePath("new.csv"), "1\n");
    append(place.filePath("old.csv"), "2\n");
    folder.look();
    QCOMPARE(names(folder), QStringList({"new.csv", "old.csv"}));
    QCOMPARE(folder.grown, QSet<QByteArray>{QFile::encodeName(place.filePath("old.csv"))});
    const FileIdentity file =
        folder.logs.value(QFile::encodeName(place.filePath("new.csv"))).identity;
    QVERIFY(QFile::rename(place.filePath("new.csv"), place.filePath("other.csv")));
    QVERIFY(QFile::remove(place.filePath("old.csv")));
    folder.look();
    QCOMPARE(names(folder), QStringList({"other.csv"}));
    QCOMPARE(folder.path_of(file), QFile::encodeName(place.filePath("other.csv")));
    QVERIFY(folder.grown.isEmpty());
}

void WatchFilesTest::a_folder_may_go_and_come_back_data()
{
    add_with_and_without_notices();
}

void WatchFilesTest::a_folder_may_go_and_come_back()
{
    QFETCH(bool, on_network);
    const QTemporaryDir place;
    const QString path = place.filePath("above/logs");
    LogFolder folder(QFile::encodeName(path), on_network);
    folder.look();
    QVERIFY(!folder.is_there());
    for (const char* name : {"1.csv", "2.csv"}) {
        QVERIFY(QDir().mkpath(path));
        append(path + "/" + name, "1\n");
        folder.look();
        QCOMPARE(names(folder), QStringList{name});
        QVERIFY(folder.is_there());
        append(path + "/more.csv", "1\n");
        folder.look();
        QCOMPARE(names(folder), QStringList({name, "more.csv"}));
        QVERIFY(QDir(path).removeRecursively());
        folder.look();
        QCOMPARE(names(folder), QStringList());
    }
    QVERIFY(QDir().mkpath(path));
    append(path + "/3.csv", "1\n");
    folder.look();
    folder.look();
    QVERIFY(QDir().rename(place.filePath("above"), place.filePath("elsewhere")));
    folder.look();
    QCOMPARE(names(folder), QStringList());
}

void WatchFilesTest::names_of_any_bytes_are_found()
{
    const QTemporaryDir place;
    const QByteArray path = QFile::encodeName(place.path()) + "/\xff<b>\"\xe2\x80\xa8\n'.csv";
    LogFolder folder(QFile::encodeName(place.path()), false);
    folder.look();
    std::FILE* const file = std::fopen(path.constData(), "w");
    QVERIFY(file != nullptr);
    std::fclose(file);
    folder.look();
    QCOMPARE(folder.logs.keys(), QList<QByteArray>{path});
}

KEST_GUILESS_TEST(WatchFilesTest)
#include "tst_watch_files.moc"
