// Commands of texture coordinates: the operations of the editor's window, for scripts.

#include "base/command_result.h"
#include "base/command_row.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "edit/uv/uv_edit.h"
#include "edit/uv/uv_keep.h"
#include "edit/uv/uv_measure.h"
#include "edit/uv/uv_measured.h"
#include "edit/uv/uv_pack.h"
#include "edit/uv/uv_project.h"
#include "edit/uv/uv_relax.h"
#include "edit/uv/uv_replay.h"
#include "model/textures/textures.h"
#include "program/own_commands.h"
#include "view/uv_drag.h"
#include "view/uv_view.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

std::string number_text(float value)
{
    char buffer[32];
    snprintf(buffer, sizeof buffer, "%g", static_cast<double>(value));
    return buffer;
}

void tell(const char *key, std::string_view value)
{
    command_result_append_element(std::string_view(key));
    command_result_append_element(value);
}
void tell(const char *key, int value) { tell(key, std::to_string(value)); }

std::string box_text(const uv_box &box)
{
    return box.any ? number_text(box.u0) + " " + number_text(box.v0) + " " + number_text(box.u1) +
                         " " + number_text(box.v1)
                   : "";
}

// ---- queries ----

void command_uv_info()
{
    const uv_state &state = uv_editor();
    const uv_pixels pixels = uv_picture_size();
    const uv_totals &totals = uv_totals_now();
    tell("mode", uv_mode_name(state.mode));
    tell("surfaces", state.mesh.num_surfaces());
    tell("corners", state.mesh.num_corners());
    tell("islands", state.islands.num_islands);
    tell("chosen_surfaces", totals.chosen_surfaces);
    tell("chosen_corners", state.num_chosen);
    tell("chosen_islands", totals.chosen_islands);
    tell("box", box_text(totals.chosen));
    tell("box_all", box_text(totals.all));
    tell("pixels", number_text(static_cast<float>(pixels.width)) + " " +
                       number_text(static_cast<float>(pixels.height)));
    const object_t *object = uv_picture_object();
    const VESKImage *image = object != nullptr ? object_picture(object) : nullptr;
    tell("picture", image != nullptr && image->name != nullptr ? image->name : "");
    tell("keep", uv_keep_is_on() ? 1 : 0);
}

// One element an island: its box, and whether it is chosen.
void command_uv_islands()
{
    const uv_state &state = uv_editor();
    const std::vector<uv_box> boxes = uv_island_boxes(state.mesh, state.islands);
    std::vector<char> chosen(boxes.size(), 0);
    for (const int island : uv_chosen_islands(state))
        chosen[island] = state.num_chosen > 0 ? 1 : 0;
    for (std::size_t i = 0; i < boxes.size(); ++i)
        command_result_append_element(
            std::string_view(box_text(boxes[i]) + (chosen[i] != 0 ? " 1" : " 0")));
}

// ---- choosing ----

void choose(std::vector<char> corners)
{
    uv_choose(std::move(corners));
    redraw_all();
    display_status();
}

std::vector<char> corners_of_surfaces(const uv_mesh &mesh, const std::vector<char> &surfaces)
{
    std::vector<char> corners(mesh.at.size(), 0);
    for (int i = 0; i < mesh.num_surfaces(); ++i)
        std::fill(corners.begin() + mesh.corners_begin(i), corners.begin() + mesh.corners_end(i),
                  surfaces[i]);
    return corners;
}

std::vector<char> flipped_surfaces(const uv_mesh &mesh)
{
    std::vector<char> flipped;
    for (const uv_stretch &stretch : uv_measure_stretch(mesh, uv_picture_size().aspect()))
        flipped.push_back(stretch.flipped ? 1 : 0);
    return flipped;
}

// The islands of the chosen corners.
std::vector<char> linked(const uv_state &state)
{
    std::vector<char> islands(state.islands.num_islands, 0);
    if (state.num_chosen > 0) {
        for (const int island : uv_chosen_islands(state))
            islands[island] = 1;
    }
    std::vector<char> surfaces;
    for (const int island : state.islands.island)
        surfaces.push_back(islands[island]);
    return corners_of_surfaces(state.mesh, surfaces);
}

void command_uv_select(const char *what)
{
    const uv_state &state = uv_editor();
    std::vector<char> corners = state.chosen;
    if (std::strcmp(what, "all") == 0) {
        std::fill(corners.begin(), corners.end(), 1);
    } else if (std::strcmp(what, "none") == 0) {
        std::fill(corners.begin(), corners.end(), 0);
    } else if (std::strcmp(what, "invert") == 0) {
        for (char &corner : corners)
            corner = corner != 0 ? 0 : 1;
    } else if (std::strcmp(what, "linked") == 0) {
        corners = linked(state);
    } else if (std::strcmp(what, "overlapping") == 0) {
        corners = corners_of_surfaces(state.mesh, *uv_overlaps_now(uv_patience::none));
    } else if (std::strcmp(what, "flipped") == 0) {
        corners = corners_of_surfaces(state.mesh, flipped_surfaces(state.mesh));
    } else {
        display_message("uv select - no choice '%s'", what);
        return;
    }
    choose(std::move(corners));
}

void command_uv_select_mode(const char *name)
{
    uv_mode mode = uv_mode::SURFACE;
    if (!uv_mode_of(name, &mode)) {
        display_message("uv select mode - no mode '%s'", name);
        return;
    }
    uv_set_mode(mode);
    redraw_all();
    display_status();
}

void command_uv_select_islands(const char *numbers)
{
    const uv_state &state = uv_editor();
    std::vector<char> islands(state.islands.num_islands, 0);
    const char *end = numbers + std::strlen(numbers);
    int number = 0;
    while ((numbers = scan_int(numbers, end, &number)) != nullptr) {
        if (number >= 0 && number < state.islands.num_islands)
            islands[number] = 1;
    }
    std::vector<char> surfaces;
    for (const int island : state.islands.island)
        surfaces.push_back(islands[island]);
    choose(corners_of_surfaces(state.mesh, surfaces));
}

// The corners, or the whole surfaces, in a box of the picture.
void command_uv_select_box(int, const char *const *words)
{
    const uv_state &state = uv_editor();
    float side[4];
    for (int i = 0; i < 4; ++i)
        side[i] = finite_float_of(words[i]);
    std::vector<char> inside;
    for (const flat_uv &p : state.mesh.at)
        inside.push_back(p.u >= std::min(side[0], side[2]) && p.u <= std::max(side[0], side[2]) &&
                                 p.v >= std::min(side[1], side[3]) &&
                                 p.v <= std::max(side[1], side[3])
                             ? 1
                             : 0);
    if (state.mode != uv_mode::CORNER) {
        std::vector<char> surfaces;
        for (int i = 0; i < state.mesh.num_surfaces(); ++i)
            surfaces.push_back(std::all_of(inside.begin() + state.mesh.corners_begin(i),
                                           inside.begin() + state.mesh.corners_end(i),
                                           [](char in) { return in != 0; })
                                   ? 1
                                   : 0);
        inside = corners_of_surfaces(state.mesh, surfaces);
    }
    choose(std::move(inside));
}

// ---- the window ----

void command_uv_tool(const char *name)
{
    constexpr const char *names[] = {"move", "rotate", "scale"};
    for (int i = 0; i < 3; ++i) {
        if (std::strcmp(name, names[i]) == 0) {
            uv_view().tool = static_cast<uv_tool>(i);
            uv_view_redraw();
            return;
        }
    }
    display_message("uv tool - no tool '%s'", name);
}

// Keys and values; with two words sets one.
void command_uv_option(int count, const char *const *words)
{
    uv_options &options = uv_view().options;
    const struct {
        const char *name;
        bool *value;
    } switches[] = {{"checker", &options.checker},
                    {"overlaps", &options.overlaps},
                    {"repeat", &options.repeat},
                    {"snap", &options.snap}};
    if (count == 0) {
        for (const auto &option : switches)
            tell(option.name, *option.value ? 1 : 0);
        tell("picture", options.picture);
        tell("stretch", static_cast<int>(options.stretch));
        return;
    }
    const std::string_view name = words[0];
    const auto *found = std::find_if(std::begin(switches), std::end(switches),
                                     [name](const auto &option) { return name == option.name; });
    if (count < 2) {
        display_message("uv option - '%s' needs a value", words[0]);
        return;
    }
    if (found != std::end(switches)) {
        *found->value = int_of(words[1]) != 0;
    } else if (name == "picture") {
        options.picture = int_of(words[1]);
    } else if (name == "stretch") {
        options.stretch = static_cast<uv_shown_stretch>(std::clamp(int_of(words[1]), 0, 3));
    } else {
        display_message("uv option - no option '%s'", words[0]);
        return;
    }
    uv_view_redraw();
}

void command_uv_view_fit(int chosen) { uv_view_fit(chosen != 0); }

void command_uv_view_zoom(int direction)
{
    constexpr double step = 1.25;
    uv_view_zoom(direction > 0 ? step : 1 / step, uv_view().width / 2, uv_view().height / 2);
}

void command_uv_key(const char *keysym) { command_result_set(uv_drag_key(keysym) ? "1" : "0"); }

void command_uv_move_pixels(int right, int up)
{
    const uv_pixels pixels = uv_picture_size();
    command_uv_move(static_cast<float>(right / pixels.width),
                    static_cast<float>(up / pixels.height));
}

} // namespace

std::span<const own_command_t> uv_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row(
            "uv_option", command_uv_option, view, 0, 2,
            "<checker, stretch, overlaps, repeat, snap or picture> <int value>",
            "what the window of texture coordinates shows (stretch: 1 area and shape, 2 area, "
            "3 shape); without words returns it"),
        command_row("uv_project", command_uv_project, edit, 1, 2,
                    "<planar_x, planar_y, planar_z, box, cylinder or sphere> "
                    "<int 0 one picture a unit, 1 fitted with its proportions, 2 the square>",
                    "texture coordinates from positions"),
        command_row("uv_weld", command_uv_weld, edit, 0, 1, "<float distance>",
                    "bring chosen corners of each vertex together, or those within a distance"),
        command_row("uv_transform", command_uv_transform, edit, 7, 7,
                    "<string move, rotate or scale> <float a> <float b> <float c> <float d> "
                    "<float e> <float f>",
                    "texture coordinates by a matrix: u' = a u + b v + e, v' = c u + d v + f"),
        command_row("uv_select_box", command_uv_select_box, select, 4, 4,
                    "<float u1> <float v1> <float u2> <float v2>",
                    "choose what lies in a box of the picture"),
        command_row("uv_info", command_uv_info, query, nullptr,
                    "returns what the texture coordinate commands work on, as keys and values"),
        command_row("uv_islands", command_uv_islands, query, nullptr,
                    "returns the box of each island (u v of two corners), 1 when it is chosen"),
        command_row("uv_stretch", command_uv_stretch, query, nullptr,
                    "returns how the picture is distorted, as keys and values"),
        command_row("uv_overlaps", command_uv_overlaps, query, nullptr,
                    "returns how many surfaces lie on others in the picture"),
        command_row("uv_select_mode", command_uv_select_mode, view,
                    "<string corner, surface or island>", "what texture coordinates are chosen by"),
        command_row("uv_select", command_uv_select, select,
                    "<string all, none, invert, linked, overlapping or flipped>",
                    "choose texture coordinates"),
        command_row("uv_select_islands", command_uv_select_islands, select, "<string numbers>",
                    "choose islands by their places in uv_islands, from 0"),
        command_row("uv_select_corners", command_uv_select_corners, select, "<string places>",
                    "choose corners by their places among all that are shown, from 0"),
        command_row("uv_move", command_uv_move, edit, "<float u> <float v>",
                    "move texture coordinates"),
        command_row("uv_move_pixels", command_uv_move_pixels, edit, "<int right> <int up>",
                    "move texture coordinates by pixels of the picture"),
        command_row("uv_rotate", command_uv_rotate, edit, "<float degrees>",
                    "rotate texture coordinates about the middle of their box"),
        command_row("uv_scale", command_uv_scale, edit, "<float u> <float v>",
                    "scale texture coordinates about the middle of their box"),
        command_row("uv_flip", command_uv_flip, edit, "<string u or v>",
                    "mirror texture coordinates"),
        command_row("uv_rotate_90", command_uv_rotate_90, edit, nullptr,
                    "turn texture coordinates by 90 degrees to the left"),
        command_row("uv_fit", command_uv_fit, edit, "<int keep proportions>",
                    "fit texture coordinates into the unit square"),
        command_row("uv_align", command_uv_align, edit,
                    "<string left, right, centre, bottom, top or middle>",
                    "bring chosen corners, or islands, to one line"),
        command_row("uv_split", command_uv_split, edit, nullptr,
                    "part chosen corners or surfaces from their neighbours by a pixel"),
        command_row("uv_snap", command_uv_snap, edit, nullptr,
                    "move texture coordinates to whole pixels"),
        command_row("uv_pack", command_uv_pack, edit, "<float margin in pixels>",
                    "lay islands side by side into the unit square"),
        command_row("uv_relax", command_uv_relax, edit, "<int steps>",
                    "lower the distortion of islands step by step"),
        command_row("uv_keep", command_uv_keep, view, "<int on>",
                    "keep the picture in place while vertices move"),
        command_row("uv_tool", command_uv_tool, view, "<string move, rotate or scale>",
                    "what a drag in the window of texture coordinates does"),
        command_row("uv_view_fit", command_uv_view_fit, view, "<int chosen only>",
                    "show the unit square, or what is chosen, as large as it fits"),
        command_row("uv_view_zoom", command_uv_view_zoom, view, "<int direction>",
                    "zoom the window of texture coordinates"),
        command_row("uv_key", command_uv_key, view, "<string keysym>",
                    "a key for a running drag of texture coordinates, returns 1 when it was used"),
    };
    return rows;
}
