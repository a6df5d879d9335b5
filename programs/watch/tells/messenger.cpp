#include "watch/tells/messenger.h"

#include "watch/tells/event_text.h"
#include "watch/tells/ways.h"

#include <QSysInfo>

namespace
{
TellRules rules_of(const TellSettings& settings)
{
    TellRules rules;
    rules.remind_minutes = settings.remind_minutes;
    rules.quiet_hours = settings.quiet_hours;
    rules.host = QSysInfo::machineHostName();
    return rules;
}

QString news_line(const Event& event)
{
    return event.time.toLocalTime().toString("yyyy-MM-dd HH:mm:ss ") + title_of(event);
}
}  // namespace

Messenger::Messenger(const TellSettings& tell_settings, const QString& state_folder,
                     const Patience& how_patient)
    : settings(tell_settings),
      rules(rules_of(tell_settings)),
      patience(how_patient),
      file(state_folder)
{
    connect(&inhibitor, &SleepInhibitor::sig_refused, this, [this](const QString& reason) {
        emit sig_trouble(QString("The computer may fall asleep over a test: %1. Switch its sleep "
                                 "off in the settings of the desktop.")
                             .arg(reason));
    });
}

bool Messenger::begin()
{
    const Lock lock = file.lock();
    if (lock == Lock::HeldByAnother)
        return false;
    if (lock == Lock::Impossible)
        emit sig_trouble(file.error());
    memory = file.load();
    if (!file.error().isEmpty())
        emit sig_trouble(file.error());
    postman = std::make_unique<Postman>(memory, ways_of(settings, &ways_home), patience);
    connect(postman.get(), &Postman::sig_delivered, this, &Messenger::save);
    connect(postman.get(), &Postman::sig_trouble, this, &Messenger::sig_trouble);
    postman->deliver();
    return true;
}

QString Messenger::error() const
{
    return file.error();
}

void Messenger::hear(const Look& look, const QDateTime& now)
{
    if (settings.inhibits_sleep)
        inhibitor.set_needed(look.test_runs);
    bool changed = false;
    const QList<Event> events = take_look(memory, look.situations, now, rules, changed);
    postman->take(events);
    // On disk first: whoever is killed now has told nothing yet, or finds it again.
    if (changed || unsaved)
        save();
    for (const Event& event : events)
        emit sig_news(news_line(event));
    if (!events.isEmpty())
        postman->deliver();
}

void Messenger::save()
{
    unsaved = !file.save(memory);
    if (unsaved && !save_failed)
        emit sig_trouble(file.error());
    save_failed = unsaved;
}
