#ifndef VESK_DRAW_COARSE_JOB_H
#define VESK_DRAW_COARSE_JOB_H

// Coarse meshes are made by a worker.

#include "base/job_queue.h"
#include "draw/coarse_mesh.h"

struct coarse_job_t : queued_job_t {
    coarse_source_t source;
    std::shared_ptr<coarse_mesh_t> result; // null when it was cancelled or failed

    void run();
};

std::shared_ptr<coarse_job_t> coarse_job_start(coarse_source_t source);

// Waits until all have ended, for tests; with `cancel` they are given up.
void coarse_jobs_wait(bool cancel);

#endif
