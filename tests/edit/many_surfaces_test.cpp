// Operations on more surfaces than one thread takes at once: the same as one after the other.

#include "edit/holes.h"
#include "edit/triangulate.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/object_internal.h"
#include "model/vector.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <algorithm>

namespace {

class ManySurfaces : public SceneTest {};

// A rough sheet among whose surfaces are lines, and quads that are concave or cross themselves.
object_t *add_mixed_sheet(int side)
{
    random_source random(11);
    object_t *sheet = add_random_sheet(random, side);
    for (surface_t *surface : each<surface_t>(sheet->surfaces)) {
        const int what = random.below(20);
        if (what == 0)
            surface_set_type(surface, SURFACE_LINE);
        if (what == 1 && surface->num_refs == 4)
            std::swap(surface->refs->data, surface->refs->next->data);
        if (what == 2)
            item_of<svertex>(surface->refs)->vertex =
                item_of<svertex>(surface->refs->next->next)->vertex;
    }
    object_mark(sheet, CHANGED_ALL);
    return sheet;
}

TEST_F(ManySurfaces, AreTriangulatedAsEachAlone)
{
    object_t *sheet = add_mixed_sheet(150);
    ASSERT_GT(sheet->num_surfaces, 20000);
    const faces_t before = faces_of(sheet);
    faces_t kept, cut;
    number_vertices(sheet);
    int i = 0;
    for (const surface_t *surface : each<surface_t>(sheet->surfaces)) {
        listitem *triangles =
            surface->type == SURFACE_POLYGON ? surface_get_triangulations(surface) : nullptr;
        if (triangles == nullptr)
            kept.push_back(before[i]);
        for (surface_t *triangle : each<surface_t>(triangles)) {
            cut.emplace_back();
            for (const svertex *corner : each<svertex>(triangle->refs))
                cut.back().push_back(static_cast<int>(vertex_number(corner->vertex)));
            surface_free_record(triangle);
        }
        list_free(&triangles);
        ++i;
    }
    listitem *made = object_triangulate_surfaces(sheet);
    EXPECT_EQ(list_count(made), static_cast<int>(cut.size()));
    list_free(&made);
    kept.insert(kept.end(), cut.begin(), cut.end());
    EXPECT_EQ(faces_of(sheet), kept);
}

TEST_F(ManySurfaces, HaveEachARingOfItsOwn)
{
    object_t *sheet = add_mixed_sheet(150);
    const flat_ptr before = object_flat(sheet);
    object_make_holes(sheet, 0.5f);
    const flat_ptr after = object_flat(sheet);
    int ring = 0, copy = before->num_vertices();
    for (int s = 0; s < before->num_surfaces(); ++s)
        ring += before->surface(s).type == SURFACE_POLYGON ? 0 : 1; // what stays comes first
    for (int s = 0; s < before->num_surfaces(); ++s) {
        const auto outline = before->surface_corners(s);
        const auto n = static_cast<int>(outline.size());
        if (before->surface(s).type != SURFACE_POLYGON)
            continue;
        for (int i = 0; i < n; ++i) {
            const std::vector<int> side = {outline[i], outline[(i + 1) % n], copy + (i + 1) % n,
                                           copy + i};
            const auto made = after->surface_corners(ring + i);
            ASSERT_TRUE(std::equal(made.begin(), made.end(), side.begin(), side.end())) << s;
            // Half as long as the side it lies along.
            const point3_t outer = point_sub(after->position(side[1]), after->position(side[0]));
            const point3_t inner = point_sub(after->position(side[2]), after->position(side[3]));
            ASSERT_NEAR(point_length(point_sub(point_scale(outer, 0.5f), inner)), 0, 1e-4) << s;
        }
        ring += n;
        copy += n;
    }
    EXPECT_EQ(ring, after->num_surfaces());
    EXPECT_EQ(copy, after->num_vertices());
}

TEST_F(ManySurfaces, ShareNoVertexAfterItWasTakenApart)
{
    object_t *sheet = add_mixed_sheet(150);
    run("set_select_mode", "vertex");
    run("select_all");
    const flat_ptr before = object_flat(sheet);
    run("unshare_vertices");
    const flat_ptr after = object_flat(sheet);
    std::vector<int> owner(after->num_vertices(), -1);
    for (int s = 0; s < after->num_surfaces(); ++s) {
        for (const int v : after->surface_corners(s)) {
            ASSERT_TRUE(owner[v] < 0 || owner[v] == s) << v;
            owner[v] = s;
        }
    }
    for (int c = 0; c < before->num_corners(); ++c)
        ASSERT_EQ(after->position(after->corner(c)), before->position(before->corner(c)));
    EXPECT_EQ(static_cast<int>(selected_vertices_of(sheet).size()), sheet->num_vertices);
    run("undo");
    EXPECT_EQ(*object_flat(sheet)->corners, *before->corners);
}

} // namespace
