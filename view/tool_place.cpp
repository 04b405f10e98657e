#include "view/tool_place.h"

#include "base/echo.h"
#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_internal.h"
#include "edit/mesh/polygon_plane.h"
#include "edit/place.h"
#include "model/object_tree.h"
#include "view/drag_echo.h"
#include "view/highlight.h"
#include "view/interaction.h"
#include "view/overlay.h"
#include "view/pick.h"
#include "view/screen_ray.h"
#include "view/tool_select.h"
#include "view/views_internal.h"

#include <memory>
#include <unordered_set>

namespace {

struct state_t {
    pointer_event_t start = {};
    std::unique_ptr<step_t> step;
    std::unique_ptr<drag_transform_t> transform;
    std::unordered_set<const object_t *> own; // objects that move, or own what moves
    point3_t box_min = {}, box_max = {};
    bool found = false; // it stands somewhere
    point3_t at = {};
    vec3d normal = {};
};
state_t state;

// What moves is no ground for itself.
void note_own()
{
    for (object_t *top : selected_top_objects())
        for_each_object(top, [](const object_t *object) { state.own.insert(object); });
    for (const object_t *object : state.transform->moving_objects())
        state.own.insert(object);
}

// The surface under the pointer, as its point and its normal towards the viewer.
bool look_for_ground(const pointer_event_t &event, point3_t *at, vec3d *normal)
{
    const screen_ray_t ray = screen_ray(event.view, event.x, event.y);
    for (const pick_hit_t &hit : pick_at(event.view, pick_kind::SURFACE, event.x, event.y, 0)) {
        if (state.own.contains(hit.object) || !ray_meets_surface(ray, hit.surface, at))
            continue;
        *normal = unit_of(to_vec3d(hit.surface->normal));
        if (dot(*normal, {ray.direction[0], ray.direction[1], ray.direction[2]}) > 0)
            *normal = *normal * -1;
        if (!(*normal == vec3d{}))
            return true;
    }
    return false;
}

void drop()
{
    overlay() = {};
    state = {};
}

void begin()
{
    state.step = std::make_unique<step_t>(step_t::of::drag);
    state.transform = std::make_unique<drag_transform_t>();
    state.box_min = selection().box_min;
    state.box_max = selection().box_max;
    note_own();
}

bool press(const pointer_event_t &event)
{
    highlight_clear();
    state = {};
    state.start = event;
    return true;
}

void motion(const pointer_event_t &event)
{
    if (selection().box_valid == 0) {
        display_message("place - select what is to stand on a surface first");
        return;
    }
    if (state.transform == nullptr) {
        if (is_click(state.start, event))
            return;
        begin();
    }
    point3_t at;
    vec3d normal;
    if (!look_for_ground(event, &at, &normal))
        return;
    const bool turns = qualifier_shift(event.state) == 0;
    const drag_change_t change = placing_on(state.box_min, state.box_max, at, normal, turns);
    state.found = true;
    state.at = at;
    state.normal = turns ? normal : vec3d{};
    state.transform->step(change);
    overlay().moving = true;
    overlay().pending = !state.transform->is_live();
    if (overlay().pending)
        drag_matrix(change, overlay().pending_matrix);
    redraw_all();
}

void release(const pointer_event_t &event)
{
    if (state.transform == nullptr) {
        const pointer_event_t start = state.start;
        drop();
        if (is_click(start, event))
            select_click(start.view, start.x, start.y, start.state, start.seconds);
        return;
    }
    const std::unique_ptr<step_t> step = std::move(state.step);
    const std::unique_ptr<drag_transform_t> transform = std::move(state.transform);
    const bool found = state.found;
    std::vector<std::string> words = {"place_on_surface"};
    for (const std::string &word : echo_point(state.at))
        words.push_back(word);
    for (const double number : {state.normal.x, state.normal.y, state.normal.z})
        words.push_back(echo_number(number));
    drop();
    if (found)
        transform->finish();
    else
        display_message("place - no surface there");
    keep_step(*step, found ? words : std::vector<std::string>(), "place");
    redraw_all();
    display_status();
}

void cancel()
{
    std::unique_ptr<step_t> step = std::move(state.step);
    const std::unique_ptr<drag_transform_t> transform = std::move(state.transform);
    drop();
    if (transform != nullptr)
        transform->take_back();
    step.reset();
    redraw_all();
    display_status();
}

void click(const pointer_event_t &event)
{
    select_click(event.view, event.x, event.y, event.state, event.seconds);
}

void hover(const pointer_event_t &event) { highlight_follow(event.view, event.x, event.y); }

bool runs() { return state.transform != nullptr; }

} // namespace

const tool_t place_tool = {.name = "place_on_surface",
                           .press = press,
                           .motion = motion,
                           .release = release,
                           .cancel = cancel,
                           .click = click,
                           .hover = hover,
                           .outside = highlight_clear,
                           .leave = cancel,
                           .runs = runs,
                           .forget = drop};
