#ifndef VESK_DRAW_COARSE_JOB_H
#define VESK_DRAW_COARSE_JOB_H

// Coarse meshes are made by one worker, in the order in which they were asked for.

#include "draw/coarse_mesh.h"

struct coarse_job_t {
    coarse_source_t source;
    std::atomic<bool> cancelled = false; // nobody waits for it any more
    std::atomic<bool> ended = false;     // then `result` is there, or stays null
    std::shared_ptr<coarse_mesh_t> result;
};

std::shared_ptr<coarse_job_t> coarse_job_start(coarse_source_t source);

// Waits until all jobs have ended, for tests and for the end of the program; with `cancel` they are
// given up.
void coarse_jobs_wait(bool cancel);

#endif
