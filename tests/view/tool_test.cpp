// The left button as a person uses it: events in, the model out.

#include "base/coor_display.h"
#include "base/ui_port.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "edit/transform.h"
#include "model/each.h"
#include "model/world.h"
#include "tests/view/tool_fixture.h"
#include "view/overlay.h"
#include "view/projection.h"

namespace {

TEST_F(Tools, AClickSelectsAndADragOnTheSelectionMoves)
{
    click(VIEW_XY, 200, 150);
    EXPECT_EQ(get_current_object(), cube);
    EXPECT_EQ(*undo_count_address(), 0);

    drag(VIEW_XY, 200, 150, 300, 100);
    EXPECT_EQ(run("get_selection_centre"), "1 0.5 0");
    EXPECT_EQ(last_undo(), "move");
    EXPECT_EQ(*undo_count_address(), 1);
    run("undo");
    EXPECT_EQ(run("get_selection_centre"), "0 0 0");
}

TEST_F(Tools, ADragOnEmptySpaceIsARubberBand)
{
    press(VIEW_XZ, 100, 50);
    move(VIEW_XZ, 250, 200);
    EXPECT_EQ(overlay().band_view, VIEW_XZ);
    release(VIEW_XZ, 300, 250);
    EXPECT_EQ(overlay().band_view, VIEW_NONE);
    EXPECT_EQ(get_current_object(), cube);
    drag(VIEW_XY, 10, 10, 60, 60);
    EXPECT_TRUE(nothing_is_selected());
}

TEST_F(Tools, EscapePutsBackTheVeryBits)
{
    const point3_t odd = {0.1f, 0.2f, 0.3f};
    translate_object(cube, &odd);
    select_object(cube);
    const point3_t before = object_get_vertex_at(cube, 3)->position;
    press(VIEW_XY, 210, 130);
    for (int i = 0; i < 50; ++i) {
        move(VIEW_XY, 210 + i * 3, 130 + i);
    }
    EXPECT_TRUE(tool_key("Escape"));
    const point3_t after = object_get_vertex_at(cube, 3)->position;
    EXPECT_EQ(before.x, after.x);
    EXPECT_EQ(before.y, after.y);
    EXPECT_EQ(*undo_count_address(), 0);
    EXPECT_EQ(interaction_drag(), drag_kind::none);
}

TEST_F(Tools, KeysLockAxesAndControlTogglesTheGrid)
{
    select_object(cube);
    press(VIEW_XY, 200, 150);
    move(VIEW_XY, 250, 110);
    EXPECT_TRUE(tool_key("x"));
    release(VIEW_XY, 250, 110);
    EXPECT_EQ(run("get_selection_centre"), "0.5 0 0");

    prefs.grid = 1;
    drag(VIEW_XY, 250, 150, 293, 150, control); // to 0.93: its left side snaps from 0.43 to 0
    EXPECT_EQ(run("get_selection_centre"), "0.5 0 0");
}

TEST_F(Tools, RotatingTurnsAboutTheBoxAndShiftStepsBy15Degrees)
{
    select_object(cube);
    set_new_draw_mode(DRAW_ROTATE);
    drag(VIEW_XY, 240, 150, 201, 111, shift); // from 3 o'clock to about 12 o'clock
    EXPECT_NEAR(selection().box_size.x, 1, 1e-4);
    EXPECT_EQ(last_undo(), "rotate");
    const point3_t turned = object_get_vertex_at(cube, 0)->position; // was -0.5 -0.5
    EXPECT_NEAR(turned.x, 0.5, 1e-4);
    EXPECT_NEAR(turned.y, -0.5, 1e-4);
    run("undo");
    EXPECT_NEAR(object_get_vertex_at(cube, 0)->position.x, -0.5, 1e-5);
}

TEST_F(Tools, HandlesResizeFromTheOppositeSide)
{
    select_object(cube);
    drag(VIEW_XY, 258, 150, 358, 150); // the right handle
    EXPECT_EQ(run("get_selection_size"), "2 1 1");
    EXPECT_EQ(run("get_selection_centre"), "0.5 0 0");
    EXPECT_EQ(last_undo(), "resize");
    run("undo");
    EXPECT_EQ(run("get_selection_size"), "1 1 1");
}

TEST_F(Tools, InThe3dViewClicksSelectAndDragsBesideTurn)
{
    click(VIEW_XYZ, 200, 150);
    EXPECT_EQ(get_current_object(), cube);
    drag(VIEW_XYZ, 200, 150, 230, 150); // on the selection: moves in the plane of the screen
    EXPECT_GT(selection().box_centre.x, 0.1f);
    EXPECT_NEAR(selection().box_centre.z, 0, 1e-5);
    const point3_t before = selection().box_centre;
    drag(VIEW_XYZ, 20, 20, 60, 20);
    EXPECT_EQ(selection().box_centre.x, before.x);
    EXPECT_NE(get_person()->rotation.y, 0);
}

struct create_case {
    const char *name;
    const char *mode;
    const char *label;
    int surfaces, vertices;
    const char *size; // of a drag by 200 x 100 pixels in the front view
};
// clang-format off
const create_case create_cases[] = {
    {"rect",     "rect",     "add rect",     1, 4,     "2 1 0"},
    {"grid",     "grid",     "add grid",     18, 36,   "2 1 0"},
    {"mesh",     "mesh",     "add mesh",     128, 81,  "2 1 0"},
    {"ellipse",  "circle",   "add elipse",   1, 16,    "2 1 0"},
    {"disk",     "disk",     "add disk",     12, 13,   "2 1 0"},
    {"box",      "box",      "add cube",     6, 8,     "2 1 1.5"},
    {"sphere",   "sphere",   "add sphere",   144, 134, "2 1 1.5"},
    {"cylinder", "cylinder", "add cylinder", 24, 24,   "2 1 1.5"},
};
// clang-format on
void PrintTo(const create_case &c, std::ostream *out) { *out << c.name; }
class CreateTool : public Tools, public testing::WithParamInterface<create_case> {};

TEST_P(CreateTool, DragsFromCornerToCornerAndIsUndone)
{
    const create_case &c = GetParam();
    select_object(cube);
    run("set_draw_mode", c.mode);
    press(VIEW_XY, 100, 100);
    move(VIEW_XY, 200, 150);
    EXPECT_FALSE(overlay().preview.empty());
    move(VIEW_XY, 300, 200);
    release(VIEW_XY, 300, 200);

    const object_t *made = get_current_object();
    ASSERT_NE(made, nullptr);
    ASSERT_NE(made, cube);
    EXPECT_EQ(made->num_surfaces, c.surfaces);
    EXPECT_EQ(made->num_vertices, c.vertices);
    EXPECT_EQ(run("get_selection_size"), c.size);
    EXPECT_EQ(run("get_selection_centre"), "0 0 0");
    EXPECT_EQ(last_undo(), c.label);
    EXPECT_TRUE(overlay().preview.empty());
    run("undo");
    EXPECT_EQ(vesk_get_world()->num_children, 1);
    run("redo");
    EXPECT_EQ(vesk_get_world()->num_children, 2);
}
INSTANTIATE_TEST_SUITE_P(Kinds, CreateTool, testing::ValuesIn(create_cases));

// The release of a drag may get lost; the next one comes where the pointer is then.
TEST_F(Tools, AReleaseInAnotherViewEndsTheDragWhereItWasSeenLast)
{
    for (const int other : {VIEW_XYZ, VIEW_XZ}) {
        run("set_draw_mode", "box");
        press(VIEW_XY, 100, 100);
        move(VIEW_XY, 300, 200);
        press(other, 10, 20);
        release(other, 10, 20);
        EXPECT_EQ(run("get_selection_size"), "2 1 1.5");
        EXPECT_EQ(run("get_selection_centre"), "0 0 0");
    }
}

TEST_F(Tools, AClickMakesTheRegularOneWhereThereIsOne)
{
    run("set_draw_mode", "box");
    click(VIEW_XY, 300, 150);
    EXPECT_EQ(run("get_selection_size"), "1 1 1");
    EXPECT_EQ(run("get_selection_centre"), "1 0 0");
}

TEST_F(Tools, TheZoomToolFitsARectangle)
{
    run("set_draw_mode", "zoom");
    const float scale = vesk_get_view(VIEW_XY)->scale;
    prefs.independent_scaling = 1;
    drag(VIEW_XY, 250, 100, 350, 150);
    EXPECT_FLOAT_EQ(vesk_get_view(VIEW_XY)->scale, scale * 4);
    point3_t middle = {0, 0, 0};
    mouse_to_point(200, 150, VIEW_XY, &middle);
    EXPECT_NEAR(middle.x, 1, 1e-4); // what was at (300, 125)
    EXPECT_NEAR(middle.y, 0.25, 1e-4);
    click(VIEW_XY, 10, 10, shift);
    EXPECT_LT(vesk_get_view(VIEW_XY)->scale, scale * 4);
}

TEST_F(Tools, TheNextDragIsARubberBandIn3dToo)
{
    run("set_view_tool", "band");
    drag(VIEW_XYZ, 10, 10, 390, 290);
    EXPECT_EQ(run("selection_get_num_objects"), "1");
    EXPECT_FLOAT_EQ(get_person()->rotation.y, 0);
    EXPECT_EQ(last_call("set_view_tool_ui"), "none");
    drag(VIEW_XYZ, 10, 10, 60, 10); // the camera's again
    EXPECT_NE(get_person()->rotation.y, 0);
    // Where it would be a move of the selection else.
    run("set_view_tool", "band");
    drag(VIEW_XY, 200, 150, 205, 155, 4);
    EXPECT_EQ(run("get_selection_centre"), "0 0 0");
    run("set_view_tool", "band");
    EXPECT_TRUE(key("Escape"));
    EXPECT_EQ(last_call("set_view_tool_ui"), "none");
}

TEST_F(Tools, TheCommandMakesWhatTheToolsMake)
{
    const std::string id = run("create", "box", 0, 0, 0, 0, 2, 1, 3);
    EXPECT_EQ(run("get_selected_objects"), id);
    EXPECT_EQ(run("get_selection_size"), "2 1 3");
    EXPECT_EQ(last_undo(), "add cube");
    EXPECT_TRUE(run("create", "box", 0).starts_with("incorrect number of args for create"));
    EXPECT_EQ(run("create", "nothing", 0, 0, 0, 0, 1, 1, 1), "");
    EXPECT_EQ(last_message(), "create - no kind named 'nothing'");
    const std::string cone = run("create", "cone", 2, -1, 0, -1, 1, 2, 1);
    EXPECT_EQ(run("get_selection_size"), "2 2 2");
    run("objects_select", id + " " + cone);
    EXPECT_EQ(run("selection_get_num_objects"), "2");
}

TEST_F(Tools, TheStatusLineShowsNoNegativeZero)
{
    const point3_t almost = {-0.001f, -0.01f, 0};
    show_coors(&almost);
    EXPECT_EQ(recording().variables["coors"], "X0.00 Y-0.01 Z0.00");
}

TEST_F(Tools, NamesOfWhatIsMadeAreNumbered)
{
    const auto made = [](const char *kind) {
        return run("object_get_name",
                   run("create", kind, 2, -0.5f, -0.5f, -0.5f, 0.5f, 0.5f, 0.5f));
    };
    EXPECT_EQ(made("box"), "cube 2"); // there is one already
    EXPECT_EQ(made("box"), "cube 3");
    EXPECT_EQ(made("ico"), "icosahedron");
    EXPECT_EQ(run("get_selection_size"), "1 1 1");
    EXPECT_EQ(run("object_get_name", run("new_cube")), "");
}

TEST_F(Tools, AClickOfTheRightButtonSelectsWhatItsMenuIsFor)
{
    object_t *other = add_cube("other");
    select_object(other);
    run("move", "1", "0", "0");
    run("clear_selection");
    const auto menu_at = [&](int x, int y) {
        interaction_press({VIEW_XY, x, y, 3, 0, seconds += 1});
        interaction_release({VIEW_XY, x, y, 3, 0, seconds += 0.1});
        return last_call("popup_view_menu");
    };
    select_object(other);
    EXPECT_EQ(menu_at(180, 150), "0 180 150");
    EXPECT_EQ(get_current_object(), cube);
    select_object(other);
    EXPECT_EQ(selection_get_num_objects(), 2);
    menu_at(320, 150); // one of the selected: all stay
    EXPECT_EQ(selection_get_num_objects(), 2);
    menu_at(20, 20); // beside everything
    EXPECT_EQ(selection_get_num_objects(), 2);
    EXPECT_EQ(*undo_count_address(), 0);
}

// The shape over the cube's middle, beside it and over the frame's right upper handle.
struct pointer_case {
    const char *name;
    std::vector<const char *> command; // chooses the tool
    int view;
    const char *middle, *beside, *handle;
};
// clang-format off
const pointer_case pointer_cases[] = {
    {"move",            {"set_draw_mode", "move"},        VIEW_XY,  "fleur",     "",          "top_right_corner"},
    {"move_3d",         {"set_draw_mode", "move"},        VIEW_XYZ, "fleur",     "",          ""},
    {"rotate",          {"set_draw_mode", "rotate"},      VIEW_ZY,  "exchange",  "",          "top_right_corner"},
    {"create",          {"set_draw_mode", "box"},         VIEW_XZ,  "crosshair", "crosshair", "crosshair"},
    {"create_3d_turns", {"set_draw_mode", "box"},         VIEW_XYZ, "",          "",          ""},
    {"zoom",            {"set_draw_mode", "zoom"},        VIEW_XY,  "glass",     "glass",     "glass"},
    {"measure",         {"set_view_tool", "measure"},     VIEW_XYZ, "crosshair", "crosshair", "crosshair"},
    {"band",            {"set_view_tool", "band"},        VIEW_XYZ, "crosshair", "crosshair", "crosshair"},
};
// clang-format on
void PrintTo(const pointer_case &c, std::ostream *out) { *out << c.name; }
class Pointers : public Tools, public testing::WithParamInterface<pointer_case> {
protected:
    void SetUp() override
    {
        Tools::SetUp();
        ui_port_t port = ui_port();
        port.set_cursor = [](int, const char *name) { shape = name != nullptr ? name : ""; };
        ui_port_install(port);
    }
    static std::string shape; // the last one that was asked for
};
std::string Pointers::shape;

TEST_P(Pointers, TellWhatAPressWouldDo)
{
    const pointer_case &c = GetParam();
    const auto over = [&](int x, int y) {
        move(c.view, x, y);
        return shape;
    };
    select_object(cube);
    run(c.command[0], c.command[1]);
    EXPECT_EQ(over(200, 150), c.middle);
    EXPECT_EQ(over(20, 20), c.beside);
    EXPECT_EQ(over(258, 92), c.handle);
    over(200, 150);
    run("set_view_tool", "measure"); // a change shows at once
    EXPECT_EQ(shape, "crosshair");
}
INSTANTIATE_TEST_SUITE_P(Cases, Pointers, testing::ValuesIn(pointer_cases));

TEST_F(Tools, OutlinesGoClickByClick)
{
    run("set_draw_mode", "polygon");
    click(VIEW_XY, 100, 100);
    click(VIEW_XY, 200, 100);
    click(VIEW_XY, 250, 120);
    EXPECT_TRUE(tool_key("BackSpace"));
    click(VIEW_XY, 200, 200);
    click(VIEW_XY, 101, 101); // on the first point: closed
    ASSERT_NE(get_current_object(), nullptr);
    EXPECT_EQ(get_current_object()->num_vertices, 3);
    EXPECT_EQ(last_undo(), "add polygon");

    run("set_draw_mode", "line");
    click(VIEW_XZ, 100, 100);
    click(VIEW_XZ, 200, 100);
    EXPECT_EQ(last_undo(), "add line");

    run("set_draw_mode", "polyline");
    click(VIEW_XY, 100, 100);
    run("set_draw_mode", "move"); // drops what is half drawn
    EXPECT_FALSE(tool_key("Return"));
    EXPECT_EQ(vesk_get_world()->num_children, 3);
}

} // namespace
