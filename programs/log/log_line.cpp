#include "log/log_line.h"

#include "records/exact_row.h"
#include "station/logs/log_reader.h"

#include <QTextStream>

QString text_of(const QByteArray& line)
{
    return QString::fromLatin1(line.constData(), line.size());
}

Form form_of(const QByteArray& line)
{
    if (line.size() > LONGEST_ROW)
        return Form::Other;
    const QString text = text_of(line);
    if (is_exact_discharge_row(text))
        return Form::Discharge;
    return is_exact_charge_row(text) ? Form::Charge : Form::Other;
}

QByteArray number_line(bool charge, int number)
{
    constexpr int WIDTH = 29;
    const QByteArray label = (charge ? CHARGE_NUMBER : DISCHARGE_NUMBER) + ':';
    return label.leftJustified(WIDTH) + QByteArray::number(number);
}

QByteArray key_of(const QByteArray& line)
{
    const int colon = line.indexOf(':');
    // Trimmed as a text: blanks there are more than bytes know.
    return colon < 0 || colon > LONGEST_ROW
               ? QByteArray()
               : QString::fromLocal8Bit(line.constData(), colon).trimmed().toLocal8Bit();
}

bool loads(const QByteArray& log)
{
    QTextStream stream(log);
    LogSink nobody;
    return read_log(stream, nobody);
}
