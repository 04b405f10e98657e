#ifndef VESK_DRAW_COARSE_LISTS_GL_H
#define VESK_DRAW_COARSE_LISTS_GL_H

// The coarse versions of one large object on the device: index lists beside those of its page.

#include "draw/coarse_job.h"
#include "draw/gpu_buffer_gl.h"
#include "draw/mesh_changes.h"

struct coarse_lists_t {
    std::shared_ptr<coarse_source_t> source; // for the job, as far as it is gathered
    std::shared_ptr<coarse_job_t> job;       // under way
    std::shared_ptr<coarse_mesh_t> mesh;     // null: none yet; its lists are in the buffers
    gpu_buffer triangles, edges;
    gpu_buffer next_triangles, next_edges; // of the job's mesh, as far as they are written
    std::size_t written = 0;               // bytes of both
    std::vector<std::uint8_t> moved;       // clusters with vertices that moved since it was made
    std::vector<bool> noted;               // vertices whose clusters are among them
    bool outdated = false;                 // some did
    bool given_up = false;                 // after a fault: until the mesh has another shape

    [[nodiscard]] bool is_being_made() const { return source != nullptr || job != nullptr; }
};

// Gathers what they are made of, in an object with a page of its own, where slots have the same numbers: in
// pieces of so many bytes; with the last one the worker begins.
void coarse_begin(coarse_lists_t &lists, const mesh_layout_t &layout,
                  const flat_array<point3_t> &positions);
void coarse_gather(coarse_lists_t &lists, const mesh_layout_t &layout, const gpu_buffer &triangles,
                   const index_range_t &range, std::size_t most_bytes);
// Takes what the worker has made, as the mesh is now; what moved meanwhile is found. No more than so many
// bytes are handed over at once: what they are not enough for is taken by further calls.
void coarse_take(coarse_lists_t &lists, const std::vector<point3_t> &positions,
                 std::size_t most_bytes);
void coarse_note_moved(coarse_lists_t &lists, const changed_t &moved);
// The mesh has another shape, or is gone.
void coarse_drop(coarse_lists_t &lists);

#endif
