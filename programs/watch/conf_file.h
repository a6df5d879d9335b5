#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/** A setting as it stands in kest-watch.conf: "remind = 30", or a name alone. */
struct ConfLine
{
    int number = 0;  ///< of the line, from 1
    QString name;
    QString value;
};

/** Blank lines, and those that begin with #, are left out. False with an error if a line is no setting. */
bool read_conf(const QByteArray& content, QList<ConfLine>& lines, QString& error);

/** kest-watch.conf in the user's folder of settings. */
QString conf_path();
