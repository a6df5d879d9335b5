#include "watch/tells/mail_text.h"

#include "watch/tells/event_text.h"

#include <QLocale>
#include <QRegularExpression>

namespace
{
constexpr int LONGEST_PLAIN = 60;
constexpr int BYTES_A_WORD = 45;  // 60 characters in base64, and 12 around them
constexpr int BYTES_A_LINE = 57;  // 76 characters

/** Not inside of a character: each word stands for itself. */
int end_of_word(const QByteArray& bytes, int begin)
{
    int end = qMin(begin + BYTES_A_WORD, bytes.size());
    while (end < bytes.size() && (uchar(bytes[end]) & 0xC0U) == 0x80U)
        --end;
    return end;
}

QByteArray body_of(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    QByteArray lines;
    for (int at = 0; at < bytes.size(); at += BYTES_A_LINE)
        lines += bytes.mid(at, BYTES_A_LINE).toBase64() + '\n';
    return lines;
}

QByteArray date_of(const QDateTime& time)
{
    const QDateTime local = time.toLocalTime();
    return QLocale::c()
        .toString(local.toOffsetFromUtc(local.offsetFromUtc()), "ddd, dd MMM yyyy HH:mm:ss ")
        .toLatin1();
}

QByteArray offset_of(const QDateTime& time)
{
    const int minutes = time.toLocalTime().offsetFromUtc() / 60;
    const int size = qAbs(minutes);
    return (minutes < 0 ? "-" : "+") +
           QByteArray::number(size / 60 * 100 + size % 60).rightJustified(4, '0');
}
}  // namespace

QByteArray header_text(const QString& text)
{
    static const QRegularExpression plain("\\A[ -<>-~]*\\z");
    if (text.size() <= LONGEST_PLAIN && plain.match(text).hasMatch())
        return text.toLatin1();
    const QByteArray bytes = text.toUtf8();
    QByteArray words;
    for (int begin = 0; begin < bytes.size();) {
        const int end = end_of_word(bytes, begin);
        words += (begin > 0 ? "\n " : "") +
                 ("=?UTF-8?B?" + bytes.mid(begin, end - begin).toBase64()) + "?=";
        begin = end;
    }
    return words;
}

QByteArray mail_of(const Event& event, const QString& address)
{
    return "To: " + address.toUtf8() + "\nSubject: " + header_text(title_of(event)) +
           "\nDate: " + date_of(event.time) + offset_of(event.time) +
           "\nAuto-Submitted: auto-generated\nMIME-Version: 1.0\n"
           "Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: base64\n\n" +
           body_of(message_of(event) + '\n');
}

bool is_mail_address(const QString& address)
{
    static const QRegularExpression form("\\A[A-Za-z0-9._%+=/_~][A-Za-z0-9._%+=/_~-]*"
                                         "(@[A-Za-z0-9][A-Za-z0-9.-]*)?\\z");
    return form.match(address).hasMatch();
}
