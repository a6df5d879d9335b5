#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QtTest>

namespace
{
constexpr int PATIENCE_MS = 60000;

/** Where the programs of this build are, by name. */
QMap<QString, QString> programs()
{
    QMap<QString, QString> paths;
    for (const QString& program : QString(KEST_PROGRAMS).split('|'))
        paths[program.section('=', 0, 0)] = program.section('=', 1);
    return paths;
}

QString words_of(const QString& path, const QString& argument)
{
    QProcess process;
    process.start(path, {argument});
    if (!process.waitForFinished(PATIENCE_MS) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        return "(failed)";
    return QString::fromUtf8(process.readAllStandardOutput());
}

QString page_of(const QString& program)
{
    return QString::fromUtf8(content_of(source_file("docs/man/" + program + ".1")));
}

/** The long options that the expression finds, but the one that Qt adds by itself. */
QStringList options_in(const QString& text, const char* expression)
{
    QSet<QString> options;
    auto found =
        QRegularExpression(expression, QRegularExpression::MultilineOption).globalMatch(text);
    while (found.hasNext())
        options << found.next().captured(1);
    options.remove("help-all");
    QStringList sorted = options.values();
    sorted.sort();
    return sorted;
}

const char* const IN_HELP = "^  (?:-\\w, )?--([a-z-]+)";
}  // namespace

/** What is told of each program outside of it: its manual page and its completion. */
class ManualPagesTest : public QObject
{
    Q_OBJECT

private slots:
    void each_program_has_a_page_and_the_application_too();
    void page_and_help_have_the_same_options_data();
    void page_and_help_have_the_same_options();
    void the_completion_has_every_option_data();
    void the_completion_has_every_option();
    void each_tells_its_version_data();
    void each_tells_its_version();
};

namespace
{
void a_row_for_each_program()
{
    QTest::addColumn<QString>("path");
    const QMap<QString, QString> all = programs();
    for (auto program = all.begin(); program != all.end(); ++program)
        QTest::newRow(qPrintable(program.key())) << program.value();
}
}  // namespace

void ManualPagesTest::each_program_has_a_page_and_the_application_too()
{
    const QStringList pages = QDir(source_file("docs/man")).entryList({"*.1"}, QDir::Files);
    const QStringList all = QStringList(programs().keys()) << "kest-battery-tester";
    for (const QString& program : all) {
        QVERIFY2(pages.contains(program + ".1"), qPrintable(program));
        const QString words = page_of(program).remove('\\');
        QVERIFY2(words.contains("\n" + program + " - "), qPrintable(program));
    }
    // The application has no options.
    QCOMPARE(options_in(page_of("kest-battery-tester"), "\\\\-\\\\-([a-z\\\\-]+)"), QStringList());
}

void ManualPagesTest::page_and_help_have_the_same_options_data()
{
    a_row_for_each_program();
}

void ManualPagesTest::page_and_help_have_the_same_options()
{
    QFETCH(QString, path);
    const QStringList options = options_in(words_of(path, "--help"), IN_HELP);
    QVERIFY(options.contains("help"));
    const QString section = page_of(QTest::currentDataTag()).section(".SH OPTIONS\n", 1);
    const QString page = section.section("\n.SH ", 0, 0).remove('\\');
    QCOMPARE(options_in(page, "^\\.[BIR]+ .*?--([a-z-]+)"), options);
}

void ManualPagesTest::the_completion_has_every_option_data()
{
    a_row_for_each_program();
}

void ManualPagesTest::the_completion_has_every_option()
{
    QFETCH(QString, path);
    const QString program = QTest::currentDataTag();
    const QString completion =
        QString::fromUtf8(content_of(source_file("packaging/completion/" + program)));
    const QStringList completed = options_in(completion, "--([a-z-]+)");
    for (const QString& option : options_in(words_of(path, "--help"), IN_HELP))
        QVERIFY2(completed.contains(option), qPrintable(option));
}

void ManualPagesTest::each_tells_its_version_data()
{
    a_row_for_each_program();
}

void ManualPagesTest::each_tells_its_version()
{
    QFETCH(QString, path);
    const QString changes = QString::fromUtf8(content_of(source_file("debian/changelog")));
    const QString version = changes.section('(', 1).section(')', 0, 0);
    QCOMPARE(words_of(path, "--version"), QString("%1 %2\n").arg(QTest::currentDataTag(), version));
}

KEST_GUILESS_TEST(ManualPagesTest)
#include "tst_manual_pages.moc"
