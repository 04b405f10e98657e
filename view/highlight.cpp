#include "view/highlight.h"

#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/mesh/edge_topology.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/ear_cut.h"
#include "model/world.h"
#include "view/camera_eye.h"
#include "view/pick_outline.h"
#include "view/tool_select.h"
#include "view/views_internal.h"

#include <algorithm>
#include <array>

namespace {

// Of surfaces: more are lit only where the pointer rests, and of a larger object the box.
constexpr int most_followed = 50000;
constexpr int most_outlined = 100000;
constexpr size_t most_segments = 4000;

struct lit_t {
    pick_hit_t hit;
    std::uint64_t model = 0;
    unsigned selection = 0;
    int mode = -1;
    std::array<double, 16> camera = {};
    highlight_t marks;
};
lit_t &lit()
{
    static lit_t state;
    return state;
}

std::array<double, 16> camera_now()
{
    std::array<double, 16> camera;
    camera_modelview(camera.data());
    return camera;
}

// Outlines of objects are those that are seen from one side, so the camera counts, too.
bool is_up_to_date(const lit_t &state)
{
    return state.model == model_change_count() && state.selection == selection_change_count() &&
           state.mode == select_mode() &&
           (state.marks.view != VIEW_XYZ || state.camera == camera_now());
}

bool is_same(const lit_t &state, int view, const pick_hit_t &hit)
{
    return state.marks.view == view && state.hit.object == hit.object &&
           state.hit.surface == hit.surface && state.hit.point == hit.point &&
           state.hit.end == hit.end && is_up_to_date(state);
}

void add_box(const object_t *object, highlight_t *out)
{
    constexpr std::array<int, 24> box_edges = {0, 1, 2, 3, 4, 5, 6, 7, 0, 2, 1, 3,
                                               4, 6, 5, 7, 0, 4, 1, 5, 2, 6, 3, 7};
    point3_t low;
    point3_t high;
    if (object_bounds(object, &low, &high) == 0)
        return;
    const auto corner = [&](int i) {
        return point3_t{(i & 1) != 0 ? high.x : low.x, (i & 2) != 0 ? high.y : low.y,
                        (i & 4) != 0 ? high.z : low.z};
    };
    for (size_t i = 0; i < box_edges.size(); i += 2)
        out->segments.push_back({corner(box_edges[i]), corner(box_edges[i + 1])});
}

void add_outline(const flat_mesh &mesh, int surface, highlight_t *out)
{
    const auto corners = mesh.surface_corners(surface);
    const bool open = mesh.surface(surface).type == SURFACE_LINE;
    for (size_t k = 0; k + (open ? 1 : 0) < corners.size(); ++k)
        out->segments.push_back(
            {mesh.position(corners[k]), mesh.position(corners[(k + 1) % corners.size()])});
}

// Edges with a face that looks at the viewer on one side only, and lines.
void add_silhouette(object_t *object, int view, highlight_t *out)
{
    const topology_ptr topology = object_topology(object);
    const flat_mesh &mesh = topology->mesh();
    const projector_t projector(view);
    std::vector<char> looks(static_cast<size_t>(mesh.num_surfaces()), 0);
    outline_t outline;
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        surface_outline(mesh, i, projector, &outline);
        looks[static_cast<size_t>(i)] = !outline.empty() && outline_faces_viewer(outline) ? 1 : 0;
        if (mesh.surface(i).is_line())
            add_outline(mesh, i, out);
    }
    for (int e = 0; e < topology->size(); ++e) {
        const auto uses = topology->uses(e);
        const auto towards = std::count_if(uses.begin(), uses.end(), [&](const edge_use &use) {
            return looks[static_cast<size_t>(use.surface)] != 0;
        });
        if (uses.size() == 1 || (towards != 0 && towards != static_cast<long>(uses.size())))
            out->segments.push_back(
                {mesh.position(topology->edge(e).a), mesh.position(topology->edge(e).b)});
    }
}

void add_object(object_t *object, int view, highlight_t *out)
{
    if (object->type == OBJECT_LIGHT)
        out->points.push_back(object->centre);
    if (object->visible == 0 || object->vertices == nullptr)
        return;
    highlight_t own;
    if (object->num_surfaces <= most_outlined)
        add_silhouette(object, view, &own);
    if (object->num_surfaces > most_outlined || own.segments.size() > most_segments) {
        own.segments.clear();
        add_box(object, &own);
    }
    out->segments.insert(out->segments.end(), own.segments.begin(), own.segments.end());
}

void add_surface(object_t *object, const surface_t *surface, highlight_t *out)
{
    const flat_ptr mesh = object_flat(object);
    const auto &records = *mesh->surface_records;
    const auto found = std::find(records.begin(), records.end(), surface);
    if (found == records.end())
        return;
    const int i = static_cast<int>(found - records.begin());
    add_outline(*mesh, i, out);
    const auto corners = mesh->surface_corners(i);
    if (!mesh->surface(i).is_line() && corners.size() >= 3)
        for (const int corner : surface_ears(*mesh, i))
            out->triangles.push_back(mesh->position(corners[static_cast<size_t>(corner)]));
}

highlight_t marks_of(const pick_hit_t &hit, int view)
{
    highlight_t marks;
    marks.view = view;
    if (hit.end != nullptr)
        marks.segments.push_back({hit.point->position, hit.end->position});
    else if (hit.point != nullptr)
        marks.points.push_back(hit.point->position);
    else if (hit.surface != nullptr)
        add_surface(hit.object, hit.surface, &marks);
    else if (select_mode() == SELECT_TREE)
        for_each_object(hit.object, [&](object_t *object) { add_object(object, view, &marks); });
    else
        add_object(hit.object, view, &marks);
    return marks;
}

void light_up(int view, const pick_hit_t &hit)
{
    lit_t &state = lit();
    if (is_same(state, view, hit))
        return;
    const int before = highlight_in(state.marks.view) != nullptr ? state.marks.view : VIEW_NONE;
    state = {hit, model_change_count(), selection_change_count(), select_mode(), camera_now(), {}};
    if (!select_hit_is_selected(hit))
        state.marks = marks_of(hit, view);
    else
        state.marks.view = view;
    if (before != VIEW_NONE && before != view)
        redraw(before);
    redraw(view);
}

int count_surfaces()
{
    int count = 0;
    for_each_object(vesk_get_world(), [&](const object_t *object) {
        count += object->visible != 0 ? object->num_surfaces : 0;
    });
    return count;
}

} // namespace

const highlight_t *highlight_in(int view)
{
    const lit_t &state = lit();
    const highlight_t &marks = state.marks;
    const bool lights = !(marks.segments.empty() && marks.points.empty());
    return view != VIEW_NONE && marks.view == view && lights && is_up_to_date(state) ? &marks
                                                                                     : nullptr;
}

void highlight_at(int view, int x, int y)
{
    if (prefs.highlight_pick == 0)
        return;
    const pick_hit_t hit = select_hit_at(view, x, y);
    if (hit.object == nullptr)
        highlight_clear();
    else
        light_up(view, hit);
}

bool highlight_is_quick() { return count_surfaces() <= most_followed; }

void highlight_follow(int view, int x, int y)
{
    if (prefs.highlight_pick != 0 && !highlight_is_quick())
        highlight_clear();
    else
        highlight_at(view, x, y);
}

void highlight_clear()
{
    const int view = lit().marks.view;
    const bool shown = highlight_in(view) != nullptr;
    lit() = {};
    if (shown)
        redraw(view);
}
