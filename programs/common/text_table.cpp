#include "programs/common/text_table.h"

TextTable::TextTable(const QStringList& with_marks)
{
    for (const QString& title : with_marks) {
        numeric << title.startsWith('>');
        titles << (numeric.last() ? title.mid(1) : title);
    }
}

void TextTable::add(const QStringList& row)
{
    rows << row;
}

QString TextTable::text(const QString& indent) const
{
    QList<int> widths;
    for (int column = 0; column < titles.size(); ++column) {
        int width = titles[column].size();
        for (const QStringList& row : rows)
            width = qMax(width, row[column].size());
        widths << width;
    }
    QString text = indent + line(titles, widths);
    for (const QStringList& row : rows)
        text += indent + line(row, widths);
    return text;
}

QString TextTable::line(const QStringList& row, const QList<int>& widths) const
{
    QString text;
    for (int column = 0; column < row.size(); ++column) {
        if (column > 0)
            text += "  ";
        text += numeric[column] ? row[column].rightJustified(widths[column])
                                : row[column].leftJustified(widths[column]);
    }
    while (text.endsWith(' '))
        text.chop(1);
    return text + '\n';
}
