// What is refused or cancelled costs no undo record, not even where the list is full.

#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo_internal.h"
#include "model/change_marks.h"
#include "tests/support/mesh_test.h"

#include <ostream>

namespace {

struct full_undo_case {
    const char *name;
    const char *mode;
    std::vector<std::string> command;
};
void PrintTo(const full_undo_case &c, std::ostream *out) { *out << c.name; }

class FullUndo : public SceneTest, public testing::WithParamInterface<full_undo_case> {
protected:
    // A line to extrude along, then the full list; `object` is selected in the mode of the case.
    void fill_list(object_t *object)
    {
        object_t *path = add_mesh({{0, 0, 0}, {0, 0, 1}, {0, 0, 2}}, {{0, 1, 2}}, SURFACE_LINE);
        run("set_select_mode", "object");
        select_object(path);
        run("define_extrude_path");
        run("clear_selection");
        select_object(object);
        run("set_select_mode", GetParam().mode);
        prefs.undo_levels = 3;
        for (int i = 0; i < 4; ++i)
            run("move_to", i, 0, 0);
        list_ = undo_records();
        scene_ = scene_text();
        ASSERT_EQ(list_.size(), 3u);
    }
    void expect_untouched() const
    {
        EXPECT_EQ(undo_records(), list_);
        EXPECT_EQ(last_undo(), "move to");
        EXPECT_EQ(scene_text(), scene_);
    }

private:
    undo_stack list_;
    std::string scene_;
};

class CancelledWithFullUndo : public FullUndo {};
class RefusedWithFullUndo : public FullUndo {};

TEST_P(CancelledWithFullUndo, LeavesTheList)
{
    fill_list(add_squares(40, 40));
    cancel_at_look(1);
    run_words(GetParam().command);
    cancel_at_look(0);
    EXPECT_NE(last_message().find("- cancelled"), std::string::npos) << last_message();
    expect_untouched();
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Operations, CancelledWithFullUndo, testing::Values(
    full_undo_case{"extrude",            "surface", {"extrude", "0", "0", "1"}},
    full_undo_case{"extrude_along_path", "surface", {"extrude_along_path"}},
    full_undo_case{"make_hole",          "surface", {"surface_make_hole"}},
    full_undo_case{"bevel",              "surface", {"surface_bevel"}},
    full_undo_case{"triangulate",        "surface", {"surface_triangulate"}},
    full_undo_case{"subdivide",          "surface", {"surface_subdivide"}},
    full_undo_case{"insert_vertex",      "surface", {"insert_vertex"}},
    full_undo_case{"inset",              "surface", {"inset", "0.1", "0", "each"}},
    full_undo_case{"extrude_normals",    "surface", {"extrude_normals", "0.1"}},
    full_undo_case{"shell",              "surface", {"shell", "0.1", "1"}},
    full_undo_case{"catmull_clark",      "surface", {"catmull_clark", "1"}},
    full_undo_case{"orient_outwards",    "surface", {"orient_outwards"}},
    full_undo_case{"smooth_vertices",    "vertex",  {"smooth_vertices", "0.5", "2"}},
    full_undo_case{"unshare",            "vertex",  {"unshare_vertices"}},
    full_undo_case{"snap_together",      "vertex",  {"snaptogetherdistance", "0.1"}},
    full_undo_case{"loop_subdivision",   "object",  {"surface_loop_subdivision", "1"}}));
// clang-format on

TEST_P(RefusedWithFullUndo, LeavesTheList)
{
    fill_list(add_cube("closed")); // without an outer edge
    run_words(GetParam().command);
    expect_untouched();
}
// clang-format off
INSTANTIATE_TEST_SUITE_P(Operations, RefusedWithFullUndo, testing::Values(
    full_undo_case{"extrude",            "surface", {"extrude", "0", "0", "1"}},
    full_undo_case{"extrude_along_path", "surface", {"extrude_along_path"}},
    full_undo_case{"inset",              "surface", {"inset", "0.1", "0", "region"}},
    full_undo_case{"catmull_clark",      "surface", {"catmull_clark", "0"}},
    full_undo_case{"orient_outwards",    "surface", {"orient_outwards"}},
    full_undo_case{"fragment",           "object",  {"object_fragment"}},
    full_undo_case{"spline",             "surface", {"surface_spline"}},
    full_undo_case{"reduce",             "object",  {"reduce", "0"}}));
// clang-format on

} // namespace
