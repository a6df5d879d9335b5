#include "guard/outcome.h"

bool Outcome::is_good() const
{
    return fate == Fate::Off || fate == Fate::Unheard || fate == Fate::InUse;
}
