#include "watch/watch.h"

Watch::Watch(const WatchSettings& watch_settings) : settings(watch_settings)
{
}

Look Watch::look(const Moment&)
{
    return Look();
}
