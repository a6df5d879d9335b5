#include "config/tool_tips.h"

#include "common/console.h"
#include "common/message_boxes.h"
#include "common/parse_int.h"

#include <QDomDocument>
#include <QFile>
#include <QHash>
#include <QWidget>

QMap<int, QString> ToolTips::tooltips;
QSet<int> ToolTips::used_tooltip_ids;

namespace
{
/** False for a text that can be no tooltip, which is then told on the console. */
bool read_id(const QDomElement& text, int& id)
{
    if (!text.hasAttribute("id")) {
        print_to_console("dd without id: " + text.text() + "\n");
        return false;
    }
    const QString attribute = text.attribute("id");
    if (!parse_int(attribute, id)) {
        print_to_console("dd with bad id: " + attribute + "\n");
        return false;
    }
    return true;
}

void take_text(const QDomElement& element)
{
    int id = 0;
    if (!read_id(element, id))
        return;
    if (ToolTips::tooltips.contains(id))
        show_error(QString("Tooltip %1 has been defined more than once.").arg(id));
    QString text = element.text();
    if (text.contains('"'))
        show_error(QString("Tooltip %1 contains a double-quote.").arg(id));
    ToolTips::tooltips.insert(id, text.replace(". ", ".<br />"));
}

/** A text as rich text, in which it is wrapped and its line breaks count. */
struct RichText
{
    QString text;  ///< what it was made of
    QString rich;
};

/** Made once for all widgets that bear it: each panel of many would have copies of its own. */
const QString& rich_text(int id, const QString& text)
{
    static QHash<int, RichText> made;
    RichText& last = made[id];
    if (last.rich.isNull() || last.text != text)
        last = {text, "<qt>" + text + "</qt>"};
    return last.rich;
}
}  // namespace

void ToolTips::load(QString filename)
{
    QFile file(filename);
    file.open(QIODevice::ReadOnly);
    // Not shown here, as each request for a text will be. What was read before the fault does not count.
    QDomDocument document;
    if (!document.setContent(&file))
        return;
    const QDomNodeList elements = document.documentElement().elementsByTagName("dd");
    for (int i = 0; i < elements.size(); ++i)
        take_text(elements.at(i).toElement());
}

void ToolTips::assign(QWidget* widget, int id)
{
    const auto text = qAsConst(tooltips).find(id);
    if (text == qAsConst(tooltips).end()) {
        show_error(QString("Tooltip %1 requested but not present in help file.").arg(id));
        return;
    }
    used_tooltip_ids.insert(id);
    widget->setToolTip(rich_text(id, *text));
}
