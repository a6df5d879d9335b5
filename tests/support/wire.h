#pragma once

#include "simulator/pseudo_terminal.h"

#include <QByteArray>
#include <QString>

#include <functional>

class Kestrometer;

/** Handles events until `done` holds; false after a minute, which only a failing test waits for. */
bool spin_until(const std::function<bool()>& done);

/**
 * The cable of an instrument and the instrument's end of it, both exact to the byte.
 *
 *     Wire wire;
 *     Kestrometer instrument(wire.port_name());
 *     QVERIFY(wire.send("x\t48.00\t0.0\tx\tx\tID=7\tO", instrument));
 *     instrument.set_state(Charging);
 *     QCOMPARE(wire.commands(), QByteArray("C"));
 */
class Wire
{
public:
    Wire();
    ~Wire();
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    /** "pts/5", for the constructor of Kestrometer; make that object after this one. */
    QString port_name() const;

    /** Sends the line and "\r\n", and returns when `instrument` and its listeners are through with it. */
    bool send(const QByteArray& line, Kestrometer& instrument);
    /** The same for bytes as they are. */
    bool send_bytes(const QByteArray& bytes, Kestrometer& instrument);

    /** All bytes commanded since the last call; none is still under way. */
    QByteArray commands();

    /** The port vanishes. */
    void hang_up();

private:
    PseudoTerminal terminal;
    int marker_end = -1;  ///< the application's side, through which commands() marks where to stop
};
