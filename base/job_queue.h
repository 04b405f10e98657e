#ifndef VESK_BASE_JOB_QUEUE_H
#define VESK_BASE_JOB_QUEUE_H

// Jobs that one worker does in the order in which they were asked for. A job is a `queued_job_t` with
// `run()`. One that throws or faults ends as failed, and the next one is done.

#include "base/crash_guard.h"
#include "base/worker.h"

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <system_error>

struct queued_job_t {
    std::atomic<bool> cancelled = false; // by whoever does not want it any more
    std::atomic<bool> failed = false;    // there is no result
    std::atomic<bool> ended = false;     // the result is there, if there is one
};

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
        fault_t fault;
        if (!job.cancelled && !crash_guard::guarded_bare([&] { job.run(); }, &fault))
            job.failed = true;
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
        work_in_background();
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
