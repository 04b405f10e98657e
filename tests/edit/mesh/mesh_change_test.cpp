// One change of one object: whatever is asked for, the result is what plain lists give.

#include "edit/mesh/mesh_change.h"

#include "edit/document/selection_scan.h"
#include "edit/mesh/mesh_edges.h"
#include "edit/mesh/position_index.h"
#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/vector.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <algorithm>
#include <limits>
#include <map>

namespace {

class MeshChange : public SceneTest {};

std::vector<std::vector<float>> us_of(const object_t *object)
{
    std::vector<std::vector<float>> all;
    for (const surface_t *surface : each<surface_t>(object->surfaces)) {
        all.emplace_back();
        for (const svertex *reference : each<svertex>(surface->refs))
            all.back().push_back(reference->u);
    }
    return all;
}

TEST_F(MeshChange, CornersCanBeRedirectedInsertedAndRemoved)
{
    object_t *object = add_squares(2, 1);
    const std::vector<surface_t *> surfaces = elements_of<surface_t>(object->surfaces);
    const auto *kept = item_of<svertex>(surfaces[0]->refs);
    mesh_change change(object);
    const int added = change.add_vertex({0.5f, 0, 0}, 0);
    change.insert_corner_after(3, 5, {9, 0}); // at the end of the first
    change.insert_corner_after(0, added, {7, 0});
    change.insert_corner_after(0, 5, {8, 0});
    change.remove_corner(4); // the first of the second
    change.redirect_corner(5, 0);
    change.commit();
    EXPECT_EQ(faces_of(object), (faces_t{{0, 6, 5, 1, 4, 3, 5}, {0, 5, 4}}));
    EXPECT_EQ(us_of(object), (std::vector<std::vector<float>>{{0, 7, 8, 1, 1, 0, 9}, {2, 2, 1}}));
    EXPECT_EQ(elements_of<surface_t>(object->surfaces), surfaces);
    EXPECT_EQ(item_of<svertex>(surfaces[0]->refs), kept);
    expect_sound(object);
}

TEST_F(MeshChange, RemovedCornersCanBeReplacedByInsertedOnes)
{
    object_t *object = add_squares(1, 1);
    mesh_change change(object);
    for (int c = 0; c < 4; ++c) {
        change.insert_corner_after(c, 3 - c, {0, 0});
        change.remove_corner(c);
    }
    change.commit();
    EXPECT_EQ(faces_of(object), (faces_t{{3, 2, 1, 0}}));
    expect_sound(object);
}

TEST_F(MeshChange, VerticesThatLoseTheirLastCornerGoWithTheUnused)
{
    object_t *object =
        add_mesh({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {5, 5, 5}}, {{0, 1, 2}, {0, 1, 3}});
    mesh_change change(object);
    change.redirect_corner(5, 2);
    change.remove_unused();
    change.commit();
    EXPECT_EQ(object->num_vertices, 4) << "3 lost its last corner, 4 never had one";
    EXPECT_EQ(faces_of(object), (faces_t{{0, 1, 2}, {0, 1, 2}}));
}

TEST_F(MeshChange, ForeignCornersStayWhereTheyAre)
{
    object_t *object = add_squares(1, 1);
    surface_t *surface = object_get_surface_at(object, 0);
    vertex *foreign = new_vertex_set(9, 9, 9);
    surface_add_vertex_head(surface, foreign, 0, 0);
    mesh_change change(object);
    change.redirect_corner(0, 3);
    change.insert_corner_after(1, 0, {0, 0});
    change.commit();
    EXPECT_EQ(corners_of(object, surface), (std::vector<int>{-1, 3, 1, 0, 3, 2}));
    list_remove_item(&surface->refs, item_of<void>(surface->refs));
    --surface->num_refs;
    vertex_free_record(foreign);
}

// Random edits of a soup, and the same on plain lists.
TEST_F(MeshChange, RandomChangesGiveWhatPlainListsGive)
{
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        random_source random(seed);
        object_t *soup = add_random_soup(random, 40, 40);
        faces_t faces = faces_of(soup);
        mesh_change change(soup);
        const int added = change.add_vertex({1, 2, 3});
        int corner = change.before().num_corners();
        for (auto face = faces.rbegin(); face != faces.rend(); ++face) {
            for (auto i = static_cast<int>(face->size()) - 1; i >= 0; --i) {
                --corner;
                const int to = random.below(added + 1);
                switch (random.below(6)) {
                case 0:
                    change.insert_corner_after(corner, to, {0, 0});
                    face->insert(face->begin() + i + 1, to);
                    break;
                case 1:
                    change.redirect_corner(corner, to);
                    (*face)[i] = to;
                    break;
                case 2:
                    change.remove_corner(corner);
                    face->erase(face->begin() + i);
                    break;
                default:
                    break;
                }
            }
        }
        faces_t kept;
        for (std::size_t i = 0; i < faces.size(); ++i) {
            if (random.below(4) == 0)
                change.remove_surface(static_cast<int>(i));
            else
                kept.push_back(faces[i]);
        }
        change.commit();
        EXPECT_EQ(faces_of(soup), kept) << seed;
        expect_sound(soup);
    }
}

// After the commit nobody reads the lists: what is handed over must be what they hold.
TEST_F(MeshChange, TheFlatMeshOfARandomChangeIsThatOfItsLists)
{
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
        random_source random(seed);
        object_t *soup = add_random_soup(random, 40, 40);
        mesh_change change(soup);
        const flat_mesh &before = change.before();
        const auto some_vertex = [&] { return random.below(change.num_vertices()); };
        for (int i = random.below(4); i > 0; --i)
            change.add_vertex({1, 2, random.between(0, 1)},
                              random.below(before.num_vertices() + 1) - 1);
        const int goes = random.below(4); // of four surfaces
        for (int s = 0; s < before.num_surfaces(); ++s) {
            if (random.below(4) < goes || goes == 3)
                change.remove_surface(s);
        }
        for (int i = random.below(6); i > 0; --i) {
            change.add_surface(random.below(before.num_surfaces() + 1) - 1);
            if (random.below(3) == 0)
                change.set_type(SURFACE_LINE);
            if (random.below(3) == 0)
                change.set_material(random.below(9));
            for (int c = 1 + random.below(4); c > 0; --c)
                change.add_corner(some_vertex(), {random.between(0, 1), 0});
        }
        std::vector<std::int32_t> corners = *before.corners;
        for (std::int32_t &v : corners)
            v = random.below(5) == 0 ? some_vertex() : v;
        if (random.below(3) == 0)
            change.redirect_corners(std::move(corners));
        else if (random.below(2) == 0 && before.num_corners() > 0)
            change.redirect_corner(random.below(before.num_corners()), some_vertex());
        if (random.below(2) == 0)
            change.remove_unused();
        change.commit();
        EXPECT_EQ(flat_compare(soup, *object_flat(soup)), 0U) << seed;
        expect_sound(soup);
    }
}

// Drawing takes the same array of corners for the same vertices.
TEST_F(MeshChange, NewVerticesWithoutASurfaceBringNewCorners)
{
    object_t *object = add_squares(2, 1);
    mesh_change change(object);
    change.add_vertex({1, 2, 3});
    change.commit();
    EXPECT_NE(object_flat(object)->corners, change.before().corners);
    EXPECT_EQ(*object_flat(object)->corners, *change.before().corners);
}

TEST_F(MeshChange, ManyCornersAreRedirectedBesideForeignOnes)
{
    object_t *object = add_squares(2, 1);
    surface_t *surface = object_get_surface_at(object, 1);
    vertex *foreign = new_vertex_set(9, 9, 9);
    surface_add_vertex_head(surface, foreign, 0, 0);
    object_mark(object, CHANGED_TOPOLOGY);
    mesh_change change(object);
    std::vector<std::int32_t> corners = *change.before().corners;
    std::replace(corners.begin(), corners.end(), 1, 0);
    change.redirect_corners(std::move(corners));
    change.commit();
    EXPECT_EQ(faces_of(object)[0], (std::vector<int>{0, 0, 4, 3}));
    EXPECT_EQ(corners_of(object, surface), (std::vector<int>{-1, 0, 2, 5, 4}));
    list_remove_item(&surface->refs, item_of<void>(surface->refs));
    --surface->num_refs;
    vertex_free_record(foreign);
    object_mark(object, CHANGED_TOPOLOGY);
}

// ---- edges ----

TEST_F(MeshChange, EdgesAreSharedInEitherDirection)
{
    for (std::uint32_t seed = 0; seed < 30; ++seed) {
        random_source random(seed);
        object_t *soup = add_random_soup(random, 12, 40);
        const flat_ptr mesh = object_flat(soup);
        const mesh_edges edges = edges_of(*mesh);
        std::map<std::pair<int, int>, int> numbers; // in the order of the corners
        int corner = 0;
        for (int s = 0; s < mesh->num_surfaces(); ++s) {
            const auto corners = mesh->surface_corners(s);
            for (std::size_t i = 0; i < corners.size(); ++i, ++corner) {
                const bool last = i + 1 == corners.size();
                const bool open = mesh->surface(s).type == 2;
                int expected = -1;
                if (!last || !open) {
                    const auto ends = std::minmax({corners[i], corners[last ? 0 : i + 1]});
                    expected =
                        numbers.try_emplace(ends, static_cast<int>(numbers.size())).first->second;
                }
                ASSERT_EQ(edges.of_corner[corner], expected) << seed;
            }
        }
        EXPECT_EQ(edges.count, static_cast<int>(numbers.size()));
    }
}

// ---- positions ----

TEST_F(MeshChange, PositionsFindTheFirstOfEqualOnes)
{
    random_source random(3);
    position_index index(4); // grows
    std::vector<point3_t> points;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (int i = 0; i < 2000; ++i) {
        const auto coordinate = [&] {
            const int n = random.below(12);
            return n == 0 ? -0.0f : n == 11 ? nan : static_cast<float>(n - 5) * 0.1f;
        };
        points.push_back({coordinate(), coordinate(), coordinate()});
        int expected = i;
        for (int j = i - 1; j >= 0; --j) {
            if (point_equal(points[j], points.back()))
                expected = j;
        }
        ASSERT_EQ(index.find_or_add(points.back(), i), expected);
        ASSERT_EQ(index.find(points.back()),
                  point_equal(points.back(), points.back()) ? expected : -1);
    }
    const position_index again(points);
    EXPECT_EQ(again.find({7, 7, 7}), -1);
}

} // namespace
