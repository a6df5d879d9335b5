#include "log/workbook.h"

#include <QFile>

#include <cmath>

namespace
{
constexpr double COLUMN_WIDTH = 15.0;  // characters
constexpr int LONGEST_NAME = 31;

/** Sheets may not be named with these. */
QString allowed(QString name)
{
    for (const QChar character : QString("[]:*?/\\'"))
        name.remove(character);
    return name.left(LONGEST_NAME);
}
}  // namespace

void Sheet::add_number(int column, double value, lxw_format* format)
{
    if (std::isfinite(value))
        worksheet_write_number(worksheet, next_row, lxw_col_t(column), value, format);
}

void Sheet::add_text(int column, const QString& text, lxw_format* format)
{
    worksheet_write_string(worksheet, next_row, lxw_col_t(column), text.toUtf8().constData(),
                           format);
}

QByteArray Sheet::range(int column) const
{
    const QByteArray letter(1, char('A' + column));
    return "='" + name + "'!$" + letter + "$2:$" + letter + '$' + QByteArray::number(next_row);
}

Workbook::Workbook(const QString& path)
{
    lxw_workbook_options options = {};
    options.constant_memory = LXW_TRUE;
    options.use_zip64 = LXW_FALSE;
    book = workbook_new_opt(QFile::encodeName(path).constData(), &options);
    bold = workbook_add_format(book);
    format_set_bold(bold);
}

Workbook::~Workbook()
{
    if (book != nullptr)
        lxw_workbook_free(book);
}

Sheet Workbook::add_sheet(const QString& name, const QStringList& titles)
{
    QString free_name = allowed(name);
    for (int n = 2; names.contains(free_name); ++n)
        free_name = allowed(QString("%1 (%2)").arg(name).arg(n));
    names << free_name;
    Sheet sheet;
    sheet.name = free_name.toUtf8();
    sheet.worksheet = workbook_add_worksheet(book, sheet.name.constData());
    sheet.columns = titles.size();
    const lxw_col_t last = lxw_col_t(titles.size() - 1);
    worksheet_set_column(sheet.worksheet, 0, last, COLUMN_WIDTH, nullptr);
    worksheet_repeat_rows(sheet.worksheet, 0, 0);
    worksheet_freeze_panes(sheet.worksheet, 1, 0);
    worksheet_set_landscape(sheet.worksheet);
    worksheet_fit_to_pages(sheet.worksheet, 1, 0);
    for (int column = 0; column < titles.size(); ++column)
        sheet.add_text(column, titles[column], bold);
    ++sheet.next_row;
    return sheet;
}

void Workbook::end_sheet(const Sheet& sheet)
{
    worksheet_print_area(sheet.worksheet, 0, 0, sheet.next_row - 1, lxw_col_t(sheet.columns - 1));
}

lxw_chart* Workbook::add_chart(const char* x_title, const char* y_title, bool marks)
{
    lxw_chart* const chart =
        workbook_add_chart(book, marks ? LXW_CHART_SCATTER : LXW_CHART_SCATTER_STRAIGHT);
    chart_axis_set_name(chart->x_axis, x_title);
    chart_axis_set_name(chart->y_axis, y_title);
    return chart;
}

QString Workbook::close()
{
    const lxw_error error = workbook_close(book);
    book = nullptr;
    return error == LXW_NO_ERROR ? QString() : QString::fromUtf8(lxw_strerror(error));
}
