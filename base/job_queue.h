#ifndef VESK_BASE_JOB_QUEUE_H
#define VESK_BASE_JOB_QUEUE_H

// Jobs that one worker does in the order in which they were asked for. A job has `run()`, and two
// atomic flags: `cancelled`, set by whoever does not want it any more, and `ended`, set when its result
// is there.

#include "base/worker.h"

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <system_error>

template <class Job>
class job_queue {
public:
    job_queue() = default;
    ~job_queue() { wait(true); }
    job_queue(const job_queue &) = delete;
    job_queue &operator=(const job_queue &) = delete;

    // Without a further thread it is done at once.
    void add(const std::shared_ptr<Job> &job)
    {
        const std::lock_guard lock(mutex_);
        if (works_ && gone_ && !jobs_.empty())
            jobs_.pop_front(); // after a fault in it
        jobs_.push_back(job);
        if (works_ && !gone_)
            return;
        worker_.wait(); // is about to end, and takes nothing more
        try {
            gone_ = false;
            worker_ = worker_t([this] { work(); }, [this] { gone_ = true; });
            works_ = true;
        } catch (const std::system_error &) {
            jobs_.clear();
            do_job(*job);
        }
    }

    // Until all have ended; with `cancel` they are given up.
    void wait(bool cancel)
    {
        {
            const std::lock_guard lock(mutex_);
            for (const auto &job : jobs_)
                job->cancelled = job->cancelled || cancel;
        }
        worker_.wait();
    }

private:
    static void do_job(Job &job)
    {
        if (!job.cancelled)
            job.run();
        job.ended = true;
    }

    std::shared_ptr<Job> first()
    {
        const std::lock_guard lock(mutex_);
        works_ = !jobs_.empty();
        return works_ ? jobs_.front() : nullptr;
    }

    void work()
    {
        while (const std::shared_ptr<Job> job = first()) {
            do_job(*job);
            const std::lock_guard lock(mutex_);
            jobs_.pop_front();
        }
    }

    std::mutex mutex_;
    std::deque<std::shared_ptr<Job>> jobs_; // the one in hand first
    bool works_ = false;                    // takes jobs
    std::atomic<bool> gone_ = false;        // uses nothing of this any more
    worker_t worker_;
};

#endif
