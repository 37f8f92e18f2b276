#pragma once
// A MealMaster file's recipes read in a thread of their own, a few ahead of the import that
// stores them: the next recipes are parsed while the database stores the last.

#include "mealmaster.h"

#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

class MealMasterFeed
{
public:
    // Work for the reading thread on each recipe read, its result left in the recipe's
    // prepared: what the importer can do without the database, done while it stores the last.
    using Prepare = std::function<void(MealMasterRecipe &)>;
    // The file and the codes must outlast the feed; the feed owns the file's position.
    MealMasterFeed(QIODevice &file, const MeasureCodes &codes, Prepare prepare = {});
    // Stops the reading, wherever it stands, and waits for it.
    ~MealMasterFeed();
    MealMasterFeed(const MealMasterFeed &) = delete;
    MealMasterFeed &operator=(const MealMasterFeed &) = delete;

    // The next recipe, and how far the reading had come with it (in bytes); false at the end
    // of the file. What failed in the reading fails here.
    bool next(MealMasterRecipe &out, qint64 &position);

private:
    struct Read {
        MealMasterRecipe recipe;
        qint64 position = 0;
    };
    void read(QIODevice &file, const MeasureCodes &codes, const Prepare &prepare);

    // Enough to keep the storing busy, little enough to hold in memory whatever the file.
    static constexpr std::size_t kMostAhead = 512;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Read> m_ready;
    // The recipes the import is done with, freed by the reading thread that made them: memory
    // is given back quicker where it was taken, and the storing has the less to do.
    std::vector<MealMasterRecipe> m_spent;
    bool m_finished = false; // the reading has come to the end, or failed
    bool m_stop = false; // the import wants no more
    std::exception_ptr m_failure;
    std::thread m_reader;
};
