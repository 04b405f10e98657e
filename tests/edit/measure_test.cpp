// What the selection measures, from hand-worked bodies.

#include "edit/document/selection.h"
#include "model/each.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

namespace {

class Measure : public SceneTest {};

TEST_F(Measure, ABoxHasAreaAndVolumeAndAnOpenOneNoVolume)
{
    run("create", "box", 2, 0, 0, 0, 2, 3, 4);
    EXPECT_EQ(run("measure"), "1 object  area 52  volume 24");
    EXPECT_EQ(last_message(), "1 object  area 52  volume 24");

    run("set_select_mode", "surface");
    run("clear_selection");
    object_t *box = item_of<object_t>(vesk_get_world()->children);
    select_surface(item_of<surface_t>(box->surfaces));
    run("removesurface");
    run("set_select_mode", "object");
    run("select_all");
    EXPECT_EQ(run("measure").find("volume"), std::string::npos);
}

TEST_F(Measure, SurfacesTellAreaAndOutline)
{
    add_square(1.5f);
    run("set_select_mode", "surface");
    run("select_all");
    EXPECT_EQ(run("measure"), "1 surface  area 9  outline 12");
}

TEST_F(Measure, VerticesTellDistanceAngleAndWay)
{
    object_t *square = add_square(0.5f);
    run("set_select_mode", "vertex");
    std::vector<vertex *> corners;
    for (vertex *v : each<vertex>(square->vertices))
        corners.push_back(v);
    ASSERT_EQ(corners.size(), 4u);
    const auto select = [&](std::size_t count) {
        run("clear_selection");
        owned_list chosen;
        for (std::size_t i = 0; i < count; ++i)
            chosen.add(corners[i]);
        select_vertices(chosen.get());
    };
    select(2);
    EXPECT_EQ(run("measure").rfind("distance 1  dX ", 0), 0u) << run("measure");
    select(3);
    EXPECT_EQ(run("measure"), "angle 90 degrees  lengths 1 and 1");
    select(4);
    EXPECT_EQ(run("measure"), "4 vertices  way along them 3");
    run("clear_selection");
    EXPECT_EQ(run("measure"), "");
    EXPECT_EQ(last_message(), "measure - nothing is selected");
}

TEST_F(Measure, MaterialsAreCountedAndTheirSurfacesSelected)
{
    run("create", "box", 2, 0, 0, 0, 1, 1, 1);
    run("set_col", 3);
    run("create", "rect", 0, 0, 0, 0, 1, 1, 0);
    run("set_col", 5);
    EXPECT_EQ(run("material_counts").substr(0, 12), "0 0 0 6 0 1 ");
    run("material_select", 3);
    EXPECT_EQ(selection_get_num_surfaces(), 6);
}

TEST_F(Measure, ATypeChangesOnlyWhereItCan)
{
    object_t *cube = add_cube("cube");
    run("select_all");
    const std::string id = run("get_selected_objects");
    run("objects_set", id, "type", "group");
    EXPECT_EQ(cube->type, OBJECT_POLY) << "it has geometry of its own";
    run("group");
    const object_t *group = item_of<object_t>(vesk_get_world()->children);
    const std::string group_id = run("get_selected_objects");
    ASSERT_EQ(group->type, OBJECT_GROUP);
    run("objects_set", group_id, "type", "poly");
    EXPECT_EQ(group->type, OBJECT_POLY);
    EXPECT_EQ(last_undo(), "set type");
    run("undo");
    EXPECT_EQ(item_of<object_t>(vesk_get_world()->children)->type, OBJECT_GROUP);
}

} // namespace
