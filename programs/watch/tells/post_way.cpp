#include "watch/tells/event_json.h"
#include "watch/tells/ways.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslError>
#include <QTimer>

namespace
{
constexpr int MOST_MESSAGES = 500;
constexpr int MOST_REDIRECTS = 5;

/** What all messages of a way have in common. */
struct Target
{
    QNetworkAccessManager* web;
    int patience_ms;
};

/** One message on its way through the web, over all redirections. */
class Post : public QObject
{
public:
    Post(const Target& where, const QByteArray& document, const Answer& whom_to_tell);
    void send(const QUrl& url);

private:
    void take(QNetworkReply* reply);
    void follow(const QUrl& from, const QUrl& to);
    void settle(Arrival arrival, const QString& reason);

    Target target;
    QByteArray body;
    Answer answer;
    QString mistrust;  ///< of the server's certificate; empty if there is none
    int redirects = 0;
};

Post::Post(const Target& where, const QByteArray& document, const Answer& whom_to_tell)
    : QObject(where.web), target(where), body(document), answer(whom_to_tell)
{
}

void Post::settle(Arrival arrival, const QString& reason)
{
    deleteLater();
    answer(arrival, reason);
}

void Post::send(const QUrl& url)
{
    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
    request.setHeader(QNetworkRequest::UserAgentHeader, "kest-watch");
    // Followed here: the toolkit would make a POST without a body of it.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    QNetworkReply* const reply = target.web->post(request, body);
    // A server that says something for ever, and one that says nothing, get the same time.
    connect(reply, &QNetworkReply::readyRead, reply, [reply] { reply->readAll(); });
    auto* const patience = new QTimer(reply);
    patience->setSingleShot(true);
    connect(patience, &QTimer::timeout, reply, &QNetworkReply::abort);
    patience->start(target.patience_ms);
    connect(reply, &QNetworkReply::sslErrors, this, [this](const QList<QSslError>& errors) {
        mistrust =
            QString("the certificate of the server is not trusted (%1). Its authority has to "
                    "be among those of this computer")
                .arg(errors.first().errorString());
    });
    connect(reply, &QNetworkReply::finished, this, [this, reply] { take(reply); });
}

/** Too busy, too slow, too many: what a server says that may take it the next time. */
bool is_passing(int status)
{
    return status == 408 || status == 425 || status == 429 || status >= 500;
}

void Post::take(QNetworkReply* reply)
{
    reply->deleteLater();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QUrl further = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    // 303: it was taken, and an answer for people lies elsewhere.
    if ((status >= 200 && status < 300) || status == 303)
        settle(Arrival::Arrived, {});
    else if (status == 0)
        settle(Arrival::Later, mistrust.isEmpty() ? reply->errorString() : mistrust);
    else if (further.isValid())
        follow(reply->url(), reply->url().resolved(further));
    else if (is_passing(status))
        settle(Arrival::Later, QString("the server says %1").arg(status));
    else
        settle(Arrival::Refused, QString("the server says %1").arg(status));
}

void Post::follow(const QUrl& from, const QUrl& to)
{
    const bool secure = to.scheme() == "https";
    const bool web_page = secure || to.scheme() == "http";
    if (!web_page || (from.scheme() == "https" && !secure))
        settle(Arrival::Refused, "it is redirected to where it must not go");
    else if (++redirects > MOST_REDIRECTS)
        settle(Arrival::Refused, "it is redirected in a circle");
    else
        send(to);
}
}  // namespace

Way post_way(const QString& text, QObject* owner, int patience_ms)
{
    const Target target = {new QNetworkAccessManager(owner), patience_ms};
    QUrl url(text);
    const QString topic = url.fragment();
    url.setFragment(QString());
    const auto send = [=](const Event& event, const Answer& answer) {
        QJsonObject object = event_json(event);
        if (!topic.isEmpty())
            object["topic"] = topic;
        (new Post(target, one_line_json(object), answer))->send(url);
    };
    // Without a password: the name stands in messages.
    return {"post " + QUrl(text).toString(QUrl::RemoveUserInfo), MOST_MESSAGES, send};
}
