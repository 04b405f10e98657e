#include "draw/scene_gather_gl.h"

#include "base/prefs.h"
#include "base/ui_port.h"
#include "draw/selected_parts_gl.h"
#include "edit/boolean_live.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/palette.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <cstdint>

namespace {

constexpr std::uint32_t vertices_per_dot = 16;
constexpr int objects_between_looks = 64; // at the clock
// Seconds: the views ask one after the other without an event between.
constexpr double between_turns = 0.004;

struct gather_t {
    std::shared_ptr<scene_t> scene;
    std::vector<coloured_vertex_t> dots; // of all items that have some, and how many each has
    std::vector<std::uint32_t> num_dots;
    std::vector<object_t *> stack; // whose turn comes; empty: the scene is whole
    draw_pace pace = draw_pace::at_once;
    bool uploads = false; // all was looked at, but not all is handed over
    int beginnings = 0;   // since there was a whole scene
    double turn_ended = 0;
    // What it shows.
    std::uint64_t changes = 0;
    unsigned layouts = 0;
    unsigned marks = 0;
};
gather_t gathered;

bool may_have_details(const object_buffers_t &buffers)
{
    return buffers.waits() || buffers.coarse.mesh != nullptr ||
           buffers.num_indices / 3 >= least_coarse_triangles;
}

std::uint8_t byte_of(float share)
{
    return static_cast<std::uint8_t>(std::clamp(share, 0.0f, 1.0f) * 255.0f);
}

coloured_vertex_t dot_of(std::int32_t index)
{
    const int count = vesk_get_num_palette();
    const material *m =
        count > 0 ? vesk_palette_get_material(index >= 0 && index < count ? index : 0) : nullptr;
    if (m == nullptr)
        return {0, 0, 0, {255, 255, 255, 255}};
    return {0, 0, 0, {byte_of(m->diffuse[0]), byte_of(m->diffuse[1]), byte_of(m->diffuse[2]), 255}};
}

// Some of its vertices, at least one.
void add_dots(gather_t &gather, const scene_item_t &item)
{
    const flat_mesh &flat = *item.buffers->flat;
    const std::uint32_t num_vertices = item.buffers->layout.num_vertices;
    gather.num_dots.push_back(0);
    if (item.hidden || item.outline || may_have_details(*item.buffers) || num_vertices == 0)
        return;
    coloured_vertex_t dot = dot_of(flat.num_surfaces() > 0 ? flat.surface(0).material : 0);
    const std::uint32_t count = (num_vertices - 1) / vertices_per_dot + 1;
    for (std::uint32_t i = 0; i < count; ++i) {
        const point3_t &p = flat.position(static_cast<std::size_t>(i) * vertices_per_dot);
        dot.x = p.x;
        dot.y = p.y;
        dot.z = p.z;
        gather.dots.push_back(dot);
    }
    gather.num_dots.back() = count;
}

void add_object(gather_t &gather, object_t *object)
{
    scene_t &scene = *gather.scene;
    const flat_ptr instead = boolean_live_shown(object);
    const object_buffers_t &buffers =
        object_buffers(object, instead != nullptr ? instead : object_flat(object), gather.pace);
    if (buffers.page == nullptr)
        return;
    const scene_item_t item = {object,
                               &buffers,
                               nullptr,
                               object->visible == 0,
                               object->locked != 0,
                               boolean_live_is_outline(object),
                               0};
    if (may_have_details(buffers))
        scene.large.push_back(scene.items.size());
    else
        scene.other_edges += buffers.edges.count;
    if (!item.hidden) // or what is shown again would be thought to cost nothing
        scene.num_vertices += object->num_vertices;
    scene.items.push_back(item);
    scene.spheres.push_back(
        {point_scale(point_add(buffers.min, buffers.max), 0.5f),
         static_cast<float>(0.5 * point_length(point_sub(buffers.max, buffers.min)))});
    scene.complete = scene.complete && !buffers.waits();
    bounds_add(buffers.min, &scene.min, &scene.max);
    bounds_add(buffers.max, &scene.min, &scene.max);
    add_dots(gather, item);
}

// True: it is whole.
bool go_on(gather_t &gather, double deadline)
{
    int looked_at = 0;
    while (!gather.stack.empty()) {
        object_t *object = gather.stack.back();
        gather.stack.pop_back();
        add_object(gather, object);
        const auto first = static_cast<std::ptrdiff_t>(gather.stack.size());
        for (object_t *child : each<object_t>(object->children))
            gather.stack.push_back(child);
        std::reverse(gather.stack.begin() + first, gather.stack.end());
        if (++looked_at % objects_between_looks == 0 && ui_port().now_seconds() > deadline)
            break;
    }
    // What was found different meanwhile is in it.
    gather.changes = model_change_count();
    gather.layouts = buffers_generation();
    return gather.stack.empty();
}

void begin(gather_t &gather, draw_pace pace)
{
    gather.scene = std::make_shared<scene_t>();
    bounds_clear(&gather.scene->min, &gather.scene->max);
    gather.dots.clear();
    gather.num_dots.clear();
    gather.stack.assign(1, vesk_get_world());
    gather.pace = pace;
    gather.uploads = false;
    gather.marks = ~0u;
}

// Whether nothing has happened since that it does not show.
bool is_current(const gather_t &gather, draw_pace pace)
{
    if (gather.scene == nullptr || gather.changes != model_change_count())
        return false;
    if (!gather.stack.empty() || gather.uploads)
        return gather.pace == pace;
    return gather.layouts == buffers_generation() && gather.scene->complete &&
           !boolean_live_runs() && (gather.pace != draw_pace::moving || pace == draw_pace::moving);
}

// What is selected of each item, and the dots by that.
void take_parts(gather_t &gather, draw_pace pace)
{
    selection_marks_update();
    const unsigned marks = selection_marks_generation();
    if (gather.marks == marks)
        return;
    gather.marks = marks;
    scene_t &scene = *gather.scene;
    const bool live = boolean_live_runs();
    scene.dots.clear();
    scene.selected_dots.clear();
    scene.selected_elements = 0;
    const colour_t colour = colour_of(prefs.col_selline);
    auto dot = gather.dots.begin();
    for (std::size_t i = 0; i < scene.items.size(); ++i) {
        scene_item_t &item = scene.items[i];
        item.part = marked_part(item.object);
        // Places in the object's own mesh, of which another is shown.
        if (live && item.part != nullptr && !item.part->whole && boolean_live_shown(item.object))
            item.part = nullptr;
        scene.selected_elements += num_selected_elements(item);
        scene.complete = selected_part_is_ready(item, pace) && scene.complete;
        const bool whole = item.part != nullptr && item.part->whole;
        std::vector<coloured_vertex_t> &out = whole ? scene.selected_dots : scene.dots;
        const auto end = dot + gather.num_dots[i];
        out.insert(out.end(), dot, end);
        dot = end;
    }
    for (coloured_vertex_t &selected : scene.selected_dots) {
        selected.rgba[0] = byte_of(colour.r);
        selected.rgba[1] = byte_of(colour.g);
        selected.rgba[2] = byte_of(colour.b);
    }
}

// True: all of what the scene shows is handed over.
bool hand_over(gather_t &gather, double deadline)
{
    while (!buffers_upload_some())
        if (ui_port().now_seconds() > deadline)
            return false;
    gather.uploads = false;
    if (gather.layouts == buffers_generation())
        return true;
    begin(gather, gather.pace); // objects have got their layouts
    return false;
}

} // namespace

std::shared_ptr<scene_t> gather_scene(draw_pace pace, double seconds)
{
    gather_t &gather = gathered;
    if (!is_current(gather, pace)) {
        const bool changed = gather.scene == nullptr || gather.changes != model_change_count();
        begin(gather, pace);
        gather.beginnings = std::max(gather.beginnings + (changed ? 1 : 0), 1);
    }
    if (!gather.stack.empty()) {
        // Twice the time at each new beginning: what changes again and again is shown, too. While something
        // moves the time stays what was found to be enough.
        constexpr int most_doublings = 10;
        const double time = seconds * (1 << std::min(gather.beginnings - 1, most_doublings));
        const double now = ui_port().now_seconds();
        const bool in_turns = pace != draw_pace::at_once && seconds < 1;
        if (in_turns && now >= gather.turn_ended && now < gather.turn_ended + between_turns)
            return nullptr;
        const bool whole = go_on(gather, now + time);
        gather.turn_ended = whole ? 0 : ui_port().now_seconds();
        if (!whole)
            return nullptr;
        buffers_sweep();
        gather.uploads = pace == draw_pace::at_rest;
    }
    if (gather.uploads && !hand_over(gather, ui_port().now_seconds() + seconds))
        return nullptr;
    if (pace != draw_pace::moving)
        gather.beginnings = 0;
    buffers_take_some_coarse();
    // By the pace it was gathered for, which may serve a picture at rest after this one of motion.
    take_parts(gather, pace == draw_pace::at_once ? pace : gather.pace);
    return gather.scene;
}
