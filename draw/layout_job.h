#ifndef VESK_DRAW_LAYOUT_JOB_H
#define VESK_DRAW_LAYOUT_JOB_H

// The layout of a large mesh is made by a worker, while the views show a cloud of its points, or the
// mesh in the layout that it had. After a move it finds out first whether that one still fits.

#include "base/job_queue.h"
#include "draw/mesh_changes.h"

struct layout_job_t : queued_job_t {
    flat_ptr flat;
    layout_options_t options;
    changed_t moved;                   // since there was a layout; empty: there is none
    std::vector<std::int32_t> concave; // of that one
    bool fits = false;                 // it does still
    mesh_layout_t result;              // else another

    void run();
};

// In turn, of a job with the mesh, the options, and what moved.
void layout_job_start(const std::shared_ptr<layout_job_t> &job);

// A mesh of fewer vertices is laid out at once.
constexpr int least_layout_job = 200000;

#endif
