#include "doctor/judge_parts.h"

#include "device/raw_traffic.h"

#include <algorithm>

namespace
{
const QString KEEP_AWAY_FILE = "/etc/udev/rules.d/99-kest-adapters.rules";
const QString APPLICATION = "kest-battery-tester";

/** The drivers of the families that have some; any other adapter is a modem's kind. */
QString driver_of(const SeenAdapter& adapter)
{
    struct Family
    {
        const char* vendor_id;
        const char* driver;
    };
    constexpr Family FAMILIES[] = {
        {"0403", "ftdi_sio"},
        {"067b", "pl2303"},
        {"10c4", "cp210x"},
        {"1a86", "ch341"},
    };
    for (const Family& family : FAMILIES)
        if (adapter.vendor_id == QLatin1String(family.vendor_id))
            return family.driver;
    return "cdc_acm";
}

/** Makes the adapter's line in the file of the package count, or adds one, and has it read. */
QString keep_away_command(const SeenAdapter& adapter)
{
    const QString line =
        QString("ACTION!=\"remove\", SUBSYSTEM==\"usb\", ATTR{idVendor}==\"%1\", "
                "ATTR{idProduct}==\"%2\", ENV{ID_MM_DEVICE_IGNORE}=\"1\", ENV{SYSTEMD_WANTS}=\"\"")
            .arg(adapter.vendor_id, adapter.product_id);
    return QString("echo '%1' | sudo tee -a %2 && sudo udevadm control --reload && "
                   "sudo udevadm trigger --attr-match=idVendor=%3")
        .arg(line, KEEP_AWAY_FILE, adapter.vendor_id);
}

Finding why_not_opened(const SeenPort& port, const QString& user)
{
    const QStringList words = {port.name, port.group, user};
    if (port.session_in_group)
        return finding("no-right", port.name, words, {port.name});
    if (port.user_in_group)
        return finding("login-too-old", port.name, words, {port.group});
    const char* const id = port.given_to_the_seat ? "not-at-the-seat" : "no-permission";
    return finding(id, port.name, words, {port.group, user});
}

Finding held(const QString& port, const SeenProcess& holder)
{
    const QString pid = QString::number(holder.pid);
    if (holder.program == APPLICATION)
        return finding("held-by-the-program", port, {port, pid});
    return finding("busy", port, {port, holder.program, pid}, {pid});
}

bool is_text(const QByteArray& bytes)
{
    int strange = 0;
    for (const char byte : bytes)
        strange += uchar(byte) >= 0x80 ||
                   (uchar(byte) < 0x20 && byte != '\r' && byte != '\n' && byte != '\t');
    return strange * 4 <= bytes.size();
}

/** The first words of what was heard, fit for a sentence. */
QString heard_text(const SeenSpeech& speech)
{
    constexpr int LONGEST = 60;
    const QString text =
        speech.lines > 0 ? speech.other : QString::fromUtf8(speech.bytes).trimmed();
    const QString shown = sanitised_text(QString(text).replace('\t', "<TAB>"));
    return shown.size() <= LONGEST ? shown : shown.left(LONGEST) + "...";
}

}  // namespace

Finding judge_speech(const QString& port, const SeenSpeech& speech)
{
    if (speech.valid > 0)
        return finding("instrument", port, {port, telemetry_in_words(speech.telemetry)});
    if (speech.bytes.isEmpty())
        return finding("silent", port, {port}, {port});
    if (!is_text(speech.bytes))
        return finding("no-text", port, {port}, {port});
    const QString reason =
        speech.lines > 0 ? why_no_telemetry(speech.other) : "has no line end of CR and LF";
    return finding("foreign", port, {port, heard_text(speech), reason}, {port});
}

namespace
{
void judge_port(const SeenPort& port, const Seen& seen, QList<Finding>& findings)
{
    // An instrument hangs on USB: what is wrong with another port, or who holds it, is no trouble.
    if (!port.adapter.is_usb()) {
        findings << finding("port", port.name, {port.name, "a port of the computer itself"});
        return;
    }
    if (!port.has_node)
        findings << finding("no-node", port.name, {port.name});
    else if (!port.may_open)
        findings << why_not_opened(port, seen.user);
    for (const SeenProcess& holder : port.holders)
        findings << held(port.name, holder);
    if (!port.not_heard.isEmpty())
        findings << finding("not-heard", port.name, {port.name, port.not_heard}, {port.name});
    if (port.speech.listened)
        findings << judge_speech(port.name, port.speech);
    const QStringList keep_away = {keep_away_command(port.adapter)};
    if (seen.modem_manager && !port.adapter.left_alone)
        findings << finding("modem-manager", port.name, {port.name}, keep_away);
    if (seen.brltty && seen.brltty_is_a_service)
        findings << finding("brltty-service-runs", port.name, {port.name});
    else if (seen.brltty && !port.adapter.left_alone)
        findings << finding("brltty-runs", port.name, {port.name}, keep_away);
    findings << finding("port", port.name, {port.name, adapter_in_words(port.adapter)});
}

void judge_adapter_without_port(const SeenAdapter& adapter, const Seen& seen,
                                QList<Finding>& findings)
{
    const QString words = adapter_in_words(adapter);
    if (!adapter.claimed_by_program)
        findings << finding("no-driver", words, {words}, {driver_of(adapter)});
    else if (seen.brltty && seen.brltty_is_a_service)
        findings << finding("taken-by-brltty-service", words, {words});
    else if (seen.brltty)
        findings << finding("taken-by-brltty", words, {words}, {keep_away_command(adapter)});
    else
        findings << finding("taken-by-a-program", words, {words});
}
}  // namespace

QString adapter_in_words(const SeenAdapter& adapter)
{
    QStringList words = {adapter.maker, adapter.product};
    words.removeAll("");
    if (words.isEmpty())
        words << "an adapter without a name";
    const QString number =
        adapter.serial_number.isEmpty() ? "without a number" : "number " + adapter.serial_number;
    return QString("%1, %2 (%3:%4)")
        .arg(sanitised_text(words.join(' ')), sanitised_text(number), adapter.vendor_id,
             adapter.product_id);
}

void judge_ports(const Seen& seen, QList<Finding>& findings)
{
    const bool has_usb_port =
        std::any_of(seen.ports.begin(), seen.ports.end(),
                    [](const SeenPort& port) { return port.adapter.is_usb(); });
    if (!has_usb_port && seen.adapters_without_port.isEmpty())
        findings << finding("no-port", {});
    for (const SeenAdapter& adapter : seen.adapters_without_port)
        judge_adapter_without_port(adapter, seen, findings);
    for (const SeenPort& port : seen.ports)
        judge_port(port, seen, findings);
}
