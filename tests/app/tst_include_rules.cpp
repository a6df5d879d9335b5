#include "support/test_files.h"
#include "support/test_program.h"

#include <QDir>
#include <QDirIterator>
#include <QRegularExpression>
#include <QtTest>

namespace
{
/** What a folder may include besides itself, by folder. */
const QMap<QString, QStringList> MAY_INCLUDE = {
    {"common", {}},
    {"charts", {"common"}},
    {"device", {"common"}},
    {"config", {"common"}},
    {"report", {"common", "charts"}},
    {"station", {"common", "charts", "device", "config", "report", "dialogs"}},
    {"dialogs", {"common", "charts", "device", "config", "report", "station"}},
    {"records", {"common", "station/logs"}},
    {"programs",
     {"common", "charts", "device", "config", "report", "records", "station/logs",
      "programs/common"}},
    {"app", {"common", "charts", "device", "config", "report", "station", "dialogs"}},
};

/** Files that may be longer than their kind, with the reason, and the number of their lines. */
const QMap<QString, int> LONGER_FILES = {
    {"station/test_station.h", 260},  // the floor plan of a class in several rooms
};
constexpr int LONGEST_SOURCE = 399;
constexpr int LONGEST_HEADER = 149;

const QDir ROOT(source_file("."));

QString contents(const QString& path)
{
    QFile file(ROOT.filePath(path));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/** The files of all folders with the ending, "common/text.h" for one, in the order of the names. */
QStringList product_files(const QString& ending)
{
    QStringList files;
    for (const QString& folder : MAY_INCLUDE.keys()) {
        QDirIterator names(ROOT.filePath(folder), {"*" + ending}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (names.hasNext())
            files << ROOT.relativeFilePath(names.next());
    }
    files.sort();
    return files;
}

void add_file_rows(const QStringList& endings)
{
    QTest::addColumn<QString>("path");
    for (const QString& ending : endings)
        for (const QString& path : product_files(ending))
            QTest::newRow(qPrintable(path)) << path;
}

/**
 * What a source includes by quotes, and by brackets if it is ours; of a form the headers of its
 * custom widgets.
 */
QStringList includes_in(const QString& text)
{
    static const QString pattern =
        QString("^[ \\t]*#[ \\t]*include[ \\t]*(?:\"([^\"\\n]+)\"|<((?:%1)/[^>\\n]+)>)"
                "|<header[^>]*>([^<]+)</header>");
    static const QRegularExpression include(pattern.arg(MAY_INCLUDE.keys().join('|')),
                                            QRegularExpression::MultilineOption);
    QStringList names;
    QRegularExpressionMatchIterator matches = include.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        names << match.captured(match.lastCapturedIndex());
    }
    return names;
}

/** "station" for a room of it, too; "programs/doctor" as each program is at home in its own folder. */
QString folder_of(const QString& path)
{
    return path.section('/', 0, path.startsWith("programs/") ? 1 : 0);
}

/** Whether a file of the folder may include the name: "common/text.h", or "ui_about.h" at home. */
bool may_include(const QString& folder, const QString& name)
{
    static const QRegularExpression form_header("^ui_(\\w+)\\.h$");
    const QRegularExpressionMatch form = form_header.match(name);
    if (form.hasMatch())
        return ROOT.exists(folder + "/" + form.captured(1) + ".ui");

    const QString included_folder = name.section('/', 0, 0);
    const QStringList& others = MAY_INCLUDE[folder.section('/', 0, 0)];
    return included_folder == folder.section('/', -1) || others.contains(included_folder) ||
           others.contains(name.section('/', 0, 1));
}

/** The files that a list of sources names, by folder path. */
QStringList listed_files(const QString& folder)
{
    static const QRegularExpression name("[\\w./]+\\.(?:h|cpp)\\b");
    QStringList files;
    QRegularExpressionMatchIterator matches = name.globalMatch(
        contents(folder + "/CMakeLists.txt").section("kest_logs", 1).section(')', 0, 0));
    while (matches.hasNext())
        files << QDir::cleanPath(folder + "/" + matches.next().captured());
    return files;
}

QStringList forbidden_includes(const QString& folder, const QString& text)
{
    QStringList forbidden;
    for (const QString& name : includes_in(text))
        if (!may_include(folder, name))
            forbidden << name;
    return forbidden;
}
}  // namespace

class IncludeRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void a_file_includes_only_what_its_folder_may_data();
    void a_file_includes_only_what_its_folder_may();
    void a_header_begins_with_pragma_once_data();
    void a_header_begins_with_pragma_once();
    void a_file_is_short_data();
    void a_file_is_short();
    void every_folder_is_read();
    void an_include_is_judged_by_its_folder_data();
    void an_include_is_judged_by_its_folder();
    void nobody_includes_app();
    void nobody_includes_a_program();
    void the_readers_of_logs_stand_on_themselves();
};

void IncludeRulesTest::a_file_includes_only_what_its_folder_may_data()
{
    add_file_rows({".h", ".cpp", ".ui"});
}

void IncludeRulesTest::a_file_includes_only_what_its_folder_may()
{
    QFETCH(QString, path);
    const QStringList forbidden = forbidden_includes(folder_of(path), contents(path));
    QCOMPARE(forbidden.join(", "), QString());
}

void IncludeRulesTest::a_header_begins_with_pragma_once_data()
{
    add_file_rows({".h"});
}

void IncludeRulesTest::a_header_begins_with_pragma_once()
{
    QFETCH(QString, path);
    QCOMPARE(contents(path).section('\n', 0, 0), QString("#pragma once"));
}

void IncludeRulesTest::a_file_is_short_data()
{
    add_file_rows({".h", ".cpp"});
}

void IncludeRulesTest::a_file_is_short()
{
    QFETCH(QString, path);
    const int kind_limit = path.endsWith(".h") ? LONGEST_HEADER : LONGEST_SOURCE;
    const int limit = LONGER_FILES.value(path, kind_limit);
    const int lines = contents(path).count('\n');
    QVERIFY2(lines <= limit,
             qPrintable(QString("%1 lines, %2 are the most").arg(lines).arg(limit)));
}

void IncludeRulesTest::every_folder_is_read()
{
    for (const QString& folder : MAY_INCLUDE.keys())
        QVERIFY2(ROOT.exists(folder), qPrintable(folder));
    QVERIFY(product_files(".cpp").contains("app/main.cpp"));
    QVERIFY(product_files(".h").contains("common/parse_int.h"));
}

void IncludeRulesTest::an_include_is_judged_by_its_folder_data()
{
    add_columns<QString>({"folder", "text"});
    QTest::addColumn<QStringList>("forbidden");

    const QStringList none;
    add_row("own folder", "charts", "#include \"charts/axis.h\"\n", none);
    add_row("helper", "charts", "#include \"common/text.h\"\n", none);
    add_row("Qt", "charts", "#include <QString>\n#include <cmath>\n", none);
    add_row("system", "device", "#include <sys/ioctl.h>\n", none);
    add_row("station and dialogs", "station", "#include \"dialogs/about.h\"\n", none);
    add_row("report of charts", "report", "#include \"charts/axis.h\"\n", none);
    add_row("charts of report", "charts", "#include \"report/string_grid.h\"\n",
            QStringList("report/string_grid.h"));
    add_row("common of config", "common", "#include \"config/settings.h\"\n",
            QStringList("config/settings.h"));
    QTest::newRow("second line, odd spacing")
        << "device"
        << "#pragma once\n  # include\t\"station/phase.h\"  // why\n"
        << QStringList("station/phase.h");
    add_row("in brackets", "device", "#include <station/phase.h>\n",
            QStringList("station/phase.h"));
    add_row("without folder", "charts", "#include \"axis.h\"\n", QStringList("axis.h"));
    add_row("upwards", "charts", "#include \"../common/text.h\"\n",
            QStringList("../common/text.h"));
    add_row("test support", "app", "#include \"support/test_clock.h\"\n",
            QStringList("support/test_clock.h"));
    add_row("form of nobody", "charts", "#include \"ui_nothing.h\"\n", QStringList("ui_nothing.h"));
    add_row("custom widget of a form", "config",
            "<class>X</class>\n   <header>charts/paint_box.h</header>\n",
            QStringList("charts/paint_box.h"));
    add_row("a program of its own folder", "programs/doctor", "#include \"doctor/judge.h\"\n",
            none);
    add_row("a program of another", "programs/doctor",
            "#include \"guard/child.h\"\n#include \"programs/guard/child.h\"\n",
            QStringList({"guard/child.h", "programs/guard/child.h"}));
    add_row("a program of what all share", "programs/doctor",
            "#include \"programs/common/terminal.h\"\n", none);
    add_row("records of a station", "records",
            "#include \"station/logs/log_row.h\"\n#include \"station/phase.h\"\n",
            QStringList("station/phase.h"));
    add_row("a program of the logs", "programs/doctor",
            "#include \"station/logs/log_row.h\"\n"
            "#include \"station/test_station.h\"\n",
            QStringList("station/test_station.h"));
    QTest::newRow("in a comment") << "charts"
                                  << "// #include \"app/main_window.h\"\n"
                                  << none;
}

void IncludeRulesTest::an_include_is_judged_by_its_folder()
{
    QFETCH(QString, folder);
    QFETCH(QString, text);
    QTEST(forbidden_includes(folder, text), "forbidden");
}

void IncludeRulesTest::nobody_includes_app()
{
    for (const QString& folder : MAY_INCLUDE.keys())
        QCOMPARE(may_include(folder, "app/main_window.h"), folder == "app");
}

void IncludeRulesTest::nobody_includes_a_program()
{
    for (const QString& folder : MAY_INCLUDE.keys())
        QCOMPARE(may_include(folder, "programs/log/options.h"), folder == "programs");
    QVERIFY(!may_include("programs/watch", "log/options.h"));
    QVERIFY(!may_include("programs/log", "watch/options.h"));
}

/** The library without a widget: what it includes is in it. The toolkit's part the build sees to. */
void IncludeRulesTest::the_readers_of_logs_stand_on_themselves()
{
    const QStringList library = listed_files("common") + listed_files("station/logs");
    QVERIFY(library.contains("common/text.h"));
    QVERIFY(library.contains("station/logs/log_reader.cpp"));
    QVERIFY(library.contains("station/test_parameters.h"));
    for (const QString& path : library)
        for (const QString& name : includes_in(contents(path)))
            QVERIFY2(library.contains(name), qPrintable(path + ": " + name));
}

KEST_GUILESS_TEST(IncludeRulesTest)
#include "tst_include_rules.moc"
