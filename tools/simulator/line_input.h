#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

/** Lines from a descriptor, as they come; empty ones are left out. */
class LineInput : public QObject
{
    Q_OBJECT

public:
    explicit LineInput(int from);

signals:
    void sig_line(const QString& line);
    void sig_end();

private:
    void read_some();
    void give_line(const QByteArray& line);

    QSocketNotifier notifier;
    QByteArray buffer;
};
