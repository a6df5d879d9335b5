#pragma once

#include <QList>
#include <QString>

/** One entry of the help document as it is meant to be, from tests/data/help/texts.txt. */
struct HelpEntry
{
    int id;
    QString heading;  ///< with the document's entities
    QString text;     ///< likewise

    QString shown_heading() const;
    QString shown_text() const;
    /** What a widget with this text has for its tooltip. */
    QString tooltip() const;
};

/** All of them, in the document's order. */
const QList<HelpEntry>& help_table();

/** The tooltip of this id; ends the test if there is none. */
QString help_tooltip(int id);
