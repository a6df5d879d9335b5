#pragma once

#include "records/running_log.h"
#include "watch/file_tail.h"

#include <QHash>
#include <QSet>

/** What is kept of a log that nobody writes. */
struct IndexedLog
{
    FileIdentity file;
    qint64 size = 0;
    qint64 written_ns = 0;
    QString battery;
    QString serial_number;
    QList<Leg> legs;
};

/**
 * The legs of all earlier tests, so that no log need be read twice. The file that keeps them may be
 * deleted at any time.
 */
class LogIndex
{
public:
    /** @param index_file empty: nothing outlives the program */
    explicit LogIndex(QString index_file);

    /**
     * Reads logs that are not known yet, or were changed; those in `written` are left for later.
     *
     * @param most_ms after which no further log is begun
     * @return whether all are known now
     */
    bool read_on(const QHash<QByteArray, FileState>& logs, const QSet<QByteArray>& written,
                 int most_ms);
    /** Logs that are gone are forgotten, and what has changed is saved. False if that fails. */
    bool save(const QSet<QByteArray>& present);

    QList<Leg> of_pack(const QString& battery, const QString& serial_number) const;
    QList<Leg> of_battery(const QString& battery) const;

    int logs_read = 0;  ///< since the program was started

private:
    void load();
    void read_log(const QByteArray& path, const FileState& state);

    QString file;
    QHash<QByteArray, IndexedLog> known;  ///< by path
    bool changed = false;
};
