#include "bench_station.h"
#include "bench_table.h"

#include "app/main_window.h"
#include "station/test_station.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QSplitter>
#include <QTemporaryDir>
#include <QToolBar>

#include <algorithm>
#include <cstdio>

namespace
{
constexpr int ROUNDS = 15;
constexpr int COLUMNS = 8;

/** What a widget is to the eye, with tabs between the parts, in the order of Part. */
using Looks = QStringList;

enum Part
{
    CLASS,
    HIDDEN,  ///< empty or not, as below
    TEXT,
    FONT,
    FRAME,  ///< style and line width
    STYLE_SHEET,
    LIST,  ///< of a combo box, made before it is opened
};

/** Tells when the first widget has been painted. */
class FirstPaint : public QObject
{
public:
    FirstPaint()
    {
        qApp->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override
    {
        seen |= event->type() == QEvent::Paint;
        return false;
    }

    /** Shows the window and returns when its first frame is complete. */
    void await(QWidget& window)
    {
        window.show();
        while (!seen)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }

private:
    bool seen = false;
};

/** Made by the widget that it belongs to. */
bool is_inner_part(const QWidget* widget)
{
    return widget->objectName().startsWith("qt_") || widget->inherits("QScrollBar") ||
           widget->inherits("QComboBoxListView") || widget->inherits("QComboBoxPrivateScroller") ||
           widget->inherits("QComboBoxPrivateContainer");
}

QString text_of(const QWidget* widget)
{
    for (const char* name : {"text", "currentText"})
        if (widget->property(name).isValid())
            return widget->property(name).toString();
    return QString();
}

QString frame_of(const QWidget* widget)
{
    const auto* frame = qobject_cast<const QFrame*>(widget);
    return frame == nullptr ? QString()
                            : QString("%1 %2").arg(frame->frameStyle()).arg(frame->lineWidth());
}

Looks looks_of(const QWidget& root, const QList<TestStation*>& left_out)
{
    Looks looks;
    for (const QWidget* widget : root.findChildren<QWidget*>()) {
        const auto is_above = [widget](const TestStation* station) {
            return station == widget || station->isAncestorOf(widget);
        };
        if (is_inner_part(widget) || std::any_of(left_out.begin(), left_out.end(), is_above))
            continue;
        const bool has_list =
            widget->inherits("QComboBox") && widget->findChild<QAbstractItemView*>() != nullptr;
        looks += QStringList({widget->metaObject()->className(), widget->isHidden() ? "-" : "",
                              text_of(widget), widget->font().toString(), frame_of(widget),
                              widget->styleSheet(), has_list ? "+" : ""})
                     .join('\t');
    }
    return looks;
}

template <typename Widget> QWidget* make_with_text(const QString& text, QWidget* parent)
{
    return new Widget(text, parent);
}

template <typename Widget> QWidget* make_bare(const QString&, QWidget* parent)
{
    return new Widget(parent);
}

QWidget* make_combo_box(const QString& text, QWidget* parent)
{
    auto* box = new QComboBox(parent);
    box->addItem(text);
    return box;
}

/** Any other class, those of our own among them, is as good as a plain widget. */
QWidget* make_widget(const QString& name, const QString& text, QWidget* parent)
{
    static const QHash<QString, QWidget* (*)(const QString&, QWidget*)> makers = {
        {"QCheckBox", make_with_text<QCheckBox>},
        {"QComboBox", make_combo_box},
        {"QFrame", make_bare<QFrame>},
        {"QLabel", make_with_text<QLabel>},
        {"QLineEdit", make_with_text<QLineEdit>},
        {"QMenu", make_bare<QMenu>},
        {"QMenuBar", make_bare<QMenuBar>},
        {"QPushButton", make_with_text<QPushButton>},
        {"QScrollArea", make_bare<QScrollArea>},
        {"QSpinBox", make_bare<QSpinBox>},
        {"QSplitter", make_bare<QSplitter>},
        {"QToolBar", make_bare<QToolBar>},
    };
    return makers.value(name, make_bare<QWidget>)(text, parent);
}

/** A widget's look as a program has it that need not read it. */
struct BareWidget
{
    BareWidget(const QStringList& parts, const QString& usual_font)
        : class_name(parts.at(CLASS)),
          text(parts.at(TEXT)),
          style_sheet(parts.at(STYLE_SHEET)),
          frame_style(parts.at(FRAME).section(' ', 0, 0).toInt()),
          line_width(parts.at(FRAME).section(' ', 1).toInt()),
          has_own_font(parts.at(FONT) != usual_font),
          hidden(!parts.at(HIDDEN).isEmpty()),
          has_list(!parts.at(LIST).isEmpty())
    {
        font.fromString(parts.at(FONT));
    }

    QString class_name;
    QString text;
    QString style_sheet;
    QFont font;
    int frame_style;
    int line_width;
    bool has_own_font;
    bool hidden;
    bool has_list;
};

using BareWidgets = std::vector<BareWidget>;

BareWidgets bare_widgets(const QString& looks, const QString& usual_font)
{
    BareWidgets widgets;
    for (const QString& look : looks.split('\n'))
        widgets.emplace_back(look.split('\t'), usual_font);
    return widgets;
}

QWidget* make(const BareWidget& look, QWidget* parent)
{
    QWidget* const widget = make_widget(look.class_name, look.text, parent);
    if (look.has_list)
        static_cast<QComboBox*>(widget)->view();
    if (look.has_own_font)
        widget->setFont(look.font);
    if (auto* const frame = qobject_cast<QFrame*>(widget)) {
        frame->setFrameStyle(look.frame_style);
        frame->setLineWidth(look.line_width);
    }
    if (!look.style_sheet.isEmpty())
        widget->setStyleSheet(look.style_sheet);
    if (look.hidden)
        widget->hide();
    return widget;
}

/** The same widgets without anything behind them, in a plain grid. */
void fill(QWidget* parent, const BareWidgets& widgets)
{
    auto* grid = new QGridLayout(parent);
    int place = 0;
    for (const BareWidget& look : widgets) {
        grid->addWidget(make(look, parent), place / COLUMNS, place % COLUMNS);
        ++place;
    }
}

/** The time to read what widgets there are does not count: a program of its own would know. */
void show_bare_window(int panels, const QStringList& description)
{
    // Any window asks for its font, which sets up all fonts at the first time.
    const QString usual_font = QApplication::font().toString();
    const double before = cpu_seconds();
    const QSize size(description.at(0).toInt(), description.at(1).toInt());
    const int column_width = description.at(2).toInt();
    const BareWidgets panel_widgets = bare_widgets(description.at(3), usual_font);
    const BareWidgets other_widgets = bare_widgets(description.at(4), usual_font);
    fprintf(stderr, "%f\n", cpu_seconds() - before);
    const double reading = cpu_seconds() - before;

    FirstPaint first_paint;
    QWidget window;
    auto* row = new QHBoxLayout(&window);
    auto* area = new QScrollArea(&window);
    auto* column = new QWidget(area);
    auto* stack = new QVBoxLayout(column);
    for (int i = 0; i < panels; ++i) {
        auto* panel = new QFrame(column);
        fill(panel, panel_widgets);
        stack->addWidget(panel);
    }
    area->setWidget(column);
    area->setFixedWidth(column_width);
    auto* others = new QWidget(&window);
    fill(others, other_widgets);
    row->addWidget(area);
    row->addWidget(others);
    window.setFixedSize(size);
    first_paint.await(window);
    std::printf("%.6f\n", cpu_seconds() - reading);
}

/** The real one, with previews for panels; the looks of its widgets are printed instead if wanted. */
void show_our_window(int panels, bool print_looks)
{
    FirstPaint first_paint;
    MainWindow window(nullptr);
    for (int i = 0; i < panels; ++i)
        window.add_station(new TestStation(&window, nullptr));
    first_paint.await(window);
    if (!print_looks) {
        std::printf("%.6f\n", cpu_seconds());
        return;
    }
    const Looks panel = looks_of(*TestStation::all_instances.first(), {});
    const Looks others = looks_of(window, TestStation::all_instances);
    std::printf("%d\f%d\f%d\f%s\f%s", window.width(), window.height(),
                window.findChild<QScrollArea*>()->width(), qPrintable(panel.join('\n')),
                qPrintable(others.join('\n')));
}

/** What this program prints when it is started anew with these arguments. */
QString output_of(const QStringList& arguments)
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(QCoreApplication::applicationFilePath(), arguments);
    process.waitForFinished(-1);
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    if (process.exitStatus() != QProcess::NormalExit || output.isEmpty())
        qFatal("A window was not painted.");
    return output;
}

BenchRow compare_windows(const char* work, int panels)
{
    const QString number = QString::number(panels);
    const QString looks = output_of({"looks", number});
    std::vector<double> ours;
    std::vector<double> limits;
    for (int round = 0; round < ROUNDS; ++round) {
        ours.push_back(output_of({"ours", number}).toDouble() * 1e6);
        limits.push_back(output_of({"bare", number, looks}).toDouble() * 1e6);
    }
    return {work, median(ours), median(limits), panels > 1 ? 1.5 : 1.4, "us"};
}

/** One window in a process of its own. */
int show_window(int& argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int panels = arguments.at(2).toInt();
    if (arguments.at(1) == "bare") {
        show_bare_window(panels, arguments.at(3).split('\f'));
    } else {
        show_our_window(panels, arguments.at(1) == "looks");
    }
    return 0;
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc > 2)
        return show_window(argc, argv);
    const QCoreApplication application(argc, argv);
    const QTemporaryDir folder;
    use_bench_settings(folder.path());
    print_bench_table({
        compare_windows("start to first paint, 1 panel / bare window", 1),
        compare_windows("start to first paint, 16 panels / bare window", 16),
    });
    return 0;
}
