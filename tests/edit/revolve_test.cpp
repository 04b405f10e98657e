#include "edit/revolve.h"

#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "edit/link_surfaces.h"
#include "model/each.h"
#include "model/matrix.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

#include <array>
#include <cmath>
#include <map>
#include <set>

namespace {

// An object of one surface through the points, under the world and selected.
object_t *add_outline(int type, const std::vector<point3_t> &points, int material = 4)
{
    object_t *object = new_object(OBJECT_POLY);
    surface_t *surface = new_surface();
    surface->type = static_cast<uint8_t>(type);
    surface->material = material;
    for (const point3_t &p : points)
        surface_add_vertex(surface, object_add_new_vertex(object, p.x, p.y, p.z), 0, 0);
    object_add_surface(object, surface);
    object_add_child(vesk_get_world(), object);
    clear_selection();
    select_object(object);
    return object;
}

struct mesh_count {
    int polygons = 0, lines = 0, corners = 0;
    std::map<int, int> edges_by_use; // how many edges belong to so many polygons
    int euler = 0;                   // of the vertices that polygons use
};

// Edges run between places, so that vertices at the same place count once.
mesh_count count(const object_t *object)
{
    using place = std::array<float, 3>;
    const auto place_of = [](const vertex *v) {
        const auto rounded = [](float x) { return std::round(x * 1e4f) + 0.0f; };
        return place{rounded(v->position.x), rounded(v->position.y), rounded(v->position.z)};
    };
    mesh_count counts;
    std::set<place> used;
    std::map<std::pair<place, place>, int> edges;
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        if (surface->type != SURFACE_POLYGON) {
            ++counts.lines;
            continue;
        }
        ++counts.polygons;
        for (const listitem *node = surface->refs; node; node = node->next) {
            const listitem *next = node->next ? node->next : surface->refs;
            const place a = place_of(item_of<svertex>(node)->vertex);
            const place b = place_of(item_of<svertex>(next)->vertex);
            ++counts.corners;
            used.insert(a);
            ++edges[std::minmax(a, b)];
        }
    }
    for (const auto &[edge, uses] : edges)
        ++counts.edges_by_use[uses];
    counts.euler = static_cast<int>(used.size()) - static_cast<int>(edges.size()) + counts.polygons;
    return counts;
}

class Revolve : public SceneTest {};

const std::vector<point3_t> profile = {{1, 0, 0}, {1.5f, 1, 0}, {1, 2, 0}};

struct sweep_case {
    const char *name;
    int degrees, segments;
    int num_vertices, polygons;
    int open_edges; // of one polygon only
};
void PrintTo(const sweep_case &c, std::ostream *out) { *out << c.name; }
// clang-format off
const sweep_case sweep_cases[] = {
    // The last ring of a whole turn is there, though nothing uses it.
    {"whole_turn", 360, 12, 3 + 12 * 3, 24, 2 * 12},
    {"half_turn",  180, 12, 3 + 12 * 3, 24, 2 * 12 + 2 * 2},
    {"one_step",    30,  1, 3 + 3,       2, 2 + 2 * 2},
};
// clang-format on
class Sweep : public Revolve, public testing::WithParamInterface<sweep_case> {};
TEST_P(Sweep, OfALineIsASurfaceWithoutTheLine)
{
    object_t *object = add_outline(SURFACE_LINE, profile);
    prefs.revolve_degs = GetParam().degrees;
    prefs.revolve_segments = GetParam().segments;
    run("revolve", 1);
    const mesh_count counts = count(object);
    EXPECT_EQ(counts.lines, 0);
    EXPECT_EQ(counts.polygons, GetParam().polygons);
    EXPECT_EQ(object->num_vertices, GetParam().num_vertices);
    EXPECT_EQ(counts.edges_by_use.at(1), GetParam().open_edges);
    for (const surface_t *surface : each<surface_t>(object->surfaces))
        EXPECT_EQ(surface->material, 4);
}
INSTANTIATE_TEST_SUITE_P(Lines, Sweep, testing::ValuesIn(sweep_cases));

TEST_F(Revolve, AProfileThatMeetsTheAxisCloses)
{
    object_t *object = add_outline(SURFACE_LINE, {{0, -1, 0}, {1, 0, 0}, {0, 1, 0}});
    object_revolve(object, 1, 360, 8);
    const mesh_count counts = count(object);
    EXPECT_EQ(counts.polygons, 16);
    EXPECT_EQ(counts.corners, 16 * 3); // edges at the axis give triangles
    EXPECT_EQ(counts.edges_by_use.size(), 1u);
    EXPECT_EQ(counts.edges_by_use.at(2), 24);
    EXPECT_EQ(counts.euler, 2);
}

TEST_F(Revolve, APolygonSweptPartWayIsClosed)
{
    object_t *object = add_outline(SURFACE_POLYGON, {{1, 0, 0}, {2, 0, 0}, {2, 1, 0}, {1, 1, 0}});
    object_revolve(object, 1, 90, 3);
    const mesh_count counts = count(object);
    EXPECT_EQ(counts.polygons, 1 + 3 * 4 + 1);
    EXPECT_EQ(counts.edges_by_use.size(), 1u);
    EXPECT_EQ(counts.edges_by_use.count(2), 1u);
    EXPECT_EQ(counts.euler, 2);
}

TEST_F(Revolve, TakesChildrenAlong)
{
    object_t *parent = add_outline(SURFACE_LINE, profile);
    object_t *child = add_outline(SURFACE_LINE, profile);
    object_reparent(child, parent);
    object_revolve(parent, 1, 360, 6);
    EXPECT_EQ(child->num_surfaces, 12);
}

TEST_F(Revolve, IsRefusedOutsideAWholeTurnAndUndoneInside)
{
    object_t *object = add_outline(SURFACE_LINE, profile);
    for (const int degrees : {0, -5, 361}) {
        prefs.revolve_degs = degrees;
        run("revolve", 1);
        EXPECT_EQ(recording().boxes.back(),
                  "The setting 'revolve degrees' is out of range (should be 1-360)");
        EXPECT_EQ(last_undo(), "");
        EXPECT_EQ(object->num_surfaces, 1);
    }
    prefs.revolve_degs = 360;
    run("revolve", 1);
    EXPECT_EQ(last_undo(), "revolve");
    run("undo");
    EXPECT_EQ(object->num_surfaces, 1);
    EXPECT_EQ(object->num_vertices, 3);
}

TEST_F(Revolve, LinksLeaveOutCornersThatDidNotMove)
{
    object_t *object = add_outline(SURFACE_POLYGON, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    set_global_matrix_rotate(0, 0.5f, 0); // about y: the first and the last corner stay
    owned_list copies(copy_pointlist_rotate(object->vertices));
    owned_list links(create_link_surfaces(object->surfaces, object->vertices, copies.get()));
    std::vector<int> corners;
    for (const surface_t *surface : each<surface_t>(links.get()))
        corners.push_back(surface->num_refs);
    EXPECT_EQ(corners, (std::vector<int>{3, 3, 2}));
    // With the copy as a surface the links are the same.
    owned_list outlines(copy_surfacelist(object->surfaces, object->vertices, copies.get()));
    owned_list same(surfaces_create_link_surfaces(object->surfaces, outlines.get()));
    EXPECT_EQ(list_count(same.get()), 3);
    for (const owned_list *list : {&links, &outlines, &same}) {
        for (surface_t *surface : each<surface_t>(list->get()))
            surface_free_record(surface);
    }
    for (vertex *v : each<vertex>(copies.get()))
        vertex_free_record(v);
}

} // namespace
