#include "watch/tells/postman.h"

#include "watch/tells/event_text.h"
#include "watch/tells/telling.h"

#include <algorithm>

namespace
{
// What a way's letters may need on disk: names are short, and whoever writes long ones gets fewer.
constexpr int MOST_CHARACTERS = 262144;

int weight(const Event& event)
{
    const TestFacts& facts = event.situation.facts;
    return event.situation.log.size() + event.situation.detail.size() + facts.battery.size() +
           facts.serial_number.size() + facts.phase.size() + facts.reason.size();
}

bool is_urgent(const Letter& letter)
{
    return has(letter.event.situation.condition, URGENT);
}
}  // namespace

Postman::Postman(Memory& letters_home, const QList<Way>& all_ways, const Patience& how_patient)
    : memory(letters_home), patience(how_patient)
{
    for (const Way& way : all_ways) {
        roads.push_back(std::make_unique<Road>());
        Road& road = *roads.back();
        road.way = way;
        road.again.setSingleShot(true);
        connect(&road.again, &QTimer::timeout, this, [this, &road] { send(road); });
    }
    drop_lost_letters();
}

/** Those for a way that the settings no longer name. */
void Postman::drop_lost_letters()
{
    const auto lost = [this](const Letter& letter) {
        return std::none_of(roads.begin(), roads.end(),
                            [&](const auto& road) { return road->way.name == letter.way; });
    };
    QList<Letter>& letters = memory.letters;
    letters.erase(std::remove_if(letters.begin(), letters.end(), lost), letters.end());
}

void Postman::take(const QList<Event>& events)
{
    for (const auto& road : roads) {
        for (const Event& event : events)
            memory.letters << Letter{event, road->way.name};
        make_room(*road);
    }
}

/** The oldest give way first, and what is urgent last. The one in hand stays. */
void Postman::make_room(const Road& road)
{
    QList<Letter> waiting;
    int characters = 0;
    for (const Letter& letter : memory.letters)
        if (letter.way == road.way.name) {
            waiting << letter;
            characters += weight(letter.event);
        }
    if (road.busy)
        waiting.removeFirst();
    int count = waiting.size();
    std::stable_sort(waiting.begin(), waiting.end(), [](const Letter& one, const Letter& other) {
        return !is_urgent(one) && is_urgent(other);
    });
    int dropped = 0;
    while (dropped < waiting.size() - 1 &&
           (count > road.way.most || characters > MOST_CHARACTERS)) {
        const Letter& letter = waiting[dropped];
        remove(letter.way, letter.event.number);
        characters -= weight(letter.event);
        ++dropped;
        --count;
    }
    if (dropped > 0)
        emit sig_trouble(QString("%1: too many messages wait; %2 were given up.")
                             .arg(road.way.name)
                             .arg(dropped));
}

void Postman::deliver()
{
    for (const auto& road : roads)
        send(*road);
}

bool Postman::is_done() const
{
    return memory.letters.isEmpty();
}

void Postman::send(Road& road)
{
    if (road.busy)
        return;
    road.again.stop();
    const auto letter = std::find_if(memory.letters.begin(), memory.letters.end(),
                                     [&](const Letter& one) { return one.way == road.way.name; });
    if (letter == memory.letters.end())
        return;
    road.busy = true;
    const Event event = letter->event;
    road.way.send(event, [this, &road, event](Arrival arrival, const QString& reason) {
        take_answer(road, event, arrival, reason);
    });
}

void Postman::take_answer(Road& road, const Event& event, Arrival arrival, const QString& reason)
{
    road.busy = false;
    if (arrival == Arrival::Later) {
        try_later(road, reason);
        return;
    }
    if (arrival == Arrival::Refused)
        emit sig_trouble(QString("%1: %2. This message did not arrive: %3")
                             .arg(road.way.name, reason, title_of(event)));
    road.delay_ms = 0;
    remove(road.way.name, event.number);
    emit sig_delivered();
    // Not at once: a way that answers without waiting would call itself for each letter.
    road.again.start(0);
}

void Postman::try_later(Road& road, const QString& reason)
{
    if (road.delay_ms == 0)
        emit sig_trouble(QString("%1: %2. It is tried again.").arg(road.way.name, reason));
    road.delay_ms =
        road.delay_ms == 0 ? patience.first_ms : qMin(2 * road.delay_ms, patience.most_ms);
    road.again.start(road.delay_ms);
}

void Postman::remove(const QString& way, qint64 number)
{
    QList<Letter>& letters = memory.letters;
    letters.erase(std::remove_if(letters.begin(), letters.end(),
                                 [&](const Letter& letter) {
                                     return letter.way == way && letter.event.number == number;
                                 }),
                  letters.end());
}
