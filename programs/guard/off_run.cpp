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
      signal_reader(signal_descriptor),
      run(lines, clock, teller, Sentences::headline("kest-guard"))
{
    connect(&signal_reader, &SignalReader::sig_signal, this, &OffRun::take_signal);
    connect(&run, &SwitchingRun::sig_done, this,
            [this] { QCoreApplication::exit(complete && run.all_is_off() ? 0 : 1); });
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
    bool any = false;
    for (const QString& path : paths())
        any = add_port(path) || any;
    if (any) {
        run.start();
        return;
    }
    if (options.all)
        teller.tell(Sentences::no_free_port());
    QCoreApplication::exit(1);
}

bool OffRun::add_port(const QString& path)
{
    const std::optional<SerialLine> line = lines.at(path);
    if (!line.has_value()) {
        complete = complete && options.all;
        if (!options.all)
            teller.tell(Sentences::no_serial_port(path));
        return false;
    }
    const QString holder = other_holders({*line}, lines.roots).value(line->path);
    // Of all ports the free ones only; one that was named is waited for.
    if (options.all && !holder.isEmpty()) {
        teller.tell(Sentences::not_free(line->name(), holder));
        return false;
    }
    run.add(*line, options.all);
    return true;
}

void OffRun::take_signal(int number)
{
    if (number == SIGINT || number == SIGQUIT)
        run.interrupt();
}
