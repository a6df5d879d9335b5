#pragma once

#include "guard/switching.h"
#include "guard/teller.h"

/** Lines switched off from the first word to the last: told as it goes, and summed up at the end. */
class SwitchingRun : public QObject
{
    Q_OBJECT

public:
    /** The headline goes before the last word when it is shown on the desktop. */
    SwitchingRun(const SerialLines& present, const GuardClock& clock, const Teller& word_teller,
                 const QString& desktop_headline);

    void add(const SerialLine& line, bool listen_first = false);
    /** A line with which nothing can be done any more. */
    void take_outcome(const Outcome& outcome);
    /** Tells it, and again on the desktop with all the rest. */
    void tell(const QString& sentence);
    void start();
    /** Tells what is left the first time, lets go of it the second time. */
    void interrupt();
    bool all_is_off() const;

signals:
    void sig_done();

private:
    void take_disobedience(const Outcome& so_far);
    void conclude();

    Teller teller;
    QString headline;
    Switching switching;
    QVector<Outcome> outcomes;
    QStringList told;
    bool interrupted = false;
};
