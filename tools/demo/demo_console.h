#pragma once

#include <QString>

#include <cstdio>

/**
 * Leads what the program prints (its words about a stuck instrument, say) into a file while this lives,
 * as they would alarm whoever meets it for the first time; the demo's own words still reach the terminal.
 */
class DemoConsole
{
public:
    explicit DemoConsole(const QString& file);
    ~DemoConsole();
    DemoConsole(const DemoConsole&) = delete;
    DemoConsole& operator=(const DemoConsole&) = delete;

    /** Says it where standard output led before. */
    void tell(const QString& text) const;

private:
    FILE* terminal =
        nullptr;  ///< owned; null if the file could not be made, and nothing was changed
};
