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
    static constexpr qint64 LONGEST_LINE = 64 * 1024 * 1024;  ///< bytes

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
    /** CR LF line ends were among those read. */
    bool has_carriage_returns() const;

protected:
    qint64 readData(char* data, qint64 most) override;
    qint64 writeData(const char* data, qint64 size) override;

private:
    bool refuse(const QString& reason);

    QFile file;
    qint64 read_so_far = 0;
    qint64 line_begin = 0;
    qint64 size_at_open = 0;
    char last = '\n';
    bool too_long = false;
    bool carriage_returns = false;
};
