#include "draw/layout_job.h"
#include "draw/mesh_changes.h"
#include "model/change_marks.h"
#include "model/normals.h"
#include "model/vector.h"
#include "model/world.h"
#include "tests/view/view_test.h"
#include "view/draw_budget.h"

#include <array>
#include <set>

namespace {

class MeshLayout : public SceneTest {
protected:
    // One polygon in z = 0 from x, y pairs.
    static object_t *add_polygon(const std::vector<float> &xy)
    {
        object_t *object = new_object(OBJECT_POLY);
        surface_t *surface = new_surface();
        for (size_t i = 0; i + 1 < xy.size(); i += 2)
            surface_add_vertex(surface, object_add_new_vertex(object, xy[i], xy[i + 1], 0), 0, 0);
        object_add_surface(object, surface);
        object_add_child(vesk_get_world(), object);
        object_calc_normals_force(object);
        return object;
    }

    static point3_t slot_point(const mesh_layout_t &layout, const std::vector<float> &positions,
                               size_t index)
    {
        const size_t slot = layout.triangles[index];
        return {positions[slot * 3], positions[slot * 3 + 1], positions[slot * 3 + 2]};
    }

    // Signed by the facing toward +z.
    static double area(const flat_mesh &flat, const mesh_layout_t &layout)
    {
        std::vector<float> positions(layout.num_slots() * 3);
        layout_positions(layout, flat, {0, layout.num_slots()}, positions.data());
        double sum = 0;
        for (size_t i = 0; i + 2 < layout.triangles.size(); i += 3) {
            const point3_t a = slot_point(layout, positions, i);
            sum += point_cross(point_sub(slot_point(layout, positions, i + 1), a),
                               point_sub(slot_point(layout, positions, i + 2), a))
                       .z /
                   2.0;
        }
        return sum;
    }
};

struct polygon_case {
    const char *name;
    std::vector<float> xy;
    double area;
    bool concave;
};
const std::vector<polygon_case> &polygon_cases()
{
    static const std::vector<polygon_case> cases = {
        {"triangle", {0, 0, 1, 0, 0, 1}, 0.5, false},
        {"square", {0, 0, 1, 0, 1, 1, 0, 1}, 1.0, false},
        {"clockwise_square", {0, 0, 0, 1, 1, 1, 1, 0}, -1.0, false},
        {"straight_corner", {0, 0, 1, 0, 2, 0, 2, 1, 0, 1}, 2.0, false},
        {"arrow", {0, 0, 2, 1, 0, 2, 1, 1}, 1.0, true},
        {"first_corner_turns_in", {1, 1, 0, 0, 2, 1, 0, 2}, 1.0, true},
        {"letter_u", {0, 0, 3, 0, 3, 3, 2, 3, 2, 1, 1, 1, 1, 3, 0, 3}, 7.0, true},
        {"comb", {0, 0, 5, 0, 5, 2, 4, 1, 3, 2, 2, 1, 1, 2, 0, 1}, 7.5, true},
    };
    return cases;
}

TEST_F(MeshLayout, TrianglesCoverThePolygonOnceAndFaceAsItDoes)
{
    for (const polygon_case &c : polygon_cases()) {
        SCOPED_TRACE(c.name);
        const flat_ptr flat = object_flat(add_polygon(c.xy));
        const mesh_layout_t layout = layout_mesh(*flat, {});
        EXPECT_EQ(layout.triangles.size(), c.xy.size() / 2 * 3 - 6);
        EXPECT_NEAR(area(*flat, layout), c.area, 1e-6);
        EXPECT_EQ(!layout.concave.empty(), c.concave);
    }
}

TEST_F(MeshLayout, TheNormalOfAPolygonFollowsItsOutline)
{
    for (const polygon_case &c : polygon_cases()) {
        SCOPED_TRACE(c.name);
        const flat_ptr flat = object_flat(add_polygon(c.xy));
        const mesh_layout_t layout = layout_mesh(*flat, {});
        std::vector<std::int16_t> normals(layout.num_slots() * 4);
        layout_normals(layout, *flat, {0, layout.num_slots()}, normals.data());
        const size_t provoking = layout.triangles[2];
        EXPECT_EQ(normals[provoking * 4 + 2] > 0, c.area > 0);
    }
}

TEST_F(MeshLayout, ACubeTakesOneSlotForEachVertexOrFaceThatNeedsOne)
{
    object_t *cube = add_cube("cube");
    object_calc_normals_force(cube);
    const flat_ptr flat = object_flat(cube);
    const mesh_layout_t layout = layout_mesh(*flat, {});
    EXPECT_EQ(layout.triangles.size(), 36u);
    EXPECT_EQ(layout.edges.size(), 24u);
    EXPECT_LE(layout.num_slots(), 10u);
    // The last corner of every triangle carries its face's normal.
    std::vector<std::int16_t> normals(layout.num_slots() * 4);
    layout_normals(layout, *flat, {0, layout.num_slots()}, normals.data());
    std::set<std::array<int, 3>> faces;
    for (size_t i = 2; i < layout.triangles.size(); i += 3) {
        const std::int16_t *n = &normals[layout.triangles[i] * 4];
        faces.insert({n[0] / 32000, n[1] / 32000, n[2] / 32000});
    }
    EXPECT_EQ(faces.size(), 6u);
}

TEST_F(MeshLayout, SurfacesAreGroupedByHowTheyAreDrawn)
{
    object_t *cube = add_cube("cube");
    auto *first = reinterpret_cast<surface_t *>(cube->surfaces->data);
    auto *second = reinterpret_cast<surface_t *>(cube->surfaces->next->data);
    surface_set_col(first, 3);
    surface_set_type(second, SURFACE_CLOSED_LINE);
    object_set_twosided_faces(cube, 0); // marks the object
    const mesh_layout_t layout = layout_mesh(*object_flat(cube), {});
    ASSERT_EQ(layout.groups.size(), 2u);
    EXPECT_EQ(layout.groups[0].material, 3);
    EXPECT_EQ(layout.groups[0].count, 6u);
    EXPECT_EQ(layout.groups[1].count, 24u);
    EXPECT_EQ(layout.lines.size(), 8u);
}

TEST_F(MeshLayout, AMoveThatDentsAPolygonNeedsANewLayout)
{
    object_t *object = add_polygon({0, 0, 1, 0, 1, 1, 0, 1});
    const mesh_layout_t layout = layout_mesh(*object_flat(object), {});
    auto *corner = reinterpret_cast<vertex *>(object->vertices->next->next->data);
    vertex_set_point(corner, 2, 2, 0);
    object_mark(object, CHANGED_POSITIONS);
    EXPECT_TRUE(layout_fits(layout.concave, *object_flat(object), {2}));
    layout_job_t job;
    job.flat = object_flat(object);
    job.moved = {2};
    job.run();
    EXPECT_TRUE(job.fits);
    EXPECT_TRUE(job.result.triangles.empty());
    vertex_set_point(corner, 0.2f, 0.2f, 0);
    object_mark(object, CHANGED_POSITIONS);
    EXPECT_FALSE(layout_fits(layout.concave, *object_flat(object), {2}));
    EXPECT_TRUE(layout_fits(layout.concave, *object_flat(object), {})); // nothing moved since
    job.flat = object_flat(object);
    job.run();
    EXPECT_FALSE(job.fits);
    EXPECT_EQ(job.result.concave, std::vector<std::int32_t>{0});
}

TEST(DrawBudget, LeavesLayersOutInTheirOrderWhileMoving)
{
    draw_budget budget;
    budget.note(draw_layer::fill, 0.020);
    budget.note(draw_layer::edges, 0.015);
    budget.note(draw_layer::vertices, 0.005);
    EXPECT_TRUE(budget.choose(false, true).vertices);
    layer_choice_t choice = budget.choose(true, true); // 40 ms: without vertices and smoothing
    EXPECT_FALSE(choice.vertices);
    EXPECT_FALSE(choice.smoothing);
    budget.note(draw_layer::smoothing, 0.010);
    choice = budget.choose(true, true); // 25 ms are left
    EXPECT_TRUE(choice.fill);
    EXPECT_TRUE(choice.edges);
}

TEST(DrawBudget, FlatViewsGiveUpTheFillAnd3DTheEdges)
{
    draw_budget budget;
    budget.note(draw_layer::fill, 0.050);
    budget.note(draw_layer::edges, 0.030);
    EXPECT_FALSE(budget.choose(true, true).fill);
    EXPECT_TRUE(budget.choose(true, true).edges);
    EXPECT_TRUE(budget.choose(true, false).fill);
    EXPECT_FALSE(budget.choose(true, false).edges);
    EXPECT_EQ(budget.choose(true, false).share, 1);
}

// Pictures of a budget's choice, each taking what its detail takes; the last choice.
layer_choice_t choice_after(draw_budget &budget, int pictures, const std::array<double, 5> &seconds)
{
    for (int i = 0; i < pictures; ++i) {
        const layer_choice_t choice = budget.choose(true, false);
        if (choice.detail > 0)
            budget.note_coarse(choice, seconds[static_cast<std::size_t>(choice.detail)] *
                                           (choice.whole ? 1 : 0.6));
    }
    return budget.choose(true, false);
}

TEST(DrawBudget, TakesTheFinestDetailThatFits)
{
    draw_budget budget;
    budget.note(draw_layer::fill, 0.6);
    budget.note(draw_layer::edges, 0.6);
    EXPECT_LT(budget.choose(true, false).share, 0.1); // there is no coarser one
    budget.take_shares({1, 0.1, 0.05, 0.02, 0.02});
    EXPECT_EQ(budget.choose(true, false).detail, 3); // before anything was measured
    EXPECT_EQ(budget.choose(false, false).detail, 0);
    layer_choice_t choice = choice_after(budget, 5, {1.2, 0.055, 0.022, 0.01, 0});
    EXPECT_EQ(choice.detail, 2);
    EXPECT_TRUE(choice.edges);
    EXPECT_EQ(budget.choose(true, false, 0.006).detail, 3); // the scene took most of the time
    choice = choice_after(budget, 30, {1.2, 0.006, 0.003, 0.001, 0}); // the camera turned away
    EXPECT_EQ(choice.detail, 1);
    budget.take_shares({1, 0.1, 0.05, 0.02, 0.001}); // other versions
    EXPECT_EQ(budget.choose(true, false).detail, 4);
}

// Pictures of the coarsest detail that are quicker than all of them was thought to be do not say that a
// finer one fits.
TEST(DrawBudget, ADetailThatDidNotFitIsNotTriedAgain)
{
    draw_budget budget;
    budget.note(draw_layer::fill, 0.6);
    budget.note(draw_layer::edges, 0.3);
    budget.take_shares({1, 0.17, 0.1, 0.02, 0.02});
    const std::array<double, 5> seconds = {0.9, 0.16, 0.1, 0.015, 0};
    int too_slow = 0;
    for (int i = 0; i < 100; ++i)
        too_slow += choice_after(budget, 1, seconds).detail < 3 ? 1 : 0;
    EXPECT_EQ(too_slow, 0);
}

// The first picture of a view, or one that was held up.
TEST(DrawBudget, OneSlowPictureIsSoonForgotten)
{
    draw_budget budget;
    budget.note(draw_layer::fill, 0.6);
    budget.note(draw_layer::edges, 0.6);
    budget.note(draw_layer::rest, 10);
    budget.take_shares({1, 0.1, 0.05, 0.02, 0.02});
    choice_after(budget, 1, {5, 5, 5, 5, 5});
    EXPECT_EQ(choice_after(budget, 12, {1.2, 0.06, 0.03, 0.012, 0}).detail, 2);
}

TEST(DrawBudget, GuessesTheCostOfASceneThatIsMuchLargerThanThoseItKnows)
{
    draw_budget budget;
    budget.expect(1000);
    EXPECT_LT(budget.full_cost(), slow_picture);
    budget.expect(1e6);
    EXPECT_GT(budget.full_cost(), slow_picture);
    for (const draw_layer layer : {draw_layer::fill, draw_layer::edges, draw_layer::vertices}) {
        for (int i = 0; i < 30; ++i)
            budget.note(layer, 0.001); // a fast device
    }
    budget.expect(1.1e6); // what was measured counts
    EXPECT_LT(budget.full_cost(), slow_picture);
    const double measured = budget.full_cost();
    budget.expect(2e6); // everything was doubled
    const double expected = budget.full_cost();
    EXPECT_GE(expected, 2 * measured);
    budget.expect(2e6);
    budget.expect(1.5e6); // once
    EXPECT_EQ(budget.full_cost(), expected);
}

} // namespace
