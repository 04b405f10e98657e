#include "draw/coarse_job.h"

#include "base/worker.h"

#include <deque>
#include <mutex>
#include <system_error>

namespace {

using job_ptr = std::shared_ptr<coarse_job_t>;

class job_queue {
public:
    ~job_queue() { wait(true); }

    void add(const job_ptr &job)
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
            jobs_.clear(); // no more threads: it is drawn in full
        }
    }

    void wait(bool cancel)
    {
        {
            const std::lock_guard lock(mutex_);
            for (const job_ptr &job : jobs_)
                job->cancelled = job->cancelled || cancel;
        }
        worker_.wait();
    }

private:
    job_ptr first()
    {
        const std::lock_guard lock(mutex_);
        works_ = !jobs_.empty();
        return works_ ? jobs_.front() : nullptr;
    }

    void work()
    {
        while (const job_ptr job = first()) {
            job->result = make_coarse_mesh(job->source, job->cancelled);
            job->source = {};
            job->ended = true;
            const std::lock_guard lock(mutex_);
            jobs_.pop_front();
        }
    }

    std::mutex mutex_;
    std::deque<job_ptr> jobs_;       // the one in hand first
    bool works_ = false;             // takes jobs
    std::atomic<bool> gone_ = false; // uses nothing of this any more
    worker_t worker_;
};

job_queue &queue()
{
    static job_queue jobs;
    return jobs;
}

} // namespace

job_ptr coarse_job_start(coarse_source_t source)
{
    auto job = std::make_shared<coarse_job_t>();
    job->source = std::move(source);
    queue().add(job);
    return job;
}

void coarse_jobs_wait(bool cancel) { queue().wait(cancel); }
