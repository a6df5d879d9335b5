#include "guard/off_run.h"

#include "guard/holders.h"
#include "guard/sentences.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <csignal>

namespace
{
QString path_of(const QString& port)
{
    const QString path = port.contains('/') && QFileInfo(port).exists() ? port : "/dev/" + port;
    const QString target = QFileInfo(path).canonicalFilePath();
    return target.isEmpty() ? path : target;
}
}  // namespace

OffRun::OffRun(const GuardOptions& guard_options, const QStringList& ports_of_this_machine,
               int signal_descriptor)
    : options(guard_options),
      machine_ports(ports_of_this_machine),
      clock(guard_options.speed),
      teller(state_folder()),
      lock(state_folder()),
      signal_reader(signal_descriptor),
      run(lines, clock, teller, Sentences::headline("kest-guard"))
{
    connect(&signal_reader, &SignalReader::sig_signal, this, &OffRun::take_signal);
    connect(&run, &SwitchingRun::sig_done, this,
            [this] { QCoreApplication::exit(run.all_is_off() ? 0 : 1); });
}

QStringList OffRun::paths() const
{
    QStringList all;
    for (const QString& port : options.all ? machine_ports : options.ports)
        all << path_of(port);
    all.removeDuplicates();
    return all;
}

void OffRun::start()
{
    // A program that is started meanwhile would find its port busy, and say nothing.
    lock.hold();
    bool any = false;
    for (const QString& path : paths())
        any = add_port(path) || any;
    if (any || !options.all) {
        run.start();
        return;
    }
    teller.tell(Sentences::no_free_port());
    QCoreApplication::exit(1);
}

bool OffRun::add_port(const QString& path)
{
    const std::optional<SerialLine> line = lines.at(path);
    if (!line.has_value()) {
        if (!options.all)
            take_outcome(path, Fate::NoPort);
        return false;
    }
    const QString holder = other_holders({*line}, lines.roots).value(line->path);
    // Of all ports the free ones only; one that was named is waited for.
    if (options.all && !holder.isEmpty()) {
        take_outcome(line->name(), Fate::InUse, holder);
        return false;
    }
    run.add(*line, options.all);
    return true;
}

void OffRun::take_outcome(const QString& line, Fate fate, const QString& detail)
{
    Outcome outcome;
    outcome.line = line;
    outcome.fate = fate;
    outcome.detail = detail;
    run.take_outcome(outcome);
}

void OffRun::take_signal(int number)
{
    if (number == SIGINT || number == SIGQUIT)
        run.interrupt();
}
