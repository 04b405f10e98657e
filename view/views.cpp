#include "base/prefs.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "model/alloc.h"
#include "view/camera.h"
#include "view/views_internal.h"

#include <cstring>

namespace {

constexpr float initial_scale = 100.0f;
constexpr float command_zoom = 1.5f;
constexpr float wheel_zoom = 1.1f;

struct views_t {
    VESKView *record[num_views] = {};
    int geometry[num_views][4] = {};
    char *viewsetting = nullptr;
};
views_t views;

// The pan follows the scale, so that the middle of the window stays where it is.
void zoom_about_middle(int view, float multiplier, float divisor)
{
    if (!is_orthographic(view))
        return;
    VESKView &record = *vesk_get_view(view);
    for (float *value : {&record.scale, &record.pan[view_axes[view].horizontal],
                         &record.pan[view_axes[view].vertical]})
        *value = *value * multiplier / divisor;
}

void zoom_win(int view, void (*zoom)(int, float))
{
    if (prefs.independent_scaling != 0 && view != VIEW_NONE) {
        zoom(view, command_zoom);
        return;
    }
    for (int each : orthographic_order)
        zoom(each, command_zoom);
}

struct handle_cursor_t {
    int code;
    const char *cursor;
};
// clang-format off
constexpr handle_cursor_t handle_cursors[] = {
    { 0, nullptr},
    { 1, "fleur"},
    { 2, "exchange"},
    { 5, "top_left_corner"},
    { 6, "bottom_left_corner"},
    { 9, "top_right_corner"},
    {10, "bottom_right_corner"},
    {17, "top_side"},
    {18, "bottom_side"},
    {20, "left_side"},
    {24, "right_side"},
};
// clang-format on

// The numbers of the X cursor font, of which orth_xcursor names one.
constexpr const char *xcursor_names[] = {
    "X_cursor",
    "arrow",
    "based_arrow_down",
    "based_arrow_up",
    "boat",
    "bogosity",
    "bottom_left_corner",
    "bottom_right_corner",
    "bottom_side",
    "bottom_tee",
    "box_spiral",
    "center_ptr",
    "circle",
    "clock",
    "coffee_mug",
    "cross",
    "cross_reverse",
    "crosshair",
    "diamond_cross",
    "dot",
    "dotbox",
    "double_arrow",
    "draft_large",
    "draft_small",
    "draped_box",
    "exchange",
    "fleur",
    "gobbler",
    "gumby",
    "hand1",
    "hand2",
    "heart",
    "icon",
    "iron_cross",
    "left_ptr",
    "left_side",
    "left_tee",
    "leftbutton",
    "ll_angle",
    "lr_angle",
    "man",
    "middlebutton",
    "mouse",
    "pencil",
    "pirate",
    "plus",
    "question_arrow",
    "right_ptr",
    "right_side",
    "right_tee",
    "rightbutton",
    "rtl_logo",
    "sailboat",
    "sb_down_arrow",
    "sb_h_double_arrow",
    "sb_left_arrow",
    "sb_right_arrow",
    "sb_up_arrow",
    "sb_v_double_arrow",
    "shuttle",
    "sizing",
    "spider",
    "spraycan",
    "star",
    "target",
    "tcross",
    "top_left_arrow",
    "top_left_corner",
    "top_right_corner",
    "top_side",
    "top_tee",
    "trek",
    "ul_angle",
    "umbrella",
    "ur_angle",
    "watch",
    "xterm",
};
constexpr int num_xcursors = sizeof xcursor_names / sizeof xcursor_names[0];

constexpr int first_create_mode = 20;

} // namespace

// ---- records and windows ----

VESKView *new_veskview(const char *name)
{
    auto *record = static_cast<VESKView *>(myalloc(sizeof(VESKView)));
    *record = VESKView{};
    record->id = VIEW_NONE;
    const size_t size = std::strlen(name) + 1;
    record->name = static_cast<char *>(myalloc(static_cast<unsigned>(size)));
    std::memcpy(record->name, name, size);
    record->scale = initial_scale;
    return record;
}

VESKView *vesk_get_view(int view)
{
    if (view < 0 || view >= num_views)
        return nullptr;
    if (views.record[view] ==
        nullptr) { // no window yet, or none at all: the projections still work
        views.record[view] = new_veskview("");
        views.record[view]->id = view;
    }
    return views.record[view];
}

void view_bind(int view, const char *name, void *togl, void *tk_window)
{
    VESKView *former = vesk_get_view(view);
    VESKView *record = new_veskview(name);
    record->id = view;
    record->bound = 1;
    record->togl = togl;
    record->tk_window = tk_window;
    record->scale = former->scale;
    std::memcpy(record->pan, former->pan, sizeof record->pan);
    std::memcpy(record->centre, former->centre, sizeof record->centre);
    views.record[view] = record;
    myfree(former->name);
    myfree(former);
}

const char *view_short_name(int view)
{
    constexpr const char *names[num_views] = {"xy", "zy", "xz", "xyz"};
    return view >= 0 && view < num_views ? names[view] : "";
}

void views_take_geometry_from_prefs()
{
    const int geometry[num_views][4] = {
        {prefs.frontwin_x, prefs.frontwin_y, prefs.frontwin_width, prefs.frontwin_height},
        {prefs.sidewin_x, prefs.sidewin_y, prefs.sidewin_width, prefs.sidewin_height},
        {prefs.planwin_x, prefs.planwin_y, prefs.planwin_width, prefs.planwin_height},
        {prefs.win3d_x, prefs.win3d_y, prefs.win3d_width, prefs.win3d_height},
    };
    for (int view = 0; view < num_views; ++view) {
        view_set_position(view, geometry[view][0], geometry[view][1]);
        handle_resize(view, geometry[view][2], geometry[view][3]);
    }
}

void view_set_position(int view, int x, int y)
{
    views.geometry[view][0] = x;
    views.geometry[view][1] = y;
}

void win_get_geom(int view, int *out)
{
    if (view == VIEW_MAIN) {
        const int from_prefs[4] = {prefs.cpwin_x, prefs.cpwin_y, prefs.cpwin_width,
                                   prefs.cpwin_height};
        if (!ui_port().window_geometry(VIEW_MAIN, out))
            std::memcpy(out, from_prefs, sizeof from_prefs);
    } else if (view >= 0 && view < num_views) {
        std::memcpy(out, views.geometry[view], sizeof views.geometry[view]);
    }
}

void handle_resize(int view, int width, int height)
{
    VESKView *record = vesk_get_view(view);
    if (record == nullptr)
        return;
    const view_axes_t axes = is_orthographic(view) ? view_axes[view] : view_axes[VIEW_XY];
    record->centre[axes.horizontal] = static_cast<float>(width) / 2.0f;
    record->centre[axes.vertical] = static_cast<float>(height) / 2.0f;
    views.geometry[view][2] = width;
    views.geometry[view][3] = height;
    redraw(view);
}

int window_is_visible(int view)
{
    if (views.viewsetting == nullptr || view < 0 || view >= num_views)
        return 0;
    return std::strcmp(views.viewsetting, "all") == 0 ||
           std::strcmp(views.viewsetting, view_short_name(view)) == 0;
}

char **views_viewsetting() { return &views.viewsetting; }

void views_reset_for_test()
{
    for (VESKView *record : views.record) {
        if (record == nullptr)
            continue;
        myfree(record->name);
        myfree(record);
    }
    if (views.viewsetting != nullptr)
        ui_port().free_text(views.viewsetting);
    views = views_t{};
    views.viewsetting = ui_port().alloc_text("all");
    views_take_geometry_from_prefs();
}

// ---- zoom and pan ----

void scale_win(int view, float factor)
{
    zoom_about_middle(view, factor, 1.0f);
    redraw_view(view);
}

void scale_win2(int view, float factor)
{
    zoom_about_middle(view, 1.0f, factor);
    redraw_view(view);
}

void zoom_in(void)
{
    for (int view : orthographic_order)
        scale_win(view, command_zoom);
}

void zoom_out(void)
{
    for (int view : orthographic_order)
        scale_win2(view, command_zoom);
}

void zoom_in_win(int view) { zoom_win(view, scale_win); }

void zoom_out_win(int view) { zoom_win(view, scale_win2); }

void zoom_view(int view, int direction)
{
    if (direction == 0)
        return;
    if (view == VIEW_XYZ) {
        if (vesk_person_is_walk_vehicle() != 0)
            return;
        if (direction > 0)
            vesk_person_scale_mult(wheel_zoom);
        else
            vesk_person_scale_div(wheel_zoom);
        redraw_3d();
        return;
    }
    if (direction > 0)
        scale_win(view, wheel_zoom);
    else
        scale_win2(view, wheel_zoom);
}

void vesk_sync_zoom(int view)
{
    const VESKView *source = vesk_get_view(view);
    if (source == nullptr)
        return;
    for (int each = 0; each < 3; ++each)
        vesk_get_view(each)->scale = source->scale;
    redraw_orth();
}

void view_zoom_by(int view, float factor)
{
    if (!is_orthographic(view))
        return;
    for (const int each : orthographic_order) {
        if (prefs.independent_scaling != 0 && each != view)
            continue;
        zoom_about_middle(each, factor, 1.0f);
        redraw(each);
    }
}

void view_pan_by(int view, float dx, float dy)
{
    VESKView &record = *vesk_get_view(view);
    record.pan[view_axes[view].horizontal] += dx;
    record.pan[view_axes[view].vertical] += dy;
    redraw(view);
}

void move_view(int view, int dx, int dy)
{
    if (!is_orthographic(view))
        return;
    VESKView &record = *vesk_get_view(view);
    record.pan[view_axes[view].horizontal] += static_cast<float>(dx);
    record.pan[view_axes[view].vertical] += static_cast<float>(dy);
    redraw_view(view);
}

void home_windows(void)
{
    for (int view = 0; view < 3; ++view)
        std::memset(vesk_get_view(view)->pan, 0, sizeof(float[3]));
}

void windows_reset_scale(void)
{
    for (int view = 0; view < num_views; ++view)
        vesk_get_view(view)->scale = initial_scale;
    redraw_all();
}

void reset_views(void)
{
    windows_reset_scale();
    home_windows();
    redraw_all();
}

void goto_point(const point3_t *point)
{
    for (int view : orthographic_order) {
        VESKView &record = *vesk_get_view(view);
        for (int axis = 0; axis < 3; ++axis)
            record.pan[axis] = -axis_sign[axis] * axis_of(*point, axis) * record.scale;
    }
    redraw_orth();
}

// ---- modifiers and pointer shapes ----

int qualifier_shift(int state) { return (state & 0x1) != 0; }

int qualifier_control(int state) { return (state & 0x4) != 0; }

int qualifier_alt(int state)
{
    return (state & (0x20000 | 0x8)) != 0; // 0x8 is what X calls Mod1
}

void win_set_cursor(int view, const char *cursor) { ui_port().set_cursor(view, cursor); }

const char *handle_cursor(int handle)
{
    for (const handle_cursor_t &row : handle_cursors)
        if (row.code == handle)
            return row.cursor;
    return nullptr;
}

void win_set_handle_cursor(int view, int handle)
{
    const char *cursor = handle_cursor(handle);
    if (cursor != nullptr || handle == 0)
        win_set_cursor(view, cursor);
}

void win_set_mode_cursor(int view, int draw_mode)
{
    if (draw_mode >= first_create_mode)
        win_set_cursor(view, "crosshair");
    else if (is_orthographic(view) && prefs.orth_xcursor >= 0 &&
             prefs.orth_xcursor / 2 < num_xcursors)
        win_set_cursor(view, xcursor_names[prefs.orth_xcursor / 2]);
    else
        win_set_cursor(view, nullptr);
}
