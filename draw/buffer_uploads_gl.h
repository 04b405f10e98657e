#ifndef VESK_DRAW_BUFFER_UPLOADS_GL_H
#define VESK_DRAW_BUFFER_UPLOADS_GL_H

// What of an object's arrays is handed over to its page, at once or in pieces between which events are
// taken.

#include "draw/draw_buffers_gl.h"
#include "draw/gpu_buffer_gl.h"

struct buffer_page_t {
    gpu_buffer positions, normals, texture_coords, triangles, edges;
    std::uint32_t slots = 0, used_slots = 0;
    std::uint32_t indices = 0, used_indices = 0;
    std::uint32_t edge_indices = 0, used_edge_indices = 0;
    int live = 0; // objects in it
    bool shared = false;
    bool textured = false;
};

constexpr std::size_t position_bytes = 3 * sizeof(float);
constexpr std::size_t normal_bytes = 4 * sizeof(std::int16_t);
constexpr std::size_t uv_bytes = 2 * sizeof(float);
constexpr std::size_t index_bytes = sizeof(std::uint32_t);

constexpr std::size_t all_bytes = SIZE_MAX;
constexpr std::size_t bytes_between_slices = 4 << 20; // some milliseconds, also in a motion

// Everything of a layout; its indices are given up when they are written.
void uploads_add_layout(object_buffers_t &buffers);
void uploads_add(object_buffers_t &buffers, upload_kind kind, const std::vector<slot_run_t> &runs);
// Hands over what was added, as the mesh is now, about so many bytes at most. True: all of it.
bool uploads_write(object_buffers_t &buffers, std::size_t most_bytes);

#endif
