#pragma once

#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

/** kest-watch itself, with settings and a state of its own, and a command that writes down what it gets. */
class WatchProcess
{
public:
    WatchProcess();
    ~WatchProcess();

    /** @param arguments behind those that the tests have in common: no reminders, and the command */
    bool start(const QStringList& arguments);
    void kill();
    /** Asks it to end; its exit status, or -1. */
    int end();

    /** What was told of tests, in its order. */
    QList<QJsonObject> told() const;
    /** "begins done pack3.csv" and so on. */
    QStringList told_in_short() const;
    /** Waits until that was told. */
    bool tells(const QString& in_short) const;
    QByteArray complaints();

    QTemporaryDir folder;
    QProcessEnvironment environment;
    QStringList wrapper;  ///< the command that starts it, if it is to run in another world
    QString ending;  ///< of the files of which events are kept; ".csv" leaves out the machine's

private:
    QProcess process;
    QByteArray said;
};
