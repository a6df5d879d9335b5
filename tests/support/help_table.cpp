#include "support/help_table.h"

#include "support/test_files.h"

#include <QStringList>

namespace
{
QString without_entities(QString text)
{
    text.replace("&ldquo;", QChar(0x201c)).replace("&rdquo;", QChar(0x201d));
    text.replace("&#x25bc;", QChar(0x25bc)).replace("&#x25b2;", QChar(0x25b2));
    return text.remove("<i>").remove("</i>");
}

QList<HelpEntry> read_table()
{
    QList<HelpEntry> entries;
    const QString content = QString::fromUtf8(content_of(test_data("help/texts.txt")));
    for (const QString& line : content.split('\n', Qt::SkipEmptyParts)) {
        if (line.startsWith('#'))
            continue;
        const QStringList fields = line.split('\t');
        entries.append({fields.at(0).toInt(), fields.at(1), fields.at(2)});
    }
    return entries;
}
}  // namespace

QString HelpEntry::shown_heading() const
{
    return without_entities(heading);
}

QString HelpEntry::shown_text() const
{
    // The window shows two blanks as one.
    return without_entities(text).simplified();
}

QString HelpEntry::tooltip() const
{
    return "<qt>" + without_entities(text).split(". ").join(".<br />") + "</qt>";
}

const QList<HelpEntry>& help_table()
{
    static const QList<HelpEntry> entries = read_table();
    return entries;
}

QString help_tooltip(int id)
{
    for (const HelpEntry& entry : help_table())
        if (entry.id == id)
            return entry.tooltip();
    qFatal("The document has no text %d.", id);
}
