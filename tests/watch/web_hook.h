#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>

/** A request as it came. */
struct WebRequest
{
    QByteArray first_line;  ///< "POST /bench HTTP/1.1"
    QByteArray head;        ///< with the first line
    QByteArray body;
};

/** A web server of a test, which answers one request after the other as it was told. */
class WebHook : public QObject
{
public:
    /**
     * @param all_answers "200", "307 /other" and so on; "hang" for one that never comes, "drip" for one
     *     that never ends, "close" for a connection that breaks; the last one is given for ever
     */
    explicit WebHook(const QList<QByteArray>& all_answers);
    ~WebHook() override;

    QString url(const QString& path) const;

    QList<WebRequest> requests;  ///< whole ones

private:
    struct Private;
    Private* d;  ///< owned by Qt
    QList<QByteArray> answers;
};
