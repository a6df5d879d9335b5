#pragma once

#include <QImage>
#include <QList>
#include <QRectF>
#include <QString>
#include <QStringList>

/** A word of a page and its box, in points from the page's upper left corner. */
struct PdfWord
{
    QString text;
    QRectF box;
};

/** A PDF file as the tools of Poppler (package poppler-utils) read it. */
class PdfFile
{
public:
    explicit PdfFile(const QString& new_path);

    /** "Pages" gives "1", "Page size" "612 x 792 pts (letter)". */
    QString info(const QString& key) const;
    /** The page's lines of text, blanks made single. */
    QStringList lines() const;
    QList<PdfWord> words() const;
    /** Where these words stand side by side in this order, whatever the page has between them. */
    QRectF box_of(const QString& text) const;
    /** One row per font: name, type, encoding, embedded and so on. */
    QStringList fonts() const;
    /** One row per image: page, number, kind, width, height and so on. */
    QStringList images() const;
    QImage rendered(int dpi) const;

private:
    QString path;
};
