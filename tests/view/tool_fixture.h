#ifndef VESK_TESTS_VIEW_TOOL_FIXTURE_H
#define VESK_TESTS_VIEW_TOOL_FIXTURE_H

#include "base/prefs.h"
#include "tests/support/scene_test.h"
#include "view/camera_internal.h"
#include "view/interaction.h"
#include "view/ruler.h"
#include "view/tool_transform.h"
#include "view/tools.h"
#include "view/views_internal.h"

constexpr int shift = 1, control = 4;

// A unit cube at the origin; 100 pixels a unit, the origin at (200, 150) of each flat view.
class Tools : public SceneTest {
protected:
    void SetUp() override
    {
        SceneTest::SetUp();
        views_reset_for_test();
        camera_reset_for_test();
        interaction_reset_for_test();
        tools_reset_for_test();
        set_extrusion_sides(extrude_sides::automatic);
        ruler() = {};
        for (int view = 0; view < 4; ++view) {
            handle_resize(view, 400, 300);
        }
        tools_install();
        cube = add_cube("cube");
    }
    void press(int view, int x, int y, int state = 0)
    {
        interaction_press({view, x, y, 1, state, seconds += 1});
    }
    void move(int view, int x, int y, int state = 0)
    {
        interaction_motion({view, x, y, 0, state, seconds += 0.1});
    }
    void release(int view, int x, int y, int state = 0)
    {
        interaction_release({view, x, y, 1, state, seconds += 0.1});
    }
    void click(int view, int x, int y, int state = 0)
    {
        press(view, x, y, state);
        release(view, x, y, state);
    }
    void drag(int view, int x0, int y0, int x1, int y1, int state = 0)
    {
        press(view, x0, y0, state);
        move(view, (x0 + x1) / 2, (y0 + y1) / 2, state);
        move(view, x1, y1, state);
        release(view, x1, y1, state);
    }
    bool key(const char *keysym) { return tool_key(keysym); }
    bool keys(std::initializer_list<const char *> keysyms)
    {
        bool all = true;
        for (const char *keysym : keysyms) {
            all = key(keysym) && all;
        }
        return all;
    }
    object_t *cube;
    double seconds = 0;
};

#endif
