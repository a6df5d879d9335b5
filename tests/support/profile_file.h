#pragma once

#include <QByteArray>
#include <QString>

struct BatteryProfile;

/** The profile file as a first run writes it. */
extern const QByteArray FIRST_PROFILE_FILE;

/** Takes all profiles away, from memory and from the disk. */
void forget_profiles();

/** Puts a profile file into the settings directory, as an earlier run would have left it. */
bool put_profile_file(const QByteArray& content);

/** Takes all profiles away and loads these. Ends the test's process if they are refused. */
void load_test_profiles(const QByteArray& content);

/** The profile file as it is on the disk. */
QByteArray profile_file_content();

/** All of a record: "name|template|cycles|seconds|cutoff|final|detect|prompt|measure|interval|disk". */
QString text_of(const BatteryProfile& profile);

/** The same of the profile of this name; empty if there is none. */
QString profile_text(const QString& description);

/** A number to its last digit, and "yes" or "no". */
QString number_text(double value);
QString flag_text(bool value);
