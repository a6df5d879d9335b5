#pragma once

#include "support/station_bench.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

/** Three profiles: "Pack A" and "pack b" with a template each, and "Plain" with nothing but defaults. */
extern const QByteArray THREE_PROFILES;

/** Two buttons, or three, without a parent and with No as the default: the profiles' questions. */
bool is_question(const SeenBox& box, const QString& caption, const QString& text,
                 QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No);

/** A message without a parent and with nothing but OK. */
bool is_message(const SeenBox& box, QMessageBox::Icon icon, const QString& caption,
                const QString& text);
bool is_error(const SeenBox& box, const QString& text);

/** A station among profiles. */
class ProfileBench : public StationBench
{
public:
    explicit ProfileBench(const QByteArray& profiles = THREE_PROFILES);

    void choose_profile(const QString& name);
    /** Presses Delete, and Yes and OK thereafter. */
    void delete_profile();
    bool save_enabled();
    bool delete_enabled();
};

/** What the box of the profiles shows and what it lists. */
QString selected_profile(const TestStation& station);
QStringList listed_profiles(const TestStation& station);

/** A station's members: "name|number|cycles|seconds|cutoff|final|detect|prompt|measure|interval". */
QString parameters_of(const TestStation& station);
