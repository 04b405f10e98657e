#ifndef VESK_DRAW_DRAW_BUFFERS_GL_H
#define VESK_DRAW_DRAW_BUFFERS_GL_H

// The buffers of the objects, shared by all views. Small objects live together in pages, so that
// ten thousand of them are drawn in a few calls; a large one has a page of its own. Only arrays of
// the flat mesh whose identity changed are uploaded again.

#include "draw/coarse_lists_gl.h"
#include "draw/draw_device_gl.h"
#include "draw/layout_job.h"
#include "model/flat_mesh.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

struct buffer_page_t;

enum class upload_kind { positions, normals, texture_coords, triangles, edges, lines };

struct upload_t {
    upload_kind kind;
    slot_run_t run; // of slots, or of the indices of one list
};

struct object_buffers_t {
    buffer_page_t *page = nullptr; // null: nothing to draw
    std::uint32_t first_slot = 0;
    mesh_layout_t layout; // group ranges are the object's own; its index arrays are given up
    // The layout's own, for sorting them by depth; empty where that would take too long.
    std::vector<std::uint32_t> triangles;
    std::uint32_t first_triangle_index = 0;
    index_range_t edges;
    std::uint32_t first_line_index = 0;
    point3_t min = {0, 0, 0}, max = {0, 0, 0};
    flat_ptr flat;
    std::uint32_t num_slots = 0;
    std::uint32_t num_indices = 0;      // triangles
    std::uint32_t num_edge_indices = 0; // edges and lines
    bool textured = false;              // has texture coordinates
    std::uint64_t used_in = 0;          // number of the last sweep
    coarse_lists_t coarse;              // of a large object
    changed_t unchecked;                // vertices that moved since the layout was found to fit
    changed_t moved;                    // in the last step of a motion, with their slots
    std::vector<slot_run_t> moved_runs;
    std::shared_ptr<layout_job_t> job; // makes a layout that fits
    std::vector<upload_t> uploads;     // what the page does not have yet
    std::shared_ptr<object_buffers_t>
        next; // takes the place of this one as soon as its page is whole

    // Its own layout is on its way.
    [[nodiscard]] bool waits() const { return job != nullptr || next != nullptr; }
};

// How much is put off for a large object.
enum class draw_pace {
    at_once, // nothing
    at_rest, // its layout, to a worker: until that is there it has none, or the one before its last move
    moving, // the check whether its layout still fits, too
};

// Of an object, up to date: of its own mesh, or of one that is shown in its stead.
const object_buffers_t &object_buffers(object_t *object, const flat_ptr &mesh, draw_pace pace);

// Grows when an object gets another layout.
unsigned buffers_generation();

// Has coarse versions made of a large object that has none of its present shape.
void buffers_ask_for_coarse(const object_t *object);
// Hands over a part of what is due; false: there is more.
bool buffers_upload_some();
// Takes a part of those that were made, before each picture and between two slices of one.
void buffers_take_some_coarse();

// Frees the buffers of objects that were not drawn since the last sweep.
void buffers_sweep();

// Ranges that are drawn alike, gathered over a frame; neighbours are joined.
struct draw_ranges_t {
    std::vector<GLsizei> counts;
    std::vector<std::uint32_t> firsts;

    void add(std::uint32_t first, std::uint32_t count)
    {
        if (count == 0)
            return;
        if (!firsts.empty() && firsts.back() + static_cast<std::uint32_t>(counts.back()) == first) {
            counts.back() += static_cast<GLsizei>(count);
            return;
        }
        firsts.push_back(first);
        counts.push_back(static_cast<GLsizei>(count));
    }
    void clear()
    {
        counts.clear();
        firsts.clear();
    }
    [[nodiscard]] bool empty() const { return counts.empty(); }
};

// Makes the page's arrays current, then draws ranges of its triangle or edge indices, of its slots
// as points, or any slots by number.
void page_bind(const buffer_page_t &page, bool with_normals, bool with_texture_coords = false);
void page_unbind();
// The indices are the page's, or in another list of its slots.
void page_draw_triangles(const buffer_page_t &page, const draw_ranges_t &ranges,
                         const gpu_buffer *list = nullptr);
void page_draw_edges(const buffer_page_t &page, const draw_ranges_t &ranges,
                     const gpu_buffer *list = nullptr);
void page_draw_points(const draw_ranges_t &slots);
// Some of an object's vertices as points, for a first impression; binds the page by itself.
void page_draw_cloud(const object_buffers_t &buffers, bool with_normals);
constexpr std::uint32_t cloud_points = 20000; // about
void page_draw_slots(GLenum mode, std::span<const std::uint32_t> slots);

// How many bytes were uploaded since the start, for tests.
std::uint64_t buffers_uploaded_bytes();

#endif
