// The actions of the keys in the views. The rows of each table are tried in order, so a row with
// Shift stands before the same key without.

#include "view/keys.h"

#include "base/command_registry.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/object_flags.h"
#include "model/each.h"
#include "model/world.h"
#include "view/background.h"
#include "view/camera.h"
#include "view/fit.h"
#include "view/interaction.h"
#include "view/tool_select.h"
#include "view/tools.h"
#include "view/views_internal.h"

#include <cctype>
#include <cstring>
#include <string>

namespace {

constexpr float zoom_factor = 1.1f, zoom_factor_shift = 1.5f;
constexpr int pan_step = 20, pan_step_shift = 50;
constexpr float move_step_shift = 5.0f, turn_step_shift = 3.0f;

// ---- actions that both kinds of views share ----

void delete_everything_selected()
{
    const char *words[] = {"delete"};
    do_command(1, words);
}

void clear_and_redraw()
{
    clear_selection();
    redraw_all();
}

void take_select_mode(int mode)
{
    set_new_select_mode(mode);
    redraw_all();
}

void take_draw_mode(int mode)
{
    set_new_draw_mode(mode);
    redraw_orth();
}

void behind_pointer()
{
    const pointer_event_t &pointer = interaction_pointer();
    select_behind_at(pointer.view, pointer.x, pointer.y);
}

void toggle(int *setting)
{
    *setting = *setting == 0 ? 1 : 0;
    for (const vesk_pref_t &row : prefs_table()) {
        if (row.address == setting) {
            ui_port().update_linked((std::string("prefs_") + row.key).c_str());
        }
    }
}

void list_objects()
{
    for_each_object(vesk_get_world(), [](const object_t *object) {
        console_printf("%s  type %d  vertices %d  surfaces %d  children %d\n", object->name,
                       object->type, object->num_vertices, object->num_surfaces,
                       object->num_children);
    });
}

void toggle_orth(int *setting)
{
    toggle(setting);
    redraw_orth();
}

void toggle_3d(int *setting, const char *on = nullptr, const char *off = nullptr)
{
    toggle(setting);
    const char *message = *setting != 0 ? on : off;
    if (message != nullptr) {
        display_message("%s", message);
    }
    redraw_3d();
}

// ---- characters in the flat views ----

struct character_row_t {
    char key;
    bool shift; // only with Shift
    void (*action)(int view);
};
// clang-format off
const character_row_t flat_characters[] = {
    {' ', false, [](int) { reset_views(); }},
    {'C', false, [](int) { home_windows(); redraw_orth(); }},
    {'O', false, [](int) { take_select_mode(SELECT_OBJECT); }},
    {'S', false, [](int) { take_select_mode(SELECT_SURFACE); }},
    {'D', false, [](int) { take_select_mode(SELECT_EDGE); }},
    {'V', false, [](int) { take_select_mode(SELECT_VERTEX); }},
    {'B', false, [](int) { command_set_view_tool("band"); }},
    {'Q', false, [](int) { behind_pointer(); }},
    {'M', false, [](int) { take_draw_mode(DRAW_MOVE); }},
    {'R', false, [](int) { take_draw_mode(DRAW_ROTATE); }},
    {'E', false, [](int) { if (select_mode() == SELECT_SURFACE) take_draw_mode(DRAW_EXTRUDE); }},
    {27,  false, [](int) { clear_and_redraw(); }},
    {'?', false, [](int) { list_objects(); }},
    {'G', true,  [](int) { goto_selected_all(); }},
    {'G', false, [](int view) { goto_selected(view); redraw(view); }},
    {'F', true,  [](int) { fit_selected_all(); }},
    {'F', false, [](int view) { fit_selected(view); }},
    {'H', false, [](int) { command_hide_selected(); }},
    {'Z', false, [](int view) { zoom_in_win(view); }},
    {'X', false, [](int view) { zoom_out_win(view); }},
    {'N', false, [](int) { toggle_orth(&prefs.show_normals_orth); }},
    {'.', false, [](int) { delete_everything_selected(); }},
    {8,   false, [](int) { delete_everything_selected(); }},
    {'W', false, [](int) { toggle_orth(&prefs.filled_orth); }},
    {'T', false, [](int) { toggle_orth(&prefs.orth_textures); }},
    {'L', false, [](int) { toggle_orth(&prefs.orth_headlight); }},
};

// ---- characters in the 3D view ----

const character_row_t camera_characters[] = {
    {27,  false, [](int) { clear_and_redraw(); }},
    {' ', false, [](int) { person_reset(); redraw_3d(); }},
    {'B', false, [](int) { command_set_view_tool("band"); }},
    {'Q', false, [](int) { behind_pointer(); }},
    {'D', false, [](int) { take_select_mode(SELECT_EDGE); }},
    {'1', false, [](int) { person_set_spin(); redraw_3d(); }},
    {'2', false, [](int) { person_set_walk(); redraw_3d(); }},
    {'E', false, [](int) { if (select_mode() == SELECT_SURFACE) take_draw_mode(DRAW_EXTRUDE); }},
    {'F', false, [](int) { set_3d_view_selection(); }},
    {'G', false, [](int) { toggle_3d(&prefs.grid3d_show, "grid on", "grid off"); }},
    {'L', false, [](int) { toggle_3d(&prefs.headlight); }},
    {'M', false, [](int) { take_draw_mode(DRAW_MOVE); }},
    {'N', false, [](int) { toggle_3d(&prefs.show_3d_normals); }},
    {'O', false, [](int) { take_select_mode(SELECT_OBJECT); }},
    {'P', false, [](int) { person_print_info(); }},
    {'R', false, [](int) { take_draw_mode(DRAW_ROTATE); }},
    {'S', false, [](int) { take_select_mode(SELECT_SURFACE); }},
    {'T', false, [](int) { toggle_3d(&prefs.view3dtextures, "textures on", "textures off"); }},
    {'V', false, [](int) { take_select_mode(SELECT_VERTEX); }},
    {'W', false, [](int) { toggle_3d(&prefs.view3dmode, "wireframe view", "filled view"); }},
};
// clang-format on

template <size_t N>
const character_row_t *find_row(const character_row_t (&rows)[N], char key, bool shift)
{
    for (const character_row_t &row : rows) {
        if (row.key == key && (!row.shift || shift)) {
            return &row;
        }
    }
    return nullptr;
}

int flat_character(int view, char key, int state)
{
    if (qualifier_control(state) != 0 || qualifier_alt(state) != 0) {
        return 0;
    }
    const character_row_t *row = find_row(flat_characters, key, qualifier_shift(state) != 0);
    if (row == nullptr) {
        return 0;
    }
    row->action(view);
    display_status();
    return 1;
}

int camera_character(char key, int state)
{
    if (qualifier_control(state) != 0 || qualifier_shift(state) != 0) {
        return 0;
    }
    const character_row_t *row = find_row(camera_characters, key, false);
    if (row == nullptr) {
        return 0;
    }
    row->action(VIEW_XYZ);
    display_status();
    return 1;
}

// ---- keysyms in the flat views ----

void zoom_flat(int view, bool in, float factor)
{
    const auto scale = in ? scale_win : scale_win2;
    if (prefs.independent_scaling != 0) {
        scale(view, factor);
        return;
    }
    for (const int each_view : orthographic_order) {
        scale(each_view, factor);
    }
}

// Alt: the background image; `along_y` and `step` say where, Shift zooms it (Up and Down only).
void move_background(int view, bool along_y, int step, bool shift)
{
    background_t &image = view_background(view);
    const double factor = prefs.background_image_zoom_factor;
    if (along_y && shift) {
        image.zoom = step < 0 ? image.zoom * factor : image.zoom / factor;
    } else if (along_y) {
        image.y += step;
    } else {
        image.x += step;
    }
    redraw(view);
}

struct arrow_t {
    const char *keysym;
    int pan_x, pan_y; // of the view
    bool along_y;     // of the background image
    int background_step;
};
const arrow_t arrows[] = {
    {"Up", 0, 1, true, -1},
    {"Down", 0, -1, true, 1},
    {"Left", 1, 0, false, 1},
    {"Right", -1, 0, false, -1},
};

bool flat_arrow(int view, const char *keysym, int state)
{
    const bool shift = qualifier_shift(state) != 0;
    for (const arrow_t &arrow : arrows) {
        if (std::strcmp(arrow.keysym, keysym) != 0) {
            continue;
        }
        const int step = shift ? pan_step_shift : pan_step;
        if (arrow.along_y && qualifier_control(state) != 0) {
            zoom_flat(view, arrow.pan_y > 0, shift ? zoom_factor_shift : zoom_factor);
        } else if (qualifier_alt(state) != 0) {
            move_background(view, arrow.along_y, arrow.background_step, shift);
        } else {
            move_view(view, arrow.pan_x * step, arrow.pan_y * step);
        }
        return true;
    }
    return false;
}

// ---- keysyms in the 3D view ----

void spin_arrow(const char *keysym, bool control)
{
    const auto degrees = static_cast<float>(prefs.key_rotate_degs_3d);
    if (std::strcmp(keysym, "Left") == 0) {
        person_add_spin_rotation(0, -degrees);
    } else if (std::strcmp(keysym, "Right") == 0) {
        person_add_spin_rotation(0, degrees);
    } else if (std::strcmp(keysym, "Up") == 0) {
        control ? vesk_person_scale_mult(zoom_factor) : person_add_spin_rotation(-degrees, 0);
    } else {
        control ? vesk_person_scale_div(zoom_factor) : person_add_spin_rotation(degrees, 0);
    }
}

void walk_arrow(const char *keysym, int state)
{
    const bool shift = qualifier_shift(state) != 0;
    const bool alt = qualifier_alt(state) != 0;
    const bool control = qualifier_control(state) != 0;
    const float move = get_person()->move_step * (shift ? move_step_shift : 1.0f);
    const float turn = get_person()->turn_step * (shift ? turn_step_shift : 1.0f);
    if (std::strcmp(keysym, "Left") == 0) {
        alt ? viewer_move_left(move) : viewer_turn_left(turn);
    } else if (std::strcmp(keysym, "Right") == 0) {
        alt ? viewer_move_right(move) : viewer_turn_right(turn);
    } else if (std::strcmp(keysym, "Up") == 0) {
        alt ? viewer_move_up(move) : control ? viewer_turn_up(turn) : viewer_move_forward(move);
    } else {
        alt ? viewer_move_down(move) : control ? viewer_turn_down(turn) : viewer_move_back(move);
    }
}

bool is_arrow(const char *keysym)
{
    for (const arrow_t &arrow : arrows) {
        if (std::strcmp(arrow.keysym, keysym) == 0) {
            return true;
        }
    }
    return false;
}

bool deletes(const char *keysym)
{
    return std::strcmp(keysym, "Delete") == 0 || std::strcmp(keysym, "BackSpace") == 0;
}

int camera_keysym(const char *keysym, int state)
{
    if (is_arrow(keysym)) {
        if (vesk_person_is_walk_vehicle() != 0) {
            walk_arrow(keysym, state);
        } else {
            spin_arrow(keysym, qualifier_control(state) != 0);
        }
    } else if (deletes(keysym)) {
        delete_everything_selected();
    } else if (std::strcmp(keysym, "space") == 0) {
        person_reset();
    } else {
        return 0;
    }
    redraw_3d();
    return 1;
}

} // namespace

int handle_special_key_press(int view, const char *keysym, int state)
{
    if (!is_orthographic(view)) {
        return 0;
    }
    if (flat_arrow(view, keysym, state)) {
        return 1;
    }
    if (deletes(keysym)) {
        delete_everything_selected();
        return 1;
    }
    if (std::strcmp(keysym, "space") == 0) {
        person_reset();
        redraw_3d();
        return 1;
    }
    return 0;
}

int handle_key_press(int view, const char *key, int state)
{
    const bool character = std::strlen(key) <= 1;
    const auto upper = static_cast<char>(std::toupper(static_cast<unsigned char>(key[0])));
    if (view == VIEW_XYZ) {
        return character ? camera_character(upper, state) : camera_keysym(key, state);
    }
    if (!character) {
        return handle_special_key_press(view, key, state);
    }
    return is_orthographic(view) ? flat_character(view, upper, state) : 0;
}
