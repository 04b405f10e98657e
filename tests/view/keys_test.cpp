// The keys of the views through the command that the scripts call.

#include "view/keys.h"

#include "base/prefs.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "tests/support/scene_test.h"
#include "view/background.h"
#include "view/camera_internal.h"
#include "view/views_internal.h"

namespace {

constexpr int shift = 1, control = 4, alt = 0x20000, alt_x11 = 8;

class Keys : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        views_reset_for_test();
        camera_reset_for_test();
        backgrounds_reset_for_test();
        for (int view = 0; view < 4; ++view) {
            handle_resize(view, 400, 300);
        }
        prefs.independent_scaling = 1;
    }
};

struct toggle_case {
    const char *name;
    int view;
    const char *key;
    int prefs_t::*setting;
    const char *message; // after the first press
};
// clang-format off
const toggle_case toggle_cases[] = {
    {"normals",       0, "n", &prefs_t::show_normals_orth, ""},
    {"filled",        1, "W", &prefs_t::filled_orth,       ""},
    {"textures",      2, "t", &prefs_t::orth_textures,     ""},
    {"headlight",     0, "l", &prefs_t::orth_headlight,    ""},
    {"ground",        3, "g", &prefs_t::grid3d_show,       "grid off"},
    {"headlight_3d",  3, "L", &prefs_t::headlight,         ""},
    {"normals_3d",    3, "N", &prefs_t::show_3d_normals,   ""},
    {"textures_3d",   3, "t", &prefs_t::view3dtextures,    "textures off"},
    {"wireframe_3d",  3, "w", &prefs_t::view3dmode,        "wireframe view"},
};
// clang-format on
void PrintTo(const toggle_case &c, std::ostream *out) { *out << c.name; }
class ToggleKey : public Keys, public testing::WithParamInterface<toggle_case> {};

TEST_P(ToggleKey, TurnsItsSettingAndBack)
{
    const toggle_case &c = GetParam();
    const int before = prefs.*c.setting;
    EXPECT_EQ(handle_key_press(c.view, c.key, 0), 1);
    EXPECT_EQ(prefs.*c.setting, 1 - before);
    EXPECT_EQ(last_message(), c.message);
    run("keypress", c.view, c.key, 0);
    EXPECT_EQ(prefs.*c.setting, before);
}
INSTANTIATE_TEST_SUITE_P(Settings, ToggleKey, testing::ValuesIn(toggle_cases));

TEST_F(Keys, ModesAreChosenAndExtrusionOnlyWithSurfaces)
{
    EXPECT_EQ(handle_key_press(0, "e", 0), 1);
    EXPECT_EQ(draw_mode(), DRAW_MOVE);
    handle_key_press(3, "S", 0);
    EXPECT_EQ(select_mode(), SELECT_SURFACE);
    handle_key_press(1, "e", 0);
    EXPECT_EQ(draw_mode(), DRAW_EXTRUDE);
    handle_key_press(2, "r", 0);
    EXPECT_EQ(draw_mode(), DRAW_ROTATE);
    handle_key_press(0, "v", 0);
    EXPECT_EQ(select_mode(), SELECT_VERTEX);
}

TEST_F(Keys, QualifiersDecideWhatIsUsed)
{
    EXPECT_EQ(handle_key_press(0, "z", control), 0);
    EXPECT_EQ(handle_key_press(0, "z", alt), 0);
    EXPECT_EQ(handle_key_press(3, "w", shift), 0);
    EXPECT_EQ(handle_key_press(0, "less", 0), 0);
    EXPECT_EQ(handle_key_press(3, "F5", 0), 0);
    EXPECT_EQ(handle_key_press(-1, "Left", 0), 0);
    const float scale = vesk_get_view(0)->scale;
    handle_key_press(0, "z", 0);
    EXPECT_FLOAT_EQ(vesk_get_view(0)->scale, scale * 1.5f);
    handle_key_press(0, "X", 0);
    EXPECT_FLOAT_EQ(vesk_get_view(0)->scale, scale);
}

TEST_F(Keys, ArrowsPanZoomAndMoveTheBackground)
{
    const VESKView &view = *vesk_get_view(0);
    handle_key_press(0, "Left", 0);
    EXPECT_EQ(view.pan[0], 20);
    handle_key_press(0, "Up", shift);
    EXPECT_EQ(view.pan[1], 50);
    run("reset_views");
    handle_key_press(0, "Up", control | alt); // Control is looked at first
    EXPECT_FLOAT_EQ(view.scale, 110);
    EXPECT_FLOAT_EQ(vesk_get_view(1)->scale, 100);
    handle_key_press(0, "Down", control | shift);
    EXPECT_FLOAT_EQ(view.scale, 110 / 1.5f);
    prefs.independent_scaling = 0;
    handle_key_press(0, "Up", control);
    EXPECT_FLOAT_EQ(vesk_get_view(1)->scale, 110);

    handle_key_press(2, "Left", alt | shift);
    handle_key_press(2, "Up", alt_x11);
    EXPECT_EQ(view_background(2).x, 1);
    EXPECT_EQ(view_background(2).y, -1);
    handle_key_press(2, "Up", alt | shift);
    EXPECT_DOUBLE_EQ(view_background(2).zoom, 1.01);
}

TEST_F(Keys, TheViewerSpinsOrWalks)
{
    handle_key_press(3, "Right", 0);
    handle_key_press(3, "Up", 0);
    EXPECT_EQ(get_person()->rotation.y, 10);
    EXPECT_EQ(get_person()->rotation.x, -10);
    handle_key_press(3, "Down", control);
    EXPECT_FLOAT_EQ(get_person()->scale, 1 / 1.1f);

    handle_key_press(3, "2", 0);
    EXPECT_EQ(last_message(), "walk mode");
    const float z = get_person()->location.z;
    handle_key_press(3, "Up", shift); // 0.2 times 5
    EXPECT_FLOAT_EQ(get_person()->location.z, z - 1);
    const float y = get_person()->location.y;
    handle_key_press(3, "Up", alt);
    EXPECT_FLOAT_EQ(get_person()->location.y, y + 0.2f);
    handle_key_press(3, "space", shift);
    EXPECT_FLOAT_EQ(get_person()->location.z, static_cast<float>(prefs.init3d_z));
    handle_key_press(0, " ", 0);
    EXPECT_FLOAT_EQ(vesk_get_view(0)->scale, 100);
}

} // namespace
