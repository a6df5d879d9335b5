#include "doctor/doctor.h"

#include "common/console.h"
#include "doctor/judge.h"
#include "doctor/judge_parts.h"
#include "doctor/look.h"
#include "doctor/port_ear.h"
#include "doctor/report_text.h"

#include <QFileInfo>

#include <cstdio>
#include <memory>
#include <unistd.h>

namespace
{
constexpr int LOOK_SECONDS = 3;

/** For people who wait; a pipe and a file get the result alone. */
void tell_waiting_person(const QString& text)
{
    if (::isatty(STDERR_FILENO) != 0)
        std::fputs(qPrintable(text), stderr);
}

bool may_listen(const SeenPort& port)
{
    return port.adapter.is_usb() && port.has_node && port.may_open && port.holders.isEmpty();
}

void listen_to_free_ports(const FileView& view, QList<SeenPort>& ports)
{
    std::vector<std::unique_ptr<PortEar>> ears;
    std::vector<PortEar*> open_ears;
    for (SeenPort& port : ports) {
        ears.push_back(std::make_unique<PortEar>(view.place("/dev/" + port.name)));
        if (!may_listen(port))
            continue;
        if (ears.back()->open(port.not_heard))
            open_ears.push_back(ears.back().get());
    }
    if (open_ears.empty())
        return;
    tell_waiting_person(QString("Listening for %1 seconds...\n").arg(LOOK_SECONDS));
    listen(open_ears, LOOK_SECONDS, Listening::UntilUnderstood);
    for (int i = 0; i < ports.size(); ++i)
        ports[i].speech = ears[std::size_t(i)]->speech;
}

int look_at_everything(const DoctorOptions& options)
{
    const FileView view(options.root);
    Seen seen = look(view);
    if (options.listens)
        listen_to_free_ports(view, seen.ports);
    const QList<Finding> findings = judge(seen);
    print_to_console(options.json ? QString::fromUtf8(findings_as_json(findings))
                                  : findings_as_text(findings));
    return has_trouble(findings) ? 1 : 0;
}

/** The device, from "ttyUSB0", "/dev/ttyUSB0" or "/dev/serial/by-id/...". */
QString device_of(const FileView& view, const QString& given)
{
    const QString device = given.startsWith('/') ? given : "/dev/" + given;
    const QString canonical = view.canonical(device);
    // Below a root, a port may be a link out of it: its own name is the one that counts there.
    return view.is_this_machine() && !canonical.isEmpty() ? canonical : device;
}

int refuse(const QString& port, const QString& reason)
{
    std::fprintf(stderr, "kest-doctor: %s %s.\n", qPrintable(port), qPrintable(reason));
    return 1;
}

int listen_to_one(const DoctorOptions& options)
{
    const FileView view(options.root);
    SeenPort port;
    const QString device = device_of(view, options.listen_port);
    port.name = device.startsWith("/dev/") ? device.mid(5) : device;
    port.holders = Processes(view).holders_of(device);
    for (const SeenProcess& holder : qAsConst(port.holders))
        return refuse(port.name, QString("is in use by %1 (process %2); it is not touched")
                                     .arg(holder.program)
                                     .arg(holder.pid));
    PortEar ear(view.place(device), [&options](const QString& line) {
        if (!options.json)
            print_to_console(line_as_text(line));
    });
    QString error;
    if (!ear.open(error))
        return refuse(port.name, error);
    listen({&ear}, options.seconds, Listening::AllTheTime);
    port.speech = ear.speech;
    const QList<Finding> findings = {judge_speech(port.name, port.speech)};
    print_to_console(options.json ? QString::fromUtf8(speech_as_json(port.speech, findings))
                                  : findings_as_text(findings));
    return has_trouble(findings) ? 1 : 0;
}
}  // namespace

int run_doctor(const DoctorOptions& options)
{
    return options.listen_port.isEmpty() ? look_at_everything(options) : listen_to_one(options);
}
