#include "BackgroundJob_p.h"

#include <QMetaObject>
#include <QPointer>
#include <QThreadPool>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>

namespace kivmetadataui {

namespace {

std::mutex gHookLock;
std::function<void(BackgroundJob &, std::size_t)> gBeforeItemHook;

// Not the global pool: Qt's raster painter splits its fills into tasks on the
// global pool and waits for them, so files read or saved there would stall
// every paint of the UI until they were done.
QThreadPool *FilePool()
{
    static QThreadPool pool;
    return &pool;
}

} // namespace

struct BackgroundJob::Private {
    std::size_t mCount = 0;
    std::function<void(std::size_t)> mWork;
    std::function<QString(std::size_t)> mName;
    std::atomic<std::size_t> mNext{0};
    std::atomic<std::size_t> mDone{0};
    std::atomic<bool> mCancelled{false};
    std::atomic<bool> mFinished{false};
    bool mStarted = false;
    QPointer<QObject> mContext;
    std::function<void()> mOnFinished;

    mutable std::mutex mLock;
    std::condition_variable mStopped;
    int mRunning = 0;
    QString mCurrent;
};

BackgroundJob::BackgroundJob(std::size_t count, std::function<void(std::size_t)> work,
                             std::function<QString(std::size_t)> name)
    : d(std::make_unique<Private>())
{
    d->mCount = count;
    d->mWork = std::move(work);
    d->mName = std::move(name);
}

BackgroundJob::~BackgroundJob()
{
    Cancel();
    Wait();
}

void BackgroundJob::Start(QObject *context, std::function<void()> onFinished)
{
    if (d->mStarted) return;
    d->mStarted = true;
    d->mContext = context;
    d->mOnFinished = std::move(onFinished);
    QThreadPool *pool = FilePool();
    int const workers = int(
        std::min<std::size_t>(std::max<std::size_t>(d->mCount, 1), std::size_t(std::max(1, pool->maxThreadCount()))));
    {
        std::lock_guard guard(d->mLock);
        d->mRunning = workers;
    }
    for (int i = 0; i < workers; ++i)
        pool->start([this] { RunWorker(); });
}

void BackgroundJob::RunWorker()
{
    while (!d->mCancelled.load()) {
        std::size_t const item = d->mNext++;
        if (item >= d->mCount) break;
        QString name = d->mName ? d->mName(item) : QString();
        {
            std::lock_guard guard(d->mLock);
            d->mCurrent = std::move(name);
        }
        std::function<void(BackgroundJob &, std::size_t)> hook;
        {
            std::lock_guard guard(gHookLock);
            hook = gBeforeItemHook;
        }
        if (hook) hook(*this, item);
        // Once taken, an item is done even when cancelled meanwhile: a file is
        // saved whole or not at all.
        d->mWork(item);
        ++d->mDone;
    }
    std::unique_lock lock(d->mLock);
    if (--d->mRunning > 0) return;
    d->mFinished = true;
    // Posted before the waiters are woken, while `this` is still alive; the
    // call checks the context, which owns the job, on its own thread.
    if (d->mContext && d->mOnFinished)
        QMetaObject::invokeMethod(d->mContext.data(), d->mOnFinished, Qt::QueuedConnection);
    d->mStopped.notify_all();
}

void BackgroundJob::Cancel()
{
    d->mCancelled = true;
}

bool BackgroundJob::IsCancelled() const
{
    return d->mCancelled.load();
}

bool BackgroundJob::IsFinished() const
{
    return d->mFinished.load();
}

void BackgroundJob::Wait()
{
    std::unique_lock lock(d->mLock);
    d->mStopped.wait(lock, [this] { return d->mRunning == 0; });
}

std::size_t BackgroundJob::Count() const
{
    return d->mCount;
}

std::size_t BackgroundJob::Done() const
{
    return d->mDone.load();
}

QString BackgroundJob::Current() const
{
    std::lock_guard guard(d->mLock);
    return d->mCurrent;
}

void BackgroundJob::SetBeforeItemHook(std::function<void(BackgroundJob &, std::size_t)> hook)
{
    std::lock_guard guard(gHookLock);
    gBeforeItemHook = std::move(hook);
}

} // namespace kivmetadataui
