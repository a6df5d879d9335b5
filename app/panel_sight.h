#pragma once

#include <QObject>

class QScrollArea;
class QWidget;

/**
 * Spares the panels that are scrolled out of sight all painting.
 *
 * What changes out of sight is dropped by the toolkit only at the next paint, after a walk past every
 * neighbour. With many stations that took as long as the painting of those in sight.
 */
class PanelSight : public QObject
{
public:
    /** @param new_area owns this object; its panels are the children of its widget */
    explicit PanelSight(QScrollArea* new_area);

    /** From now on the panel, which will be one of the area's, is painted only where it can be seen. */
    void watch(QWidget* panel);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void look();
    void look_at(QWidget* panel);

    QScrollArea* area;
};
