#pragma once

#include "log/outcome.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

/** Threads for as many logs at a time. They are the same for all logs, however many there are. */
class Workers
{
public:
    explicit Workers(int count);
    /** Waits for what is under way. */
    ~Workers();
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

    std::future<Outcome> begin(std::function<Outcome()> work);

private:
    void run();

    std::mutex mutex;
    std::condition_variable news;
    std::deque<std::packaged_task<Outcome()>> waiting;
    std::vector<std::thread> threads;
    bool over = false;
};
