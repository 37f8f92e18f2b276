#include "mealmasterfeed.h"

MealMasterFeed::MealMasterFeed(QIODevice &file, const MeasureCodes &codes, Prepare prepare)
    : m_reader([this, &file, &codes, prepare = std::move(prepare)] { read(file, codes, prepare); })
{ }

MealMasterFeed::~MealMasterFeed()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify_all();
    m_reader.join();
}

void MealMasterFeed::read(QIODevice &file, const MeasureCodes &codes, const Prepare &prepare)
{
    try {
        MealMasterReader reader(file, codes);
        Read item;
        std::vector<MealMasterRecipe> spent;
        while (reader.next(item.recipe)) {
            item.position = reader.position();
            if (prepare)
                prepare(item.recipe);
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [this] { return m_stop || m_ready.size() < kMostAhead; });
            if (m_stop)
                return;
            m_ready.push_back(std::move(item));
            item = Read();
            // The import waits only on an empty queue; waking it for every recipe would cost
            // more than the parsing saves.
            const bool wasEmpty = m_ready.size() == 1;
            spent.swap(m_spent);
            lock.unlock();
            if (wasEmpty)
                m_changed.notify_all();
            spent.clear();
        }
    } catch (...) {
        const std::lock_guard lock(m_mutex);
        m_failure = std::current_exception();
    }
    {
        const std::lock_guard lock(m_mutex);
        m_finished = true;
    }
    m_changed.notify_all();
}

bool MealMasterFeed::next(MealMasterRecipe &out, qint64 &position)
{
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_finished || !m_ready.empty(); });
    if (m_ready.empty()) {
        if (m_failure)
            std::rethrow_exception(std::exchange(m_failure, nullptr));
        return false;
    }
    m_spent.push_back(std::move(out));
    out = std::move(m_ready.front().recipe);
    position = m_ready.front().position;
    m_ready.pop_front();
    // The reader waits on a full queue: it is woken when half has been taken, to read ahead in
    // one go.
    const bool halfTaken = m_ready.size() == kMostAhead / 2;
    lock.unlock();
    if (halfTaken)
        m_changed.notify_all();
    return true;
}
