#include "edit/uv/uvmap.h"

#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "model/angle.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/vector.h"

#include <cmath>

namespace {

// (value - min) / size, computed as 1 / (size / (value - min)); 0 where that cannot be done.
float fraction(float value, float min, float size)
{
    const float distance = value - min;
    if (distance == 0)
        return 0;
    const float quotient = size / distance;
    return quotient == 0 || std::isnan(quotient) ? 0 : 1 / quotient;
}

struct mapping_t {
    int mode;
    point3_t min, size;

    void map_planar(svertex *corner) const
    {
        const point3_t &p = corner->vertex->position;
        const float fx = fraction(p.x, min.x, size.x);
        const float fy = fraction(p.y, min.y, size.y);
        const float fz = fraction(p.z, min.z, size.z);
        corner->u = mode == 1 ? fz : fx;
        corner->v = mode == 2 ? 1 - fz : fy;
    }

    void map_spherical(svertex *corner) const
    {
        const point3_t middle = {min.x + size.x / 2, min.y + size.y / 2, min.z + size.z / 2};
        const point3_t d = point_sub(corner->vertex->position, middle);
        const double theta = std::atan2(-static_cast<double>(d.x), static_cast<double>(d.z));
        const double across = std::hypot(static_cast<double>(d.x), static_cast<double>(d.z));
        double phi = 0; // on the axis the sign of y decides, at the middle nothing
        if (across > 0) {
            phi = std::atan(static_cast<double>(d.y) / across);
        } else if (d.y != 0) {
            phi = d.y > 0 ? pi / 2 : -pi / 2;
        }
        const double w = 1 - theta / (2 * pi);
        corner->u = static_cast<float>(w - std::floor(w));
        corner->v = static_cast<float>(1 - std::fabs(0.5 - phi / pi));
    }

    void map(const surface_t *surface) const
    {
        for (svertex *corner : each<svertex>(surface->refs)) {
            if (corner->vertex == nullptr)
                continue;
            if (mode == 3) {
                map_spherical(corner);
            } else {
                map_planar(corner);
            }
        }
        if (mode == 3)
            repair_seam(surface);
    }

    // A surface across the seam: its corners beyond it are shifted by one turn.
    static void repair_seam(const surface_t *surface)
    {
        float low = 1e30f, high = -1e30f;
        for (const svertex *corner : each<svertex>(surface->refs)) {
            low = std::fmin(low, corner->u);
            high = std::fmax(high, corner->u);
        }
        if (high - low < 0.5f)
            return;
        for (svertex *corner : each<svertex>(surface->refs)) {
            if (corner->u < 0.5f)
                corner->u += 1.0f;
        }
    }
};

mapping_t mapping_of_box(int mode, const point3_t &min, const point3_t &max)
{
    return {
        mode, min, {std::fabs(max.x - min.x), std::fabs(max.y - min.y), std::fabs(max.z - min.z)}};
}

void map_object(object_t *object, const mapping_t &mapping)
{
    for (const surface_t *surface : each<surface_t>(object->surfaces))
        mapping.map(surface);
    object_mark(object, CHANGED_TEXTURE_COORDS);
}

} // namespace

void calc_texture_coors(object_t *object, int plane)
{
    for_each_object(object, [&](object_t *o) {
        // Its extent is that of its whole tree; mode 3 is no plane.
        map_object(o,
                   {plane == 1 || plane == 2 ? plane : 0, find_object_min(o), find_object_size(o)});
    });
}

void surfaces_calc_texture_coors_bound(const listitem *surfaces, int mode, const point3_t *min,
                                       const point3_t *max)
{
    const mapping_t mapping = mapping_of_box(mode, *min, *max);
    const std::vector<surface_t *> all = elements_of<surface_t>(surfaces);
    for (const surface_t *surface : all)
        mapping.map(surface);
    for (object_t *owner : unique_objects(owners_of_surfaces(all))) {
        if (owner != nullptr)
            object_mark(owner, CHANGED_TEXTURE_COORDS);
    }
}

void surfaces_calc_texture_coors(const listitem *surfaces, int mode)
{
    surfaces_calc_texture_coors_bound(surfaces, mode, &selection().box_min, &selection().box_max);
}

void surface_init_texture_coors(surface_t *surface)
{
    if (surface->type != SURFACE_POLYGON)
        return;
    constexpr float square[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    int i = 0;
    for (svertex *corner : each<svertex>(surface->refs)) {
        if (surface->num_refs == 3 || surface->num_refs == 4) {
            const float *at = square[surface->num_refs == 3 && i == 2 ? 3 : i];
            corner->u = at[0];
            corner->v = at[1];
        } else {
            const double angle = 2 * pi * i / surface->num_refs;
            corner->u = static_cast<float>(0.5 + 0.5 * std::cos(angle));
            corner->v = static_cast<float>(0.5 + 0.5 * std::sin(angle));
        }
        ++i;
    }
}

void crap_calc_texture_coors(object_t *object)
{
    const float height = find_object_size(object).y;
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        for (svertex *corner : each<svertex>(surface->refs)) {
            if (corner->vertex == nullptr)
                continue;
            const point3_t &p = corner->vertex->position;
            console_printf("%f %f %f\n", static_cast<double>(p.x), static_cast<double>(p.y),
                           static_cast<double>(p.z));
            corner->u = static_cast<float>(
                std::atan2(static_cast<double>(p.x), static_cast<double>(p.z)) / (2 * pi));
            corner->v = height == 0 ? 0 : p.y / height / height; // Deliberate: divided twice
        }
    }
    object_mark(object, CHANGED_TEXTURE_COORDS);
}

// ---- commands ----

void selected_calc_texture_coors(int mode)
{
    const selection_t &all = selection();
    const owned_list surfaces(find_selected_whole_surfaces());
    surfaces_calc_texture_coors(surfaces.get(), mode);
    const mapping_t mapping = mapping_of_box(mode, all.box_min, all.box_max);
    for (object_t *top : selected_top_objects())
        for_each_object(top, [&](object_t *object) { map_object(object, mapping); });
    redraw_all();
}

void command_inituv()
{
    owned_list polygons;
    std::vector<object_t *> touched;
    for (const owned_elements &owned : target_surfaces()) {
        const flat_ptr mesh = object_flat(owned.object);
        for (const int i : owned.indices) {
            surface_t *surface = mesh->surface_record(i);
            if (surface->type == SURFACE_POLYGON)
                polygons.add(surface);
        }
        touched.push_back(owned.object);
    }
    if (!polygons) {
        display_message("initial texture coordinates - nothing selected");
        return;
    }
    display_message("initial texture coordinates...");
    new_undo(UNDO_TEXTURE_COORDS, "initial texture coordinates");
    set_undo_texture_coords(polygons.get());
    int count = 0;
    for (surface_t *surface : each<surface_t>(polygons.get())) {
        surface_init_texture_coors(surface);
        ++count;
    }
    for (object_t *object : touched)
        object_mark(object, CHANGED_TEXTURE_COORDS);
    finish_edit();
    display_message("initial texture coordinates - %d surfaces", count);
}
