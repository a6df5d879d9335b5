#pragma once

#include <QDBusUnixFileDescriptor>
#include <QObject>

/** Keeps the computer from falling asleep, and from counting as idle, as long as it is needed. */
class SleepInhibitor : public QObject
{
    Q_OBJECT

public:
    explicit SleepInhibitor(QObject* parent = nullptr);
    ~SleepInhibitor() override;

    void set_needed(bool is_needed);
    bool holds() const;

signals:
    void sig_held();
    /** Once only: the system does not do it, with its reason. */
    void sig_refused(const QString& reason);

private:
    void ask();
    void refuse(const QString& reason);

    QDBusUnixFileDescriptor lock;  ///< the computer stays awake until its last copy is closed
    bool needed = false;
    bool asking = false;
    bool refused = false;
};
