#include "view/fit.h"

#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/document/selection_internal.h"
#include "model/angle.h"
#include "model/bounds.h"
#include "model/vector.h"
#include "model/world.h"
#include "view/camera_eye.h"
#include "view/camera_internal.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr float no_fit = -1.0f;

// By how much a box of this size may grow until it fills the view; an axis of no extent does not
// count.
float fit_factor(const point3_t &size, int view)
{
    const float scale = vesk_get_view(view)->scale;
    const float h = axis_of(size, view_axes[view].horizontal) * scale;
    const float v = axis_of(size, view_axes[view].vertical) * scale;
    int geometry[4] = {};
    win_get_geom(view, geometry);
    const float fh = h != 0 ? static_cast<float>(geometry[2]) / h : 0;
    const float fv = v != 0 ? static_cast<float>(geometry[3]) / v : 0;
    if (fh == 0 && fv == 0)
        return no_fit;
    if (fh == 0 || fv == 0)
        return fh + fv;
    return std::min(fh, fv);
}

float smallest_fit(const float factors[3])
{
    float smallest = no_fit;
    for (int i = 0; i < 3; ++i)
        if (factors[i] != no_fit && (smallest == no_fit || factors[i] < smallest))
            smallest = factors[i];
    return smallest;
}

float smallest_fit_of(const point3_t &size)
{
    float factors[3];
    for (int i = 0; i < 3; ++i)
        factors[i] = fit_factor(size, orthographic_order[i]);
    return smallest_fit(factors);
}

void multiply_scales(float factor)
{
    for (const int view : orthographic_order)
        vesk_get_view(view)->scale *= factor * static_cast<float>(prefs.fit_view_factor);
}

float half_fov_tangent() { return std::tan(static_cast<float>(prefs.fov / 2) * (pi_f / 180.0f)); }

// So that the box, turned as it is, just fills the view from where the viewer stands.
void fit_spin_view(const point3_t &half)
{
    int geometry[4] = {};
    win_get_geom(VIEW_XYZ, geometry);
    const double aspect = geometry[3] > 0 ? static_cast<double>(geometry[2]) / geometry[3] : 1.0;
    const double up = half_fov_tangent();
    const double distance = point_length(get_person()->location);
    const eye_transform_t t = camera_eye_transform();
    double scale = 0;
    for (int corner = 0; corner < 8; ++corner) {
        const double c[3] = {(corner & 1) != 0 ? half.x : -half.x,
                             (corner & 2) != 0 ? half.y : -half.y,
                             (corner & 4) != 0 ? half.z : -half.z};
        double turned[3] = {};
        for (int row = 0; row < 3; ++row)
            for (int k = 0; k < 3; ++k)
                turned[row] += t.spin[row * 3 + k] * c[k];
        double eye[3] = {};
        for (int row = 0; row < 3; ++row)
            for (int k = 0; k < 3; ++k)
                eye[row] += t.axes[row * 3 + k] * turned[k];
        const double across = std::max(std::fabs(eye[1]) / up, std::fabs(eye[0]) / (up * aspect));
        scale = std::max(scale, (across + eye[2]) / distance);
    }
    if (scale > 0 && get_person()->scale > 0)
        camera_set_fit(prefs.fit_view_factor / (scale * get_person()->scale));
}

void frame_in_spin_view(const point3_t &centre, const point3_t &half)
{
    person_zero_offset();
    person_set_origin(&centre);
    fit_spin_view(half);
}

// The factor of the flat views for the present layout; false when none of the views is shown.
bool factor_of_layout(const point3_t &size, float *factor)
{
    const float front = fit_factor(size, VIEW_XY);
    const float top = fit_factor(size, VIEW_XZ);
    const float side = fit_factor(size, VIEW_ZY);
    debugf("fit_all scalefront %f top %f side %f\n", static_cast<double>(front),
           static_cast<double>(top), static_cast<double>(side));
    const char *layout = *views_viewsetting();
    const float factors[3] = {front, top, side};
    if (layout != nullptr && std::strcmp(layout, "all") == 0)
        *factor = smallest_fit(factors);
    else if (window_is_visible(VIEW_XY) != 0)
        *factor = front;
    else if (window_is_visible(VIEW_ZY) != 0)
        *factor = side;
    else if (window_is_visible(VIEW_XZ) != 0)
        *factor = top;
    else if (window_is_visible(VIEW_XYZ) == 0)
        return false;
    return true;
}

void centre_on(int view, const point3_t &point)
{
    VESKView &record = *vesk_get_view(view);
    for (int axis = 0; axis < 3; ++axis)
        record.pan[axis] = -axis_sign[axis] * axis_of(point, axis) * record.scale;
}

} // namespace

void goto_selected(int view)
{
    if (is_orthographic(view) && selection().box_valid != 0)
        centre_on(view, selection().box_centre);
}

void goto_selected_all(void)
{
    if (selection().box_valid == 0)
        return;
    for (const int view : orthographic_order)
        goto_selected(view);
    set_3d_view_selection();
    redraw_all();
}

void fit_selected(int view)
{
    if (view == VIEW_XYZ) {
        set_3d_view_selection();
        return;
    }
    if (!is_orthographic(view) || selection().box_valid == 0)
        return;
    const point3_t size = selection().box_size;
    const bool alone = prefs.independent_scaling != 0;
    const float factor = alone ? fit_factor(size, view) : smallest_fit_of(size);
    if (factor == no_fit)
        return;
    if (alone) {
        vesk_get_view(view)->scale *= factor * static_cast<float>(prefs.fit_view_factor);
        redraw(view);
    } else {
        multiply_scales(factor);
        redraw_orth();
    }
}

void fit_selected_all(void)
{
    if (selection().box_valid == 0)
        return;
    const float factor = smallest_fit_of(selection().box_size);
    if (factor != no_fit)
        multiply_scales(factor);
    goto_selected_all();
}

void fit_all(void)
{
    point3_t min;
    point3_t max;
    if (object_bounds(vesk_get_world(), &min, &max) <= 1)
        return;
    const point3_t size = point_sub(max, min);
    const point3_t centre = point_scale(point_add(min, max), 0.5f);
    float factor = no_fit;
    if (!factor_of_layout(size, &factor))
        return;
    if (factor != no_fit)
        multiply_scales(factor);
    goto_point(&centre);
    if (vesk_person_is_walk_vehicle() == 0)
        frame_in_spin_view(centre, point_scale(size, 0.5f));
    redraw_all();
}

// Deliberate: the viewer's distance takes the box's half height twice and not squared.
void set_3d_view_selection(void)
{
    if (selection().box_valid == 0)
        return;
    const point3_t centre = selection().box_centre;
    const point3_t half = point_scale(selection().box_size, 0.5f);
    if (vesk_person_is_walk_vehicle() == 0) {
        frame_in_spin_view(centre, half);
    } else {
        person_zero_offset();
        viewer_set_location(&centre);
        const float r = std::sqrt(half.x * half.x + 2 * half.y + half.z * half.z);
        const float tangent = half_fov_tangent();
        if (tangent != 0)
            viewer_move_back(r / tangent);
    }
    redraw_3d();
}
