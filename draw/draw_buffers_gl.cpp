#include "draw/draw_buffers_gl.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "draw/buffer_uploads_gl.h"
#include "draw/draw_slices.h"
#include "model/bounds.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

constexpr std::uint32_t small_object = 4096; // slots; larger ones have a page of their own
constexpr std::uint32_t page_slots = 65536;
constexpr std::uint32_t page_indices = 6 * page_slots;
constexpr std::uint32_t most_sorted_triangles = 20000;

struct store_t {
    std::unordered_map<const object_t *, object_buffers_t> objects;
    std::vector<std::unique_ptr<buffer_page_t>> pages;
    std::unordered_set<const object_t *> with_jobs;    // for coarse versions, lately
    std::unordered_set<const object_t *> with_uploads; // lately
    std::uint64_t sweep = 1;
    std::size_t num_used = 0; // objects drawn since the last sweep
    unsigned generation = 0;  // of layouts
};

store_t &store()
{
    static store_t state;
    return state;
}

buffer_page_t *new_page(std::uint32_t slots, std::uint32_t indices, std::uint32_t edge_indices,
                        bool shared, bool textured)
{
    auto page = std::make_unique<buffer_page_t>();
    page->slots = slots;
    page->indices = indices;
    page->edge_indices = edge_indices;
    page->shared = shared;
    page->textured = textured;
    page->positions.reserve(GL_ARRAY_BUFFER, slots * position_bytes);
    page->normals.reserve(GL_ARRAY_BUFFER, slots * normal_bytes);
    if (textured)
        page->texture_coords.reserve(GL_ARRAY_BUFFER, slots * uv_bytes);
    page->triangles.reserve(GL_ELEMENT_ARRAY_BUFFER, indices * index_bytes);
    page->edges.reserve(GL_ELEMENT_ARRAY_BUFFER, edge_indices * index_bytes);
    store().pages.push_back(std::move(page));
    return store().pages.back().get();
}

void free_page(buffer_page_t *page)
{
    for (gpu_buffer *buffer :
         {&page->positions, &page->normals, &page->texture_coords, &page->triangles, &page->edges})
        buffer->release();
    auto &pages = store().pages;
    pages.erase(std::find_if(pages.begin(), pages.end(),
                             [&](const auto &owned) { return owned.get() == page; }));
}

// Room in a page is given out once; a page is freed when its last object has left it.
void leave_page(object_buffers_t &buffers)
{
    if (buffers.page == nullptr)
        return;
    if (--buffers.page->live == 0)
        free_page(buffers.page);
    buffers.page = nullptr;
}

buffer_page_t *page_with_room(std::uint32_t slots, std::uint32_t indices,
                              std::uint32_t edge_indices, bool textured)
{
    if (slots > small_object || indices > page_indices / 4 || edge_indices > page_indices / 4)
        return new_page(slots, indices, edge_indices, false, textured);
    auto &pages = store().pages;
    for (size_t i = pages.size(); i-- > 0;) {
        const buffer_page_t &page = *pages[i];
        if (page.shared && page.textured == textured && page.slots - page.used_slots >= slots &&
            page.indices - page.used_indices >= indices &&
            page.edge_indices - page.used_edge_indices >= edge_indices)
            return pages[i].get();
    }
    return new_page(page_slots, page_indices, page_indices, true, textured);
}

void find_bounds(object_buffers_t &buffers)
{
    bounds_clear(&buffers.min, &buffers.max);
    for (const point3_t &p : *buffers.flat->positions)
        bounds_add(p, &buffers.min, &buffers.max);
}

layout_options_t layout_options(const object_buffers_t &buffers)
{
    return {.cut_concave = prefs.gl_concave != 0,
            .texture_coords = buffers.textured,
            .quads_by_diagonal = prefs.triangulate_quads != 0};
}

void drop_job(object_buffers_t &buffers)
{
    if (buffers.job != nullptr)
        buffers.job->cancelled = true;
    buffers.job = nullptr;
}

// For the mesh as it is now, which moved in `unchecked` since it was laid out.
void start_job(object_buffers_t &buffers)
{
    buffers.job = std::make_shared<layout_job_t>();
    buffers.job->flat = buffers.flat;
    buffers.job->options = layout_options(buffers);
    buffers.job->moved = buffers.unchecked;
    buffers.job->concave = buffers.layout.concave;
    layout_job_start(buffers.job);
}

void take_room(object_buffers_t &buffers, std::uint32_t num_edges)
{
    buffer_page_t *page = page_with_room(buffers.num_slots, buffers.num_indices,
                                         buffers.num_edge_indices, buffers.textured);
    buffers.page = page;
    ++page->live;
    buffers.first_slot = page->used_slots;
    buffers.first_triangle_index = page->used_indices;
    buffers.edges = {page->used_edge_indices, num_edges};
    buffers.first_line_index = page->used_edge_indices + num_edges;
    page->used_slots += buffers.num_slots;
    page->used_indices += buffers.num_indices;
    page->used_edge_indices += buffers.num_edge_indices;
}

// With a layout of the mesh; what the page gets is still to be written.
void lay_out(object_buffers_t &buffers, const flat_ptr &flat, mesh_layout_t made)
{
    leave_page(buffers);
    coarse_drop(buffers.coarse);
    ++store().generation;
    buffers.unchecked.clear();
    buffers.moved.clear();
    buffers.moved_runs.clear();
    buffers.uploads.clear();
    buffers.flat = flat;
    find_bounds(buffers);
    if (flat->num_vertices() == 0)
        return;
    buffers.layout = std::move(made);
    const mesh_layout_t &layout = buffers.layout;
    buffers.num_slots = static_cast<std::uint32_t>(layout.num_slots());
    buffers.num_indices = static_cast<std::uint32_t>(layout.triangles.size());
    buffers.triangles.clear();
    if (buffers.num_indices <= 3 * most_sorted_triangles)
        buffers.triangles = layout.triangles;
    const auto num_edges = static_cast<std::uint32_t>(layout.edges.size());
    buffers.num_edge_indices = num_edges + static_cast<std::uint32_t>(layout.lines.size());
    take_room(buffers, num_edges);
    uploads_add_layout(buffers);
}

void drop_next(object_buffers_t &buffers)
{
    if (buffers.next != nullptr)
        leave_page(*buffers.next);
    buffers.next = nullptr;
}

void build(object_buffers_t &buffers, const flat_ptr &flat)
{
    drop_job(buffers);
    drop_next(buffers);
    lay_out(buffers, flat, layout_mesh(*flat, layout_options(buffers)));
    uploads_write(buffers, all_bytes);
}

// The first picture of a large mesh: some of its points, the layout follows.
void build_cloud(object_buffers_t &buffers, const flat_ptr &flat)
{
    drop_job(buffers);
    drop_next(buffers);
    const std::int32_t stride = flat->num_vertices() / static_cast<int>(cloud_points) + 1;
    mesh_layout_t points;
    for (std::int32_t v = 0; v < flat->num_vertices(); v += stride)
        points.extra_vertices.push_back(v);
    points.slot_face.assign(points.extra_vertices.size(), -1);
    if (buffers.textured)
        points.corner_of_slot.assign(points.extra_vertices.size(), -1);
    lay_out(buffers, flat, std::move(points));
    uploads_write(buffers, all_bytes);
    start_job(buffers);
}

bool is_cloud(const object_buffers_t &buffers)
{
    return buffers.layout.num_vertices == 0 && buffers.num_slots > 0;
}

// Takes a layout that a worker has made; waits for it when it is needed at once.
void take_layout(object_buffers_t &buffers, draw_pace pace)
{
    if (buffers.job == nullptr)
        return;
    const bool failed = buffers.job->ended && buffers.job->failed;
    if (failed)
        console_printf("a worker failed at the layout of a large object; it is made again here\n");
    if (failed || (pace == draw_pace::at_once && !buffers.job->ended)) {
        // The job goes first: or a fault here, too, would come back with every picture.
        build(buffers, buffers.flat);
        return;
    }
    const bool waits = pace == draw_pace::moving && buffers.num_indices > 0;
    if (!buffers.job->ended || waits)
        return;
    const auto job = buffers.job;
    drop_job(buffers);
    if (job->fits) {
        buffers.unchecked = changed_positions(*job->flat, *buffers.flat);
        return;
    }
    buffers.next = std::make_shared<object_buffers_t>();
    buffers.next->textured = buffers.textured;
    lay_out(*buffers.next, job->flat, std::move(job->result));
}

// Sees to it that the layout fits what has moved. False: it was built anew.
bool check_layout(object_buffers_t &buffers, const changed_t &moved, draw_pace pace)
{
    changed_t &unchecked = buffers.unchecked;
    add_changed(unchecked, moved);
    const bool large = buffers.num_slots > small_object;
    if (unchecked.empty() || buffers.waits() || (large && pace == draw_pace::moving))
        return true;
    if (pace == draw_pace::at_rest && buffers.flat->num_vertices() >= least_layout_job) {
        start_job(buffers);
        return true;
    }
    if (layout_fits(buffers.layout.concave, *buffers.flat, unchecked)) {
        unchecked.clear();
        return true;
    }
    build(buffers, buffers.flat);
    return false;
}

bool have_same_shape(const flat_mesh &a, const flat_mesh &b)
{
    return a.surfaces == b.surfaces && a.corner_offsets == b.corner_offsets &&
           a.corners == b.corners;
}

void bring_up_to_date(object_buffers_t &buffers, const flat_ptr &flat, draw_pace pace)
{
    const flat_ptr old = std::exchange(buffers.flat, flat);
    const changed_t moved = changed_positions(*old, *flat);
    if (!check_layout(buffers, moved, pace) || buffers.page == nullptr)
        return;
    if (!moved.empty() && pace != draw_pace::moving)
        find_bounds(buffers);
    if (pace == draw_pace::moving)
        for (const std::int32_t v : moved) // the box does not shrink before the end of the motion
            bounds_add(flat->position(v), &buffers.min, &buffers.max);
    if (buffers.moved != moved) {
        buffers.moved_runs = moved_slots(buffers.layout, moved);
        buffers.moved = moved;
    }
    uploads_add(buffers, upload_kind::positions, buffers.moved_runs);
    uploads_add(buffers, upload_kind::normals,
                turned_slots(buffers.layout, changed_points(*old->normals, *flat->normals),
                             changed_points(*old->face_normals, *flat->face_normals)));
    if (buffers.textured && old->texture_coords != flat->texture_coords)
        uploads_add(buffers, upload_kind::texture_coords, {{0, buffers.num_slots}});
    coarse_note_moved(buffers.coarse, moved);
}

// The page with the layout that the worker made is whole; the mesh may have moved meanwhile.
void take_next(object_buffers_t &buffers, draw_pace pace)
{
    const std::shared_ptr<object_buffers_t> next = std::exchange(buffers.next, nullptr);
    const flat_ptr now = buffers.flat;
    leave_page(buffers);
    coarse_drop(buffers.coarse);
    ++store().generation;
    next->used_in = buffers.used_in;
    buffers = std::move(*next);
    if (buffers.flat != now)
        bring_up_to_date(buffers, now, pace);
}

bool has_uploads(const object_buffers_t &buffers)
{
    return !buffers.uploads.empty() || buffers.next != nullptr;
}

// True: nothing is due any more.
bool upload_some(object_buffers_t &buffers, draw_pace pace, std::size_t most_bytes)
{
    if (buffers.next != nullptr) {
        if (!uploads_write(*buffers.next, most_bytes))
            return false;
        take_next(buffers, pace);
    }
    return uploads_write(buffers, most_bytes);
}

// What was there before is drawn until another layout is whole, but nothing half written: a picture at
// rest waits for that.
void see_to_uploads(const object_t *object, object_buffers_t &buffers, draw_pace pace)
{
    if (!has_uploads(buffers))
        return;
    if (pace == draw_pace::at_rest && (buffers.num_slots > small_object || buffers.next)) {
        store().with_uploads.insert(object);
        return;
    }
    uploads_write(buffers, all_bytes);
    upload_some(buffers, pace, pace == draw_pace::at_once ? all_bytes : bytes_between_slices);
    uploads_write(buffers, all_bytes);
}

// The mesh has another shape.
void build_anew(object_buffers_t &buffers, const flat_ptr &flat, bool later)
{
    if (later)
        build_cloud(buffers, flat);
    else
        build(buffers, flat);
}

// Calls draw(ranges) for all of them, or for the pieces of them that are in the present slice.
template <class Draw>
void in_steps(const draw_ranges_t &ranges, Draw &&draw)
{
    if (!slice_runs()) {
        draw(ranges);
        return;
    }
    draw_ranges_t step;
    std::uint32_t in_step = 0;
    const auto end_step = [&] {
        if (in_step > 0 && slice_draws(in_step))
            draw(step);
        step.clear();
        in_step = 0;
    };
    for (size_t i = 0; i < ranges.firsts.size(); ++i) {
        std::uint32_t first = ranges.firsts[i];
        const std::uint32_t end = first + static_cast<std::uint32_t>(ranges.counts[i]);
        while (first < end) {
            const std::uint32_t count = std::min(end - first, slice_step_elements - in_step);
            step.add(first, count);
            first += count;
            in_step += count;
            if (in_step == slice_step_elements)
                end_step();
        }
    }
    end_step();
}

template <class Draw>
void multi_draw(GLenum mode, const draw_ranges_t &ranges, const gpu_buffer &buffer, Draw &&draw)
{
    const auto *base = static_cast<const unsigned char *>(buffer.bind(GL_ELEMENT_ARRAY_BUFFER));
    std::vector<const void *> offsets(ranges.firsts.size());
    for (size_t i = 0; i < offsets.size(); ++i)
        offsets[i] = base + ranges.firsts[i] * index_bytes;
    draw(mode, offsets);
}

void draw_indexed(GLenum mode, const draw_ranges_t &ranges, const gpu_buffer &buffer)
{
    multi_draw(mode, ranges, buffer, [&](GLenum how, const std::vector<const void *> &offsets) {
        if (offsets.size() == 1)
            glDrawElements(how, ranges.counts[0], GL_UNSIGNED_INT, offsets[0]);
        else
            glMultiDrawElements(how, ranges.counts.data(), GL_UNSIGNED_INT, offsets.data(),
                                static_cast<GLsizei>(offsets.size()));
    });
}

} // namespace

const object_buffers_t &object_buffers(object_t *object, const flat_ptr &flat, draw_pace pace)
{
    object_buffers_t &buffers = store().objects[object];
    if (buffers.used_in != store().sweep) {
        buffers.used_in = store().sweep;
        ++store().num_used;
    }
    const bool textured = object_picture(object) != nullptr;
    const bool was_textured = std::exchange(buffers.textured, textured);
    const bool later = pace != draw_pace::at_once && flat->num_vertices() >= least_layout_job;
    if (buffers.flat == nullptr || textured != was_textured)
        build_anew(buffers, flat, later);
    else if (buffers.flat != flat && (is_cloud(buffers) || !have_same_shape(*buffers.flat, *flat)))
        build_anew(buffers, flat, later);
    else if (buffers.flat != flat)
        bring_up_to_date(buffers, flat, pace);
    else if (pace != draw_pace::moving && !buffers.unchecked.empty()) {
        find_bounds(buffers);
        check_layout(buffers, {}, pace);
    }
    take_layout(buffers, pace);
    see_to_uploads(object, buffers, pace);
    return buffers;
}

unsigned buffers_generation() { return store().generation; }

bool buffers_upload_some()
{
    store_t &state = store();
    std::erase_if(state.with_uploads, [&](const object_t *object) {
        const auto found = state.objects.find(object);
        return found == state.objects.end() ||
               upload_some(found->second, draw_pace::at_rest, bytes_between_slices);
    });
    return state.with_uploads.empty();
}

void buffers_ask_for_coarse(const object_t *object)
{
    const auto found = store().objects.find(object);
    if (found == store().objects.end())
        return;
    object_buffers_t &buffers = found->second;
    coarse_lists_t &coarse = buffers.coarse;
    if (buffers.page == nullptr || buffers.waits() || buffers.page->shared ||
        coarse.is_being_made() || coarse.given_up || (coarse.mesh != nullptr && !coarse.outdated) ||
        buffers.num_indices / 3 < least_coarse_triangles)
        return;
    coarse_begin(coarse, buffers.layout, buffers.flat->positions);
    store().with_jobs.insert(object);
}

void buffers_take_some_coarse()
{
    store_t &state = store();
    for (auto object = state.with_jobs.begin(); object != state.with_jobs.end();) {
        const auto found = state.objects.find(*object);
        if (found == state.objects.end() || !found->second.coarse.is_being_made()) {
            object = state.with_jobs.erase(object);
            continue;
        }
        object_buffers_t &buffers = found->second;
        if (buffers.coarse.source != nullptr)
            coarse_gather(buffers.coarse, buffers.layout, buffers.page->triangles,
                          {buffers.first_triangle_index, buffers.num_indices},
                          bytes_between_slices / 4); // it has time, and new memory costs more
        else
            coarse_take(buffers.coarse, *buffers.flat->positions, bytes_between_slices);
        ++object;
    }
}

void buffers_sweep()
{
    store_t &state = store();
    const bool all_used = std::exchange(state.num_used, 0) == state.objects.size();
    for (auto entry = state.objects.begin(); !all_used && entry != state.objects.end();) {
        if (entry->second.used_in == state.sweep) {
            ++entry;
            continue;
        }
        leave_page(entry->second);
        drop_job(entry->second);
        drop_next(entry->second);
        coarse_drop(entry->second.coarse);
        entry = state.objects.erase(entry);
    }
    ++state.sweep;
}

void page_bind(const buffer_page_t &page, bool with_normals, bool with_texture_coords)
{
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, page.positions.bind(GL_ARRAY_BUFFER));
    if (with_normals) {
        glEnableClientState(GL_NORMAL_ARRAY);
        glNormalPointer(GL_SHORT, normal_bytes, page.normals.bind(GL_ARRAY_BUFFER));
    }
    if (with_texture_coords && page.textured) {
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glTexCoordPointer(2, GL_FLOAT, 0, page.texture_coords.bind(GL_ARRAY_BUFFER));
    }
}

void page_unbind()
{
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    if (!device_caps().buffers)
        return;
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
}

void page_draw_triangles(const buffer_page_t &page, const draw_ranges_t &ranges,
                         const gpu_buffer *list)
{
    in_steps(ranges, [&](const draw_ranges_t &step) {
        if (!step.empty())
            draw_indexed(GL_TRIANGLES, step, list != nullptr ? *list : page.triangles);
    });
}

void page_draw_edges(const buffer_page_t &page, const draw_ranges_t &ranges, const gpu_buffer *list)
{
    in_steps(ranges, [&](const draw_ranges_t &step) {
        if (!step.empty())
            draw_indexed(GL_LINES, step, list != nullptr ? *list : page.edges);
    });
}

void page_draw_points(const draw_ranges_t &slots)
{
    in_steps(slots, [](const draw_ranges_t &step) {
        for (size_t i = 0; i < step.firsts.size(); ++i)
            glDrawArrays(GL_POINTS, static_cast<GLint>(step.firsts[i]), step.counts[i]);
    });
}

void page_draw_cloud(const object_buffers_t &buffers, bool with_normals)
{
    const std::uint32_t points =
        is_cloud(buffers) ? buffers.num_slots : buffers.layout.num_vertices;
    const std::uint32_t stride = points / cloud_points + 1;
    const std::uint32_t count = points / stride;
    if (!slice_draws(count))
        return;
    const buffer_page_t &page = *buffers.page;
    const size_t first = buffers.first_slot;
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, static_cast<GLsizei>(stride * position_bytes),
                    page.positions.bind(GL_ARRAY_BUFFER, first * position_bytes));
    if (with_normals) {
        glEnableClientState(GL_NORMAL_ARRAY);
        glNormalPointer(GL_SHORT, static_cast<GLsizei>(stride * normal_bytes),
                        page.normals.bind(GL_ARRAY_BUFFER, first * normal_bytes));
    }
    glPointSize(2);
    glDrawArrays(GL_POINTS, 0, static_cast<GLsizei>(count));
    page_unbind();
}

void page_draw_slots(GLenum mode, std::span<const std::uint32_t> slots)
{
    if (device_caps().buffers)
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    for (size_t first = 0; first < slots.size(); first += slice_step_elements) {
        const auto count =
            static_cast<std::uint32_t>(std::min<size_t>(slots.size() - first, slice_step_elements));
        if (slice_draws(count))
            glDrawElements(mode, static_cast<GLsizei>(count), GL_UNSIGNED_INT, &slots[first]);
    }
}

std::uint64_t buffers_uploaded_bytes() { return gpu_buffer::uploaded_bytes(); }
