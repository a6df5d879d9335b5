#include "support/profile_bench.h"
#include "support/test_files.h"
#include "support/whole_test.h"
#include "write_faults.h"

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
constexpr int FOREVER = 1000000;

struct Way
{
    const char* name;
    int error;
    bool half;
};

constexpr Way WAYS[] = {
    {"short write, then full", ENOSPC, true},
    {"ENOSPC", ENOSPC, false},
    {"EIO", EIO, false},
    {"EROFS", EROFS, false},
    {"EDQUOT", EDQUOT, false},
};

/** How long the disk is bad: less than what is kept for it, more than that, or to the end. */
constexpr int LENGTHS[] = {1, 20, 200, FOREVER};

int failures = 0;
int tried = 0;

void check(bool good, const char* file, const Way& way, int first, int count, const char* what)
{
    if (good)
        return;
    ++failures;
    if (failures <= 20)
        std::printf("%s, %s at write %d, %d of them: %s\n", file, way.name, first, count, what);
}

struct Logs
{
    QByteArray csv;
    QByteArray txt;
};

/** A test of several cycles by the clock of the bench: two runs write the same. */
Logs run_test(const std::function<void(WholeTest&)>& at_start)
{
    WholeTest test;
    Settings::set_log_all_telemetry(true);
    test.bench.widget<QSpinBox>("sbNumberOfCycles")->setValue(9);
    test.station.max_charge_time = 60;
    at_start(test);
    test.start();
    test.station.max_charge_time = 20;
    test.run(SECONDS);
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
    if (count <= 20)
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
    ++tried;
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
    ++tried;
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
        ++tried;
        check(file() == whole, suffix, way, first, 1, "the next save does not restore the file");
    }
}

/** The page and the copies of the logs: whole, or told; and whole the next time. */
void fail_report(const char* part, const char* not_part, const Way& way, int first)
{
    WholeTest test;
    Settings::set_log_all_telemetry(true);
    test.start();
    test.run(500);  // the event log then takes more than one write to copy
    const QString folder = test.bench.path("pdfs");
    QDir().mkpath(folder);
    Settings::set_pdf_dir(folder);
    Settings::set_copy_logs(true);
    const QByteArray csv = test.bench.csv();
    const QByteArray txt = test.bench.txt();
    const size_t boxes = test.bench.answers.seen.size();
    const auto copies_are_whole = [&] {
        return content_of(folder + "/Pack A_1042.csv") == csv &&
               content_of(folder + "/Pack A_1042.txt") == txt;
    };
    WriteFaults::set({part, not_part, first, FOREVER, way.error, way.half});
    test.bench.press("pbGeneratePDF");
    const bool failed = WriteFaults::writes() >= first;
    WriteFaults::clear();
    ++tried;
    check(copies_are_whole() || (failed && test.bench.answers.seen.size() > boxes), part, way,
          first, FOREVER, "a copy is cut short and nobody is told");
    check(test.bench.csv() == csv && test.bench.txt() == txt, part, way, first, FOREVER,
          "a log has changed");
    test.bench.press("pbGeneratePDF");
    check(copies_are_whole(), part, way, first, FOREVER, "the next copy is not whole");
    check(content_of(folder + "/Pack A_1042.pdf").trimmed().endsWith("%%EOF"), part, way, first,
          FOREVER, "the next page is not whole");
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
            fail_report("/pdfs/", ".pdf", way, n);
            fail_report(".pdf", "", way, n);
        }
    }
    take_the_folder_away();
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
    return failures == 3 ? 1 : 0;
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
    try_all(QByteArray(argc > 1 ? argv[1] : "200").toInt());
    std::printf("%d %d\n", tried, failures);
    return failures == 0 ? 0 : 1;
}
