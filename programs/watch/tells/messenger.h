#pragma once

#include "watch/teller.h"
#include "watch/tells/memory_file.h"
#include "watch/tells/postman.h"
#include "watch/tells/sleep_inhibitor.h"
#include "watch/tells/tell_settings.h"

#include <memory>

/** Tells people what a look has found, each thing once, and keeps the computer awake for its tests. */
class Messenger : public QObject, public Teller
{
    Q_OBJECT

public:
    Messenger(const TellSettings& tell_settings, const QString& state_folder,
              const Patience& how_patient = Patience());

    /** Takes up where the last watch ended. False with an error if another one is running. */
    bool begin();
    QString error() const;

    void hear(const Look& look, const QDateTime& now) override;

signals:
    /** A line for whoever looks on: what is told now. */
    void sig_news(const QString& line);
    /** A sentence: what went wrong on the way. */
    void sig_trouble(const QString& sentence);

private:
    void save();

    TellSettings settings;
    TellRules rules;
    Patience patience;
    MemoryFile file;
    Memory memory;
    SleepInhibitor inhibitor;
    std::unique_ptr<Postman> postman;
    QObject ways_home;     ///< gone before the postman, to whom the ways answer
    bool unsaved = false;  ///< the disk has an older memory
    bool save_failed = false;
};
