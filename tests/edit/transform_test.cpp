// Moving, turning, scaling and mirroring the selection, and undoing what can be undone.

#include "edit/transform.h"

#include "base/prefs.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/primitives.h"
#include "model/change_marks.h"
#include "model/object_tree.h"
#include "model/vector.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"

#include <algorithm>
#include <cmath>

namespace {

class Transform : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        cube = add_cube("cube");
        select_object(cube);
    }
    object_t *cube;
};

point3_t first_point(const object_t *object) { return object_get_vertex_at(object, 0)->position; }

void expect_point(const point3_t &p, float x, float y, float z)
{
    EXPECT_NEAR(p.x, x, 1e-5);
    EXPECT_NEAR(p.y, y, 1e-5);
    EXPECT_NEAR(p.z, z, 1e-5);
}

TEST_F(Transform, MoveLeavesNoUndoAndMoveToDoes)
{
    run("move", 1, 2, 3);
    EXPECT_EQ(run("get_selection_centre"), "1 2 3");
    EXPECT_EQ(*undo_count_address(), 0);

    run("move_to", -1, 0, 0);
    EXPECT_EQ(run("get_selection_centre"), "-1 0 0");
    EXPECT_EQ(last_undo(), "move to");
    run("undo");
    EXPECT_EQ(run("get_selection_centre"), "1 2 3");
    EXPECT_EQ(last_message(), "undo done");
    run("undo");
    EXPECT_EQ(last_message(), "nothing to undo.");
}

// ---- objects selected together with what lies below them ----

struct nested_case {
    const char *name;
    std::vector<std::string> words;
};
const nested_case nested_cases[] = {
    {"move", {"move", "1", "0", "0"}},
    {"move_with_undo", {"move_with_undo", "1", "0", "0"}},
    {"move_to", {"move_to", "5", "6", "7"}},
    {"rotate", {"rotate", "10", "20", "30"}},
    {"rotate_with_undo", {"rotate_with_undo", "10", "20", "30"}},
    {"rotate_about", {"rotate_about", "10", "20", "30", "1", "2", "3"}},
    {"rotate_each", {"rotate_each_with_undo", "0", "30"}},
    {"rotate_axis", {"rotate_axis_angle", "1", "40"}},
    {"scale", {"scale", "2", "3", "0.5"}},
    {"size_to", {"size_to", "2", "3", "0.5"}},
    {"resize", {"resize_with_undo", "0", "0", "0", "2", "3", "4"}},
    {"mirror", {"mirror", "0"}},
    {"mirror_with_undo", {"mirror_with_undo", "1"}},
    {"revolve", {"revolve", "1"}},
    {"duplicate", {"duplicate"}},
    {"group", {"group"}},
};
void PrintTo(const nested_case &c, std::ostream *out) { *out << c.name; }

class NestedSelection : public SceneTest, public testing::WithParamInterface<nested_case> {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        for (const point3_t offset : {point3_t{0, 0, 0}, {2, 0, 0}, {4, 1, 0}}) {
            object_t *object = add_cube("cube");
            translate_object(object, &offset);
            if (!chain.empty())
                object_reparent(object, chain.back());
            chain.push_back(object);
        }
        run("set_select_mode", "object");
    }
    std::vector<object_t *> chain; // each the parent of the next
};

TEST_P(NestedSelection, EachPartIsChangedOnceAndUndoneOnce)
{
    const std::string before = scene_text();
    select_object(chain[0]);
    run_words(GetParam().words);
    const std::string once = scene_text();
    ASSERT_NE(once, before);
    run("history_goto", 0);
    ASSERT_EQ(scene_text(), before);

    clear_selection();
    for_each_object(vesk_get_world(), [](object_t *object) { select_object(object); });
    ASSERT_EQ(selection().num_objects, 3);
    const int records = *undo_count_address();
    run_words(GetParam().words);
    EXPECT_EQ(scene_text(), once);
    if (*undo_count_address() > records) {
        run("undo");
        EXPECT_EQ(scene_text(), before);
    }
}
INSTANTIATE_TEST_SUITE_P(Operations, NestedSelection, testing::ValuesIn(nested_cases));

TEST_F(Transform, UndoWorksOnWhatWasSelectedThen)
{
    object_t *other = add_cube("other");
    run("move_to", 5, 0, 0);
    run("clear_selection");
    run("select_by_name", "other");
    run("undo");
    expect_point(first_point(cube), -0.5f, -0.5f, -0.5f);
    expect_point(first_point(other), -0.5f, -0.5f, -0.5f);
    EXPECT_EQ(get_current_object(), other);

    run("move_to", 9, 9, 9);
    object_delete(other);
    run("undo"); // its target is gone: nothing is touched
    EXPECT_EQ(*undo_count_address(), 0);
}

TEST_F(Transform, SharedVerticesMoveOnce)
{
    set_new_select_mode(SELECT_SURFACE); // all six surfaces of the cube
    run("move", 1, 0, 0);
    expect_point(first_point(cube), 0.5f, -0.5f, -0.5f);
    set_new_select_mode(SELECT_VERTEX);
    run("move", 1, 0, 0);
    expect_point(first_point(cube), 1.5f, -0.5f, -0.5f);
}

TEST_F(Transform, RotateTurnsInPlaceAboutTheBox)
{
    run("move", 3, 0, 0);
    run("scale", 2, 1, 1);
    run("rotate", 0, 0, 90);
    EXPECT_EQ(run("get_selection_centre"), "3 0 0");
    EXPECT_NEAR(selection().box_size.y, 2, 1e-5);
    run("rotate_about", 0, 0, 90, 0, 0, 0); // from +x to +y
    EXPECT_NEAR(selection().box_centre.y, 3, 1e-5);
    run("rotate_axis_angle", 1.9, 45); // axis 1: about y
    EXPECT_NEAR(selection().box_size.y, 1, 1e-5);
    EXPECT_NEAR(selection().box_size.x, 3 / std::sqrt(2.0), 1e-4);
}

struct drawn_case {
    const char *name;
    int view;
    point3_t before, after; // of a point turned by 90 degrees about the origin
};
// clang-format off
const drawn_case drawn_cases[] = {
    {"front", VIEW_XY, {1, 0, 0}, {0, -1, 0}},
    {"side",  VIEW_ZY, {0, 1, 0}, {0, 0, 1}},
    {"plan",  VIEW_XZ, {1, 0, 0}, {0, 0, 1}},
};
// clang-format on
void PrintTo(const drawn_case &c, std::ostream *out) { *out << c.name; }
class DrawnRotation : public Transform, public testing::WithParamInterface<drawn_case> {};

TEST_P(DrawnRotation, HasTheSignOfItsView)
{
    const drawn_case &c = GetParam();
    vertex *v = object_get_vertex_at(cube, 0);
    v->position = c.before;
    object_mark(cube, CHANGED_POSITIONS);
    const point3_t origin = {0, 0, 0};
    rotate_selected(90, c.view, &origin);
    expect_point(v->position, c.after.x, c.after.y, c.after.z);
}
INSTANTIATE_TEST_SUITE_P(Views, DrawnRotation, testing::ValuesIn(drawn_cases));

TEST_F(Transform, ScaleIsUndoneButForFlattenedAxes)
{
    run("move", 1, 1, 1);
    run("scale", 2, 0, 4);
    EXPECT_EQ(run("get_selection_size"), "2 0 4");
    EXPECT_EQ(last_undo(), "size selection");
    run("undo");
    EXPECT_EQ(run("get_selection_size"), "1 0 1");
    EXPECT_EQ(run("get_selection_centre"), "1 1 1");
}

TEST_F(Transform, SizeToKeepsAxesThatAreFlatOrAskedBelowZero)
{
    run("size_to", 3, -1, 0.5);
    EXPECT_EQ(run("get_selection_size"), "3 1 0.5");
    run("scale", 1, 0, 1);
    run("size_to", 1, 7, 1);
    EXPECT_EQ(run("get_selection_size"), "1 0 1");
}

TEST_F(Transform, MirrorSwapsTheSidesOfTheBox)
{
    run("move", 2, 0, 0);
    const float before = first_point(cube).x; // 1.5
    run("mirror", 0);
    EXPECT_NEAR(first_point(cube).x, 4 - before, 1e-5);
    EXPECT_EQ(run("get_selection_centre"), "2 0 0");
    run("mirror", 7);
    EXPECT_NEAR(first_point(cube).x, 4 - before, 1e-5);
}

TEST_F(Transform, NothingSelectedOrNoBoxChangesNothing)
{
    run("clear_selection");
    for (const char *command : {"move", "move_to", "rotate", "scale", "size_to"})
        run(command, 2, 2, 2);
    run("mirror", 1);
    expect_point(first_point(cube), -0.5f, -0.5f, -0.5f);
    EXPECT_EQ(*undo_count_address(), 0);
}

TEST_F(Transform, UndoLevelsBoundTheRecords)
{
    for (int i = 0; i < 25; ++i)
        run("move_to", i, 0, 0);
    EXPECT_EQ(*undo_count_address(), 20);
    prefs.undo_levels = 3;
    run("move_to", 0, 0, 0);
    EXPECT_EQ(*undo_count_address(), 3);
    prefs.undo_levels = 0;
    recording().scripts.clear();
    run("undo");
    EXPECT_TRUE(recording().scripts.empty());
    set_undo_selection(nullptr, nullptr, nullptr, 1);
    EXPECT_TRUE(nothing_is_selected());
}

// ---- each transform and its inverse ----

using words_t = std::vector<std::string>;
struct inverse_case {
    const char *name;
    words_t there, back;
};
// Turning in place and mirroring keep the middle of the box only because the model is symmetric.
// clang-format off
const inverse_case inverse_cases[] = {
    {"move",         {"move", "3", "-2", "0.5"}, {"move", "-3", "2", "-0.5"}},
    {"move_to",      {"move_to", "4", "5", "6"}, {"move_to", "0", "0", "0"}},
    {"rotate",       {"rotate", "0", "30", "0"}, {"rotate", "0", "-30", "0"}},
    {"rotate_about", {"rotate_about", "0", "0", "40", "1", "2", "3"}, {"rotate_about", "0", "0", "-40", "1", "2", "3"}},
    {"axis_angle",   {"rotate_axis_angle", "0", "90"}, {"rotate_axis_angle", "0", "-90"}},
    {"scale",        {"scale", "2", "4", "0.5"}, {"scale", "0.5", "0.25", "2"}},
    {"size_to",      {"size_to", "7", "3", "2"}, {"size_to", "1", "1", "1"}},
    {"mirror",       {"mirror", "1"}, {"mirror", "1"}},
};
// clang-format on
void PrintTo(const inverse_case &c, std::ostream *out) { *out << c.name; }

class Inverse : public SceneTest, public testing::WithParamInterface<inverse_case> {};

std::vector<point3_t> all_points(const object_t *object)
{
    std::vector<point3_t> points;
    for (const vertex *v : each<vertex>(object->vertices))
        points.push_back(v->position);
    return points;
}

TEST_P(Inverse, BringsEveryPointBackInEveryMode)
{
    const inverse_case &c = GetParam();
    for (const char *mode : {"tree", "object", "surface", "vertex"}) {
        object_t *cube = add_cube("cube");
        run("set_select_mode", mode);
        run("clear_selection");
        run("select_all");
        const std::vector<point3_t> before = all_points(cube);
        run_words(c.there);
        const std::vector<point3_t> there = all_points(cube);
        run_words(c.back);
        const std::vector<point3_t> after = all_points(cube);
        double moved = 0;
        for (size_t i = 0; i < before.size(); ++i) {
            moved += std::hypot(there[i].x - before[i].x, there[i].y - before[i].y,
                                there[i].z - before[i].z);
            expect_point(after[i], before[i].x, before[i].y, before[i].z);
        }
        EXPECT_GT(moved, 0.5) << mode;
        run("clear_selection");
        object_delete(cube);
    }
}
INSTANTIATE_TEST_SUITE_P(Pairs, Inverse, testing::ValuesIn(inverse_cases));

} // namespace
