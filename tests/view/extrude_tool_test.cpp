// The extrude tool: what a drag sweeps, and along which way.

#include "edit/document/selection_internal.h"
#include "model/bounds.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "tests/view/drag_fixture.h"
#include "view/overlay.h"

namespace {

TEST_F(Drags, TheExtrudeToolSweepsTheSelectedSurfacesWithOneRecord)
{
    run("set_select_mode", "surface");
    run("clear_selection");
    clear_all_undos();
    run("set_draw_mode", "extrude");
    drag(VIEW_XY, 20, 20, 60, 60); // nothing selected: a rubber band
    EXPECT_EQ(cube->num_surfaces, 6);
    click(VIEW_XY, 180, 150); // the cube's front
    ASSERT_EQ(selection().num_surfaces, 1);
    prefs.extrude_num = 2;
    press(VIEW_ZY, 250, 150); // its edge, seen from the side
    move(VIEW_ZY, 300, 150);
    EXPECT_EQ(overlay().preview.size(), 12u); // the outline, and four walls
    EXPECT_EQ(cube->num_surfaces, 6);         // nothing is changed yet
    move(VIEW_ZY, 350, 150);
    release(VIEW_ZY, 350, 150);
    EXPECT_EQ(cube->num_surfaces, 5 + 8 + 1); // a body: no face stays inside
    EXPECT_NEAR(find_object_size(cube).z, 2, 1e-5);
    EXPECT_EQ(selection().num_surfaces, 1); // the new end, for what comes next
    EXPECT_EQ(last_undo(), "extrude");
    EXPECT_EQ(undos(), 1);
    EXPECT_TRUE(overlay().preview.empty());
    run("undo");
    for (const object_t *restored : each<object_t>(vesk_get_world()->children)) {
        EXPECT_EQ(restored->num_surfaces, 6);
    }
    press(VIEW_ZY, 250, 150);
    move(VIEW_ZY, 300, 150);
    EXPECT_TRUE(key("Escape"));
    EXPECT_TRUE(overlay().preview.empty());
    EXPECT_EQ(undos(), 0);
}

struct sweep_case {
    const char *name;
    int state;
    std::vector<const char *> keys; // during the drag, which goes 0.6 to the right and 0.5 up
    const char *centre;             // of the new end
};
// clang-format off
const sweep_case sweep_cases[] = {
    {"where_the_surface_faces",      0, {},                   "0 0 1.1"},
    {"shift_goes_any_way",           1, {},                   "0 0.5 1.1"},
    {"along_an_axis",                0, {"y"},                "0 0.5 0.5"},
    {"a_typed_distance",             0, {"2", "Return"},      "0 0 2.5"},
    {"a_typed_way_along_an_axis",    0, {"y", "2", "Return"}, "0 2 0.5"},
    {"tab_types_the_other_way",      1, {"Tab", "2", "Return"}, "2 0.5 1.1"},
};
// clang-format on
void PrintTo(const sweep_case &c, std::ostream *out) { *out << c.name; }
class Sweeps : public Drags, public testing::WithParamInterface<sweep_case> {};

TEST_P(Sweeps, GoAlongTheNormalUnlessTheyAreToldOtherwise)
{
    run("set_select_mode", "surface");
    click(VIEW_XY, 180, 150); // the cube's front, z = 0.5
    run("set_draw_mode", "extrude");
    clear_all_undos();
    press(VIEW_ZY, 250, 150);
    move(VIEW_ZY, 310, 100, GetParam().state);
    for (const char *k : GetParam().keys)
        EXPECT_TRUE(key(k)) << k;
    release(VIEW_ZY, 310, 100, GetParam().state);
    EXPECT_EQ(run("get_selection_centre"), GetParam().centre);
    EXPECT_EQ(undos(), 1);
}
INSTANTIATE_TEST_SUITE_P(Cases, Sweeps, testing::ValuesIn(sweep_cases));

} // namespace
