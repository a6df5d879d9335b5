#include "support/pdf_file.h"

#include <QProcess>
#include <QRegularExpression>

namespace
{
QByteArray output_of(const QString& tool, const QStringList& arguments)
{
    QProcess process;
    process.start(tool, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("%s of poppler-utils failed: %s", qPrintable(tool),
               process.readAllStandardError().constData());
    return process.readAllStandardOutput();
}

/** The lines of a table, without its two lines of heading. */
QStringList rows_of(const QByteArray& table)
{
    return QString::fromUtf8(table).split('\n', Qt::SkipEmptyParts).mid(2);
}

QString without_entities(QString text)
{
    return text.replace("&lt;", "<")
        .replace("&gt;", ">")
        .replace("&quot;", "\"")
        .replace("&amp;", "&");
}
}  // namespace

PdfFile::PdfFile(const QString& new_path) : path(new_path)
{
}

QString PdfFile::info(const QString& key) const
{
    const QStringList lines = QString::fromUtf8(output_of("pdfinfo", {path})).split('\n');
    for (const QString& line : lines) {
        if (line.startsWith(key + ':'))
            return line.section(':', 1).trimmed();
    }
    return QString();
}

QStringList PdfFile::lines() const
{
    const QByteArray text = output_of("pdftotext", {"-layout", "-enc", "UTF-8", path, "-"});
    QStringList found;
    for (const QString& line : QString::fromUtf8(text).remove('\f').split('\n')) {
        if (!line.trimmed().isEmpty())
            found << line.simplified();
    }
    return found;
}

QList<PdfWord> PdfFile::words() const
{
    static const QRegularExpression word(
        "<word xMin=\"([^\"]+)\" yMin=\"([^\"]+)\" xMax=\"([^\"]+)\" yMax=\"([^\"]+)\">([^<]*)<");
    const QByteArray xml = output_of("pdftotext", {"-bbox", "-enc", "UTF-8", path, "-"});
    QList<PdfWord> found;
    QRegularExpressionMatchIterator matches = word.globalMatch(QString::fromUtf8(xml));
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        const QPointF top_left(match.captured(1).toDouble(), match.captured(2).toDouble());
        const QPointF bottom_right(match.captured(3).toDouble(), match.captured(4).toDouble());
        found.append({without_entities(match.captured(5)), QRectF(top_left, bottom_right)});
    }
    return found;
}

QRectF PdfFile::box_of(const QString& text) const
{
    const QStringList wanted = text.split(' ', Qt::SkipEmptyParts);
    const QList<PdfWord> found = words();
    for (int first = 0; first + wanted.size() <= found.size(); ++first) {
        QRectF box;
        int matched = 0;
        while (matched < wanted.size() && found[first + matched].text == wanted[matched])
            box |= found[first + matched++].box;
        if (matched == wanted.size())
            return box;
    }
    return QRectF();
}

QStringList PdfFile::fonts() const
{
    return rows_of(output_of("pdffonts", {path}));
}

QStringList PdfFile::images() const
{
    return rows_of(output_of("pdfimages", {"-list", path}));
}

QImage PdfFile::rendered(int dpi) const
{
    return QImage::fromData(
        output_of("pdftoppm", {"-r", QString::number(dpi), "-png", "-singlefile", path}));
}
