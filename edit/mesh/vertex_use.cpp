#include "edit/mesh/vertex_use.h"

#include "base/worker.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/world.h"

#include <algorithm>
#include <numeric>

namespace {

bool has_vertex(const surface_t *surface, const vertex *point)
{
    for (const svertex *reference : each<svertex>(surface->refs)) {
        if (reference->vertex == point)
            return true;
    }
    return false;
}

void add_surfaces_of(const object_t *object, const vertex *point, owned_list &list)
{
    for (surface_t *surface : each<surface_t>(object->surfaces)) {
        if (has_vertex(surface, point))
            list.add(surface);
    }
}

} // namespace

listitem *surfaces_of_vertex(const vertex *point)
{
    owned_list list;
    for_each_object(vesk_get_world(),
                    [&](const object_t *object) { add_surfaces_of(object, point, list); });
    return list.release();
}

listitem *surfaces_of_object_vertex(const object_t *object, const vertex *point)
{
    owned_list list;
    add_surfaces_of(object, point, list);
    return list.release();
}

int surface_replace_vertex_all(surface_t *surface, const vertex *from, vertex *to)
{
    int count = 0;
    for (svertex *reference : each<svertex>(surface->refs)) {
        if (reference->vertex == from) {
            reference->vertex = to;
            ++count;
        }
    }
    return count;
}

int object_replace_surfaceref(object_t *object, const vertex *from, vertex *to)
{
    int count = 0;
    for (surface_t *surface : each<surface_t>(object->surfaces))
        count += surface_replace_vertex_all(surface, from, to);
    object_mark(object, CHANGED_TOPOLOGY);
    return count;
}

vertex_corners::vertex_corners(const flat_mesh &mesh)
    : begin_(mesh.num_vertices() + 1), corners_(mesh.num_corners()), surface_of_(mesh.num_corners())
{
    for (const std::int32_t v : *mesh.corners)
        ++begin_[v + 1];
    std::partial_sum(begin_.begin(), begin_.end(), begin_.begin());
    std::vector<std::int32_t> at(begin_.begin(), begin_.end() - 1);
    std::int32_t corner = 0;
    for (const std::int32_t v : *mesh.corners)
        corners_[at[v]++] = corner++;
    in_parallel_ranges(mesh.num_surfaces(), [&](int first, int end) {
        for (int s = first; s < end; ++s)
            std::fill(surface_of_.begin() + mesh.first_corner(s),
                      surface_of_.begin() + mesh.end_corner(s), s);
    });
}

std::span<const std::int32_t> vertex_corners::of(int v) const
{
    return std::span(corners_).subspan(begin_[v], begin_[v + 1] - begin_[v]);
}
