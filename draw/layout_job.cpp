#include "draw/layout_job.h"

void layout_job_t::run()
{
    fits = !moved.empty() && layout_fits(concave, *flat, moved);
    if (!fits)
        result = layout_mesh(*flat, options);
}

void layout_job_start(const std::shared_ptr<layout_job_t> &job)
{
    static job_queue<layout_job_t> queue;
    queue.add(job);
}
