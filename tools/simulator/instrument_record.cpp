#include "simulator/instrument_record.h"

bool InstrumentRecord::open(const QString& path, QString& error)
{
    if (path.isEmpty())
        return true;
    file.setFileName(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        return true;
    error = QString("%1 cannot be written: %2").arg(path, file.errorString());
    return false;
}

void InstrumentRecord::add(qint64 lines, char state, const QByteArray& what)
{
    if (file.isOpen())
        file.write(QByteArray::number(lines) + '\t' + state + '\t' + what + '\n');
}
