#include "web_hook.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

struct WebHook::Private : QTcpServer
{
    explicit Private(WebHook* hook) : QTcpServer(hook)
    {
    }
};

namespace
{
/** Nothing as long as the request is not whole. */
bool is_whole(const QByteArray& bytes, WebRequest& request)
{
    const int end = bytes.indexOf("\r\n\r\n");
    if (end < 0)
        return false;
    request.head = bytes.left(end);
    request.first_line = bytes.left(bytes.indexOf("\r\n"));
    const QByteArray name = "\r\ncontent-length: ";
    const int length = request.head.toLower().indexOf(name);
    const QByteArray number = request.head.mid(length + name.size()).split('\r').first();
    request.body = bytes.mid(end + 4);
    return length < 0 || request.body.size() == number.toInt();
}

void reply(QTcpSocket* socket, const QByteArray& answer)
{
    if (answer == "hang")
        return;
    if (answer == "close") {
        socket->abort();
        return;
    }
    if (answer == "drip") {
        socket->write("HTTP/1.1 200 OK\r\n\r\n");
        auto* const timer = new QTimer(socket);
        QObject::connect(timer, &QTimer::timeout, socket, [socket] { socket->write("."); });
        timer->start(1);
        return;
    }
    const QList<QByteArray> words = answer.split(' ');
    QByteArray head = "HTTP/1.1 " + words[0] + " As told\r\nConnection: close\r\n";
    if (words.size() > 1)
        head += "Location: " + words[1] + "\r\n";
    socket->write(head + "Content-Length: 2\r\n\r\nok");
    socket->disconnectFromHost();
}
}  // namespace

WebHook::WebHook(const QList<QByteArray>& all_answers) : d(new Private(this)), answers(all_answers)
{
    if (!d->listen(QHostAddress::LocalHost))
        qFatal("No port is free.");
    connect(d, &QTcpServer::newConnection, this, [this] {
        QTcpSocket* const socket = d->nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            WebRequest request;
            // What is not whole yet stays where it is.
            if (!is_whole(socket->peek(socket->bytesAvailable()), request))
                return;
            socket->readAll();
            requests << request;
            reply(socket, answers.size() > 1 ? answers.takeFirst() : answers.first());
        });
    });
}

WebHook::~WebHook() = default;

QString WebHook::url(const QString& path) const
{
    return QString("http://127.0.0.1:%1%2").arg(d->serverPort()).arg(path);
}
