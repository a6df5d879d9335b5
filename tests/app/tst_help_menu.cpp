#include "app/main_window.h"
#include "common/distributor.h"
#include "dialogs/about.h"
#include "dialogs/widget_font_debug_dialog.h"
#include "support/help_document.h"
#include "support/station_bench.h"
#include "support/test_program.h"

#include <QAction>
#include <QDesktopServices>
#include <QMenu>
#include <QTextBrowser>
#include <QtTest>

namespace
{
/** The help windows that are there; the program never deletes them, so the test does. */
QList<QTextBrowser*> help_windows()
{
    QList<QTextBrowser*> windows;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* browser = qobject_cast<QTextBrowser*>(widget))
            windows.append(browser);
    return windows;
}

struct Bench
{
    Bench()
    {
        load_test_settings(folder.path());
        forget_help_document();
        window = std::make_unique<MainWindow>(nullptr);
        window->show();
    }

    ~Bench()
    {
        qDeleteAll(help_windows());
    }

    void trigger(const char* action) const
    {
        window->findChild<QAction*>(action)->trigger();
    }

    QTemporaryDir folder;
    ModalAnswer answers;
    std::unique_ptr<MainWindow> window;
};

/** Takes the addresses that would be opened in other programs. */
class Web : public QObject
{
    Q_OBJECT

public:
    Web()
    {
        QDesktopServices::setUrlHandler("https", this, "note");
    }

    ~Web() override
    {
        QDesktopServices::unsetUrlHandler("https");
    }

    QList<QUrl> opened;

public slots:
    void note(const QUrl& url)
    {
        opened.append(url);
    }
};
}  // namespace

/** What the help menu opens. */
class HelpMenuTest : public QObject
{
    Q_OBJECT

private slots:
    void the_menu_has_help_and_about();
    void help_opens_a_window_of_its_own();
    void each_request_opens_another();
    void the_manual_shows_its_picture();
    void the_link_goes_to_the_web_browser();
    void an_open_manual_does_not_keep_the_program_running();
    void about_runs_modally();
    void the_font_dialog_runs_without_a_menu();
};

void HelpMenuTest::the_menu_has_help_and_about()
{
    const Bench bench;
    QStringList texts;
    for (const QAction* action : bench.window->findChild<QMenu*>("menuHelp")->actions())
        texts.append(action->text());
    QCOMPARE(texts, (QStringList{"Help", "About"}));
}

void HelpMenuTest::help_opens_a_window_of_its_own()
{
    const Bench bench;
    bench.window->setGeometry(40, 50, 800, 600);
    const QRect geometry = bench.window->geometry();
    bench.trigger("actionHelp");
    QCOMPARE(help_windows().size(), 1);
    const QTextBrowser* browser = help_windows().first();
    QCOMPARE(browser->source(), QUrl("qrc:/help.html"));
    QVERIFY(browser->openExternalLinks());
    QCOMPARE(browser->geometry(), geometry);
    QVERIFY(browser->isVisible());
    QVERIFY(browser->isWindow());
    QVERIFY(!browser->isModal());
    QVERIFY(browser->parent() == nullptr);
    QCOMPARE(browser->windowTitle(), QString("Kest Battery Tester Help"));
    QVERIFY(browser->toPlainText().contains("Displays this help document."));
    QVERIFY(bench.answers.seen.empty());
}

void HelpMenuTest::each_request_opens_another()
{
    const Bench bench;
    bench.trigger("actionHelp");
    help_windows().first()->close();
    bench.trigger("actionHelp");
    QCOMPARE(help_windows().size(), 2);
}

void HelpMenuTest::the_manual_shows_its_picture()
{
    const Bench bench;
    bench.trigger("actionHelp");
    const QUrl url("qrc:/battery_tester_logo_267x67.png");
    const QVariant picture =
        help_windows().first()->document()->resource(QTextDocument::ImageResource, url);
    QVERIFY(!picture.isNull());
}

void HelpMenuTest::the_link_goes_to_the_web_browser()
{
    const Bench bench;
    const Web web;
    bench.trigger("actionHelp");
    QTextBrowser* browser = help_windows().first();
    const QTextCursor link = browser->document()->find("Product Page");
    browser->setTextCursor(link);
    QTest::mouseClick(browser->viewport(), Qt::LeftButton, Qt::NoModifier,
                      browser->cursorRect(link).center() - QPoint(8, 0));
    QCOMPARE(web.opened, QList<QUrl>{QUrl(Distributor::product_page)});
    QCOMPARE(browser->source(), QUrl("qrc:/help.html"));
}

void HelpMenuTest::an_open_manual_does_not_keep_the_program_running()
{
    const Bench bench;
    bench.trigger("actionHelp");
    QVERIFY(help_windows().first()->isVisible());
    const QSignalSpy last_closed(qApp, &QApplication::lastWindowClosed);
    QTimer closing;
    closing.setSingleShot(true);
    connect(&closing, &QTimer::timeout, [&bench] { bench.window->close(); });
    // Where the program would go on.
    connect(&closing, &QTimer::timeout, qApp, &QApplication::quit, Qt::QueuedConnection);
    closing.start(0);
    QApplication::exec();
    QCOMPARE(last_closed.size(), 1);
}

void HelpMenuTest::about_runs_modally()
{
    Bench bench;
    bool was_about = false;
    bench.answers.handle([&was_about](QWidget* dialog) {
        was_about = qobject_cast<About*>(dialog) != nullptr;
        static_cast<QDialog*>(dialog)->reject();
    });
    bench.trigger("actionAbout");
    QVERIFY(was_about);
    QVERIFY(bench.window->findChild<About*>() == nullptr);
}

void HelpMenuTest::the_font_dialog_runs_without_a_menu()
{
    Bench bench;
    const auto* action = bench.window->findChild<QAction*>("actionWidget_Font_Debug_Dialog");
    QCOMPARE(action->text(), QString("Widget Font Debug Dialog"));
    for (const QMenu* menu : bench.window->findChildren<QMenu*>())
        for (const QAction* of_menu : menu->actions())
            QVERIFY(of_menu != action);
    bool was_font_dialog = false;
    bench.answers.handle([&was_font_dialog](QWidget* dialog) {
        was_font_dialog = qobject_cast<WidgetFontDebugDialog*>(dialog) != nullptr;
        static_cast<QDialog*>(dialog)->reject();
    });
    bench.trigger("actionWidget_Font_Debug_Dialog");
    QVERIFY(was_font_dialog);
    QVERIFY(bench.window->findChild<WidgetFontDebugDialog*>() == nullptr);
}

KEST_TEST(HelpMenuTest)
#include "tst_help_menu.moc"
