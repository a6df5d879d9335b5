#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/**
 * What an instrument is told and who listens to it, a row each: how many lines had gone out, the state
 * letter then, and the bytes in hexadecimal, or "opened", "closed" or "ended".
 *
 *     12	D	closed
 *     12	D	opened
 *     12	O	4F
 */
class InstrumentRecord
{
public:
    /** Begins the file anew; false, with the reason in `error`. An empty path keeps no record. */
    bool open(const QString& path, QString& error);
    void add(qint64 lines, char state, const QByteArray& what);

private:
    QFile file;
};
