#include "watch/tells/event_text.h"

#include "common/text.h"
#include "watch/tells/telling.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cmath>

namespace
{
constexpr ushort CONTROL_PICTURES = 0x2400;
constexpr ushort PICTURE_OF_DELETE = 0x2421;
constexpr ushort PICTURE_OF_NEW_LINE = 0x2424;

ushort picture_of(ushort unit)
{
    if (unit < 0x20)
        return ushort(CONTROL_PICTURES + unit);
    if (unit == 0x7F)
        return PICTURE_OF_DELETE;
    const bool breaks_lines = unit == 0x85 || unit == 0x2028 || unit == 0x2029;
    if (breaks_lines)
        return PICTURE_OF_NEW_LINE;
    return unit > 0x7F && unit < 0xA0 ? ushort(QChar::ReplacementCharacter) : unit;
}

/** Half a pair of surrogates has no bytes in UTF-8, and a message bus takes offence. */
bool is_lonely(const QString& text, int i)
{
    if (!text[i].isSurrogate())
        return false;
    const bool high = text[i].isHighSurrogate();
    const int other = high ? i + 1 : i - 1;
    return other < 0 || other >= text.size() ||
           (high ? !text[other].isLowSurrogate() : !text[other].isHighSurrogate());
}

QString local(const QDateTime& time)
{
    return time.toLocalTime().toString("yyyy-MM-dd HH:mm");
}

QString since_line(const Event& event)
{
    const QDateTime& since = event.situation.since;
    if (!since.isValid())
        return {};
    if (!lasts(event.situation.condition))
        return QString("At %1.").arg(local(since));
    const QString duration = duration_text(since.secsTo(event.time));
    if (event.change == Change::Over)
        return QString("From %1 to %2 (%3).").arg(local(since), local(event.time), duration);
    // What has just begun has no duration yet.
    if (since.secsTo(event.time) < 60)
        return QString("Since %1.").arg(local(since));
    return QString("Since %1 (%2).").arg(local(since), duration);
}

void add_figure(QStringList& figures, double value, int decimals, const char* unit)
{
    if (std::isfinite(value))
        figures << round(value, decimals) + " " + unit;
}

QString figures_line(const TestFacts& facts)
{
    QStringList figures;
    if (facts.cycle > 0)
        figures << QString("Cycle %1").arg(facts.cycle);
    if (!facts.phase.isEmpty())
        figures << visible(facts.phase);
    add_figure(figures, facts.volts, 2, "V");
    add_figure(figures, facts.amps, 1, "A");
    add_figure(figures, facts.amp_hours, 3, "Ah");
    add_figure(figures, facts.milliohms, 0, "mΩ");
    if (facts.row_age >= 0)
        figures << QString("last row %1 ago").arg(duration_text(facts.row_age));
    return figures.isEmpty() ? QString() : figures.join(", ") + ".";
}

QString reason_line(const TestFacts& facts)
{
    if (facts.reason.isEmpty())
        return {};
    // Some reasons are whole sentences.
    return "Last change: " + visible(facts.reason) + (facts.reason.endsWith('.') ? "" : ".");
}

QString end_line(const TestFacts& facts)
{
    if (!facts.end_from.isValid() || !facts.end_to.isValid())
        return {};
    const QString range = QString("This leg is expected to end between %1 and %2")
                              .arg(local(facts.end_from), local(facts.end_to));
    if (!std::isfinite(facts.end_error))
        return range + '.';
    return QString("%1; nine of ten such forecasts were off by no more than %2 %.")
        .arg(range)
        .arg(std::ceil(facts.end_error * 100.0));
}

QString log_line(const Situation& situation)
{
    const QString path = visible(QFile::decodeName(situation.log));
    return (has(situation.condition, MACHINE) ? "Folder: " : "Log: ") + path;
}

QString meaning(const Event& event)
{
    // Once it is over there is nothing to do about it.
    if (event.change == Change::Over)
        return event.first ? "It began and was over in the quiet hours." : QString();
    return telling_of(event.situation).sentence;
}
}  // namespace

QString visible(const QString& text)
{
    QString shown = text;
    for (int i = 0; i < text.size(); ++i)
        shown[i] = is_lonely(text, i) ? QChar(QChar::ReplacementCharacter)
                                      : QChar(picture_of(text[i].unicode()));
    return shown;
}

QString duration_text(qint64 seconds)
{
    const auto two_parts = [](qint64 large, const char* large_unit, qint64 small,
                              const char* small_unit) {
        return QString("%1 %2 %3 %4")
            .arg(large)
            .arg(large_unit)
            .arg(small, 2, 10, QChar('0'))
            .arg(small_unit);
    };
    if (seconds < 60)
        return QString("%1 s").arg(qMax<qint64>(seconds, 0));
    if (seconds < 3600)
        return QString("%1 min").arg(seconds / 60);
    if (seconds < 86400)
        return two_parts(seconds / 3600, "h", seconds / 60 % 60, "min");
    return two_parts(seconds / 86400, "d", seconds / 3600 % 24, "h");
}

QString name_of(const Event& event)
{
    const Situation& situation = event.situation;
    if (event.change == Change::Test || has(situation.condition, MACHINE))
        return visible(event.host);
    const QString pack = situation.facts.battery + " " + situation.facts.serial_number;
    const QString log = QFileInfo(QFile::decodeName(situation.log)).completeBaseName();
    return visible(pack.trimmed().isEmpty() ? log : pack.trimmed());
}

QString title_of(const Event& event)
{
    const Telling& telling = telling_of(event.situation);
    QString headline = telling.headline;
    if (event.change == Change::Test)
        headline = "a test message";
    else if (event.change == Change::Over)
        headline = telling.over;
    else if (event.change == Change::Lasts)
        headline += ", for " + duration_text(event.situation.since.secsTo(event.time));
    return name_of(event) + ": " + headline;
}

QString message_of(const Event& event)
{
    if (event.change == Change::Test)
        return "kest-watch was asked to show that its messages arrive. Nothing has happened.";
    const Situation& situation = event.situation;
    QStringList lines = {meaning(event)};
    const bool holds = event.change != Change::Over;
    if (holds)
        lines << visible(situation.detail);
    lines << since_line(event);
    if (holds && !has(situation.condition, MACHINE))
        lines << figures_line(situation.facts) << reason_line(situation.facts)
              << end_line(situation.facts);
    lines << log_line(situation);
    lines.removeAll(QString());
    return lines.join('\n');
}
