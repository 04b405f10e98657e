// What stands in a saved file. Round trips through the reader are in roundtrip_test.cpp.

#include "base/current_file.h"
#include "edit/document/selection.h"
#include "fileio/vesk_writer.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/matrix.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/world.h"
#include "tests/support/scene_test.h"

#include <sys/stat.h>
#include <unistd.h>

namespace {

class Writer : public SceneTest {
protected:
    // The text of the saved object from its first OBJECT line on.
    std::string saved(object_t *object)
    {
        const std::string file = temporary_file("saved.vesk");
        EXPECT_EQ(write_vesk_object(file.c_str(), object), 1);
        const std::string text = read_text(file);
        EXPECT_TRUE(text.starts_with("VESKb\n"));
        return text.substr(text.find("OBJECT"));
    }
};

TEST_F(Writer, AnEmptyObjectIsTwoLines)
{
    EXPECT_EQ(saved(vesk_get_world()), "OBJECT world\nkids 0\n");
}

TEST_F(Writer, EveryLineStandsInItsPlaceAndDefaultsAreLeftOut)
{
    object_t *object = new_object(OBJECT_POLY);
    object_add_child(vesk_get_world(), object);
    object_set_name(object, "a \"b\\c\"");
    object_set_url(object, "http://x/");
    object_set_userdata(object, "two\nlines");
    object_set_texture_repeat(object, 2, 1);
    object_set_texture_offset(object, 0, 0.5f);
    surface_t *surface = new_surface();
    vesk_surface_set_flags(surface, 0x30);
    surface_add_vertex(surface, object_add_new_vertex(object, 0.1234567f, -2, 1e-7f), 0.5f, 1);
    surface_add_vertex(surface, object_add_new_vertex(object, 0, 1e6f, 0), 0, 0);
    object_add_surface(object, surface);
    vesk_object_set_centre(object, 0, 0, 1);
    object_mark(object, CHANGED_ALL);

    EXPECT_EQ(saved(vesk_get_world()), "OBJECT world\n"
                                       "kids 1\n"
                                       "OBJECT poly\n"
                                       "name \"a \\\"b\\\\c\\\"\"\n"
                                       "loc 0 0 1\n"
                                       "url \"http://x/\"\n"
                                       "data 9\ntwo\nlines\n"
                                       "texrep 2 1\n"
                                       "texoff 0 0.5\n"
                                       "numvert 2\n"
                                       "0.123457 -2 -1\n"
                                       "0 1e+06 -1\n"
                                       "numsurf 1\n"
                                       "SURF 0x30\n"
                                       "mat 0\n"
                                       "refs 2\n"
                                       "0 0.5 1\n"
                                       "1 0 0\n"
                                       "kids 0\n");
}

TEST_F(Writer, MaterialsAreNumberedInPaletteOrder)
{
    object_t *square = add_square(1);
    for (const int material : {7, 2, 7}) {
        surface_t *surface = new_surface();
        surface_set_col(surface, material);
        surface_add_vertex(surface, object_get_vertex_at(square, 0), 0, 0);
        object_add_surface(square, surface);
    }
    surface_set_col(object_get_surface_at(square, 0), 2);
    object_mark(square, CHANGED_ALL);
    const std::string file = temporary_file("materials.vesk");
    ASSERT_EQ(write_vesk(file.c_str()), 1);
    const std::string text = read_text(file);

    EXPECT_TRUE(text.starts_with(
        "VESKb\n"
        "MATERIAL \"veskmat2\" rgb 0.627451 0.25098 0.25098  amb 0.2 0.2 0.2  emis 0 0 0  spec 0.5 "
        "0.5 0.5  shi 10  trans 0\n"
        "MATERIAL \"veskmat7\" rgb "));
    EXPECT_EQ(text.find("mat 0\n"), text.find("mat "));
    EXPECT_NE(text.find("mat 1\nrefs 1"), std::string::npos);
    EXPECT_EQ(current_file().name, file);
    EXPECT_EQ(last_message(), "written file " + file);
}

TEST_F(Writer, RotLinesFollowTheWorldMatrix)
{
    object_t *parent = add_square(1);
    object_t *child = add_square(1);
    object_reparent(child, parent);
    matrix_set_rotate(parent->rotation, 0, 0, 1.5707964f); // x to y
    parent->centre = {5, 0, 0};
    child->centre = {5, 2, 0};
    object_mark_tree(parent, CHANGED_ALL);

    const std::string text = saved(vesk_get_world());

    // The child's own matrix is the identity: no rot line, so its parent's orientation is what a
    // reader rebuilds, and its coordinates are written in that.
    EXPECT_EQ(text.find("rot "), text.rfind("rot "));
    EXPECT_NE(text.find("loc 2 "), std::string::npos);
    EXPECT_NE(text.find("\n-3 6 0\n"), std::string::npos); // (-1, -1, 0) - (5, 2, 0), turned back
}

TEST_F(Writer, ReferencesToForeignVerticesAreSkippedAndTheirCountStays)
{
    object_t *square = add_square(1);
    object_t *other = add_square(2);
    surface_add_vertex(object_get_surface_at(square, 0), object_get_vertex_at(other, 0), 0, 0);
    object_mark(square, CHANGED_ALL);
    const std::string text = saved(square);
    EXPECT_NE(text.find("refs 5\n0 0 0\n1 0 0\n2 0 0\n3 0 0\nkids 0\n"), std::string::npos);
}

TEST_F(Writer, FailuresAreToldByTheirStageAndKeepTheOldFile)
{
    const std::string nowhere = temporary_file("no/such/folder.vesk");
    EXPECT_EQ(write_vesk_object(nowhere.c_str(), vesk_get_world()), 0);
    EXPECT_EQ(recording().boxes.back(), "can't open file '" + nowhere + "' for writing");

    EXPECT_EQ(write_vesk_object("/dev/full", vesk_get_world()), 0);
    EXPECT_EQ(recording().boxes.back(),
              "An error occured when first writing the .vesk file \"/dev/full\"");
    EXPECT_EQ(last_message(), "/dev/full was not written: No space left on device");
    EXPECT_EQ(run("file_save", nowhere), "0");
}

TEST_F(Writer, ASelectionIsSavedAsAWorldOfCopies)
{
    add_cube("one");
    object_t *two = add_cube("two");
    select_object(two);
    const std::string file = temporary_file("selection.vesk");
    run("save_selection_vesk", file);
    EXPECT_EQ(read_text(file).find("\"one\""), std::string::npos);
    EXPECT_NE(read_text(file).find("OBJECT world\nkids 1\nOBJECT poly\nname \"two\""),
              std::string::npos);
    EXPECT_NE(current_file().name, file);
    EXPECT_EQ(vesk_get_world()->num_children, 2);

    run("set_select_mode", "surface");
    run("clear_selection");
    select_surface(object_get_surface_at(two, 0));
    run("save_selection_vesk", file);
    EXPECT_NE(read_text(file).find("numvert 4\n"), std::string::npos);
    EXPECT_NE(read_text(file).find("numsurf 1\n"), std::string::npos);
}

} // namespace
