#include "guard/guard_options.h"

#include "support/test_files.h"
#include "support/test_program.h"

#include <QProcess>
#include <QRegularExpression>

namespace
{
QString described(const QStringList& arguments)
{
    GuardOptions options;
    QString text;
    switch (read_guard_options(QStringList{"kest-guard"} + arguments, options, text)) {
    case GuardStart::Refuse:
        return "refused: " + text;
    case GuardStart::Tell:
        return "told";
    case GuardStart::Run:
        break;
    }
    return QString("%1 words, frozen %2%3%4%5, ports [%6], speed %7")
        .arg(options.program_words)
        .arg(options.frozen_seconds)
        .arg(options.kill_frozen ? ", kill" : "", options.off ? ", off" : "",
             options.all ? ", all" : "", options.ports.join(' '))
        .arg(options.speed);
}

QString help()
{
    GuardOptions options;
    QString text;
    read_guard_options({"kest-guard", "--help"}, options, text);
    return text;
}
}  // namespace

class GuardOptionsTest : public QObject
{
    Q_OBJECT

private slots:
    void the_command_line_is_read_data();
    void the_command_line_is_read();
    void manual_and_completion_know_every_option();
    void the_manual_is_well_formed();
    void the_menu_starts_the_program_through_it();
};

void GuardOptionsTest::the_command_line_is_read_data()
{
    QTest::addColumn<QString>("result");
    const auto row = [](const char* arguments, const QString& result) {
        QTest::newRow(arguments) << result;
    };
    row("app", "1 words, frozen 60, ports [], speed 1");
    row("-- app", "1 words, frozen 60, ports [], speed 1");
    row("app --off -- -k --none", "5 words, frozen 60, ports [], speed 1");
    row("-- --odd x", "2 words, frozen 60, ports [], speed 1");
    row("--frozen 5 -k app", "1 words, frozen 5, kill, ports [], speed 1");
    row("--frozen=86400 --kill-frozen --speed 60 -- app x",
        "2 words, frozen 86400, kill, ports [], speed 60");
    row("--off ttyUSB0 /dev/ttyUSB1",
        "0 words, frozen 60, off, ports [ttyUSB0 /dev/ttyUSB1], speed 1");
    row("-o --all", "0 words, frozen 60, off, all, ports [], speed 1");
    row("--version", "told");
    row("-h", "told");
    row("-v app", "told");
    row("", "refused: There is no program to start; --help tells how it is done.");
    row("--kill-frozen --", "refused: There is no program to start; --help tells how it is done.");
    row("--off", "refused: --off needs a port, such as ttyUSB0, or --all.");
    row("--all app", "refused: --all goes with --off only.");
    row("--off --all ttyUSB0", "refused: --off takes ports or --all, not both.");
    row("--off --frozen 5 ttyUSB0",
        "refused: --frozen and --kill-frozen go with a program only, not with --off.");
    row("--off -k ttyUSB0",
        "refused: --frozen and --kill-frozen go with a program only, not with --off.");
    row("--none app", "refused: Unknown option 'none'.");
    row("--frozen", "refused: Missing value after '--frozen'.");
    for (const char* number : {"0", "86401", "1.5", "x", "-1"})
        row(qPrintable(QString("--frozen=%1 app").arg(number)),
            QString("refused: --frozen takes a whole number from 1 to 86400, not \"%1\".")
                .arg(number));
    for (const char* number : {"0.5", "1001", "nan", "x"})
        row(qPrintable(QString("--speed=%1 app").arg(number)),
            QString("refused: --speed takes a number from 1 to 1000, not \"%1\".").arg(number));
}

void GuardOptionsTest::the_command_line_is_read()
{
    const QString line = QTest::currentDataTag();
    QTEST(described(line.split(' ', Qt::SkipEmptyParts)), "result");
}

void GuardOptionsTest::manual_and_completion_know_every_option()
{
    const QString page =
        QString::fromUtf8(content_of(source_file("docs/man/kest-guard.1"))).remove('\\');
    const QString completion =
        QString::fromUtf8(content_of(source_file("packaging/completion/kest-guard")));
    QRegularExpressionMatchIterator options =
        QRegularExpression("^  (?:-\\w, )?(--[a-z-]+)", QRegularExpression::MultilineOption)
            .globalMatch(help());
    int count = 0;
    for (; options.hasNext(); ++count) {
        const QString option = options.next().captured(1);
        QVERIFY2(page.contains(option), qPrintable(option));
        QVERIFY2(completion.contains(option), qPrintable(option));
    }
    QCOMPARE(count, 7);
}

void GuardOptionsTest::the_manual_is_well_formed()
{
    QProcess man;
    man.start("man", {"--warnings", "--local-file", source_file("docs/man/kest-guard.1")});
    QVERIFY(man.waitForFinished(120000));
    QCOMPARE(man.exitCode(), 0);
    QCOMPARE(man.readAllStandardError(), QByteArray());
}

void GuardOptionsTest::the_menu_starts_the_program_through_it()
{
    QVERIFY(content_of(source_file("packaging/kest-battery-tester.desktop"))
                .contains(" kest-guard kest-battery-tester\n"));
}

KEST_GUILESS_TEST(GuardOptionsTest)
#include "tst_guard_options.moc"
