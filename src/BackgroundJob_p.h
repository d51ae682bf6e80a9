#pragma once
// Internal to kivmetadataui: not installed, not API.

#include "kivmetadataui_test_export_p.h"

#include <QString>

#include <cstddef>
#include <functional>
#include <memory>

class QObject;

namespace kivmetadataui {

// Runs one piece of work per item (reading or saving one file) on the
// application's thread pool, one worker per core, each item on exactly one
// worker. Cancelling lets every worker finish the item it is on and start no
// other. The caller reads the progress figures from the UI thread while the
// work goes on; `inOnFinished` runs on the thread of `inContext` once every
// worker has stopped.
class KIVMETADATAUI_TEST_EXPORT BackgroundJob {
public:
    // `inWork(i)` does item i on a worker; `inName(i)` names it for the
    // progress window (called on a worker).
    BackgroundJob(std::size_t inCount, std::function<void(std::size_t)> inWork,
                  std::function<QString(std::size_t)> inName);
    // Cancels and waits for the workers: the work's captures must outlive them.
    ~BackgroundJob();
    BackgroundJob(BackgroundJob const &) = delete;
    BackgroundJob &operator=(BackgroundJob const &) = delete;

    void Start(QObject *inContext, std::function<void()> inOnFinished);
    void Cancel();
    bool IsCancelled() const;
    bool IsFinished() const;
    // Blocks until every worker has stopped.
    void Wait();

    std::size_t Count() const;
    // Items finished so far.
    std::size_t Done() const;
    // The name of the item a worker took last.
    QString Current() const;

    // Called on the worker before each item it takes; lets tests act at a
    // chosen item. Empty function removes it.
    static void SetBeforeItemHook(std::function<void(BackgroundJob &, std::size_t)> inHook);

private:
    void RunWorker();

    struct Private;
    std::unique_ptr<Private> const d;
};

} // namespace kivmetadataui
