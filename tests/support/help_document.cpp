#include "support/help_document.h"

#include "config/tool_tips.h"

void load_help_document()
{
    if (ToolTips::tooltips.isEmpty())
        ToolTips::load(":/help.html");
}

void forget_help_document()
{
    ToolTips::tooltips.clear();
}
