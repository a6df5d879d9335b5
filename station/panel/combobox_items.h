#pragma once

#include <QStringList>

class QComboBox;

/**
 * Makes these the items, and the list as wide as the widest. The current text stays if it is among
 * them, else the first becomes current.
 *
 * Silent on purpose: nobody has chosen anything, so no parameter of a station may follow.
 */
void set_combobox_items(QComboBox* combo, QStringList items);
