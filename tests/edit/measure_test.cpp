// What the selection measures, from hand-worked bodies.

#include "edit/document/selection.h"
#include "model/each.h"
#include "model/object_notes.h"
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

TEST_F(Measure, DimensionLinesStayWithTheObject)
{
    object_t *box = add_cube("box");
    const std::string id = run("object_get_children", run("get_world"));
    object_set_userdata(box, "mine\n");
    run("set_select_mode", "vertex");
    run("select_elements", "set", id + ":0,1");
    run("selection_set_save", "two");
    run("dimension_add");
    EXPECT_EQ(last_undo(), "add dimension");
    EXPECT_EQ(run("get_dimensions"), id + " 0 1 1");
    run("dimension_add"); // once is enough
    EXPECT_EQ(run("get_dimensions"), id + " 0 1 1");
    EXPECT_EQ(object_user_data(box), "mine\n");
    EXPECT_EQ(run("selection_set_list"), "two");

    run("select_elements", "set", id + ":1");
    run("move_to", 9, 0, 0);
    EXPECT_NE(run("get_dimensions"), id + " 0 1 1");
    run("set_select_mode", "object");
    run("select_all");
    run("object_hide", id);
    EXPECT_EQ(run("get_dimensions"), "");
    run("object_unhide", id);
    run("select_all");
    run("surface_subdivide"); // other places now
    EXPECT_EQ(run("get_dimensions"), "");
    run("set_select_mode", "object");
    run("select_all");
    run("dimension_remove");
    EXPECT_TRUE(object_notes(box, note_of_dimension).empty());
    EXPECT_EQ(object_notes(box, note_of_selection_set).size(), 1u);
    run("undo");
    EXPECT_EQ(object_notes(box, note_of_dimension).size(), 1u);
}

} // namespace
