#pragma once

#include <QObject>

class QUrl;

/** Takes the place of the viewer that a finished page opens in, and shows nothing. */
class NoViewer : public QObject
{
    Q_OBJECT

public:
    NoViewer();
    ~NoViewer() override;

public slots:
    void slot_open(const QUrl&);
};
