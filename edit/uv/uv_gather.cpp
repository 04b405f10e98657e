#include "edit/uv/uv_gather.h"

#include "base/job_queue.h"

#include <utility>

namespace {

struct gather_job_t : queued_job_t {
    std::vector<uv_source> sources;
    uv_gathered result;

    void run() { result = uv_gather(sources); }
};

void start(const std::shared_ptr<gather_job_t> &job)
{
    static job_queue<gather_job_t> queue;
    queue.add(job);
}

// The last one that was asked for.
std::shared_ptr<gather_job_t> &present_job()
{
    static auto *const job = new std::shared_ptr<gather_job_t>; // its arrays are not freed at exit
    return *job;
}

bool is_little(const std::vector<uv_source> &sources)
{
    std::int64_t corners = 0;
    for (const uv_source &source : sources)
        corners += source.flat->num_corners();
    return corners <= most_gathered_at_once;
}

} // namespace

uv_gathered uv_gather(const std::vector<uv_source> &sources)
{
    uv_gathered found;
    found.mesh = uv_mesh_of_sources(sources);
    found.islands = uv_find_islands(found.mesh);
    return found;
}

bool uv_gather_later(const std::vector<uv_source> &sources, uv_gathered *out)
{
    std::shared_ptr<gather_job_t> &job = present_job();
    if (job != nullptr && job->sources != sources) {
        job->cancelled = true;
        job = nullptr;
    }
    if (is_little(sources) || (job != nullptr && job->ended && job->failed)) {
        job = nullptr;
        *out = uv_gather(sources);
        return true;
    }
    if (job == nullptr) {
        job = std::make_shared<gather_job_t>();
        job->sources = sources;
        start(job);
    }
    if (!job->ended)
        return false;
    *out = std::move(job->result);
    job = nullptr;
    return true;
}
