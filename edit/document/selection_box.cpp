// The box round what is selected.

#include "base/coor_display.h"
#include "edit/document/selection_internal.h"
#include "model/bounds.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/world.h"

namespace {

// A light has no vertices: the place where it stands counts as one. Returns how many there are.
int add_lights(const object_t *top, point3_t *min, point3_t *max)
{
    int lights = 0;
    for_each_object(const_cast<object_t *>(top), [&](const object_t *part) {
        if (part->type != OBJECT_LIGHT || part->vertices != nullptr)
            return;
        bounds_add(part->centre, min, max);
        ++lights;
    });
    return lights;
}

// Of a surface; `at` where it is deferred. Returns how many there are.
int add_corners(const surface_t *surface, const deferred_elements::place_t &at, point3_t *min,
                point3_t *max)
{
    if (at.object != nullptr) {
        for (const int v : at.flat->surface_corners(at.index))
            bounds_add(at.flat->position(v), min, max);
        return static_cast<int>(at.flat->surface_corners(at.index).size());
    }
    int corners = 0;
    for (const svertex *corner : each<svertex>(surface->refs)) {
        if (corner->vertex == nullptr)
            continue;
        bounds_add(corner->vertex->position, min, max);
        ++corners;
    }
    return corners;
}

} // namespace

void find_bounding_box(void)
{
    selection_t &all = selection();
    bounds_clear(&all.box_min, &all.box_max);
    int visited = all.num_vertices;
    const deferred_elements deferred(vesk_get_world(), true);
    for (const vertex *v : each<vertex>(all.vertices)) {
        const auto at = deferred.find(v);
        bounds_add(at.object != nullptr ? at.flat->position(at.index) : v->position, &all.box_min,
                   &all.box_max);
    }
    for (const surface_t *surface : each<surface_t>(all.surfaces))
        visited += add_corners(surface, deferred.find(surface), &all.box_min, &all.box_max);
    for (const object_t *object : each<object_t>(all.objects)) {
        point3_t low, high;
        const int n = object_bounds(object, &low, &high);
        if (n == 0)
            continue;
        visited += n;
        bounds_add(low, &all.box_min, &all.box_max);
        bounds_add(high, &all.box_min, &all.box_max);
    }
    // Beside geometry the lights, which often stand far away, do not count.
    if (visited == 0) {
        for (const object_t *object : each<object_t>(all.objects))
            visited += add_lights(object, &all.box_min, &all.box_max);
    }
    // A box of coordinates that are no numbers is none.
    all.box_valid = visited > 0 && all.box_min.x <= all.box_max.x &&
                            all.box_min.y <= all.box_max.y && all.box_min.z <= all.box_max.z
                        ? 1
                        : 0;
    recalc_bb_info();
}

void recalc_bb_info(void)
{
    selection_t &all = selection();
    if (all.box_valid == 0)
        return;
    const point3_t &a = all.box_min;
    const point3_t &b = all.box_max;
    all.box_size = {b.x - a.x, b.y - a.y, b.z - a.z};
    all.box_centre = {a.x + all.box_size.x / 2, a.y + all.box_size.y / 2, a.z + all.box_size.z / 2};
    show_coors_and_dim(&all.box_centre, &a, &b);
}
