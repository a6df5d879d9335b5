#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QString>
#include <QVariantList>

/** A service of the desktop or of the system, played by python3-dbusmock on a bus of the test. */
class MockService
{
public:
    /**
     * @param mock_arguments of dbusmock, as {"--template", "logind"}
     * @param service_name what it is called on the bus
     */
    MockService(const QByteArray& bus_address, const QStringList& mock_arguments,
                const QString& service_name, const QString& object_path);
    ~MockService();
    MockService(const MockService&) = delete;
    MockService& operator=(const MockService&) = delete;

    bool runs() const;
    /** The arguments of all calls of a method, in their order. */
    QList<QVariantList> calls(const QString& method) const;
    /** How many rows a method of the service answers with. */
    int rows(const QString& interface, const QString& method) const;
    /** Has the mock do something, as AddMethod. */
    bool arrange(const QString& method, const QVariantList& arguments) const;

private:
    QProcess process;
    QString name;
    QString path;
    QString connection;
    bool is_there = false;
};
