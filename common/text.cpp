#include "common/text.h"

bool string_between(QString text, QString left, QString& middle, QString right)
{
    if (left.isEmpty() || right.isEmpty())
        return false;
    const int left_at = text.indexOf(left);
    if (left_at < 0)
        return false;
    const int begin = left_at + left.size();
    const int end = text.indexOf(right, begin);
    if (end < 0)
        return false;
    middle = text.mid(begin, end - begin);
    return true;
}

bool split_at_first(QString text, QString& before, QString delimiter, QString& after)
{
    const int at = delimiter.isEmpty() ? -1 : text.indexOf(delimiter);
    if (at < 0)
        return false;
    before = text.left(at);
    after = text.mid(at + delimiter.size());
    return true;
}

QString string_before(QString text, QString delimiter)
{
    QString before;
    QString after;
    split_at_first(text, before, delimiter, after);
    return before;
}

QString in_one_line(QString text)
{
    return text.replace('\n', ' ');
}

QString round(double value, int decimals)
{
    return QString::number(value, 'f', decimals);
}

QString ordinal_string(int n)
{
    const char* suffix = "th";
    const bool teen = n % 100 >= 11 && n % 100 <= 13;
    if (!teen && n % 10 == 1)
        suffix = "st";
    else if (!teen && n % 10 == 2)
        suffix = "nd";
    else if (!teen && n % 10 == 3)
        suffix = "rd";
    return QString::number(n) + suffix;
}
