#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <xlsxwriter.h>

/** A sheet of a workbook and its next free row. */
struct Sheet
{
    lxw_worksheet* worksheet = nullptr;  ///< the workbook's
    QByteArray name;
    lxw_row_t next_row = 0;
    int columns = 0;

    void add_number(int column, double value, lxw_format* format = nullptr);
    void add_text(int column, const QString& text, lxw_format* format = nullptr);
    /** "='Cycle 1'!$A$2:$A$90", from the row below the titles to the last. */
    QByteArray range(int column) const;
};

/** A workbook that keeps no rows in memory: each sheet is written from top to bottom. */
class Workbook
{
public:
    explicit Workbook(const QString& path);
    ~Workbook();
    Workbook(const Workbook&) = delete;
    Workbook& operator=(const Workbook&) = delete;

    /** With titles in its first row, which is repeated on each page; a name twice gets a number. */
    Sheet add_sheet(const QString& name, const QStringList& titles);
    /** Sets the area to be printed; to be called when all rows are there. */
    void end_sheet(const Sheet& sheet);

    /** An empty chart of points joined by lines, or of marks. */
    lxw_chart* add_chart(const char* x_title, const char* y_title, bool marks);

    /** Writes the file. Empty, or why it failed. */
    QString close();

    lxw_format* bold = nullptr;

private:
    lxw_workbook* book;
    QStringList names;
};
