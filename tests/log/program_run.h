#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/** The path of the program that is tested. */
QString kest_log();

/** A program that has run to its end. */
struct Run
{
    Run(const QString& program, const QStringList& arguments, const QString& folder = QString());

    QJsonObject json() const;  ///< the output, if it is one document

    int status = -1;
    QString output;
    QString complaints;
};

/** A folder of its own for logs and what is made of them. */
class Place
{
public:
    QString path(const QString& name) const;
    void write(const QString& name, const QByteArray& bytes) const;
    /** All files, hidden ones too. */
    QStringList names() const;
    /** kest-log in this folder. */
    Run run(const QStringList& arguments) const;

private:
    QTemporaryDir folder;
};
