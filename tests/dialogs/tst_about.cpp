#include "dialogs/about.h"

#include "common/distributor.h"
#include "config/settings.h"
#include "support/form_slots.h"
#include "support/help_document.h"
#include "support/settings_home.h"
#include "support/test_program.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QFrame>
#include <QGridLayout>
#include <QImage>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

namespace
{
/** The dialog over settings of its own; what it would open in other programs is noted. */
class Bench : public QObject
{
    Q_OBJECT

public:
    explicit Bench(const QString& log_dir = "/logs/of the bench")
    {
        if (!Settings::load())
            qFatal("The settings of the test cannot be made.");
        load_help_document();
        Settings::set_log_dir(log_dir);
        for (const char* scheme : SCHEMES)
            QDesktopServices::setUrlHandler(scheme, this, "note");
        dialog = std::make_unique<About>(nullptr);
        dialog->show();
    }

    ~Bench() override
    {
        for (const char* scheme : SCHEMES)
            QDesktopServices::unsetUrlHandler(scheme);
    }

    QString text(const char* label) const
    {
        return dialog->findChild<QLabel*>(label)->text();
    }

    void press(const char* button) const
    {
        QTest::mouseClick(dialog->findChild<QPushButton*>(button), Qt::LeftButton);
    }

    QWidget* logo() const
    {
        return dialog->findChild<PaintBox*>();
    }

    SettingsHome home;
    QList<QUrl> opened;
    std::unique_ptr<About> dialog;

public slots:
    void note(const QUrl& url)
    {
        opened.append(url);
    }

private:
    static constexpr const char* SCHEMES[] = {"file", "https"};
};

struct Place
{
    const char* name;
    int row;
    int column;
    int columns;
    const char* text;  // null: told elsewhere
};

const Place PLACES[] = {
    {"frLogo", 0, 0, 2, nullptr},
    {"laTitleAndVersion", 1, 0, 2, "Kest Battery Tester (ver. v1.0.0b1)"},
    {"label_2", 2, 0, 2, Distributor::copyright},
    {"label", 3, 0, 2, nullptr},
    {"laSettingsDir", 4, 0, 2, nullptr},
    {"pbCopySettingsDir", 5, 0, 1, "Copy Settings Directory"},
    {"pbOpenSettingsDir", 5, 1, 1, "Open Settings Directory"},
    {"laLogDir", 6, 0, 2, "Log Dir: /logs/of the bench"},
    {"pbCopyLogDir", 7, 0, 1, "Copy Log Directory"},
    {"pbOpenLogDir", 7, 1, 1, "Open Log Directory"},
    {"pbWebpage", 8, 0, 2, "Visit Application Webpage"},
    {"pbOK", 9, 1, 1, "OK"},
};
}  // namespace

class AboutTest : public QObject
{
    Q_OBJECT

private slots:
    void each_widget_stands_in_its_place_data();
    void each_widget_stands_in_its_place();
    void every_slot_finds_its_widget();
    void title_and_copyright_are_centred();
    void the_note_names_the_license_file_and_the_mail_address();
    void the_note_is_shown_whole();
    void the_directories_are_those_of_the_settings();
    void directories_are_shown_as_they_are();
    void a_directory_is_copied();
    void an_unset_log_directory_is_copied_as_nothing();
    void a_directory_is_opened();
    void the_web_page_is_opened();
    void ok_accepts();
    void the_logo_is_painted_one_to_one();
    void the_logo_keeps_its_centre();
};

void AboutTest::each_widget_stands_in_its_place_data()
{
    QTest::addColumn<int>("place");
    for (int i = 0; i < int(std::size(PLACES)); ++i)
        QTest::newRow(PLACES[i].name) << i;
}

void AboutTest::each_widget_stands_in_its_place()
{
    QFETCH(int, place);
    const Place& expected = PLACES[place];
    const Bench bench;
    auto* widget = bench.dialog->findChild<QWidget*>(expected.name);
    auto* grid = bench.dialog->findChild<QGridLayout*>("gridLayout");
    QCOMPARE(grid->count(), int(std::size(PLACES)));
    int row = 0;
    int column = 0;
    int rows = 0;
    int columns = 0;
    grid->getItemPosition(grid->indexOf(widget), &row, &column, &rows, &columns);
    QCOMPARE((QList<int>{row, column, rows, columns}),
             (QList<int>{expected.row, expected.column, 1, expected.columns}));
    if (expected.text != nullptr)
        QCOMPARE(widget->property("text").toString(), QString(expected.text));
}

void AboutTest::every_slot_finds_its_widget()
{
    const Bench bench;
    QCOMPARE(bench.dialog->windowTitle(), QString("About"));
    QCOMPARE(slots_without_widget(bench.dialog.get()), QStringList());
    auto* outer = qobject_cast<QGridLayout*>(bench.dialog->layout());
    QCOMPARE(outer->objectName(), QString("gridLayout_2"));
    QCOMPARE(outer->itemAt(0)->layout()->objectName(), QString("gridLayout"));
}

void AboutTest::title_and_copyright_are_centred()
{
    const Bench bench;
    for (const char* name : {"laTitleAndVersion", "label_2"})
        QCOMPARE(bench.dialog->findChild<QLabel*>(name)->alignment(), Qt::AlignCenter);
}

void AboutTest::the_note_names_the_license_file_and_the_mail_address()
{
    const Bench bench;
    QVERIFY(bench.text("label").contains("GPL"));
    QVERIFY(bench.text("label").contains("license.txt"));
    QVERIFY(bench.text("label").contains(Distributor::mail_address));
    QVERIFY(bench.dialog->findChild<QLabel*>("label")->wordWrap());
}

void AboutTest::the_note_is_shown_whole()
{
    const Bench bench;
    const auto* note = bench.dialog->findChild<QLabel*>("label");
    for (const int width : {bench.dialog->width(), 1, 600, 900}) {
        bench.dialog->resize(width, 1);
        QVERIFY(note->width() > 267);
        QVERIFY(note->height() >= note->heightForWidth(note->width()));
    }
}

void AboutTest::the_directories_are_those_of_the_settings()
{
    const Bench bench("");
    QCOMPARE(bench.text("laSettingsDir"), "Settings Dir: " + bench.home.directory);
    QCOMPARE(bench.text("laLogDir"), QString("Log Dir: "));
}

void AboutTest::directories_are_shown_as_they_are()
{
    const Bench bench("/logs/<b>%1</b>");
    QCOMPARE(bench.text("laLogDir"), QString("Log Dir: /logs/<b>%1</b>"));
    for (const QLabel* label : bench.dialog->findChildren<QLabel*>())
        QCOMPARE(label->textFormat(), Qt::PlainText);
}

void AboutTest::a_directory_is_copied()
{
    const Bench bench;
    bench.press("pbCopySettingsDir");
    QCOMPARE(QGuiApplication::clipboard()->text(), bench.home.directory);
    bench.press("pbCopyLogDir");
    QCOMPARE(QGuiApplication::clipboard()->text(), QString("/logs/of the bench"));
    QVERIFY(bench.opened.isEmpty());
    QVERIFY(bench.dialog->isVisible());
}

void AboutTest::an_unset_log_directory_is_copied_as_nothing()
{
    const Bench bench("");
    QGuiApplication::clipboard()->setText("before");
    bench.press("pbCopyLogDir");
    QCOMPARE(QGuiApplication::clipboard()->text(), QString());
}

void AboutTest::a_directory_is_opened()
{
    const Bench bench("/logs/50% #1");
    bench.press("pbOpenSettingsDir");
    bench.press("pbOpenLogDir");
    QCOMPARE(bench.opened, (QList<QUrl>{QUrl::fromLocalFile(bench.home.directory),
                                        QUrl::fromLocalFile("/logs/50% #1")}));
    QVERIFY(bench.dialog->isVisible());
}

void AboutTest::the_web_page_is_opened()
{
    const Bench bench;
    bench.press("pbWebpage");
    QCOMPARE(bench.opened, QList<QUrl>{QUrl(Distributor::product_page)});
    QCOMPARE(bench.opened.first().path(), QString("/product-info/kestrometer.html"));
}

void AboutTest::ok_accepts()
{
    const Bench bench;
    const QSignalSpy accepted(bench.dialog.get(), &QDialog::accepted);
    bench.press("pbOK");
    QCOMPARE(accepted.size(), 1);
    QVERIFY(!bench.dialog->isVisible());
}

void AboutTest::the_logo_is_painted_one_to_one()
{
    const Bench bench;
    const QImage logo(":/battery_tester_logo_267x67.png");
    const QImage shown = bench.logo()->grab().toImage();
    QCOMPARE(shown.size(), QSize(267, 67));
    QCOMPARE(bench.dialog->findChild<QFrame*>("frLogo")->height(), 67);
    int compared = 0;
    for (int y = 0; y < logo.height(); ++y)
        for (int x = 0; x < logo.width(); ++x)
            if (logo.pixelColor(x, y).alpha() == 255) {
                QCOMPARE(shown.pixelColor(x, y), logo.pixelColor(x, y));
                ++compared;
            }
    QVERIFY(compared > 1000);
}

void AboutTest::the_logo_keeps_its_centre()
{
    const Bench bench;
    QVERIFY(QTest::qWaitForWindowExposed(bench.dialog.get()));
    auto* frame = bench.dialog->findChild<QFrame*>("frLogo");
    for (const int width : {900, 601, 700, 500}) {
        bench.dialog->resize(width, 500);
        bench.dialog->repaint();
        QVERIFY(bench.dialog->width() > 267);
        QCOMPARE(bench.logo()->geometry(), QRect((frame->width() - 267) / 2, 0, 267, 67));
        QCOMPARE(frame->height(), 67);
    }
}

KEST_TEST(AboutTest)
#include "tst_about.moc"
