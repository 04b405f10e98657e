#include "draw/draw_view_gl.h"

#include "base/prefs.h"
#include "base/ui_port.h"
#include "draw/draw_3d_gl.h"
#include "draw/draw_orth_gl.h"
#include "draw/draw_text_gl.h"
#include "draw/scene_gather_gl.h"
#include "edit/boolean_live.h"
#include "model/change_marks.h"
#include "view/interaction.h"
#include "view/pick.h"
#include "view/views_internal.h"

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

constexpr colour_t label_colour = {200 / 255.0f, 200 / 255.0f, 200 / 255.0f, 1};
constexpr double slice_seconds = 0.018;
constexpr double any_time = 1e9;
constexpr double vertices_of_object = 24; // that cost as much as an object does beside its own
constexpr float label_x = 8;
constexpr float label_y = 17;

// A picture at rest that is being drawn.
struct unfinished_t {
    bool begun = false;
    slice_progress_t progress;
    layer_costs_t costs = {};
    std::shared_ptr<scene_t> scene;
    // of the model and the selection that it shows
    std::uint64_t changes = 0;
    unsigned marks = 0;
    unsigned layouts = 0;
};

struct view_state_t {
    draw_budget budget;
    bool partial = false;
    int width = 0, height = 0; // of the last picture
    layer_choice_t layers;
    unfinished_t unfinished;
    bool distrusted = false;
    std::uint64_t distrusted_at = 0; // change count of the model
};
view_state_t states[num_views];

bool is_distrusted(view_state_t &state)
{
    if (state.distrusted && state.distrusted_at != model_change_count())
        state.distrusted = false;
    return state.distrusted;
}

colour_t background_of(int view)
{
    return colour_of(view == VIEW_XYZ ? prefs.col_3dbackground : prefs.col_background);
}

// What is left for drawing when the scene was gathered since `called`.
double left_of(double seconds, double called)
{
    constexpr double least = 0.4; // else a picture never ends
    return std::max(seconds - (ui_port().now_seconds() - called), least * seconds);
}

// In any view: the others do not take its time.
bool anything_moves(double seconds)
{
    for (int view = 0; view < num_views; ++view)
        if (view_is_moving(view, seconds))
            return true;
    return false;
}

// What motions and picks to come need of a model that rests.
void ask_workers(const scene_t &scene)
{
    for (const std::size_t i : scene.large)
        buffers_ask_for_coarse(scene.items[i].object);
    if (scene.complete && !scene.large.empty())
        pick_prepare();
}

// The model as it is now; null when it needs more time.
std::shared_ptr<scene_t> scene_of(view_state_t &state, draw_pace pace, bool in_full)
{
    const double seconds = in_full                      ? no_limit
                           : pace == draw_pace::at_rest ? slice_seconds
                                                        : frame_budget;
    const auto scene =
        is_distrusted(state) ? std::make_shared<scene_t>() : gather_scene(pace, seconds);
    if (scene == nullptr)
        return nullptr;
    state.budget.expect(scene->num_vertices +
                        vertices_of_object * static_cast<double>(scene->items.size()));
    state.budget.take_shares(detail_shares(*scene));
    return scene;
}

// The layers are chosen by the caller.
picture_t begin_picture(int view, int width, int height, scene_t &scene)
{
    return {view,
            width,
            height,
            view_interface_scale(),
            scene,
            {},
            &states[view].budget,
            nullptr,
            ui_port().now_seconds()};
}

bool is_current(const unfinished_t &unfinished)
{
    return unfinished.begun && unfinished.changes == model_change_count() &&
           unfinished.marks == selection_marks_generation() &&
           unfinished.layouts == buffers_generation();
}

// Of a picture whose first slice comes next, unless the scene needs more time.
void begin_unfinished(view_state_t &state)
{
    unfinished_t &unfinished = state.unfinished;
    unfinished = {};
    unfinished.scene = scene_of(state, draw_pace::at_rest, false);
    if (unfinished.scene == nullptr)
        return;
    unfinished.changes = model_change_count();
    unfinished.marks = selection_marks_generation();
    unfinished.layouts = buffers_generation();
    ask_workers(*unfinished.scene);
}

void draw_layers(picture_t &picture)
{
    if (is_orthographic(picture.view))
        draw_orthographic_view(picture);
    else
        draw_3d_view(picture);
}

// Over the finished picture.
void draw_over(picture_t &picture)
{
    if (is_orthographic(picture.view))
        draw_orthographic_overlay(picture);
    else
        draw_3d_overlay(picture);
    draw_window_label(picture.view);
    finish_layer(picture, draw_layer::rest);
}

// Notes the cost of smoothing, that of all layers against the present ones; or that of coarse detail.
// What is not complete says nothing.
void learn_from_quick(picture_t &picture, double seconds)
{
    draw_budget &budget = *picture.budget;
    if (picture.layers.share < 1)
        return;
    if (picture.layers.detail > 0) {
        budget.note_coarse(picture.layers, seconds);
        return;
    }
    if (!picture.scene.complete)
        return;
    double expected = budget.cost(draw_layer::rest);
    if (picture.layers.fill)
        expected += budget.cost(draw_layer::fill);
    if (picture.layers.edges)
        expected += budget.cost(draw_layer::edges);
    if (picture.layers.vertices)
        expected += budget.cost(draw_layer::vertices);
    if (!picture.layers.smoothing)
        budget.note(draw_layer::smoothing, std::max(expected - seconds, 0.0));
}

} // namespace

bool draw_view_blank(int view, int width, int height)
{
    if (width == states[view].width && height == states[view].height)
        return false;
    frame_begin(view, width, height, background_of(view), false);
    frame_end(view);
    return true;
}

bool draw_view(int view, int width, int height, double seconds, bool in_full)
{
    view_state_t &state = states[view];
    state.unfinished = {};
    const bool moving = view_is_moving(view, seconds);
    const bool up_to_date = boolean_live_update(moving && !in_full);
    const draw_pace pace = anything_moves(seconds) ? draw_pace::moving
                           : in_full               ? draw_pace::at_once
                                                   : draw_pace::at_rest;
    const double called = ui_port().now_seconds();
    const std::shared_ptr<scene_t> scene = scene_of(state, pace, in_full);
    if (scene == nullptr) {
        state.partial = true;
        return false;
    }
    picture_t picture = begin_picture(view, width, height, *scene);
    const double started = picture.started;
    const bool quick =
        moving || !picture.scene.complete || (!in_full && state.budget.full_cost() > slow_picture);
    picture.layers =
        state.budget.choose(quick, is_orthographic(view), left_of(frame_budget, called));
    choose_detail(picture.scene, picture.layers.detail);
    picture.scene.in_motion = quick;
    picture.layers.boxes_only = state.distrusted;
    // The first picture of a size is quick; it is drawn again when the size stays.
    const bool resized = width != state.width || height != state.height;
    layer_costs_t costs = {};
    if (resized)
        picture.layers.smoothing = false;
    else if (!quick)
        picture.costs = &costs;
    state.width = width;
    state.height = height;
    frame_begin(view, width, height, background_of(view), picture.layers.smoothing);
    draw_layers(picture);
    frame_end(view);
    draw_over(picture);
    state.budget.note_all(costs);
    if (quick)
        learn_from_quick(picture, seconds_until_drawn() - started);
    state.partial = quick || resized || !up_to_date;
    state.layers = picture.layers;
    if (!anything_moves(seconds))
        ask_workers(picture.scene);
    return true;
}

bool draw_view_slice(int view, int width, int height, double seconds)
{
    view_state_t &state = states[view];
    unfinished_t &unfinished = state.unfinished;
    const bool slow = state.budget.full_cost() > slow_picture;
    if (width != state.width || height != state.height || (slow && anything_moves(seconds)) ||
        view_is_moving(view, seconds))
        return draw_view(view, width, height, seconds, false);
    const double called = ui_port().now_seconds();
    const bool up_to_date = boolean_live_update(false);
    if (is_current(unfinished))
        buffers_take_some_coarse();
    else
        begin_unfinished(state);
    if (unfinished.scene == nullptr)
        return false;
    if (!unfinished.scene->complete)
        return draw_view(view, width, height, seconds, false);
    choose_detail(*unfinished.scene, 0);
    unfinished.scene->in_motion = false;
    picture_t picture = begin_picture(view, width, height, *unfinished.scene);
    picture.costs = &unfinished.costs;
    picture.layers = state.budget.choose(false, is_orthographic(view));
    picture.layers.boxes_only = state.distrusted;
    if (!unfinished.begun)
        frame_begin(view, width, height, background_of(view), true);
    else
        frame_resume(view, width, height, true);
    unfinished.begun = true;
    slice_begin(&unfinished.progress, slow ? left_of(slice_seconds, called) : any_time,
                [] { glFinish(); });
    draw_layers(picture);
    if (!slice_end()) {
        frame_pause();
        return false;
    }
    frame_end(view);
    draw_over(picture);
    state.budget.note_all(unfinished.costs);
    unfinished = {};
    state.partial = !up_to_date;
    state.layers = picture.layers;
    return true;
}

std::string drawn_view_layers(int view)
{
    const layer_choice_t &layers = states[view].layers;
    if (layers.boxes_only)
        return "boxes";
    std::string words = "grid";
    const bool wanted_fill = view == VIEW_XYZ ? prefs.view3dmode == 0 : prefs.filled_orth != 0;
    words += layers.fill && wanted_fill ? " fill" : " wire";
    if (layers.edges)
        words += " edges";
    if (layers.vertices)
        words += " vertices";
    constexpr const char *details[] = {"", " coarse", " coarser", " coarsest", " cloud"};
    static_assert(std::size(details) == cloud_detail + 1);
    words += details[layers.detail];
    if (layers.share < 1)
        words += " dots";
    if (layers.smoothing)
        words += " smoothing";
    return words;
}

bool drawn_view_is_partial(int view) { return states[view].partial; }

void draw_view_distrust(int view)
{
    slice_end();
    frame_pause();
    states[view].unfinished = {};
    states[view].distrusted = true;
    states[view].distrusted_at = model_change_count();
}

std::vector<layer_cost_t> drawn_view_costs(int view)
{
    const draw_budget &budget = states[view].budget;
    return {{"fill", budget.cost(draw_layer::fill)},
            {"edges", budget.cost(draw_layer::edges)},
            {"vertices", budget.cost(draw_layer::vertices)},
            {"rest", budget.cost(draw_layer::rest)},
            {"smoothing", budget.cost(draw_layer::smoothing)}};
}

void draw_window_label(int view)
{
    const char *const labels[num_views] = {prefs.window_label_xy, prefs.window_label_zy,
                                           prefs.window_label_xz, prefs.window_label_xyz};
    if (prefs.show_window_labels == 0 || labels[view] == nullptr)
        return;
    const auto scale = static_cast<float>(view_interface_scale());
    draw_text(label_x * scale, label_y * scale, labels[view], label_colour, atlas_font::regular);
}
