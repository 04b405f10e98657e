#include "edit/triangulate.h"

#include "base/messages.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/mesh/mesh_change.h"
#include "edit/mesh/tessellator.h"
#include "model/freed.h"
#include "model/object_internal.h"
#include "model/owners.h"

#include <numeric>

namespace {

struct triangulation_counts {
    int triangulated = 0, failed = 0, lines = 0;
};

// Cuts one surface of the change's object, and counts it. `outline` is scratch.
bool triangulate(int surface, tessellator_t &tessellator, std::vector<point3_t> &outline,
                 mesh_change &change, triangulation_counts &counts)
{
    const flat_mesh &mesh = change.before();
    const auto corners = mesh.surface_corners(surface);
    if (corners.size() <= 3)
        return false;
    if (mesh.surface(surface).type != SURFACE_POLYGON) {
        ++counts.lines;
        return false;
    }
    outline.clear();
    for (const int v : corners)
        outline.push_back(mesh.position(v));
    if (!tessellator.cut(outline)) {
        ++counts.failed;
        return false;
    }
    const auto first = mesh.first_corner(surface);
    int n = 0;
    for (const int at : tessellator.triangles()) {
        if (n++ % 3 == 0)
            change.add_surface(surface);
        change.add_corner(corners[at], mesh.uv(first + at));
    }
    change.remove_surface(surface);
    ++counts.triangulated;
    return true;
}

void add_all(owned_list &list, const std::vector<surface_t *> &surfaces)
{
    for (surface_t *surface : surfaces)
        list.add(surface);
}

// The computing half for these surfaces. False when the user cancelled.
bool triangulate_all(const std::vector<int> &surfaces, tessellator_t &tessellator,
                     mesh_change &change, triangulation_counts &counts, progress_t *progress,
                     double &done)
{
    const auto corners = change.before().num_corners();
    change.reserve(0, corners / 2, 3 * (corners / 2));
    std::vector<point3_t> outline;
    for (const int surface : surfaces) {
        triangulate(surface, tessellator, outline, change, counts);
        if (progress != nullptr && !progress->step(++done))
            return false;
    }
    return true;
}

} // namespace

void surface_copy_properties(surface_t *to, const surface_t *from)
{
    surface_copy_record(to, from);
}

listitem *surface_get_triangulations(const surface_t *surface)
{
    std::vector<point3_t> outline;
    std::vector<const svertex *> corners;
    for (const svertex *reference : each<svertex>(surface->refs)) {
        if (reference->vertex == nullptr)
            continue;
        outline.push_back(reference->vertex->position);
        corners.push_back(reference);
    }
    tessellator_t tessellator;
    if (corners.size() < 4 || !tessellator.cut(outline))
        return nullptr;
    owned_list list;
    surface_t *triangle = nullptr;
    for (const int at : tessellator.triangles()) {
        if (triangle == nullptr || triangle->num_refs == 3) {
            triangle = new_surface();
            surface_copy_properties(triangle, surface);
            list.add(triangle);
        }
        const svertex *corner = corners[at];
        surface_add_vertex(triangle, corner->vertex, corner->u, corner->v);
    }
    return list.release();
}

listitem *surface_triangulate(object_t *object, surface_t *surface)
{
    mesh_change change(object);
    const int index = change.index_of(surface);
    tessellator_t tessellator;
    triangulation_counts counts;
    std::vector<point3_t> outline;
    if (index < 0 || !triangulate(index, tessellator, outline, change, counts))
        return nullptr;
    owned_list triangles;
    add_all(triangles, change.commit().surfaces);
    return triangles.release();
}

listitem *object_triangulate_surfaces(object_t *object)
{
    triangulation_counts counts;
    owned_list triangles;
    tessellator_t tessellator;
    freed_batch at_once;
    for_each_object(object, [&](object_t *part) {
        mesh_change change(part);
        std::vector<int> all(change.before().num_surfaces());
        std::iota(all.begin(), all.end(), 0);
        double done = 0;
        triangulate_all(all, tessellator, change, counts, nullptr, done);
        add_all(triangles, change.commit().surfaces);
    });
    return triangles.release();
}

// ---- commands ----

void selected_surface_triangulate(void)
{
    const std::vector<owned_elements> targets = target_surfaces();
    display_status();

    triangulation_counts counts;
    tessellator_t tessellator;
    progress_t progress(static_cast<double>(count_elements(targets)));
    double done = 0;
    std::vector<mesh_change> changes;
    for (const owned_elements &owned : targets) {
        if (!triangulate_all(owned.indices, tessellator, changes.emplace_back(owned.object), counts,
                             &progress, done)) {
            display_message("triangulate - cancelled");
            return;
        }
    }
    open_world_undo("triangluate"); // Deliberate: spelt so.
    clear_selection();
    owned_list triangles;
    {
        freed_batch at_once;
        for (mesh_change &change : changes)
            add_all(triangles, change.commit().surfaces);
    }
    select_surfacelist(triangles.get());
    redraw_all();
    if (counts.failed > 0 || counts.lines > 0) {
        windows_message_dialog("Some surfaces were not triangulated:\n\npolys not triangulated: "
                               "%d\nlines/polylines ignored: %d",
                               counts.failed, counts.lines);
    }
    display_status();
    display_message("polygons triangulated: %d", counts.triangulated);
}
