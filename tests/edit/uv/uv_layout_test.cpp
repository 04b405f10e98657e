// Projections against their formulas, and islands side by side.

#include "base/prefs.h"
#include "edit/document/selection.h"
#include "edit/uv/uv_measure.h"
#include "edit/uv/uv_pack.h"
#include "edit/uv/uv_project.h"
#include "edit/uv/uvmap.h"
#include "model/angle.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/normals.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/support/random_mesh.h"

#include <cmath>

namespace {

std::vector<int> every_surface(const uv_mesh &mesh)
{
    std::vector<int> all;
    for (int i = 0; i < mesh.num_surfaces(); ++i)
        all.push_back(i);
    return all;
}

class UvProjection : public SceneTest {
protected:
    object_t *only_object() { return item_of<object_t>(vesk_get_world()->children); }
    std::vector<flat_uv> projected(object_t *object, uv_projection how, uv_extent extent,
                                   double aspect = 1)
    {
        mesh = uv_mesh_of({object});
        return uv_project(mesh, every_surface(mesh), how, extent, aspect);
    }
    uv_mesh mesh;
};

TEST_F(UvProjection, PlanesOverTheSquareAreThoseOfTheGenerator)
{
    random_source random(5);
    object_t *soup = add_random_soup(random, 20, 30);
    const std::pair<uv_projection, int> planes[] = {
        {uv_projection::PLANAR_Z, 0}, {uv_projection::PLANAR_X, 1}, {uv_projection::PLANAR_Y, 2}};
    for (const auto &[projection, mode] : planes) {
        const std::vector<flat_uv> at = projected(soup, projection, uv_extent::SQUARE);
        point3_t min, max;
        bounds_clear(&min, &max);
        for (int c = 0; c < mesh.num_corners(); ++c)
            bounds_add(mesh.position(c), &min, &max);
        surfaces_calc_texture_coors_bound(soup->surfaces, mode, &min, &max);
        const uv_mesh expected = uv_mesh_of({soup});
        for (std::size_t c = 0; c < at.size(); ++c) {
            ASSERT_NEAR(at[c].u, expected.at[c].u, 1e-5) << mode;
            ASSERT_NEAR(at[c].v, expected.at[c].v, 1e-5) << mode;
        }
    }
}

TEST_F(UvProjection, ProportionsAreThoseOfTheModelOnThePicture)
{
    object_t *squares = add_squares(4, 1);
    const std::vector<flat_uv> at =
        projected(squares, uv_projection::PLANAR_Z, uv_extent::PROPORTIONS, 2);
    uv_box box;
    for (const flat_uv &p : at)
        box.add(p);
    // 4 x 1 units on a picture of 2 x 1: as wide as the picture, half as high.
    EXPECT_NEAR(box.u0, 0, 1e-6);
    EXPECT_NEAR(box.u1, 1, 1e-6);
    EXPECT_NEAR(box.v0, 0.25, 1e-6);
    EXPECT_NEAR(box.v1, 0.75, 1e-6);
}

TEST_F(UvProjection, TheBoxHasSixSidesThatKeepShapeAndDoNotMeet)
{
    object_t *cube = add_cube("cube");
    for (vertex *v : each<vertex>(cube->vertices))
        v->position.x *= 3;
    object_mark(cube, CHANGED_POSITIONS);
    object_calc_normals_force(cube);
    select_object(cube);
    run("uv_project", "box", "1");
    const uv_state &state = uv_editor();
    EXPECT_EQ(state.islands.num_islands, 6);
    const std::vector<uv_stretch> stretch = uv_measure_stretch(state.mesh, 1);
    for (const uv_stretch &s : stretch) {
        EXPECT_NEAR(s.area, 1, 1e-3);
        EXPECT_NEAR(s.angle, 1, 1e-3);
        EXPECT_FALSE(s.flipped);
    }
    EXPECT_EQ(run("uv_overlaps"), "0");
    const uv_box box = uv_box_of(state.mesh, std::vector<char>(state.mesh.at.size(), 1));
    EXPECT_GE(std::min(box.u0, box.v0), -1e-6);
    EXPECT_LE(std::max(box.u1, box.v1), 1 + 1e-6);
}

TEST_F(UvProjection, TheCylinderGoesOnceRoundWithoutATornSeam)
{
    prefs.cylinder_has_ends = 1;
    run("create", "cylinder", "2", "-1", "-1", "-1", "1", "1", "1");
    object_t *cylinder = only_object();
    const std::vector<flat_uv> at = projected(cylinder, uv_projection::CYLINDER, uv_extent::UNITS);
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        if (std::fabs(mesh.normals[i].y) > 0.9f)
            continue; // an end
        float low = 1e9f, high = -1e9f;
        for (int c = mesh.corners_begin(i); c < mesh.corners_end(i); ++c) {
            const point3_t &p = mesh.position(c);
            const double turns = 1 - std::atan2(-double{p.x}, double{p.z}) / (2 * pi);
            EXPECT_NEAR(std::remainder(at[c].u - turns, 1.0), 0, 1e-5);
            EXPECT_NEAR(at[c].v, (double{p.y} + 1) / (2 * pi), 1e-4);
            low = std::min(low, at[c].u);
            high = std::max(high, at[c].u);
        }
        EXPECT_LT(high - low, 0.5f);
    }
    select_object(cylinder);
    run("uv_project", "cylinder", "1");
    EXPECT_EQ(run("uv_overlaps"), "0");
    EXPECT_EQ(uv_editor().islands.num_islands, 3);
}

TEST_F(UvProjection, TheSphereIsTheGeneratorsButAtItsPoles)
{
    run("create", "sphere", "0", "-1", "-1", "-1", "1", "1", "1");
    object_t *sphere = only_object();
    const std::vector<flat_uv> at = projected(sphere, uv_projection::SPHERE, uv_extent::UNITS);
    point3_t min = {-1, -1, -1}, max = {1, 1, 1};
    surfaces_calc_texture_coors_bound(sphere->surfaces, 3, &min, &max);
    const uv_mesh expected = uv_mesh_of({sphere});
    int compared = 0;
    for (int i = 0; i < mesh.num_surfaces(); ++i) {
        float low = 1e9f, high = -1e9f;
        for (int c = mesh.corners_begin(i); c < mesh.corners_end(i); ++c) {
            low = std::min(low, at[c].u);
            high = std::max(high, at[c].u);
            const point3_t &p = mesh.position(c);
            if (std::hypot(p.x, p.z) < 1e-3f)
                continue;
            EXPECT_NEAR(std::remainder(at[c].u - expected.at[c].u, 1.0f), 0, 1e-4);
            EXPECT_NEAR(at[c].v, expected.at[c].v, 1e-4);
            ++compared;
        }
        EXPECT_LT(high - low, 0.5f);
    }
    EXPECT_GT(compared, 100);
}

struct pack_case {
    const char *name;
    int count;
    double smallest, largest;
    double aspect;
    double gap;
    double least_filled; // share of the picture
};
// clang-format off
const pack_case pack_cases[] = {
    {"one",              1, 1,    1,   1, 0,     0.9},
    {"equal_squares",   16, 1,    1,   1, 0,     0.9},
    {"with_a_margin",   20, 0.5,  1,   1, 0.01,  0.4},
    {"very_different",  60, 0.01, 1,   1, 0,     0.6},
    {"wide_picture",    40, 0.1,  1,   4, 0.002, 0.5},
    {"high_picture",    40, 0.1,  1, 0.5, 0.002, 0.5},
    {"thousands",     5000, 0.2,  1,   1, 0,     0.5},
};
// clang-format on
void PrintTo(const pack_case &c, std::ostream *out) { *out << c.name; }
class UvPack : public SceneTest, public testing::WithParamInterface<pack_case> {};

struct placed_t {
    double u, v, width, height;
};
std::vector<placed_t> placed(const std::vector<uv_rectangle> &sizes, const uv_layout &layout,
                             double aspect)
{
    std::vector<placed_t> result;
    for (std::size_t i = 0; i < sizes.size(); ++i) {
        const uv_rectangle_place &at = layout.places[i];
        const double across = at.turned ? sizes[i].height : sizes[i].width;
        const double up = at.turned ? sizes[i].width : sizes[i].height;
        result.push_back({at.u, at.v, across * layout.scale, up * layout.scale * aspect});
    }
    return result;
}

TEST_P(UvPack, NothingOverlapsAllIsInsideAndPackingAgainChangesNothing)
{
    const pack_case &c = GetParam();
    random_source random(11);
    std::vector<uv_rectangle> sizes;
    for (int i = 0; i < c.count; ++i)
        sizes.push_back(
            {random.between(static_cast<float>(c.smallest), static_cast<float>(c.largest)),
             random.between(static_cast<float>(c.smallest), static_cast<float>(c.largest))});

    const uv_layout layout = uv_pack_rectangles(sizes, c.aspect, c.gap, true);

    const std::vector<placed_t> at = placed(sizes, layout, c.aspect);
    const double slack = 1e-4 * layout.scale;
    double filled = 0;
    for (std::size_t i = 0; i < at.size(); ++i) {
        filled += at[i].width * at[i].height;
        ASSERT_GE(at[i].u, c.gap / 2 - slack);
        ASSERT_GE(at[i].v, c.gap * c.aspect / 2 - slack);
        ASSERT_LE(at[i].u + at[i].width, 1 - c.gap / 2 + slack);
        ASSERT_LE(at[i].v + at[i].height, 1 - c.gap * c.aspect / 2 + slack * c.aspect);
    }
    EXPECT_GT(filled, c.least_filled);
    std::vector<std::size_t> order(at.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return at[a].u < at[b].u; });
    for (std::size_t i = 0; i < order.size(); ++i) {
        const placed_t &a = at[order[i]];
        for (std::size_t j = i + 1; j < order.size(); ++j) {
            const placed_t &b = at[order[j]];
            if (b.u >= a.u + a.width + c.gap - slack)
                break;
            const double between = c.gap * c.aspect - slack * c.aspect;
            ASSERT_TRUE(b.v >= a.v + a.height + between || a.v >= b.v + b.height + between)
                << order[i] << " " << order[j];
        }
    }

    std::vector<uv_rectangle> again;
    for (const placed_t &p : at)
        again.push_back({p.width, p.height / c.aspect});
    const uv_layout second = uv_pack_rectangles(again, c.aspect, c.gap, true);
    EXPECT_NEAR(second.scale, 1, 1e-3);
    for (std::size_t i = 0; i < at.size(); ++i) {
        ASSERT_FALSE(second.places[i].turned);
        ASSERT_NEAR(second.places[i].u, at[i].u, 1e-9);
        ASSERT_NEAR(second.places[i].v, at[i].v, 1e-9);
    }
}
INSTANTIATE_TEST_SUITE_P(Sizes, UvPack, testing::ValuesIn(pack_cases));

TEST_F(UvPack, AMarginThatLeavesNoRoomGetsSmaller)
{
    for (const double aspect : {1.0, 100.0, 0.01}) {
        for (const int count : {1, 5, 300, 4000}) {
            const std::vector<uv_rectangle> sizes(count, uv_rectangle{1, 1});
            const uv_layout layout = uv_pack_rectangles(sizes, aspect, 5, true);
            EXPECT_GT(layout.scale, 0);
            for (const placed_t &at : placed(sizes, layout, aspect)) {
                ASSERT_GE(std::min(at.u, at.v), 0);
                ASSERT_LE(at.u + at.width, 1 + 1e-6);
                ASSERT_LE(at.v + at.height, 1 + 1e-6);
            }
        }
    }
}

TEST_F(UvPack, TheCommandLaysIslandsWithAMarginAndTwiceIsOnce)
{
    object_t *cube = add_cube("cube");
    random_source random(4);
    for (surface_t *surface : each<surface_t>(cube->surfaces)) {
        const float width = random.between(0.2f, 0.7f), height = random.between(0.2f, 1.4f);
        const flat_uv square[4] = {{0, 0}, {width, 0}, {width, height}, {0, height}};
        int i = 0;
        for (svertex *corner : each<svertex>(surface->refs)) {
            corner->u = square[i].u;
            corner->v = square[i++].v;
        }
    }
    object_mark(cube, CHANGED_TEXTURE_COORDS);
    select_object(cube);
    const std::vector<uv_stretch> before = uv_measure_stretch(uv_editor().mesh, 1);

    run("uv_pack", "4");

    const std::vector<uv_box> boxes = uv_island_boxes(uv_editor().mesh, uv_editor().islands);
    ASSERT_EQ(boxes.size(), 6u);
    const double margin = 4.0 / 512 - 1e-5;
    for (std::size_t a = 0; a < 6; ++a) {
        EXPECT_GE(boxes[a].u0, margin / 2);
        EXPECT_LE(boxes[a].v1, 1 - margin / 2);
        for (std::size_t b = 0; b < a; ++b)
            EXPECT_TRUE(boxes[a].u1 + margin <= boxes[b].u0 ||
                        boxes[b].u1 + margin <= boxes[a].u0 ||
                        boxes[a].v1 + margin <= boxes[b].v0 || boxes[b].v1 + margin <= boxes[a].v0)
                << a << " " << b;
    }
    const std::vector<uv_stretch> after = uv_measure_stretch(uv_editor().mesh, 1);
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_NEAR(after[i].area, before[i].area, 1e-3); // one scale for all
        EXPECT_FALSE(after[i].flipped);
    }
    const std::vector<flat_uv> once = uv_editor().mesh.at;
    run("uv_pack", "4");
    const std::vector<flat_uv> &twice = uv_editor().mesh.at;
    for (std::size_t c = 0; c < once.size(); ++c) {
        EXPECT_NEAR(once[c].u, twice[c].u, 1e-5);
        EXPECT_NEAR(once[c].v, twice[c].v, 1e-5);
    }
}

} // namespace
