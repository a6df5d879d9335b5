#include "log/workbook.h"

#include "log/quiet_library.h"
#include "programs/common/terminal.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace
{
constexpr int LONGEST_NAME = 31;
constexpr uint8_t A4 = 9;
constexpr uint8_t INDENT = 1;        // numbers to the left of a text end where it begins
constexpr float LINE_WIDTH = 1.25F;  // points

/** Sheets may not be named with these. */
QString allowed(QString name)
{
    for (const QChar character : QString("[]:*?/\\'"))
        name.remove(character);
    return name.left(LONGEST_NAME);
}

QString system_error(int number)
{
    return QString::fromLocal8Bit(std::strerror(number));
}
}  // namespace

void Sheet::add_number(int column, double value)
{
    if (worksheet != nullptr && std::isfinite(value))
        worksheet_write_number(worksheet, next_row, lxw_col_t(column), value, nullptr);
}

void Sheet::add_text(int column, const QString& text)
{
    // What no terminal should obey no workbook may hold: its readers would refuse it as a whole.
    if (worksheet != nullptr)
        worksheet_write_string(worksheet, next_row, lxw_col_t(column),
                               shown(text).toUtf8().constData(), nullptr);
}

QByteArray Sheet::range(int column) const
{
    const QByteArray letter(1, char('A' + column));
    return "='" + name + "'!$" + letter + "$2:$" + letter + '$' + QByteArray::number(next_row);
}

Workbook::Workbook(const QString& path) : folder(QFile::encodeName(QFileInfo(path).path()))
{
    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    options.tmpdir = folder.data();
    options.use_zip64 = LXW_FALSE;
    book = workbook_new_opt(QFile::encodeName(path).constData(), &options);
    text_title = workbook_add_format(book);
    format_set_bold(text_title);
    format_set_indent(text_title, INDENT);
    text_column = workbook_add_format(book);
    format_set_indent(text_column, INDENT);
    number_title = workbook_add_format(book);
    format_set_bold(number_title);
    format_set_align(number_title, LXW_ALIGN_RIGHT);
}

Workbook::~Workbook()
{
    if (book != nullptr)
        lxw_workbook_free(book);
}

lxw_format* Workbook::format_of(const char* number_format)
{
    lxw_format*& format = formats[number_format];
    if (format == nullptr) {
        format = workbook_add_format(book);
        format_set_num_format(format, number_format);
    }
    return format;
}

Sheet Workbook::add_sheet(const QString& name, const QVector<ColumnKind>& columns)
{
    QString free_name = allowed(name);
    for (int n = 2; names.contains(free_name); ++n)
        free_name = allowed(QString("%1 (%2)").arg(name).arg(n));
    names << free_name;
    Sheet sheet;
    sheet.name = free_name.toUtf8();
    sheet.columns = columns.size();
    ++sheet.next_row;
    errno = 0;
    sheet.worksheet = workbook_add_worksheet(book, sheet.name.constData());
    if (sheet.worksheet == nullptr) {
        failure = system_error(errno == 0 ? ENOMEM : errno);
        return sheet;
    }
    sheets << sheet.worksheet;
    worksheet_repeat_rows(sheet.worksheet, 0, 0);
    worksheet_freeze_panes(sheet.worksheet, 1, 0);
    worksheet_set_paper(sheet.worksheet, A4);
    worksheet_fit_to_pages(sheet.worksheet, 1, 0);
    set_page_title(sheet, QString());
    for (int i = 0; i < columns.size(); ++i) {
        const ColumnKind& column = columns[i];
        const bool text = column.format == nullptr;
        worksheet_set_column(sheet.worksheet, lxw_col_t(i), lxw_col_t(i), column.width,
                             text ? text_column : format_of(column.format));
        worksheet_write_string(sheet.worksheet, 0, lxw_col_t(i), column.title,
                               text ? text_title : number_title);
    }
    return sheet;
}

void Workbook::set_page_title(const Sheet& sheet, const QString& title)
{
    constexpr int LONGEST_TITLE = 100;
    if (sheet.worksheet == nullptr)
        return;
    // What follows a single "&" is a place marker.
    const QByteArray text = shown(title.left(LONGEST_TITLE)).replace('&', "&&").toUtf8();
    worksheet_set_header(sheet.worksheet, ("&L" + text + "&R&A").constData());
    worksheet_set_footer(sheet.worksheet, "&RPage &P of &N");
}

void Workbook::end_sheet(const Sheet& sheet)
{
    if (sheet.worksheet == nullptr)
        return;
    const lxw_row_t rows = qMax(sheet.next_row, lxw_row_t(sheet.printed_rows));
    worksheet_print_area(sheet.worksheet, 0, 0, rows - 1, lxw_col_t(sheet.columns - 1));
}

lxw_chart* Workbook::add_chart(const char* x_title, const char* y_title, bool marks)
{
    lxw_chart* const chart =
        workbook_add_chart(book, marks ? LXW_CHART_SCATTER : LXW_CHART_SCATTER_STRAIGHT);
    chart_axis_set_name(chart->x_axis, x_title);
    chart_axis_set_name(chart->y_axis, y_title);
    chart_legend_set_position(chart, LXW_CHART_LEGEND_BOTTOM);
    // Below the curves, also where these are negative.
    chart_axis_set_label_position(chart->x_axis, LXW_CHART_AXIS_LABEL_POSITION_LOW);
    return chart;
}

void Workbook::add_curve(lxw_chart* chart, const Sheet& from, int x_column, int y_column)
{
    lxw_chart_series* const curve =
        chart_add_series(chart, from.range(x_column).constData(), from.range(y_column).constData());
    chart_series_set_name(curve, from.name.constData());
    if (chart->type != LXW_CHART_SCATTER_STRAIGHT)
        return;
    lxw_chart_line line = {};
    line.width = LINE_WIDTH;
    chart_series_set_line(curve, &line);
}

/** The library does not look whether its rows have come to lie on the disk. */
QString Workbook::why_rows_are_lost() const
{
    for (const lxw_worksheet* sheet : sheets) {
        errno = 0;
        if (std::fflush(sheet->file) != 0 || std::ferror(sheet->file) != 0)
            return system_error(errno == 0 ? ENOSPC : errno);
    }
    return QString();
}

/** Nor does it look after the small parts, which it writes only now. */
QString Workbook::why_no_room() const
{
    const off_t room = (off_t(1) << 20) + off_t(sheets.size()) * (64 << 10);
    const int handle = ::open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0600);
    if (handle < 0)
        return QString();  // not every file system has files without a name
    const int refused = ::posix_fallocate(handle, 0, room);
    ::close(handle);
    return refused == 0 ? QString() : system_error(refused);
}

QString Workbook::close()
{
    for (const QString& reason : {failure, why_rows_are_lost(), why_no_room()})
        if (!reason.isEmpty())
            return reason;
    const QuietLibrary quiet;
    errno = 0;
    const lxw_error error = workbook_close(book);
    const int number = errno;
    book = nullptr;
    if (error == LXW_NO_ERROR)
        return QString();
    return number != 0 ? system_error(number) : QString("no workbook can be made of it");
}
