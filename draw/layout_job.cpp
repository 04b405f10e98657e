#include "draw/layout_job.h"

std::shared_ptr<layout_job_t> layout_job_start(const flat_ptr &flat,
                                               const layout_options_t &options)
{
    static job_queue<layout_job_t> queue;
    auto job = std::make_shared<layout_job_t>();
    job->flat = flat;
    job->options = options;
    queue.add(job);
    return job;
}
