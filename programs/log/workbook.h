#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

#include <xlsxwriter.h>

/** What a column holds. Its cells need not say how they are shown. */
struct ColumnKind
{
    const char* title;
    double width;        ///< characters
    const char* format;  ///< of its numbers, "0.00"; null for texts
};

/** A sheet of a workbook and its next free row. */
struct Sheet
{
    lxw_worksheet* worksheet = nullptr;  ///< the workbook's
    QByteArray name;
    lxw_row_t next_row = 0;
    int columns = 0;
    int printed_rows = 0;  ///< with the charts below the rows; 0 for the rows alone

    void add_number(int column, double value);
    void add_text(int column, const QString& text);
    /** "='Cycle 1'!$A$2:$A$90", from the row below the titles to the last. */
    QByteArray range(int column) const;
};

/** A workbook that keeps no rows in memory: each sheet is written from top to bottom. */
class Workbook
{
public:
    /** What waits for its place in the file lies in the folder of `path`, too, under no name. */
    explicit Workbook(const QString& path);
    ~Workbook();
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;

    /** With titles in its first row, which is repeated on each page; a name twice gets a number. */
    Sheet add_sheet(const QString& name, const QVector<ColumnKind>& columns);
    /** Sets the area to be printed; to be called when all rows and charts are there. */
    void end_sheet(const Sheet& sheet);
    /** On each page of the sheet; that of a sheet without it bears the sheet's name alone. */
    void set_page_title(const Sheet& sheet, const QString& title);

    /** An empty chart of points joined by lines, or of marks. */
    lxw_chart* add_chart(const char* x_title, const char* y_title, bool marks);
    /** A curve named after the sheet that it is taken from. */
    void add_curve(lxw_chart* chart, const Sheet& from, int x_column, int y_column);

    /** Writes the file. Empty, or why it failed. */
    QString close();

private:
    lxw_format* format_of(const char* number_format);
    QString why_rows_are_lost() const;
    QString why_no_room() const;

    QByteArray folder;
    lxw_workbook* book;
    lxw_format* text_title;
    lxw_format* text_column;
    lxw_format* number_title;
    QHash<QByteArray, lxw_format*> formats;  ///< the workbook's, by their number format
    QStringList names;
    QList<lxw_worksheet*> sheets;  ///< the workbook's
    QString failure;               ///< the first; empty so far
};
