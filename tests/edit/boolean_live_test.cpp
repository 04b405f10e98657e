#include "edit/boolean_live.h"

#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"

#include <array>

namespace {

// A unit cube, and a tool cube that stands half in it.
class BooleanLive : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        target = add_cube("target");
        tool = add_cube("tool");
        run("clear_selection");
        select_object(tool);
        run("move_with_undo", 0.5f, 0, 0);
        run("scale", 0.5f, 0.5f, 0.5f);
        run("clear_selection");
        select_object(target);
        select_object(tool);
        start = scene_text();
    }
    // Surfaces of what is drawn in the target's stead; -1: itself.
    int shown() const
    {
        EXPECT_TRUE(boolean_live_update(false));
        const flat_ptr mesh = boolean_live_shown(target);
        return mesh == nullptr ? -1 : mesh->num_surfaces();
    }
    static int num_objects()
    {
        int count = 0;
        for ([[maybe_unused]] object_t *object : each<object_t>(vesk_get_world()->children))
            ++count;
        return count;
    }

    object_t *target, *tool;
    std::string start;
};

TEST_F(BooleanLive, ShowsWhatTheBooleanWouldMakeAndChangesNothing)
{
    run("boolean_live", "difference");
    EXPECT_EQ(scene_text(), start);
    EXPECT_EQ(shown(), 11);
    EXPECT_FALSE(boolean_live_is_outline(target));
    EXPECT_TRUE(boolean_live_is_outline(tool));
    EXPECT_EQ(selection_get_num_objects(), 1); // the tool, to be moved
    run("boolean_live", "union");
    EXPECT_EQ(shown(), 11);
    run("boolean_live", "difference");
    run("move_with_undo", -0.5f, 0, 0); // quite inside
    EXPECT_EQ(shown(), 12);
    run("move_with_undo", 5, 0, 0); // quite outside
    EXPECT_EQ(shown(), 6);
}

// What is no part of a solid stays in the first one, as in what is kept; with the others it goes.
TEST_F(BooleanLive, LinesAndLoosePointsOfTheFirstAreShown)
{
    for (object_t *object : {target, tool}) {
        surface_t *line = new_surface();
        surface_set_type(line, SURFACE_LINE);
        for (const float x : {2.0f, 3.0f, 3.5f})
            surface_add_vertex(line, object_add_new_vertex(object, x, 0, 0), 0, 0);
        object_add_surface(object, line);
        object_add_new_vertex(object, 4, 0, 0);
    }
    run("boolean_live", "difference");
    EXPECT_EQ(shown(), 12);
    const flat_ptr seen = boolean_live_shown(target);
    EXPECT_EQ(run("boolean_live_keep", 0), "1");
    const flat_ptr made = object_flat(target);
    EXPECT_EQ(seen->num_surfaces(), made->num_surfaces());
    EXPECT_EQ(seen->num_vertices(), made->num_vertices());
    const auto points = [](const flat_mesh &mesh, auto &&list) {
        std::vector<std::array<float, 3>> all;
        for (const int v : list)
            all.push_back({mesh.position(v).x, mesh.position(v).y, mesh.position(v).z});
        return all;
    };
    const auto line_of = [](const flat_mesh &mesh) {
        int s = 0;
        while (s < mesh.num_surfaces() && !mesh.surface(s).is_line())
            ++s;
        return mesh.surface_corners(s);
    };
    EXPECT_EQ(points(*seen, line_of(*seen)), points(*made, line_of(*made)));
    EXPECT_EQ(points(*seen, flat_loose_vertices(*seen)), points(*made, flat_loose_vertices(*made)));
}

TEST_F(BooleanLive, MovesAndBooleanAreOneStep)
{
    const int before = *undo_count_address();
    run("boolean_live", "difference");
    run("move_with_undo", 0, 0.5f, 0);
    run("rotate_with_undo", 0, 0, 90);
    run("move_with_undo", 0, 0, 0.25f);
    const int surfaces = shown();
    EXPECT_EQ(run("boolean_live_keep", 0), "1");
    EXPECT_EQ(num_objects(), 1);
    EXPECT_EQ(target->num_surfaces, surfaces);
    EXPECT_EQ(boolean_live_shown(target), nullptr);
    const std::string after = scene_text();
    run("step_back");
    EXPECT_EQ(scene_text(), start);
    EXPECT_EQ(selection_get_num_objects(), 2);
    EXPECT_EQ(*undo_count_address(), before);
    run("redo");
    EXPECT_EQ(scene_text(), after);
}

TEST_F(BooleanLive, CancelGoesBackToTheBeginning)
{
    run("boolean_live", "union");
    run("move_with_undo", 1, 2, 3);
    run("set_select_mode", "vertex");
    run("boolean_live_cancel");
    EXPECT_EQ(scene_text(), start);
    EXPECT_EQ(selection_get_num_objects(), 2);
    EXPECT_EQ(shown(), -1);
    // The order of the selection is the old one, too.
    run("boolean", "difference");
    object_t *result = find_object_where(vesk_get_world(), [](object_t *object) {
        return std::string_view(object->name) == "target";
    });
    ASSERT_NE(result, nullptr);
    EXPECT_NEAR(volume(result), 1 - 0.0625, 1e-5);
}

TEST_F(BooleanLive, ARefusalIsToldOnceAndTheSolidsAreShown)
{
    run("boolean_live", "union");
    select_surfaces_at(tool, {0});
    run("delete");
    EXPECT_EQ(shown(), -1);
    EXPECT_EQ(last_message(), "boolean - 'tool' is not closed");
    EXPECT_TRUE(recording().boxes.empty());
    run("set_select_mode", "object");
    select_object(tool);
    recording().scripts.clear();
    run("move_with_undo", 0.1f, 0, 0);
    EXPECT_EQ(shown(), -1);
    EXPECT_NE(last_message(), "boolean - 'tool' is not closed");
    EXPECT_EQ(run("boolean_live_keep", 0), "0");
    EXPECT_EQ(last_message(), "boolean - 'tool' is not closed");
    EXPECT_EQ(num_objects(), 2);
    run("step_back");
    run("step_back");
    EXPECT_EQ(shown(), 11);
}

TEST_F(BooleanLive, EndsWithItsSolidsOrItsBeginning)
{
    run("boolean_live", "union");
    EXPECT_EQ(shown(), 11);
    run("step_back"); // to before it began
    EXPECT_EQ(shown(), -1);
    EXPECT_EQ(run("boolean_live_keep", 0), "0");
    run("redo");
    run("clear_selection");
    select_object(target);
    select_object(tool);
    run("boolean_live", "union");
    run("clear_all");
    EXPECT_TRUE(boolean_live_update(false));
    EXPECT_EQ(run("boolean_live_keep", 0), "0");
}

TEST_F(BooleanLive, OffKeepsTheMoves)
{
    run("boolean_live", "union");
    run("move_with_undo", 1, 0, 0);
    const std::string moved = scene_text();
    run("boolean_live", "off");
    EXPECT_EQ(scene_text(), moved);
    EXPECT_EQ(selection_get_num_objects(), 2);
    EXPECT_EQ(shown(), -1);
}

} // namespace
