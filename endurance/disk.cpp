#include "disk_checks.h"
#include "disk_reports.h"
#include "support/profile_bench.h"
#include "support/test_files.h"
#include "support/whole_test.h"

#include "config/battery_profiles.h"
#include "config/settings.h"
#include "station/test_station.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QSpinBox>
#include <QUrl>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <functional>

// Each write that fails, in each way a disk can fail, in each file: nothing written earlier suffers,
// and what follows is written when there is room again.

namespace
{
constexpr int SECONDS = 260;
constexpr int KEPT = 20;  // failed writes after which nothing is missing

constexpr Way WAYS[] = {
    {"short write, then full", ENOSPC, true},
    {"ENOSPC", ENOSPC, false},
    {"EIO", EIO, false},
    {"EROFS", EROFS, false},
    {"EDQUOT", EDQUOT, false},
};

/** Where a file cannot even be opened. */
constexpr Way NO_OPENING[] = {
    {"EROFS at open", EROFS, false},
    {"ENOSPC at open", ENOSPC, false},
    {"EACCES at open", EACCES, false},
};

/** How long the disk is bad: less than what is kept for it, more than that, or to the end. */
constexpr int LENGTHS[] = {1, 20, 200, FOREVER};

struct Logs
{
    QByteArray csv;
    QByteArray txt;
};

/** Until the disk has refused something, and for so long after that; the seconds that went by. */
int run_on_full_disk(WholeTest& test, int seconds)
{
    if (seconds == 0)
        return 0;
    const Filler filler;
    int room = 0;  // in the last blocks of the logs
    for (; !filler.has_bitten() && room < SECONDS / 2; ++room)
        test.run(1);
    if (!filler.has_bitten())
        qFatal("The disk was never full.");
    test.run(seconds);
    return room + seconds;
}

/** A test of several cycles by the clock of the bench: two runs write the same. */
Logs run_test(const std::function<void(WholeTest&)>& at_start, int full_seconds = 0)
{
    WholeTest test;
    Settings::set_log_all_telemetry(true);
    test.bench.widget<QSpinBox>("sbNumberOfCycles")->setValue(9);
    test.station.max_charge_time = 60;
    at_start(test);
    test.start();
    test.station.max_charge_time = 20;
    test.run(SECONDS / 4);
    test.run(SECONDS * 3 / 4 - run_on_full_disk(test, full_seconds));
    WriteFaults::clear();
    // Whatever was kept back goes out with the next records.
    test.run(5);
    test.station.append_text_log("end");
    return {test.bench.csv(), test.bench.txt()};
}

bool is_kept_line_by_line(const QByteArray& got, const QByteArray& whole)
{
    const QList<QByteArray> all = whole.split('\n');
    auto at = all.begin();
    for (const QByteArray& line : got.split('\n')) {
        at = std::find(at, all.end(), line);
        if (at == all.end())
            return false;
        ++at;
    }
    return true;
}

void check_log(const QByteArray& got, const QByteArray& whole, const char* file, const Way& way,
               int first, int count)
{
    if (count <= KEPT)
        check(got == whole, file, way, first, count, "records are missing although there is room");
    else if (count < FOREVER)
        check(is_kept_line_by_line(got, whole) && got.right(8) == whole.right(8), file, way, first,
              count, "the log is damaged, or does not go on");
    else
        check(is_kept_line_by_line(got, whole), file, way, first, count, "the log is damaged");
}

void fail_log(const char* suffix, const Logs& whole, const Way& way, int first, int count)
{
    const Logs got = run_test([&](WholeTest&) {
        WriteFaults::set({suffix, "", first, count, way.error, way.half});
    });
    ++tally.tried;
    check_log(got.csv, whole.csv, suffix, way, first, suffix == QByteArray(".csv") ? count : 1);
    check_log(got.txt, whole.txt, suffix, way, first, suffix == QByteArray(".txt") ? count : 1);
}

/** A folder that is taken away: the files are gone, the test is not. */
void take_the_folder_away()
{
    WholeTest test;
    test.start();
    test.run(5);
    QDir(test.bench.folder.path()).removeRecursively();
    test.run(20);
    ++tally.tried;
    check(test.station.phase == PHASE_CHARGING, "log", WAYS[0], 0, 0, "the test stopped");
}

/** Saved badly once and well after that: the file is whole again, and each save is one write. */
void fail_save(const char* suffix, const std::function<void()>& save, const Way& way)
{
    const StationBench bench(THREE_PROFILES);
    save();
    const auto file = [suffix] {
        return content_of(QDir(Settings::get_settings_dir()).filePath(suffix));
    };
    const QByteArray whole = file();
    for (int first = 1; first <= 2; ++first) {
        WriteFaults::set({suffix, "", first, FOREVER, way.error, way.half});
        save();
        check(first == 1 || (WriteFaults::writes() == 1 && file() == whole), suffix, way, first, 1,
              "a save is more than one write");
        WriteFaults::clear();
        save();
        ++tally.tried;
        check(file() == whole, suffix, way, first, 1, "the next save does not restore the file");
    }
}

/** Neither log can be opened: told, nothing is begun, and the next Start begins. */
void refuse_logs(const char* suffix, const Way& way)
{
    WholeTest test;
    WriteFaults::set({suffix, "", 1, FOREVER, way.error, false, true});
    test.start("Pack A", "1");
    const bool opened = WriteFaults::writes() > 0;
    WriteFaults::clear();
    ++tally.tried;
    const QStringList told = {"Error: Could not open log file with write permission.",
                              "Error: Unable to create log file."};
    check(opened && test.bench.boxes() == told, suffix, way, 1, FOREVER,
          "the operator is not told");
    check(test.station.phase == PHASE_IDLE && test.station.data_log == nullptr, suffix, way, 1,
          FOREVER, "a test began without its logs");
    test.start("Pack A", "2");
    test.run(5);
    check(test.station.phase == PHASE_CHARGING && test.bench.csv().count('\n') > 14, suffix, way, 1,
          FOREVER, "the next Start does not begin a test");
}

/** A file that cannot be opened stays as it was, and the next save writes it. */
void refuse_save(const char* suffix, const std::function<void()>& save, const Way& way)
{
    const StationBench bench(THREE_PROFILES);
    save();
    const QString path = QDir(Settings::get_settings_dir()).filePath(suffix);
    const QByteArray whole = content_of(path);
    WriteFaults::set({suffix, "", 1, FOREVER, way.error, false, true});
    save();
    ++tally.tried;
    check(WriteFaults::writes() > 0 && content_of(path) == whole, suffix, way, 1, FOREVER,
          "a file that cannot be opened has changed");
    WriteFaults::clear();
    QFile::remove(path);
    save();
    check(content_of(path) == whole, suffix, way, 1, FOREVER, "the next save does not write");
}

/** In a folder that is a small disk of its own: full for a while, and freed. */
void fill_the_disk(const Logs& whole)
{
    constexpr Way FULL = {"a full disk", ENOSPC, false};
    for (const int seconds : {5, 60}) {
        const Logs got = run_test([](WholeTest&) {}, seconds);
        ++tally.tried;
        const int failures_at_most = seconds == 5 ? KEPT : 200;
        check_log(got.csv, whole.csv, ".csv", FULL, 1, failures_at_most);
        check_log(got.txt, whole.txt, ".txt", FULL, 1, failures_at_most);
    }
}

/** Written over and over while the disk fills: whole after the next save with room. */
void fail_full_save(const char* suffix, const std::function<void()>& save, const Way& way)
{
    const StationBench bench(THREE_PROFILES);
    save();
    const QString path = QDir(Settings::get_settings_dir()).filePath(suffix);
    const QByteArray whole = content_of(path);
    {
        const Filler filler;
        save();
        QFile::remove(path);
        save();
    }
    ++tally.tried;
    save();
    check(content_of(path) == whole, suffix, way, 1, 1, "the next save does not restore the file");
}

void save_settings()
{
    if (!Settings::save())
        return;
}

void save_profiles()
{
    BatteryProfiles::save();
}

void try_all(int writes)
{
    const Logs whole = run_test([](WholeTest&) {});
    for (const char* suffix : {".csv", ".txt"})
        for (const Way& way : WAYS)
            for (const int count : LENGTHS)
                for (int n = 1; n <= writes; ++n)
                    fail_log(suffix, whole, way, writes < 200 ? 1 + n * 190 / writes : n, count);
    for (const Way& way : WAYS) {
        fail_save("kestrometer.cfg", save_settings, way);
        fail_save("battery_profiles.txt", save_profiles, way);
        for (int n = 1; n <= std::min(writes, 3); ++n) {
            DiskReports::fail("copy", way, {"/pdfs/", ".pdf", n, FOREVER, way.error, way.half});
            DiskReports::fail("page", way, {".pdf", "", n, FOREVER, way.error, way.half});
        }
    }
    take_the_folder_away();
}

void refuse_all()
{
    for (const Way& way : NO_OPENING) {
        refuse_logs("_1.csv", way);
        refuse_logs("_1.txt", way);
        refuse_save("kestrometer.cfg", save_settings, way);
        refuse_save("battery_profiles.txt", save_profiles, way);
        for (const char* part : {".pdf", "/pdfs/Pack A_1042.csv", "/pdfs/Pack A_1042.txt"})
            DiskReports::fail(part, way, {part, "", 1, FOREVER, way.error, false, true});
    }
}

/** In a temporary folder that is a small disk of its own: full for a while, and freed. */
void try_full_disk()
{
    constexpr Way FULL = {"a full disk", ENOSPC, false};
    fill_the_disk(run_test([](WholeTest&) {}));
    DiskReports::fail_on_full_disk(FULL);
    fail_full_save("kestrometer.cfg", save_settings, FULL);
    fail_full_save("battery_profiles.txt", save_profiles, FULL);
}

/** What a program that loses a row, or damages one, would leave: each must be noticed. */
int prove()
{
    const Logs whole = run_test([](WholeTest&) {});
    QByteArray damaged = whole.csv;
    damaged[damaged.size() / 2] = 'x';
    check_log(damaged, whole.csv, "damaged", WAYS[0], 1, FOREVER);
    QByteArray cut = whole.csv;
    cut.remove(cut.size() / 2, cut.indexOf('\n', cut.size() / 2 + 40) - cut.size() / 2);
    check_log(cut, whole.csv, "cut", WAYS[0], 1, FOREVER);
    check_log(whole.csv.left(whole.csv.lastIndexOf('\n', -2) + 1), whole.csv, "lost", WAYS[0], 1,
              1);
    return tally.failures == 3 ? 1 : 0;
}
}  // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    // A report's viewer would be another program.
    QObject nobody;
    QDesktopServices::setUrlHandler("file", &nobody, "none");
    if (!qEnvironmentVariableIsEmpty("KEST_ENDURANCE_BROKEN"))
        return prove();
    if (argc > 1 && qstrcmp(argv[1], "full") == 0) {
        try_full_disk();
    } else {
        try_all(QByteArray(argc > 1 ? argv[1] : "200").toInt());
        refuse_all();
    }
    std::printf("%d %d\n", tally.tried, tally.failures);
    return tally.failures == 0 ? 0 : 1;
}
