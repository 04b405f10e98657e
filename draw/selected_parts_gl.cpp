#include "draw/selected_parts_gl.h"

#include "base/job_queue.h"
#include "draw/draw_slices.h"
#include "model/ear_cut.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace {

constexpr std::size_t most_in_motion = 20000; // lines or points
// Elements: of more in motion some are drawn, without slots of them.
constexpr std::size_t most_elements = 2 * most_in_motion;

std::unordered_map<const object_t *, part_slots_t> &part_cache()
{
    static std::unordered_map<const object_t *, part_slots_t> cache;
    return cache;
}

void add_surface_triangles(const flat_mesh &flat, int surface, std::vector<std::uint32_t> &out)
{
    const std::span<const std::int32_t> corners = flat.surface_corners(surface);
    const flat_surface &record = flat.surface(surface);
    if (corners.size() < 3 || record.is_line())
        return;
    for (const int corner : surface_ears(flat, surface))
        out.push_back(static_cast<std::uint32_t>(corners[corner]));
}

void add_line_segments(const flat_mesh &flat, int surface, std::vector<std::uint32_t> &out)
{
    const flat_surface &record = flat.surface(surface);
    const std::span<const std::int32_t> corners = flat.surface_corners(surface);
    if (!record.is_line())
        return;
    for (size_t i = 0; i + 1 < corners.size(); ++i)
        out.insert(out.end(), {static_cast<std::uint32_t>(corners[i]),
                               static_cast<std::uint32_t>(corners[i + 1])});
    if (record.type == SURFACE_CLOSED_LINE && corners.size() > 2)
        out.insert(out.end(), {static_cast<std::uint32_t>(corners.back()),
                               static_cast<std::uint32_t>(corners.front())});
}

// What the lists are made of.
struct part_source_t {
    flat_ptr flat;
    std::uint32_t first_slot = 0;
    const std::vector<int> &surfaces, &edges, &vertices; // of the part
};

void make_slots(const part_source_t &source, part_slots_t &slots)
{
    const flat_mesh &flat = *source.flat;
    std::vector<int> surfaces;
    surfaces.reserve(source.surfaces.size());
    for (const int surface : source.surfaces)
        if (surface < flat.num_surfaces())
            surfaces.push_back(surface);
    if (!surfaces.empty())
        slots.edges = unique_edges(flat, &surfaces);
    for (const int surface : surfaces) {
        add_surface_triangles(flat, surface, slots.triangles);
        add_line_segments(flat, surface, slots.edges);
    }
    for (std::size_t i = 0; i + 1 < source.edges.size(); i += 2) {
        const int a = source.edges[i], b = source.edges[i + 1];
        if (a < flat.num_vertices() && b < flat.num_vertices())
            slots.edges.insert(slots.edges.end(),
                               {static_cast<std::uint32_t>(a), static_cast<std::uint32_t>(b)});
    }
    for (const int vertex : source.vertices)
        if (vertex < flat.num_vertices() && source.edges.empty())
            slots.vertices.push_back(static_cast<std::uint32_t>(vertex));
    for (std::vector<std::uint32_t> *list : {&slots.edges, &slots.triangles, &slots.vertices})
        for (std::uint32_t &slot : *list)
            slot += source.first_slot;
}

} // namespace

// By a worker, where they are many.
struct part_job_t : queued_job_t {
    flat_ptr flat;
    std::uint32_t first_slot = 0;
    selected_part_t part;
    part_slots_t slots;

    void run() { make_slots({flat, first_slot, part.surfaces, part.edges, part.vertices}, slots); }
};

namespace {

void start(const std::shared_ptr<part_job_t> &job)
{
    static job_queue<part_job_t> queue;
    queue.add(job);
}

// Vertices that move leave the lists as they are, unless polygons are cut into ears.
bool are_slots_alike(const flat_ptr &before, const object_buffers_t &now)
{
    if (before == now.flat)
        return true;
    return before != nullptr && now.layout.concave.empty() &&
           before->surfaces == now.flat->surfaces && before->corners == now.flat->corners &&
           before->corner_offsets == now.flat->corner_offsets;
}

bool is_current(const part_slots_t &slots, const scene_item_t &item)
{
    return slots.generation == selection_marks_generation() &&
           slots.first_slot == item.buffers->first_slot &&
           are_slots_alike(slots.flat, *item.buffers);
}

std::size_t num_elements(const selected_part_t &part)
{
    return part.vertices.size() + part.surfaces.size() + part.edges.size() / 2;
}

bool is_large(const selected_part_t &part) { return num_elements(part) > most_elements; }

void begin_slots(part_slots_t &slots, const scene_item_t &item)
{
    if (slots.job != nullptr)
        slots.job->cancelled = true;
    slots = {};
    slots.generation = selection_marks_generation();
    slots.flat = item.buffers->flat;
    slots.first_slot = item.buffers->first_slot;
}

void make_at_once(part_slots_t &slots, const scene_item_t &item)
{
    begin_slots(slots, item);
    make_slots(
        {slots.flat, slots.first_slot, item.part->surfaces, item.part->edges, item.part->vertices},
        slots);
}

void make_later(part_slots_t &slots, const scene_item_t &item)
{
    begin_slots(slots, item);
    slots.job = std::make_shared<part_job_t>();
    slots.job->flat = slots.flat;
    slots.job->first_slot = slots.first_slot;
    slots.job->part = *item.part;
    start(slots.job);
}

const part_slots_t &part_slots(const scene_item_t &item)
{
    part_slots_t &slots = part_cache()[item.object];
    if (!is_large(*item.part) && !is_current(slots, item))
        make_at_once(slots, item);
    return slots;
}

// Every so many elements of a list that is long for a picture of motion; of triangles nothing, for they
// would cover some of the rest.
std::vector<std::uint32_t> sample_of(std::span<const std::uint32_t> slots, GLenum mode)
{
    if (mode == GL_TRIANGLES)
        return {};
    const std::size_t each = mode == GL_POINTS ? 1 : 2;
    const std::size_t stride = each * (slots.size() / each / most_in_motion + 1);
    std::vector<std::uint32_t> sample;
    for (std::size_t i = 0; i + each <= slots.size(); i += stride)
        sample.insert(sample.end(), &slots[i], &slots[i] + each);
    return sample;
}

// Objects that follow each other in a page are drawn in one call: a call each costs drivers more than the
// few elements of a small object.
class neighbours_t {
public:
    explicit neighbours_t(GLenum mode) : mode_(mode) {}

    void add(const buffer_page_t &page, std::span<const std::uint32_t> slots)
    {
        if (page_ != &page || slots.size() > slice_step_elements) {
            draw();
            page_ = &page;
        }
        if (slots.size() > slice_step_elements)
            draw(slots);
        else
            slots_.insert(slots_.end(), slots.begin(), slots.end());
    }
    void draw()
    {
        draw(slots_);
        slots_.clear();
    }

private:
    void draw(std::span<const std::uint32_t> slots) const
    {
        if (slots.empty())
            return;
        page_bind(*page_, false);
        page_draw_slots(mode_, slots);
    }

    GLenum mode_;
    const buffer_page_t *page_ = nullptr;
    std::vector<std::uint32_t> slots_;
};

// Of the selected elements of all items together every so many, as their lists have them: nothing is prepared
// for a picture that comes once. Of triangles none.
class sample_t {
public:
    sample_t(GLenum mode, std::size_t count) : mode_(mode), stride_(count / most_in_motion + 1) {}

    std::span<const std::uint32_t> of(const scene_item_t &item)
    {
        slots_.clear();
        const selected_part_t &part = *item.part;
        if (mode_ == GL_POINTS && part.edges.empty())
            next(part.vertices.size(), [&](std::size_t i) { add(item, part.vertices[i]); });
        if (mode_ == GL_LINES) {
            next(part.edges.size() / 2,
                 [&](std::size_t i) { add(item, part.edges[2 * i], part.edges[2 * i + 1]); });
            next(part.surfaces.size(), [&](std::size_t i) { add_outline(item, part.surfaces[i]); });
        }
        return slots_;
    }

private:
    template <class Take>
    void next(std::size_t count, Take &&take)
    {
        for (; at_ < count; at_ += stride_)
            take(at_);
        at_ -= count;
    }
    void add(const scene_item_t &item, int vertex)
    {
        if (vertex < item.buffers->flat->num_vertices())
            slots_.push_back(item.buffers->first_slot + static_cast<std::uint32_t>(vertex));
    }
    void add(const scene_item_t &item, int a, int b)
    {
        const int count = item.buffers->flat->num_vertices();
        if (a >= count || b >= count)
            return;
        add(item, a);
        add(item, b);
    }
    void add_outline(const scene_item_t &item, int surface)
    {
        const flat_mesh &flat = *item.buffers->flat;
        if (surface >= flat.num_surfaces())
            return;
        const std::span<const std::int32_t> corners = flat.surface_corners(surface);
        const bool closed = flat.surface(surface).type != SURFACE_LINE;
        for (std::size_t i = 0; i + (closed ? 0 : 1) < corners.size(); ++i)
            add(item, corners[i], corners[(i + 1) % corners.size()]);
    }

    GLenum mode_;
    std::size_t stride_;
    std::size_t at_ = 0; // of the item's list
    std::vector<std::uint32_t> slots_;
};

} // namespace

std::size_t num_selected_elements(const scene_item_t &item)
{
    const selected_part_t *part = item.part;
    return part == nullptr || part->whole ? 0 : num_elements(*part);
}

bool has_selected_part(const scene_item_t &item)
{
    return item.part != nullptr && !item.hidden && item.buffers->page != nullptr &&
           !item.part->whole && item.buffers->layout.num_vertices > 0; // no cloud
}

bool selected_part_is_ready(const scene_item_t &item, draw_pace pace)
{
    if (pace == draw_pace::moving || !has_selected_part(item) || !is_large(*item.part))
        return true; // what moves shows some of so many, which needs no slots
    part_slots_t &slots = part_cache()[item.object];
    if (!is_current(slots, item)) {
        if (pace == draw_pace::at_once)
            make_at_once(slots, item);
        else
            make_later(slots, item);
    }
    if (slots.job == nullptr)
        return true;
    if (pace == draw_pace::at_once || slots.job->failed) {
        make_at_once(slots, item);
        return true;
    }
    if (!slots.job->ended)
        return false;
    const std::shared_ptr<part_job_t> job = std::exchange(slots.job, nullptr);
    slots.edges = std::move(job->slots.edges);
    slots.triangles = std::move(job->slots.triangles);
    slots.vertices = std::move(job->slots.vertices);
    return true;
}

void draw_selected_parts(const scene_t &scene, GLenum mode,
                         std::vector<std::uint32_t> part_slots_t::*list,
                         const std::function<bool(const scene_item_t &)> &wanted)
{
    constexpr std::size_t items_in_part = 1024;
    const bool some = scene.in_motion && scene.selected_elements > most_elements;
    sample_t sample(mode, scene.selected_elements);
    for (std::size_t first = 0; first < scene.items.size(); first += items_in_part) {
        const slice_part_t part;
        const std::size_t end =
            part.draws() ? std::min(first + items_in_part, scene.items.size()) : first;
        neighbours_t neighbours(mode);
        for (std::size_t i = first; i < end; ++i) {
            const scene_item_t &item = scene.items[i];
            if (!has_selected_part(item) || !wanted(item))
                continue;
            if (some) {
                neighbours.add(*item.buffers->page, sample.of(item));
                continue;
            }
            const std::vector<std::uint32_t> &slots = part_slots(item).*list;
            if (item.detail > 0 && slots.size() > 2 * most_in_motion)
                neighbours.add(*item.buffers->page, sample_of(slots, mode));
            else
                neighbours.add(*item.buffers->page, slots);
        }
        neighbours.draw();
    }
    page_unbind();
}
