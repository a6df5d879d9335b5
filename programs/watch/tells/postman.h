#pragma once

#include "watch/tells/memory.h"
#include "watch/tells/way.h"

#include <QHash>
#include <QObject>
#include <QTimer>

#include <memory>

/** How soon a message that did not get through is tried again; each time twice as late. */
struct Patience
{
    int first_ms = 1000;
    int most_ms = 900000;
};

/**
 * Brings the letters of the memory on their ways: one at a time on each, in their order. A letter leaves
 * the memory when it has arrived or was refused; until then it is tried again.
 */
class Postman : public QObject
{
    Q_OBJECT

public:
    Postman(Memory& letters_home, const QList<Way>& all_ways, const Patience& how_patient);

    /** Puts a letter for each way into the memory. What was there too long gives way. */
    void take(const QList<Event>& events);
    /** Sends what waits, also what was to be tried later. To be called when the memory is on disk. */
    void deliver();
    /** Whether no letter is left. */
    bool is_done() const;

signals:
    /** The memory is another one: it should be on disk before anything else happens. */
    void sig_delivered();
    /** A sentence for people: what did not arrive. */
    void sig_trouble(const QString& sentence);

private:
    /** What goes on on a way. */
    struct Road
    {
        Way way;
        QTimer again;
        int delay_ms = 0;  ///< before the next try; 0 if the last one was good
        bool busy = false;
    };

    void drop_lost_letters();
    void make_room(const Road& road);
    void send(Road& road);
    void take_answer(Road& road, const Event& event, Arrival arrival, const QString& reason);
    void try_later(Road& road, const QString& reason);
    void remove(const QString& way, qint64 number);

    Memory& memory;
    Patience patience;
    std::vector<std::unique_ptr<Road>> roads;
};
