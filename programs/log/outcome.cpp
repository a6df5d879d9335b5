#include "log/outcome.h"

Outcome Outcome::failure(const QString& path, const QString& sentence)
{
    Outcome outcome;
    outcome.json = {{"file", path}, {"error", sentence}};
    outcome.messages << sentence;
    outcome.code = EXIT_SOMETHING_TO_TELL;
    return outcome;
}
