#include "draw/coarse_job.h"

#include <utility>

namespace {

job_queue<coarse_job_t> &queue()
{
    static job_queue<coarse_job_t> jobs;
    return jobs;
}

} // namespace

void coarse_job_t::run()
{
    result = make_coarse_mesh(source, cancelled);
    source = {};
}

std::shared_ptr<coarse_job_t> coarse_job_start(coarse_source_t source)
{
    auto job = std::make_shared<coarse_job_t>();
    job->source = std::move(source);
    queue().add(job);
    return job;
}

void coarse_jobs_wait(bool cancel) { queue().wait(cancel); }
