#include "support/test_files.h"
#include "support/test_program.h"
#include "watch/tells/event_json.h"
#include "watch/tells/event_text.h"
#include "watch/tells/mail_text.h"
#include "watch/tells/ways.h"
#include "watch_events.h"
#include "web_hook.h"

#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <csignal>

/** Messages on their ways, to real commands, a mail program and a web server. */
class WatchWaysTest : public QObject
{
    Q_OBJECT

private slots:
    void a_command_gets_the_event_whole_and_harmless_data();
    void a_command_gets_the_event_whole_and_harmless();
    void no_shell_is_involved();
    void a_shell_is_if_somebody_writes_one();
    void a_command_that_fails_is_told_data();
    void a_command_that_fails_is_told();
    void a_command_that_hangs_is_ended_with_all_it_started();
    void a_command_has_its_signals();
    void a_command_that_reads_nothing_is_no_trouble();
    void a_mail_goes_to_sendmail();
    void a_mail_may_come_later_data();
    void a_mail_may_come_later();
    void a_post_is_the_event();
    void a_post_says_its_topic();
    void a_server_may_say_anything_data();
    void a_server_may_say_anything();
    void a_post_follows_redirections_with_its_message();
    void a_certificate_that_nobody_vouches_for_is_told();
    void nobody_listens();
};

namespace
{
constexpr int PATIENCE_MS = 120000;

/** What a way makes of an event: "arrived", "later: REASON", "refused: REASON". */
QString sent(const Way& way, const Event& event)
{
    QString answer;
    way.send(event, [&](Arrival arrival, const QString& reason) {
        static const QStringList words = {"arrived", "later: ", "refused: "};
        answer += words[int(arrival)] + reason;
    });
    if (!QTest::qWaitFor([&] { return !answer.isEmpty(); }, PATIENCE_MS))
        return "no answer";
    return answer;
}

/** A mail program that keeps what it gets, first on the path as long as this lives. */
class FakeSendmail
{
public:
    explicit FakeSendmail(const QByteArray& status)
    {
        const QString path = folder.filePath("sendmail");
        const QByteArray script = "#!/bin/sh\nprintf '%s\\n' \"$@\" > " +
                                  QFile::encodeName(folder.filePath("arguments")) + "\ncat > " +
                                  QFile::encodeName(folder.filePath("mail")) + "\nexit " + status +
                                  "\n";
        if (!write_file(path, script) ||
            !QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner))
            qFatal("No mail program can be made.");
        qputenv("PATH", QFile::encodeName(folder.path()) + ":" + old_path);
    }
    ~FakeSendmail()
    {
        qputenv("PATH", old_path);
    }
    QByteArray arguments() const
    {
        return content_of(folder.filePath("arguments"));
    }
    QByteArray mail() const
    {
        return content_of(folder.filePath("mail"));
    }

private:
    QTemporaryDir folder;
    QByteArray old_path = qgetenv("PATH");
};

/** A web server with a certificate that it has made itself. */
class SecureHook
{
public:
    SecureHook()
    {
        server.setWorkingDirectory(folder.path());
        server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        server.start("/usr/bin/python3", {"-c", PROGRAM});
        while (!server.canReadLine())
            if (!server.waitForReadyRead(PATIENCE_MS))
                return;
        url = "https://127.0.0.1:" + QString::fromLatin1(server.readLine().trimmed()) + "/bench";
    }
    ~SecureHook()
    {
        server.kill();
        server.waitForFinished(PATIENCE_MS);
    }

    QTemporaryDir folder;
    QString url;  ///< empty if it does not come up

private:
    static constexpr const char* PROGRAM = R"(
import http.server, ssl, subprocess
subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2",
                "-keyout", "key", "-out", "certificate", "-subj", "/CN=127.0.0.1",
                "-addext", "subjectAltName=IP:127.0.0.1"], check=True, stderr=subprocess.DEVNULL)
class Hook(http.server.BaseHTTPRequestHandler):
    def do_POST(self):
        open("got", "w").close()
        self.send_response(200)
        self.end_headers()
server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Hook)
server.handle_error = lambda request, address: None
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain("certificate", "key")
server.socket = context.wrap_socket(server.socket, server_side=True)
print(server.server_port, flush=True)
server.serve_forever()
)";

    QProcess server;
};

/** Whether a process is no more; what nobody has looked after yet counts as gone, too. */
bool is_gone(const QByteArray& process)
{
    const QByteArray stat = content_of("/proc/" + process + "/stat");
    return stat == "(cannot be read)" || stat.contains(") Z ");
}
}  // namespace

void WatchWaysTest::a_command_gets_the_event_whole_and_harmless_data()
{
    QTest::addColumn<QString>("name");
    for (const HostileName& hostile : hostile_names())
        QTest::newRow(hostile.what) << hostile.name;
}

void WatchWaysTest::a_command_gets_the_event_whole_and_harmless()
{
    QFETCH(QString, name);
    const QTemporaryDir folder;
    const Event event = event_named(name);
    const QString command = QString("sh -c \"cd %1 && env -0 > variables && cat > input\"");
    QObject owner;
    QCOMPARE(sent(command_way(command.arg(folder.path()), 60, &owner), event), QString("arrived"));
    QCOMPARE(content_of(folder.filePath("input")), one_line_json(event_json(event)) + "\n");
    const QList<QByteArray> variables = content_of(folder.filePath("variables")).split('\0');
    for (const QByteArray& variable : event_environment(event))
        QVERIFY2(variables.contains(variable), variable.constData());
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList({"input", "variables"}));
}

void WatchWaysTest::no_shell_is_involved()
{
    const QTemporaryDir folder;
    const QString command = QString("touch \"%1/one two\" %1/$HOME;x %1/$(id)").arg(folder.path());
    QObject owner;
    QCOMPARE(sent(command_way(command, 60, &owner), event_of_condition(Condition::Done)),
             QString("arrived"));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files),
             QStringList({"$(id)", "$HOME;x", "one two"}));
}

void WatchWaysTest::a_shell_is_if_somebody_writes_one()
{
    const QTemporaryDir folder;
    const QString command =
        "sh -c \"printf %s \"\"\"$KEST_TITLE\"\"\" > " + folder.path() + "/title\"";
    const Event event = event_named("$(id) 'x' \"y\"");
    QObject owner;
    QCOMPARE(sent(command_way(command, 60, &owner), event), QString("arrived"));
    QCOMPARE(QString::fromUtf8(content_of(folder.filePath("title"))), title_of(event));
}

void WatchWaysTest::a_command_that_fails_is_told_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("answer");
    add_row("its status", "sh -c \"exit 3\"", "refused: ended with status 3");
    add_row("a signal", "sh -c \"kill -KILL $$\"", "refused: was ended by signal 9");
    add_row("it is not there", "/nowhere/at-all --now",
            "refused: cannot be started: No such file or directory");
}

void WatchWaysTest::a_command_that_fails_is_told()
{
    QFETCH(QString, command);
    QObject owner;
    QTEST(sent(command_way(command, 60, &owner), event_of_condition(Condition::Done)), "answer");
}

void WatchWaysTest::a_command_that_hangs_is_ended_with_all_it_started()
{
    const QTemporaryDir folder;
    const QString command = QString("sh -c \"trap '' TERM; sleep 1000 & echo $$ $! > %1/processes; "
                                    "sleep 1000; sleep 1000\"")
                                .arg(folder.path());
    QObject owner;
    QCOMPARE(sent(command_way(command, 1, &owner), event_of_condition(Condition::Done)),
             QString("refused: had not ended after 1 seconds"));
    const QList<QByteArray> processes =
        content_of(folder.filePath("processes")).trimmed().split(' ');
    QCOMPARE(processes.size(), 2);
    for (const QByteArray& process : processes)
        QVERIFY2(QTest::qWaitFor([&] { return is_gone(process); }, PATIENCE_MS),
                 process.constData());
}

void WatchWaysTest::a_command_has_its_signals()
{
    sigset_t end;
    sigset_t before;
    ::sigemptyset(&end);
    ::sigaddset(&end, SIGTERM);
    ::sigprocmask(SIG_BLOCK, &end, &before);
    QObject owner;
    const QString answer = sent(command_way("sh -c \"kill -TERM $$; exit 0\"", 60, &owner),
                                event_of_condition(Condition::Done));
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    QCOMPARE(answer, QString("refused: was ended by signal 15"));
}

void WatchWaysTest::a_command_that_reads_nothing_is_no_trouble()
{
    QObject owner;
    QCOMPARE(sent(command_way("true", 60, &owner), event_named(QString(1000000, 'x'))),
             QString("arrived"));
}

void WatchWaysTest::a_mail_goes_to_sendmail()
{
    for (const HostileName& hostile : hostile_names()) {
        const FakeSendmail sendmail("0");
        const Event event = event_named(hostile.name);
        QObject owner;
        QCOMPARE(sent(mail_way("anna@example.org", &owner), event), QString("arrived"));
        QCOMPARE(sendmail.arguments(), QByteArray("-i\n--\nanna@example.org\n"));
        QCOMPARE(sendmail.mail(), mail_of(event, "anna@example.org"));
    }
}

void WatchWaysTest::a_mail_may_come_later_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QString>("answer");
    add_row("not now", QByteArray("75"), "later: sendmail ended with status 75");
    add_row("never", QByteArray("67"), "refused: sendmail ended with status 67");
    add_row("it hangs", QByteArray("$(sleep 1000)"),
            "later: sendmail had not ended after 1 seconds");
    add_row("it dies", QByteArray("$(kill -KILL $$)"), "later: sendmail was ended by signal 9");
}

void WatchWaysTest::a_mail_may_come_later()
{
    QFETCH(QByteArray, status);
    const FakeSendmail sendmail(status);
    QObject owner;
    const int patience_s = status.contains("sleep") ? 1 : 60;
    QTEST(
        sent(mail_way("anna@example.org", &owner, patience_s), event_of_condition(Condition::Done)),
        "answer");
}

void WatchWaysTest::a_post_is_the_event()
{
    WebHook hook({"200"});
    for (const HostileName& hostile : hostile_names()) {
        const Event event = event_named(hostile.name);
        QObject owner;
        QCOMPARE(sent(post_way(hook.url("/bench?a=b"), &owner), event), QString("arrived"));
        const WebRequest request = hook.requests.takeFirst();
        QCOMPARE(request.first_line, QByteArray("POST /bench?a=b HTTP/1.1"));
        QVERIFY(request.head.contains("Content-Type: application/json"));
        QCOMPARE(request.body, one_line_json(event_json(event)));
    }
}

void WatchWaysTest::a_post_says_its_topic()
{
    WebHook hook({"200"});
    QObject owner;
    QCOMPARE(sent(post_way(hook.url("/#bench"), &owner), event_of_condition(Condition::Done)),
             QString("arrived"));
    QCOMPARE(hook.requests[0].first_line, QByteArray("POST / HTTP/1.1"));
    QCOMPARE(QJsonDocument::fromJson(hook.requests[0].body)["topic"].toString(), QString("bench"));
}

void WatchWaysTest::a_server_may_say_anything_data()
{
    QTest::addColumn<QByteArray>("says");
    QTest::addColumn<int>("patience_ms");
    QTest::addColumn<QString>("answer");
    const auto row = [](const char* says, const char* answer, int patience_ms = PATIENCE_MS) {
        QTest::newRow(says) << QByteArray(says) << patience_ms << QString(answer);
    };
    row("200", "arrived");
    row("204", "arrived");
    row("303 /answer", "arrived");
    row("500", "later: the server says 500");
    row("503", "later: the server says 503");
    row("408", "later: the server says 408");
    row("429", "later: the server says 429");
    row("400", "refused: the server says 400");
    row("404", "refused: the server says 404");
    row("301", "refused: the server says 301");
    row("307 /again", "refused: it is redirected in a circle");
    row("307 file:///etc/passwd", "refused: it is redirected to where it must not go");
    row("close", "later: Connection closed");
    row("hang", "later: Operation canceled", 200);
    row("drip", "arrived", 200);
}

void WatchWaysTest::a_server_may_say_anything()
{
    QFETCH(QByteArray, says);
    QFETCH(int, patience_ms);
    const WebHook hook({says});
    QObject owner;
    QTEST(sent(post_way(hook.url("/bench"), &owner, patience_ms),
               event_of_condition(Condition::Done)),
          "answer");
}

void WatchWaysTest::a_post_follows_redirections_with_its_message()
{
    WebHook there({"200"});
    WebHook here({"301 /one", "302 two", "307 /three", "308 " + there.url("/there").toLatin1()});
    const Event event = event_of_condition(Condition::Done);
    QObject owner;
    QCOMPARE(sent(post_way(here.url("/bench"), &owner), event), QString("arrived"));
    QStringList asked;
    for (const WebRequest& request : here.requests + there.requests) {
        asked << request.first_line;
        QCOMPARE(request.body, one_line_json(event_json(event)));
    }
    QCOMPARE(asked, QStringList({"POST /bench HTTP/1.1", "POST /one HTTP/1.1", "POST /two HTTP/1.1",
                                 "POST /three HTTP/1.1", "POST /there HTTP/1.1"}));
}

void WatchWaysTest::a_certificate_that_nobody_vouches_for_is_told()
{
    const SecureHook hook;
    QVERIFY(!hook.url.isEmpty());
    QObject owner;
    const QString answer = sent(post_way(hook.url, &owner), event_of_condition(Condition::Done));
    QCOMPARE(answer, QString("later: the certificate of the server is not trusted (The certificate "
                             "is self-signed, and untrusted). Its authority has to be among those "
                             "of this computer"));
    // And so nothing was said to it.
    QVERIFY(!QFile::exists(hook.folder.filePath("got")));
}

void WatchWaysTest::nobody_listens()
{
    QString url;
    {
        const WebHook hook({"200"});
        url = hook.url("/bench");
    }
    QObject owner;
    QCOMPARE(sent(post_way(url, &owner), event_of_condition(Condition::Done)),
             QString("later: Connection refused"));
}

KEST_GUILESS_TEST(WatchWaysTest)
#include "tst_watch_ways.moc"
