#pragma once

#include <QByteArray>
#include <QString>

/** Text fit for a label: 0x1B becomes "[0x1B]", 0x07 "[0x7]", U+00E9 "[0xE9]"; TAB and 127 stay. */
QString sanitised_text(const QString& text);

/** Bytes as upper-case hexadecimal pairs with single blanks between them: "55 00 04". */
QString hex_text(const QByteArray& bytes);
