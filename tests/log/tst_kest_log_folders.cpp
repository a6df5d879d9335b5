#include "program_run.h"
#include "support/ordinary_user.h"
#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QJsonArray>
#include <QtTest>

#include <cstdio>

/** Folders and the names in them, which may hold anything. */
class KestLogFoldersTest : public QObject
{
    Q_OBJECT

private slots:
    void folders_are_read_below_only_when_asked();
    void files_that_are_no_logs_are_passed_over();
    void a_name_that_is_no_text_is_told();
    void a_folder_that_cannot_be_read_is_told();
    void names_show_nothing_that_a_terminal_obeys_data();
    void names_show_nothing_that_a_terminal_obeys();
};

namespace
{
QByteArray sample()
{
    return content_of(test_data("logs/current_one_cycle.csv"));
}

/** "a.csv sub/b.csv": the files that a check of these words reads. */
QString checked(const Place& place, const QStringList& words)
{
    QStringList names;
    const QJsonObject document = place.run(QStringList{"check", "--json"} + words).json();
    for (const QJsonValue file : document["files"].toArray())
        names << file.toObject()["file"].toString();
    return names.join(' ');
}
}  // namespace

void KestLogFoldersTest::folders_are_read_below_only_when_asked()
{
    const Place place;
    QVERIFY(QDir(place.path(".")).mkpath("below/further"));
    place.write("b.csv", sample());
    place.write("a.CSV", sample());
    place.write("below/c.csv", sample());
    place.write("below/further/d.csv", sample());
    QCOMPARE(checked(place, {"."}), QString("./a.CSV ./b.csv"));
    QCOMPARE(checked(place, {"-r", "."}),
             QString("./a.CSV ./b.csv ./below/c.csv ./below/further/d.csv"));
    QCOMPARE(checked(place, {"below/*.csv"}), QString("below/c.csv"));
    QCOMPARE(checked(place, {"below/", "b.csv", "b.csv"}), QString("below/c.csv b.csv"));
    QCOMPARE(place.run({"check", "*.log"}).complaints,
             QString("kest-log: *.log means no log at all.\n"));
}

void KestLogFoldersTest::files_that_are_no_logs_are_passed_over()
{
    const Place place;
    for (const char* folder : {"folder.csv", ".hidden"})
        QVERIFY(QDir(place.path(".")).mkdir(folder));
    place.write("a.csv", sample());
    for (const char* other : {"a.tidy.csv", "a.bdf.csv", ".a.csv", "a.txt", ".hidden/b.csv"})
        place.write(other, sample());
    QVERIFY(QFile::link(".", place.path("round")));
    QCOMPARE(checked(place, {"-r", "."}), QString("./a.csv"));
}

/** The toolkit would leave it out in silence, and a bad log with it. */
void KestLogFoldersTest::a_name_that_is_no_text_is_told()
{
    const Place place;
    place.write("a.csv", sample());
    const QByteArray name = QFile::encodeName(place.path("b")) + "\xe4.csv";
    FILE* const file = std::fopen(name.constData(), "w");
    QVERIFY(file != nullptr);
    std::fclose(file);
    const Run run = place.run({"check", "--json", "."});
    QCOMPARE(run.complaints, QString("kest-log: ./b%1.csv has a name that is no text; rename it.\n")
                                 .arg(QChar(QChar::ReplacementCharacter)));
    QCOMPARE(run.status, 1);
    QCOMPARE(run.json()["files"].toArray().size(), 1);
}

void KestLogFoldersTest::a_folder_that_cannot_be_read_is_told()
{
    const OrdinaryUser user;
    QVERIFY(user.active());
    const Place place;
    place.write("a.csv", sample());
    QVERIFY(QDir(place.path(".")).mkdir("locked"));
    QVERIFY(QFile::setPermissions(place.path("locked"), QFile::ExeOwner));
    const QString said = "kest-log: %1 cannot be read: Permission denied.\n";
    QCOMPARE(place.run({"check", "-r", "."}).complaints, said.arg("./locked"));
    QCOMPARE(place.run({"info", "locked"}).complaints, said.arg("locked"));
}

void KestLogFoldersTest::names_show_nothing_that_a_terminal_obeys_data()
{
    QTest::addColumn<QStringList>("command");
    for (const char* command : {"info", "check", "repair"})
        QTest::newRow(command) << QStringList{command};
    for (const char* format : {"csv", "json", "bdf", "xlsx"})
        QTest::newRow(format) << QStringList{"export", "--zone", "UTC", "-f", format};
}

void KestLogFoldersTest::names_show_nothing_that_a_terminal_obeys()
{
    QFETCH(QStringList, command);
    const Place place;
    for (const char* name : {"a\x1b[31m\n.csv", "b\x1b[31m\n.csv", "c\x1b[31m\n.csv"})
        place.write(name, sample().replace("Pack A", "Pack \x1b[31m"));
    place.write("b\x1b[31m\n.csv", sample() + "cut");
    place.write("c\x1b[31m\n.txt",
                "2020-04-03 10:00:02 Switching to phase \x1b[31m because \x1b[31m.\n");
    for (const QStringList& words :
         {QStringList{"."}, QStringList{"c\x1b[31m\n.csv"}, QStringList{"none\x1b[31m\n.csv"}}) {
        const Run run = place.run(command + words);
        const QString told = run.output + run.complaints;
        QVERIFY(!told.isEmpty());
        QVERIFY(!told.contains('\x1b'));
        for (const QString& line : told.split('\n'))
            QVERIFY2(!line.startsWith(".csv"), qPrintable(told));
    }
}

KEST_GUILESS_TEST(KestLogFoldersTest)
#include "tst_kest_log_folders.moc"
