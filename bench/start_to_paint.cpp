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

void set_font(QWidget* widget, const QString& description)
{
    static const QString usual = QApplication::font().toString();
    static QHash<QString, QFont> fonts;
    if (description == usual)
        return;
    QFont& font = fonts[description];
    font.fromString(description);
    widget->setFont(font);
}

/** The same widgets without anything behind them, in a plain grid. */
void fill(QWidget* parent, const Looks& looks)
{
    auto* grid = new QGridLayout(parent);
    int place = 0;
    for (const QString& look : looks) {
        const QStringList parts = look.split('\t');
        QWidget* widget = make_widget(parts.at(CLASS), parts.at(TEXT), parent);
        if (!parts.at(LIST).isEmpty())
            static_cast<QComboBox*>(widget)->view();
        set_font(widget, parts.at(FONT));
        if (auto* frame = qobject_cast<QFrame*>(widget)) {
            frame->setFrameStyle(parts.at(FRAME).section(' ', 0, 0).toInt());
            frame->setLineWidth(parts.at(FRAME).section(' ', 1).toInt());
        }
        if (!parts.at(STYLE_SHEET).isEmpty())
            widget->setStyleSheet(parts.at(STYLE_SHEET));
        if (!parts.at(HIDDEN).isEmpty())
            widget->hide();
        grid->addWidget(widget, place / COLUMNS, place % COLUMNS);
        ++place;
    }
}

void show_bare_window(int panels, QSize size, int column_width, const Looks& panel_looks,
                      const Looks& other_looks)
{
    FirstPaint first_paint;
    QWidget window;
    auto* row = new QHBoxLayout(&window);
    auto* area = new QScrollArea(&window);
    auto* column = new QWidget(area);
    auto* stack = new QVBoxLayout(column);
    for (int i = 0; i < panels; ++i) {
        auto* panel = new QFrame(column);
        fill(panel, panel_looks);
        stack->addWidget(panel);
    }
    area->setWidget(column);
    area->setFixedWidth(column_width);
    auto* others = new QWidget(&window);
    fill(others, other_looks);
    row->addWidget(area);
    row->addWidget(others);
    window.setFixedSize(size);
    first_paint.await(window);
    std::printf("%.6f\n", cpu_seconds());
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
    return {work, median(ours), median(limits), 1.4, "us"};
}

/** One window in a process of its own. */
int show_window(int& argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const int panels = arguments.at(2).toInt();
    if (arguments.at(1) == "bare") {
        const QStringList all = arguments.at(3).split('\f');
        show_bare_window(panels, QSize(all.at(0).toInt(), all.at(1).toInt()), all.at(2).toInt(),
                         all.at(3).split('\n'), all.at(4).split('\n'));
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
