#include "watch/conf_file.h"

#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTextCodec>

namespace
{
const QByteArray BYTE_ORDER_MARK = "\xEF\xBB\xBF";

/** False if the bytes are not UTF-8. */
bool decode(const QByteArray& bytes, QString& text)
{
    QTextCodec::ConverterState state;
    text = QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    return state.invalidChars == 0 && state.remainingChars == 0 && !text.contains(QChar::Null);
}

bool take_line(const QByteArray& bytes, int number, QList<ConfLine>& lines, QString& error)
{
    static const QRegularExpression form("\\A([a-z][a-z-]*)\\s*(?:=\\s*(.*))?\\z");
    QString text;
    if (!decode(bytes, text)) {
        error = QString("line %1: is not UTF-8 text.").arg(number);
        return false;
    }
    text = text.trimmed();
    if (text.isEmpty() || text.startsWith('#'))
        return true;
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch()) {
        error = QString("line %1: a setting is written as 'name = value'.").arg(number);
        return false;
    }
    lines << ConfLine{number, match.captured(1), match.captured(2)};
    return true;
}
}  // namespace

bool read_conf(const QByteArray& content, QList<ConfLine>& lines, QString& error)
{
    const QByteArray text =
        content.startsWith(BYTE_ORDER_MARK) ? content.mid(BYTE_ORDER_MARK.size()) : content;
    int number = 0;
    for (const QByteArray& line : text.split('\n'))
        if (!take_line(line, ++number, lines, error))
            return false;
    return true;
}

QString conf_path()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return QDir(folder).filePath("kest-watch.conf");
}
