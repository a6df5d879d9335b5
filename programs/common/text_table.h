#pragma once

#include <QList>
#include <QString>
#include <QStringList>

/** Columns under titles, as wide as they must be; numbers stand at the right. */
class TextTable
{
public:
    /** A title that begins with ">" is of a column of numbers. */
    explicit TextTable(const QStringList& with_marks);

    void add(const QStringList& row);
    /** Lines with their ends, each begun with `indent`. */
    QString text(const QString& indent = QString()) const;

private:
    QString line(const QStringList& row, const QList<int>& widths) const;

    QStringList titles;
    QList<bool> numeric;
    QList<QStringList> rows;
};
