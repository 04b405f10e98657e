// The mouse in the window of texture coordinates, fed with events. The window is 600 by 400 pixels,
// the unit square 200 pixels wide in its middle: u from 200 to 400, v from 300 up to 100.

#include "view/uv_view.h"

#include "base/prefs.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo.h"
#include "edit/uv/uv_editor.h"
#include "edit/uv/uv_measured.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/world.h"
#include "tests/support/mesh_test.h"
#include "view/uv_drag.h"
#include "view/views_internal.h"

#include <chrono>
#include <sstream>
#include <thread>

namespace {

constexpr int shift = 1, control = 4;

class UvView : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        uv_drag_install();
        uv_view_resize(600, 400);
        uv_view().scale = 200;
        // Two islands: the lower left quarter of the square, and a small one at its upper right.
        object = add_squares(4, 1);
        const flat_uv corners[4] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
        int i = 0;
        for (const surface_t *surface : each<surface_t>(object->surfaces)) {
            int c = 0;
            for (svertex *corner : each<svertex>(surface->refs)) {
                const flat_uv &p = corners[c++];
                corner->u = i < 2 ? 0.25f * (p.u + static_cast<float>(i))
                                  : 0.75f + 0.1f * (p.u + static_cast<float>(i - 2));
                corner->v = i < 2 ? 0.5f * p.v : 0.75f + 0.1f * p.v;
            }
            ++i;
        }
        object_mark(object, CHANGED_TEXTURE_COORDS);
        run("set_select_mode", "object");
        select_object(object);
        run("change_count");
    }

    static void press(int x, int y, int button = 1, int state = 0)
    {
        uv_drag_press({texture_coords_view, x, y, button, state, 0});
    }
    static void motion(int x, int y, int state = 0)
    {
        uv_drag_motion({texture_coords_view, x, y, 0, state, 0});
    }
    static void release(int x, int y, int button = 1, int state = 0)
    {
        uv_drag_release({texture_coords_view, x, y, button, state, 0});
    }
    static void drag(int x0, int y0, int x1, int y1, int state = 0, int button = 1)
    {
        press(x0, y0, button, state);
        motion((x0 + x1) / 2, (y0 + y1) / 2, state);
        motion(x1, y1, state);
        release(x1, y1, button, state);
    }
    static void click(int x, int y, int state = 0)
    {
        press(x, y, 1, state);
        release(x, y, 1, state);
    }
    static uv_box chosen_box()
    {
        const uv_state &state = uv_editor();
        return uv_box_of(state.mesh, state.chosen);
    }
    static void expect_box(float u0, float v0, float u1, float v1)
    {
        const uv_box box = chosen_box();
        EXPECT_NEAR(box.u0, u0, 1e-4);
        EXPECT_NEAR(box.v0, v0, 1e-4);
        EXPECT_NEAR(box.u1, u1, 1e-4);
        EXPECT_NEAR(box.v1, v1, 1e-4);
    }
    object_t *object = nullptr;
};

TEST_F(UvView, ClicksTakeWhatLiesThereByMode)
{
    run("uv_select_mode", "island");
    click(210, 290);
    EXPECT_EQ(selected_surfaces_of(object), std::vector<int>({0, 1}));
    click(355, 140, shift);
    EXPECT_EQ(selected_surfaces_of(object), std::vector<int>({0, 1, 2, 3}));
    click(210, 290, shift);
    EXPECT_EQ(selected_surfaces_of(object), std::vector<int>({2, 3}));
    run("uv_select_mode", "surface");
    click(290, 290);
    EXPECT_EQ(selected_surfaces_of(object), std::vector<int>({1}));
    run("uv_select_mode", "corner");
    click(251, 301); // where the first two surfaces meet: one point of two corners
    EXPECT_EQ(uv_editor().num_chosen, 2);
    EXPECT_EQ(selected_vertices_of(object).size(), 1u);
    click(500, 50);
    EXPECT_EQ(uv_editor().num_chosen, 0);
}

TEST_F(UvView, ASecondClickTakesWhatLiesBehind)
{
    run("uv_select_mode", "surface");
    select_surfaces_at(object, {2, 3});
    run("uv_move", "-0.75", "-0.75"); // onto the first ones
    run("uv_select", "none");
    click(205, 295);
    const std::vector<int> first = selected_surfaces_of(object);
    click(205, 295);
    const std::vector<int> second = selected_surfaces_of(object);
    EXPECT_EQ(first.size(), 1u);
    EXPECT_NE(first, second);
    click(205, 295);
    EXPECT_EQ(selected_surfaces_of(object), first);
}

TEST_F(UvView, BandsTakeWhatIsInsideOrWhatTheyTouch)
{
    run("uv_select_mode", "surface");
    drag(190, 190, 260, 310);
    EXPECT_EQ(selected_surfaces_of(object), std::vector<int>({0}));
    drag(275, 325, 190, 190); // to the left: what it touches
    EXPECT_EQ(selected_surfaces_of(object), std::vector<int>({0, 1}));
    drag(340, 160, 330, 120, shift);
    drag(390, 160, 345, 120, shift);
    EXPECT_EQ(selected_surfaces_of(object), std::vector<int>({0, 1, 2, 3}));
    drag(310, 310, 195, 260, control);
    EXPECT_EQ(selected_surfaces_of(object), std::vector<int>({2, 3}));
    EXPECT_EQ(recording().scripts.back().find("uvedit_drag"), std::string::npos);
    run("uv_select_mode", "island");
    run("uv_select", "none");
    drag(190, 190, 260, 310);
    EXPECT_EQ(uv_editor().num_chosen, 0); // only half of the island is inside
}

TEST_F(UvView, ADragMovesLiveAndIsOneRecord)
{
    run("uv_select_mode", "island");
    click(210, 290);
    const std::string before = scene_text();
    const int records = *undo_count_address();
    press(220, 280);
    motion(240, 260);
    motion(260, 230);
    expect_box(0.2f, 0.25f, 0.7f, 0.75f); // already in the model
    EXPECT_NE(scene_text(), before);
    EXPECT_EQ(*undo_count_address(), records);
    release(260, 230);
    EXPECT_EQ(*undo_count_address(), records + 1);
    EXPECT_EQ(last_undo(), "move texture coordinates");
    const std::string after = scene_text();
    run("undo");
    EXPECT_EQ(scene_text(), before);
    run("redo");
    EXPECT_EQ(scene_text(), after);
}

struct taken_back_case {
    const char *name;
    void (*how)();
};
const taken_back_case taken_back_cases[] = {
    {"escape", [] { uv_drag_key("Escape"); }},
    {"right_button",
     [] {
         uv_drag_press({texture_coords_view, 0, 0, 3, 0, 0});
     }},
    {"another_edit", [] { run("uv_select", "all"); }},
    {"a_selection", [] { clear_selection(); }},
};
void PrintTo(const taken_back_case &c, std::ostream *out) { *out << c.name; }
class UvViewTakenBack : public UvView, public testing::WithParamInterface<taken_back_case> {};

TEST_P(UvViewTakenBack, IsAsBeforeToTheBit)
{
    run("uv_select_mode", "island");
    click(210, 290);
    const std::string before = scene_text();
    const int records = *undo_count_address();
    press(220, 280);
    motion(260, 230);
    ASSERT_NE(scene_text(), before);
    GetParam().how();
    EXPECT_EQ(scene_text(), before);
    EXPECT_FALSE(uv_drag_runs());
    motion(300, 200);
    release(300, 200);
    EXPECT_EQ(scene_text(), before);
    EXPECT_EQ(*undo_count_address(), records);
}
INSTANTIATE_TEST_SUITE_P(Ways, UvViewTakenBack, testing::ValuesIn(taken_back_cases));

TEST_F(UvView, LocksNumbersAndPixelsRuleTheDrag)
{
    run("uv_select_mode", "island");
    click(210, 290);
    press(220, 280);
    EXPECT_TRUE(uv_drag_key("x"));
    motion(260, 230);
    expect_box(0.2f, 0, 0.7f, 0.5f);
    EXPECT_TRUE(uv_drag_key("v")); // the other one instead
    expect_box(0, 0.25f, 0.5f, 0.75f);
    EXPECT_TRUE(uv_drag_key("V")); // free again
    for (const char *key : {"period", "2", "5", "Tab", "minus", "1"})
        EXPECT_TRUE(uv_drag_key(key)) << key;
    expect_box(0.25f, -1, 0.75f, -0.5f);
    release(260, 230);
    EXPECT_TRUE(uv_drag_runs()); // a number is being typed
    EXPECT_TRUE(uv_drag_key("Return"));
    EXPECT_FALSE(uv_drag_runs());
    expect_box(0.25f, -1, 0.75f, -0.5f);
    EXPECT_FALSE(uv_drag_key("x"));

    run("undo");
    run("uv_option", "snap", "1"); // 512 pixels
    drag(220, 280, 243, 280);
    EXPECT_EQ(chosen_box().u0, 59.0f / 512); // 0.115 * 512 = 58.9
    drag(243, 280, 250, 280, control);       // Control does the opposite
    EXPECT_NEAR(chosen_box().u0, 59.0f / 512 + 0.035f, 1e-5);
}

TEST_F(UvView, HandlesScaleFromTheOtherSide)
{
    run("uv_select_mode", "island");
    click(210, 290);
    const handle_box_t box = uv_handle_box();
    ASSERT_EQ(box.num_places, 8);
    const auto handle = [&](int code) {
        for (const handle_place_t &at : box.places) {
            if (at.code == code)
                return at;
        }
        return handle_place_t{};
    };
    const handle_place_t right = handle(HANDLE_EDGE | HANDLE_RIGHT);
    drag(right.x, right.y, right.x + 50, right.y + 3);
    expect_box(0, 0, 0.75f, 0.5f);
    run("undo");
    const handle_place_t corner = handle(HANDLE_TOP | HANDLE_RIGHT);
    drag(corner.x, corner.y, corner.x + 100, corner.y - 20, shift);
    expect_box(0, 0, 1, 1);
    run("undo");
    drag(corner.x, corner.y, corner.x + 20, corner.y - 10, control); // about the middle
    expect_box(-0.1f, -0.05f, 0.6f, 0.55f);
}

TEST_F(UvView, TheRotateToolTurnsAboutTheMiddle)
{
    run("uv_select_mode", "island");
    click(210, 290);
    run("uv_tool", "rotate");
    drag(280, 250, 252, 222, shift); // from the right to above the middle at 250, 250
    expect_box(0, 0, 0.5f, 0.5f);    // a quarter: the square stands as it stood
    EXPECT_EQ(last_undo(), "rotate texture coordinates");
    press(280, 250);
    motion(285, 240);
    for (const char *key : {"4", "5", "Return"})
        uv_drag_key(key);
    const float half = 0.25f * 1.41421356f;
    expect_box(0.25f - half, 0.25f - half, 0.25f + half, 0.25f + half);
}

// The words of the newest echoed command.
std::vector<std::string> echoed_words()
{
    std::vector<std::string> words;
    for (const std::string &script : recording().scripts) {
        if (!script.starts_with("echo_command "))
            continue;
        words.clear();
        std::istringstream text(script.substr(13));
        for (std::string word; text >> word;)
            words.push_back(word);
    }
    return words;
}

TEST_F(UvView, WhatTheMouseDoesIsEchoedAsCommandsThatDoTheSame)
{
    run("uv_select_mode", "surface");
    click(225, 275); // the first surface
    EXPECT_EQ(echoed_words(), (std::vector<std::string>{"uv_select_corners", "0-3"}));
    const auto all = [this] {
        std::vector<float> numbers;
        for (const surface_t *surface : each<surface_t>(object->surfaces)) {
            for (const svertex *corner : each<svertex>(surface->refs)) {
                numbers.push_back(corner->u);
                numbers.push_back(corner->v);
            }
        }
        return numbers;
    };
    for (const char *tool : {"move", "rotate", "scale"}) {
        run("uv_tool", tool);
        const std::vector<float> before = all();
        drag(228, 268, 251, 239);
        const std::vector<float> by_mouse = all();
        EXPECT_NE(before, by_mouse) << tool;
        const std::vector<std::string> words = echoed_words();
        ASSERT_EQ(words.size(), 8u);
        run("undo");
        EXPECT_EQ(all(), before);
        run_words(words);
        EXPECT_EQ(all(), by_mouse) << tool;
        EXPECT_EQ(last_undo(), std::string(tool) + " texture coordinates");
        run("undo");
    }
    run("uv_transform", "move", "1", "0", "0", "1", "nan", "0");
    EXPECT_EQ(last_message(), "texture coordinates - move, rotate or scale, and six numbers");
}

TEST_F(UvView, PanAndZoomKeepThePlaceUnderThePointer)
{
    const flat_uv grabbed = uv_from_screen(320, 180);
    drag(320, 180, 400, 240, 0, 2);
    EXPECT_NEAR(uv_to_screen(grabbed).x, 400, 1e-3);
    EXPECT_NEAR(uv_to_screen(grabbed).y, 240, 1e-3);
    uv_view_zoom(3, 400, 240);
    EXPECT_NEAR(uv_to_screen(grabbed).x, 400, 1e-2);
    EXPECT_NEAR(uv_to_screen(grabbed).y, 240, 1e-2);
    EXPECT_NEAR(uv_view().scale, 600, 1e-9);
    drag(400, 240, 400, 200, 0, 3);
    EXPECT_GT(uv_view().scale, 700);
    run("uv_view_fit", 0);
    EXPECT_NEAR(uv_to_screen({0.5f, 0.5f}).x, 300, 1e-3);
    EXPECT_NEAR(uv_to_screen({0.5f, 0.5f}).y, 200, 1e-3);
}

// Above many_uv_corners a drag is drawn by a matrix, and the model changes at its end alone.
class UvViewOfMany : public SceneTest {
protected:
    static constexpr int side = 230; // vertices: 4 x 229 x 229 corners

    void SetUp() override
    {
        SceneTest::SetUp();
        uv_drag_install();
        uv_view_resize(600, 400);
        uv_view().scale = 200;
        object = new_object(OBJECT_POLY);
        std::vector<float> xyz;
        std::vector<int> offsets = {0}, indices;
        for (int i = 0; i < side * side; ++i) {
            const auto x = static_cast<float>(i % side), y = static_cast<float>(i / side);
            xyz.insert(xyz.end(), {x, y, 0});
        }
        for (int i = 0; i + side < side * side; ++i) {
            if ((i + 1) % side == 0)
                continue;
            indices.insert(indices.end(), {i, i + 1, i + side + 1, i + side});
            offsets.push_back(static_cast<int>(indices.size()));
        }
        vesk_object_add_vertices_from_float_array(object, xyz.data(), side * side);
        vesk_object_add_surfaces_from_arrays(object, static_cast<int>(offsets.size()) - 1,
                                             offsets.data(), indices.data(), nullptr, 3);
        object_add_child(vesk_get_world(), object);
        run("set_select_mode", "object");
        select_object(object);
        run("uv_project", "planar_z", "2");
        run("uv_select_mode", "island");
        run("uv_select", "all");
    }

    static void drag_begins(int dx, int dy)
    {
        uv_drag_press({texture_coords_view, 300, 200, 1, 0, 0});
        uv_drag_motion({texture_coords_view, 310, 200, 0, 0, 0});
        uv_drag_motion({texture_coords_view, 300 + dx, 200 + dy, 0, 0, 0});
    }

    object_t *object = nullptr;
};

TEST_F(UvViewOfMany, ADragIsShownAtOnceAndWrittenAtItsEnd)
{
    ASSERT_GT(uv_editor().mesh.at.size(), many_uv_corners);
    const std::vector<flat_uv> before = uv_editor().mesh.at;
    const auto where_shown = [] {
        std::vector<flat_uv> shown;
        for (int c = 0; c < uv_editor().mesh.num_corners(); ++c)
            shown.push_back(uv_shown_at(uv_view(), uv_editor().mesh, c));
        return shown;
    };
    drag_begins(40, -20);
    EXPECT_EQ(uv_editor().mesh.at, before);
    const std::vector<flat_uv> shown = where_shown();
    EXPECT_NEAR(shown[0].u, before[0].u + 0.2f, 1e-5);
    EXPECT_NEAR(shown[0].v, before[0].v + 0.1f, 1e-5);
    const handle_box_t frame = uv_handle_box();

    uv_drag_release({texture_coords_view, 340, 180, 1, 0, 0});
    EXPECT_EQ(uv_editor().mesh.at, shown); // bit for bit
    EXPECT_EQ(where_shown(), shown);
    EXPECT_EQ(last_undo(), "move texture coordinates");
    EXPECT_NEAR(uv_handle_box().x0, frame.x0, 1);
    EXPECT_NEAR(uv_handle_box().y1, frame.y1, 1);
    run("undo");
    EXPECT_EQ(uv_editor().mesh.at, before);

    drag_begins(40, -20);
    uv_drag_cancel();
    EXPECT_EQ(where_shown(), before);
    EXPECT_NE(last_undo(), "move texture coordinates");
}

TEST_F(UvViewOfMany, AWorkerReadsTheModelAndCommandsDoNotWaitForIt)
{
    const auto wait = [] {
        while (!uv_editor_is_ready())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    };
    run("uv_move", "0.5", "0");
    EXPECT_FALSE(uv_editor_is_ready());
    const uv_box moved = uv_totals_now().all; // of a command: at once
    EXPECT_NEAR(moved.u0, 0.5, 1e-5);
    EXPECT_TRUE(uv_editor_is_ready());

    run("uv_move", "0.25", "0");
    wait();
    EXPECT_NEAR(uv_totals_now().all.u0, 0.75, 1e-5);
    EXPECT_EQ(uv_totals_now().chosen_surfaces, (side - 1) * (side - 1));
    EXPECT_EQ(uv_totals_now().chosen_islands, 1);

    // What it reads goes meanwhile.
    run("uv_move", "0.25", "0");
    EXPECT_FALSE(uv_editor_is_ready());
    run("select_all");
    run("delete");
    wait();
    EXPECT_EQ(uv_editor().mesh.num_surfaces(), 0);
}

TEST_F(UvViewOfMany, IslandsAreTheSameHoweverManySidesAreLookedAtTogether)
{
    run("uv_project", "box", "2");
    const uv_mesh &mesh = uv_editor().mesh;
    const uv_islands &whole = uv_editor().islands;
    for (const std::size_t at_once : {5000, 100000}) {
        const uv_islands parts = uv_find_islands(mesh, at_once);
        EXPECT_EQ(parts.point, whole.point);
        EXPECT_EQ(parts.island, whole.island);
        EXPECT_EQ(parts.borders, whole.borders);
        ASSERT_EQ(parts.edges.size(), whole.edges.size());
        for (std::size_t i = 0; i < whole.edges.size(); ++i) {
            ASSERT_EQ(parts.edges[i].corner, whole.edges[i].corner);
            ASSERT_EQ(parts.edges[i].twin, whole.edges[i].twin);
        }
    }
}

TEST_F(UvViewOfMany, AWorkerMeasuresWhatACommandMeasures)
{
    run("uv_project", "sphere", "2");
    const std::vector<char> over = uv_find_overlaps(uv_editor().mesh);
    EXPECT_EQ(uv_overlaps_now(uv_patience::waits), nullptr);
    while (uv_overlaps_now(uv_patience::waits) == nullptr)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(*uv_overlaps_now(uv_patience::waits), over);
    run("uv_move", "0.5", "0");
    EXPECT_EQ(uv_stretch_now(uv_patience::waits), nullptr);
    ASSERT_NE(uv_stretch_now(uv_patience::none), nullptr);
    EXPECT_EQ(uv_stretch_now(uv_patience::none)->size(), over.size());
    EXPECT_FALSE(uv_measures());
}

} // namespace
