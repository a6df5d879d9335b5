#include "guard/switching_run.h"

#include "guard/sentences.h"

#include <algorithm>

SwitchingRun::SwitchingRun(const SerialLines& present, const GuardClock& clock,
                           const Teller& word_teller, const QString& desktop_headline)
    : teller(word_teller), headline(desktop_headline), switching(present, clock)
{
    connect(&switching, &Switching::sig_outcome, this, &SwitchingRun::take_outcome);
    connect(&switching, &Switching::sig_disobeyed, this, &SwitchingRun::take_disobedience);
    connect(&switching, &Switching::sig_done, this, &SwitchingRun::conclude);
}

void SwitchingRun::add(const SerialLine& line, bool listen_first)
{
    switching.add(line, listen_first);
}

void SwitchingRun::start()
{
    switching.start();
}

void SwitchingRun::take_outcome(const Outcome& outcome)
{
    outcomes << outcome;
    tell(Sentences::outcome(outcome));
}

void SwitchingRun::tell(const QString& sentence)
{
    told << sentence;
    teller.tell(sentence);
}

/** Shown at once: the end of it may be far, and the pack is on the load. */
void SwitchingRun::take_disobedience(const Outcome& so_far)
{
    const QString sentence = Sentences::disobeyed(so_far);
    teller.tell(sentence);
    teller.show_on_desktop(headline, sentence);
}

void SwitchingRun::conclude()
{
    const QString last_word = Sentences::conclusion(outcomes);
    teller.tell(last_word);
    teller.show_on_desktop(headline + ": " + last_word, told.join("\n"));
    emit sig_done();
}

void SwitchingRun::interrupt()
{
    if (!interrupted)
        teller.tell(Sentences::interrupted_once(switching.unfinished_lines()));
    else
        switching.leave();
    interrupted = true;
}

bool SwitchingRun::all_is_off() const
{
    return std::all_of(outcomes.begin(), outcomes.end(),
                       [](const Outcome& outcome) { return outcome.is_good(); });
}
