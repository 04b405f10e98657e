#include "edit/link_surfaces.h"

#include "edit/document/selection_scan.h"
#include "model/matrix.h"
#include "model/vector.h"

#include <algorithm>

namespace {

// The vertices of one list by those of another, through numbers in their scratch words.
class counterparts {
public:
    counterparts(const listitem *from, const listitem *to)
        : from_(elements_of<vertex>(from)), to_(elements_of<vertex>(to))
    {
        std::uint32_t number = 0;
        for (vertex *point : from_)
            set_vertex_number(point, number++);
    }
    // Null for a vertex that is not in the list, or has no counterpart.
    [[nodiscard]] vertex *of(const vertex *point) const
    {
        const std::size_t number = point ? vertex_number(point) : from_.size();
        const bool known = number < from_.size() && from_[number] == point && number < to_.size();
        return known ? to_[number] : nullptr;
    }

private:
    std::vector<vertex *> from_;
    std::vector<vertex *> to_;
};

surface_t *link(vertex *a, vertex *a_copy, vertex *b_copy, vertex *b, int material)
{
    surface_t *surface = new_surface();
    surface->material = material;
    if (!point_equal(a->position, a_copy->position))
        surface_add_vertex(surface, a, 0, 0);
    surface_add_vertex(surface, a_copy, 0, 0);
    surface_add_vertex(surface, b_copy, 0, 0);
    if (!point_equal(b->position, b_copy->position))
        surface_add_vertex(surface, b, 0, 0);
    return surface;
}

// Links along one outline; a corner without a counterpart has null there.
void link_outline(const surface_t *source, const std::vector<vertex *> &corners,
                  const std::vector<vertex *> &copies, owned_list *out)
{
    const std::size_t n = std::min(corners.size(), copies.size());
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t next = (i + 1) % n;
        if (next == 0 && source->type == SURFACE_LINE)
            break;
        if (corners[i] && corners[next] && copies[i] && copies[next])
            out->add(link(corners[i], copies[i], copies[next], corners[next], source->material));
    }
}

std::vector<vertex *> corners_of(const surface_t *surface)
{
    std::vector<vertex *> corners;
    for (const svertex *reference : each<svertex>(surface->refs))
        corners.push_back(reference->vertex);
    return corners;
}

} // namespace

listitem *create_link_surfaces(const listitem *surfaces, const listitem *from, const listitem *to)
{
    const counterparts copies(from, to);
    owned_list links;
    for (const surface_t *surface : each<surface_t>(surfaces)) {
        const std::vector<vertex *> corners = corners_of(surface);
        std::vector<vertex *> corner_copies;
        corner_copies.reserve(corners.size());
        for (const vertex *corner : corners)
            corner_copies.push_back(copies.of(corner));
        link_outline(surface, corners, corner_copies, &links);
    }
    return links.release();
}

listitem *surface_create_link_surfaces(const surface_t *from, const surface_t *to)
{
    owned_list links;
    link_outline(from, corners_of(from), corners_of(to), &links);
    return links.release();
}

listitem *surfaces_create_link_surfaces(const listitem *from, const listitem *to)
{
    owned_list links;
    for (; from && to; from = from->next, to = to->next) {
        const auto *surface = item_of<surface_t>(from);
        link_outline(surface, corners_of(surface), corners_of(item_of<surface_t>(to)), &links);
    }
    return links.release();
}

listitem *copy_pointlist_rotate(const listitem *vertices)
{
    return copy_vertices_rotated(vertices, global_matrix());
}

listitem *copy_vertices_rotated(const listitem *vertices, const float *m)
{
    owned_list copies;
    for (const vertex *point : each<vertex>(vertices)) {
        vertex *copy = vertex_clone(point);
        matrix_rotate_point(m, &copy->position);
        copies.add(copy);
    }
    return copies.release();
}

listitem *copy_surfacelist(const listitem *surfaces, const listitem *from, const listitem *to)
{
    const counterparts copies(from, to);
    owned_list list;
    for (const surface_t *surface : each<surface_t>(surfaces)) {
        surface_t *copy = new_surface();
        surface_copy_record(copy, surface);
        for (const svertex *reference : each<svertex>(surface->refs)) {
            if (vertex *point = copies.of(reference->vertex))
                surface_add_vertex(copy, point, reference->u, reference->v);
        }
        list.add(copy);
    }
    return list.release();
}
