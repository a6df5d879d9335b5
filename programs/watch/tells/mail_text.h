#pragma once

#include "watch/tells/event.h"

/**
 * A whole mail for a local sendmail: headers in ASCII, each on lines of its own whatever the names in it
 * hold, and a body in UTF-8. Lines end with a line feed, as sendmail takes them.
 */
QByteArray mail_of(const Event& event, const QString& address);

/** A header's text in encoded words of at most 75 characters, folded; as it is if it is plain ASCII. */
QByteArray header_text(const QString& text);

/** Whether something is an address that can stand in a header and on a command line. */
bool is_mail_address(const QString& address);
