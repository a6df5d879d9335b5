#include "expected_drawing.h"

#include "charts/line_chart.h"
#include "support/test_files.h"

#include <QDir>
#include <QFile>
#include <QFontInfo>
#include <QTextStream>

#include <algorithm>
#include <cstdlib>

namespace
{

QString data_path(const QString& name)
{
    return test_data(QStringLiteral("charts/") + name);
}

/** Beside the test's other leavings, for the eyes of whoever reads the failure. */
QString actual_path(const QString& name)
{
    return QDir::temp().absoluteFilePath("kest_actual_" + name);
}

QStringList lines_of(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    return stream.readAll().split('\n', Qt::SkipEmptyParts);
}

QString write_lines(const QStringList& lines, const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return path + " cannot be written";
    QTextStream stream(&file);
    stream.setCodec("UTF-8");
    stream << lines.join('\n') << '\n';
    return "all lines are in " + path;
}

}  // namespace

QFont pinned_font(int points)
{
    QFont font("DejaVu Sans", points);
    font.setHintingPreference(QFont::PreferNoHinting);
    if (QFontInfo(font).family() != "DejaVu Sans")
        qFatal("What is expected is in DejaVu Sans, of the package fonts-dejavu-core.");
    return font;
}

void pin_fonts(LineChart& chart)
{
    chart.label_font = pinned_font(chart.label_font.pointSize());
    chart.caption_font = pinned_font(chart.caption_font.pointSize());
}

QString difference_to_file(const QStringList& lines, const QString& name)
{
    const QStringList expected = lines_of(data_path(name));
    if (lines == expected)
        return {};
    int i = 0;
    while (i < lines.size() && i < expected.size() && lines.at(i) == expected.at(i))
        ++i;
    return QString("line %1 is\n    %2\nand not\n    %3\n%4")
        .arg(i + 1)
        .arg(lines.value(i, "(end)"), expected.value(i, "(end)"),
             write_lines(lines, actual_path(name)));
}

int differing_pixels(const QImage& a, const QImage& b)
{
    constexpr int visible = 64;
    if (a.size() != b.size())
        return std::max(a.width() * a.height(), b.width() * b.height());
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            const int apart =
                std::max({std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                          std::abs(qBlue(p) - qBlue(q))});
            count += apart > visible ? 1 : 0;
        }
    }
    return count;
}

QString difference_to_image(const QImage& image, const QString& name)
{
    const int count = differing_pixels(image, QImage(data_path(name)));
    if (count <= TOLERATED_PIXELS)
        return {};
    image.save(actual_path(name));
    return QString("%1 pixels differ; the image is in %2").arg(count).arg(actual_path(name));
}
