#include "edit/place.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "edit/axis_pivot.h"
#include "edit/document/selection_internal.h"
#include "edit/mesh/polygon_plane.h"
#include "edit/path_places.h"

drag_change_t placing_on(const point3_t &box_min, const point3_t &box_max, const point3_t &at,
                         const vec3d &normal, bool turns)
{
    const vec3d foot = {(static_cast<double>(box_min.x) + box_max.x) / 2, box_min.y,
                        (static_cast<double>(box_min.z) + box_max.z) / 2};
    drag_change_t change;
    change.kind = drag_change_t::PLACE;
    if (turns)
        change.place = smallest_turn({0, 1, 0}, normal).about(foot);
    change.place.offset += to_vec3d(at) - foot;
    return change;
}

namespace {

void make(const drag_change_t &change)
{
    drag_transform_t transform;
    transform.step(change);
    transform.finish();
    redraw_all();
    display_status();
}

// About an axis through a pivot, as the words name them.
void make_about(const char *what, double number, int count, const char *const *words,
                affine_t (*of)(const vec3d &, double))
{
    if (selection().box_valid == 0) {
        display_message("%s - nothing selected", what);
        return;
    }
    const std::optional<vec3d> axis = axis_of_word(what, count > 0 ? words[0] : "z");
    const std::optional<vec3d> pivot = pivot_of_word(what, count > 1 ? words[1] : "selection");
    if (!axis || !pivot)
        return;
    drag_change_t change;
    change.kind = drag_change_t::PLACE;
    change.place = of(*axis, number).about(*pivot);
    change.keeps_frames = of == affine_stretch;
    change.label = what;
    make(change);
}

} // namespace

// ---- commands ----

void command_place_on_surface(int, const char *const *words)
{
    if (selection().box_valid == 0) {
        display_message("place - nothing selected");
        return;
    }
    const point3_t at = {finite_float_of(words[0]), finite_float_of(words[1]),
                         finite_float_of(words[2])};
    const vec3d normal = unit_of({double_of(words[3]), double_of(words[4]), double_of(words[5])});
    make(placing_on(selection().box_min, selection().box_max, at, normal, !(normal == vec3d{})));
}

void command_rotate_about_axis(int count, const char *const *words)
{
    make_about("rotate", double_of(words[0]), count - 1, words + 1, affine_turn);
}

void command_scale_along(int count, const char *const *words)
{
    make_about("scale", double_of(words[0]), count - 1, words + 1, affine_stretch);
}

void command_mirror_along(int count, const char *const *words)
{
    make_about("mirror", -1, count, words, affine_stretch);
}

void command_move_along(int count, const char *const *words)
{
    if (selection().box_valid == 0) {
        display_message("move - nothing selected");
        return;
    }
    const std::optional<vec3d> axis = axis_of_word("move", count > 1 ? words[1] : "z");
    if (!axis)
        return;
    drag_change_t change;
    change.kind = drag_change_t::MOVE;
    change.offset = to_point(*axis * double_of(words[0]));
    make(change);
}
