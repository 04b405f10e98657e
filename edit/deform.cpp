#include "edit/deform.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "edit/axis_pivot.h"
#include "edit/document/edit_support.h"
#include "edit/drag_transform.h"
#include "edit/mesh/affine.h"
#include "edit/mesh/polygon_plane.h"
#include "model/angle.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace {

// What a deformer works in: an axis through a pivot, and the reach of the selection's box along it,
// measured from the pivot.
struct frame_t {
    vec3d axis, pivot;
    double low, high;
    [[nodiscard]] double length() const { return high - low; }
    // A point's place along the axis.
    [[nodiscard]] double along(const vec3d &p) const { return dot(p - pivot, axis); }
};

void reach_along(const vec3d &axis, const vec3d &pivot, double &low, double &high)
{
    const selection_t &all = selection();
    for (int i = 0; i < 8; ++i) {
        const vec3d corner = to_vec3d({(i & 1) != 0 ? all.box_max.x : all.box_min.x,
                                       (i & 2) != 0 ? all.box_max.y : all.box_min.y,
                                       (i & 4) != 0 ? all.box_max.z : all.box_min.z});
        const double at = dot(corner - pivot, axis);
        low = i == 0 ? at : std::min(low, at);
        high = i == 0 ? at : std::max(high, at);
    }
}

std::optional<frame_t> frame_of(const char *what, const char *axis, const char *pivot)
{
    if (selection().box_valid == 0) {
        display_message("%s - nothing selected", what);
        return {};
    }
    const std::optional<vec3d> direction = axis_of_word(what, axis);
    const std::optional<vec3d> point = pivot_of_word(what, pivot);
    if (!direction || !point)
        return {};
    frame_t frame = {*direction, *point, 0, 0};
    reach_along(frame.axis, frame.pivot, frame.low, frame.high);
    return frame;
}

// Of the axes across, the one along which the selection is longest.
vec3d longest_across(const frame_t &frame)
{
    vec3d longest;
    double most = -1;
    for (const vec3d &axis : {vec3d{1, 0, 0}, vec3d{0, 1, 0}, vec3d{0, 0, 1}}) {
        const vec3d across = axis - frame.axis * dot(axis, frame.axis);
        if (dot(across, across) < 0.25)
            continue;
        double low = 0, high = 0;
        reach_along(unit_of(across), frame.pivot, low, high);
        if (high - low > most) {
            most = high - low;
            longest = unit_of(across);
        }
    }
    return longest;
}

deform_t bend(const frame_t &frame, double degrees)
{
    const vec3d along = longest_across(frame), towards = cross(frame.axis, along);
    double low = 0, high = 0;
    reach_along(along, frame.pivot, low, high);
    const double curvature = high > low ? degrees / degrees_per_radian / (high - low) : 0;
    return [=](const vec3d &p, const vec3d &) {
        if (curvature == 0)
            return p;
        const vec3d from = p - frame.pivot;
        const double angle = dot(from, along) * curvature;
        const double radius = 1 / curvature - dot(from, towards);
        return frame.pivot + along * (radius * std::sin(angle)) +
               towards * (1 / curvature - radius * std::cos(angle)) +
               frame.axis * dot(from, frame.axis);
    };
}

deform_t taper(const frame_t &frame, double factor)
{
    return [=](const vec3d &p, const vec3d &) {
        const double along = frame.along(p);
        const double share = frame.length() > 0 ? (along - frame.low) / frame.length() : 0;
        const vec3d on_axis = frame.pivot + frame.axis * along;
        return on_axis + (p - on_axis) * (1 + (factor - 1) * share);
    };
}

deform_t twist(const frame_t &frame, double degrees)
{
    return [=](const vec3d &p, const vec3d &) {
        const double share = frame.length() > 0 ? frame.along(p) / frame.length() : 0;
        return frame.pivot + affine_turn(frame.axis, degrees * share).turn(p - frame.pivot);
    };
}

deform_t inflate(drag_transform_t &transform, const vec3d &pivot, double share)
{
    double sum = 0;
    for (const vertex *v : transform.moving())
        sum += length(to_vec3d(v->position) - pivot);
    const double radius =
        sum / static_cast<double>(std::max<std::size_t>(transform.moving().size(), 1));
    return [=](const vec3d &p, const vec3d &) {
        return p + (pivot + unit_of(p - pivot) * radius - p) * share;
    };
}

// A number from -1 to 1 that goes with the place, so that vertices at one place stay together.
double chance(const vec3d &p, std::uint64_t seed)
{
    std::uint64_t state = seed * 0x9E3779B97F4A7C15ULL;
    for (const double coordinate : {p.x, p.y, p.z}) {
        state ^= std::bit_cast<std::uint64_t>(coordinate + 0.0);
        state = (state ^ (state >> 30)) * 0xBF58476D1CE4E5B9ULL;
        state = (state ^ (state >> 27)) * 0x94D049BB133111EBULL;
        state ^= state >> 31;
    }
    return static_cast<double>(state >> 11) * 0x1p-52 - 1;
}

void apply(const char *what, drag_transform_t &transform, const deform_t &deformer)
{
    transform.deform(deformer);
    transform.finish_as(what);
    redraw_all();
    display_status();
    display_message("%s - %d vertices", what, static_cast<int>(transform.moving().size()));
}

// The deformers that go by an axis: amount, axis, pivot.
void apply_along(const char *what, int count, const char *const *words,
                 deform_t (*make)(const frame_t &, double))
{
    const std::optional<frame_t> frame =
        frame_of(what, count > 1 ? words[1] : "z", count > 2 ? words[2] : "selection");
    if (!frame)
        return;
    drag_transform_t transform;
    apply(what, transform, make(*frame, double_of(words[0])));
}

} // namespace

// ---- commands ----

void command_bend(int count, const char *const *words) { apply_along("bend", count, words, bend); }

void command_taper(int count, const char *const *words)
{
    apply_along("taper", count, words, taper);
}

void command_twist(int count, const char *const *words)
{
    apply_along("twist", count, words, twist);
}

void command_inflate(int count, const char *const *words)
{
    const std::optional<frame_t> frame =
        frame_of("inflate", "z", count > 1 ? words[1] : "selection");
    if (!frame)
        return;
    drag_transform_t transform;
    apply("inflate", transform, inflate(transform, frame->pivot, double_of(words[0])));
}

void command_noise(int count, const char *const *words)
{
    if (!frame_of("noise", "z", "selection"))
        return;
    const double amount = double_of(words[0]);
    const auto seed = static_cast<std::uint64_t>(count > 1 ? int_of(words[1]) : 1) * 3;
    drag_transform_t transform;
    apply("noise", transform, [=](const vec3d &p, const vec3d &) {
        return p + vec3d{chance(p, seed), chance(p, seed + 1), chance(p, seed + 2)} * amount;
    });
}

void command_push_normals(int, const char *const *words)
{
    if (!frame_of("push normals", "z", "selection"))
        return;
    const double distance = double_of(words[0]);
    drag_transform_t transform;
    apply("push normals", transform,
          [=](const vec3d &p, const vec3d &normal) { return p + unit_of(normal) * distance; });
}
