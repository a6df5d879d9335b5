#pragma once

#include <QFile>

/**
 * The bytes of a log, read only, as the application reads them: without a trace on the file.
 *
 * A log that grows meanwhile ends where it ended when it was opened: whoever writes is never waited for.
 * A line longer than LONGEST_LINE ends the input: what has such lines is no log, and would fill the
 * memory.
 */
class LogInput : public QIODevice
{
public:
    static constexpr qint64 LONGEST_LINE = qint64(64) * 1024 * 1024;  ///< bytes

    /** Leaves the time of the last access as it is where the system allows. False: see errorString. */
    bool open_log(const QString& path);

    bool isSequential() const override;
    bool atEnd() const override;

    /** Read by all of them since the program began. */
    static qint64 bytes_of_all();
    /** The last byte is a line end, or there is none. */
    bool ends_with_line_end() const;
    bool ends_with_nul() const;
    bool line_too_long() const;
    /** Among the bytes read; the application passes over them. */
    bool has_carriage_returns() const;
    /** Bytes before the first character, as other programs save texts. */
    bool begins_with_byte_order_mark() const;
    /** By that mark, of UTF-16 or UTF-32. */
    bool has_wide_characters() const;
    /** What could be read ended before the file did: see errorString. */
    bool failed() const;

protected:
    qint64 readData(char* data, qint64 most) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    bool refuse(const QString& reason);

    QFile file;
    qint64 read_so_far = 0;
    qint64 line_begin = 0;
    qint64 size_at_open = 0;
    QByteArray first_bytes;
    char last = '\n';
    bool too_long = false;
    bool carriage_returns = false;
    bool read_failed = false;
};
