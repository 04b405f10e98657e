// What the commands that only answer say.

#include "edit/document/selection_internal.h"
#include "model/change_marks.h"
#include "model/identity.h"
#include "model/lights.h"
#include "model/object_tree.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

namespace {

class Information : public SceneTest {};

TEST_F(Information, CountsOfTheWorldAndOfTheSelection)
{
    object_t *group = new_group();
    object_add_child(vesk_get_world(), group);
    object_reparent(add_cube("inner"), group);
    add_square(1);
    selection_add_objects({group});
    const std::string text = run("get_info");
    EXPECT_TRUE(text.starts_with("Objects: 3\nVertices: 12\nSurfaces: 7\n"
                                 "Selected objects: 2\nSelected vertices: 8\n"
                                 "Selected surfaces: 6\nTextures: "))
        << text;
    EXPECT_NE(text.find("Materials: "), std::string::npos);
    EXPECT_NE(text.find("Memory used: "), std::string::npos);
}

TEST_F(Information, IdentitiesAreListsWithoutATrailingBlank)
{
    EXPECT_EQ(run("get_lights"), "");
    EXPECT_EQ(run("get_selected_objects"), "");
    object_t *group = new_group();
    object_add_child(vesk_get_world(), group);
    std::vector<std::string> ids;
    for (int i = 0; i < 2; ++i) {
        object_t *light = new_light();
        object_add_child(group, light);
        ids.push_back(std::to_string(object_identity(light)));
    }
    EXPECT_EQ(run("get_lights"), ids[0] + " " + ids[1]);
    EXPECT_EQ(run("object_get_children", object_identity(group)), ids[0] + " " + ids[1]);
    object_t *square = add_square(1);
    EXPECT_EQ(run("object_get_vertices", object_identity(square)), "0 1 2 3");
    EXPECT_EQ(run("object_get_surfaces", object_identity(square)), "0");
    EXPECT_EQ(run("object_get_children", object_identity(square)), "");
}

TEST_F(Information, OfNoObjectIsEmptyAndToldOnTheConsole)
{
    const int id = object_identity(add_cube("gone"));
    run("select_all");
    run("delete");
    run("clear_all"); // the undo record goes too
    for (const char *command :
         {"object_get_name", "object_get_url", "object_get_data", "object_get_centre",
          "object_get_children", "object_get_vertices", "object_is_selected", "object_is_hidden"}) {
        recording().console.clear();
        EXPECT_EQ(run(command, id), "") << command;
        EXPECT_EQ(recording().console, "no object with id " + std::to_string(id) + "\n");
    }
    EXPECT_GT(object_identity(add_cube("next")), id) << "never used again";
}

TEST_F(Information, TextureRepeatsAreThoseOfTheFirstSelected)
{
    EXPECT_EQ(run("get_texture_repoff"), "1 1 0 0");
    object_t *cube = add_cube("cube");
    object_set_texture_repeat(cube, 2, 3);
    object_set_texture_offset(cube, 0.5f, -1);
    select_object(cube);
    EXPECT_EQ(run("get_texture_repoff"), "2 3 0.5 -1");
}

} // namespace
