#include "log/workers.h"

#include <QCalendar>

// The toolkit makes its calendar where a date is first read. Where two threads are the first, one of
// them may find the name taken and the calendar not there yet: its date is no date then, and a good
// log is refused. So this thread is the first.
Workers::Workers(int count)
{
    const QCalendar calendar;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([this] { run(); });
}

Workers::~Workers()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        over = true;
    }
    news.notify_all();
    for (std::thread& thread : threads)
        thread.join();
}

std::future<Outcome> Workers::begin(std::function<Outcome()> work)
{
    std::packaged_task<Outcome()> task(std::move(work));
    std::future<Outcome> result = task.get_future();
    {
        const std::lock_guard<std::mutex> lock(mutex);
        waiting.push_back(std::move(task));
    }
    news.notify_one();
    return result;
}

void Workers::run()
{
    for (;;) {
        std::unique_lock<std::mutex> lock(mutex);
        news.wait(lock, [this] { return over || !waiting.empty(); });
        if (waiting.empty())
            return;
        std::packaged_task<Outcome()> task = std::move(waiting.front());
        waiting.pop_front();
        lock.unlock();
        task();
    }
}
