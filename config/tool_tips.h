#pragma once

#include <QMap>
#include <QSet>
#include <QString>

class QWidget;

/** The texts of the help document, each by its id the tooltip of a widget. */
class ToolTips
{
public:
    ToolTips() = default;

    /** Reads the document. What is wrong with it is shown or printed; the rest is taken. */
    static void load(QString filename);
    /** Gives the widget its text; without one a message comes up and the widget stays as it is. */
    static void assign(QWidget* widget, int id);

    static QMap<int, QString> tooltips;  ///< by id; each sentence on a line of its own
    static QSet<int> used_tooltip_ids;   ///< handed out so far
};
