#ifndef VESK_DRAW_LAYOUT_JOB_H
#define VESK_DRAW_LAYOUT_JOB_H

// The layout of a large mesh is made by a worker, while the views show a cloud of its points, or the
// mesh in the layout that it had.

#include "base/job_queue.h"
#include "draw/mesh_layout.h"

struct layout_job_t : queued_job_t {
    flat_ptr flat;
    layout_options_t options;
    mesh_layout_t result;

    void run() { result = layout_mesh(*flat, options); }
};

std::shared_ptr<layout_job_t> layout_job_start(const flat_ptr &flat,
                                               const layout_options_t &options);

// A mesh of fewer vertices is laid out at once.
constexpr int least_layout_job = 200000;

#endif
