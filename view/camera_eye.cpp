// How the viewer's record becomes the transform of the 3D view: eye = axes * (scale * spin * (p -
// origin) + offset - location). Spin turns about y first and then about x, so that the model's own
// up axis stays upright on the screen.
#include "view/camera_eye.h"

#include "base/prefs.h"
#include "base/redraw.h"
#include "model/angle.h"
#include "view/camera_internal.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>

namespace {

using vector_t = double[3];

double dot(const double *a, const double *b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

void cross(const double *a, const double *b, double *out)
{
    out[0] = a[1] * b[2] - a[2] * b[1];
    out[1] = a[2] * b[0] - a[0] * b[2];
    out[2] = a[0] * b[1] - a[1] * b[0];
}

bool normalise(double *v)
{
    const double length = std::sqrt(dot(v, v));
    if (!(length > 1e-9) || !std::isfinite(length))
        return false;
    for (int i = 0; i < 3; ++i)
        v[i] /= length;
    return true;
}

// `side` made square to `forward` and of length 1; false when the two are parallel.
bool make_square(double *side, const double *forward)
{
    const double along = dot(side, forward);
    for (int i = 0; i < 3; ++i)
        side[i] -= along * forward[i];
    return normalise(side);
}

// Rows: side, up, backwards.
void viewer_axes(const Person_t &person, double out[9])
{
    double forward[3] = {person.direction.x, person.direction.y, person.direction.z};
    if (!normalise(forward)) {
        forward[0] = forward[1] = 0;
        forward[2] = -1;
    }
    const vector_t candidates[3] = {
        {person.matrix[0], person.matrix[4], person.matrix[8]},
        {-forward[2], 0, forward[0]}, // level
        {1, 0, 0},
    };
    double side[3] = {};
    for (const vector_t &candidate : candidates) {
        std::copy(candidate, candidate + 3, side);
        if (make_square(side, forward))
            break;
    }
    cross(side, forward, out + 3);
    for (int i = 0; i < 3; ++i) {
        out[i] = side[i];
        out[6 + i] = -forward[i];
    }
}

void multiply(const double a[9], const double b[9], double out[9])
{
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            out[row * 3 + column] = a[row * 3] * b[column] + a[row * 3 + 1] * b[3 + column] +
                                    a[row * 3 + 2] * b[6 + column];
}

void apply(const double m[9], const double *v, double *out)
{
    for (int row = 0; row < 3; ++row)
        out[row] = dot(m + row * 3, v);
}

void spin_matrix(const point3_t &degrees, double out[9])
{
    const double x = degrees.x * pi / 180, y = degrees.y * pi / 180, z = degrees.z * pi / 180;
    const double about_x[9] = {1, 0, 0, 0, std::cos(x), -std::sin(x), 0, std::sin(x), std::cos(x)};
    const double about_y[9] = {std::cos(y), 0, std::sin(y), 0, 1, 0, -std::sin(y), 0, std::cos(y)};
    const double about_z[9] = {std::cos(z), -std::sin(z), 0, std::sin(z), std::cos(z), 0, 0, 0, 1};
    double xy[9];
    multiply(about_x, about_y, xy);
    multiply(xy, about_z, out);
}

void world_to_eye(const eye_transform_t &t, const point3_t &p, double out[3])
{
    const double moved[3] = {p.x - static_cast<double>(t.origin.x),
                             p.y - static_cast<double>(t.origin.y),
                             p.z - static_cast<double>(t.origin.z)};
    double turned[3];
    apply(t.spin, moved, turned);
    const double shifted[3] = {turned[0] * t.scale + t.shift.x, turned[1] * t.scale + t.shift.y,
                               turned[2] * t.scale + t.shift.z};
    apply(t.axes, shifted, out);
}

double half_fov_tangent() { return std::tan(std::clamp(prefs.fov, 1, 170) * pi / 360.0); }

// Of the point that the view is centred on, for the parallel projection and for dragging.
double working_distance(const eye_transform_t &t)
{
    double eye[3];
    world_to_eye(t, t.origin, eye);
    const double distance = std::fabs(eye[2]);
    return distance > 1e-6 ? distance : 5.0;
}

} // namespace

eye_transform_t camera_eye_transform()
{
    const Person_t &person = *get_person();
    eye_transform_t t = {};
    viewer_axes(person, t.axes);
    spin_matrix(person.rotation, t.spin);
    t.scale = person.scale * (person.walk != 0 ? 1.0 : camera_fit());
    t.origin = person.origin;
    t.shift = {person.offset.x - person.location.x, person.offset.y - person.location.y,
               person.offset.z - person.location.z};
    return t;
}

void camera_modelview(double out[16])
{
    const eye_transform_t t = camera_eye_transform();
    double linear[9];
    multiply(t.axes, t.spin, linear);
    double at_zero[3];
    world_to_eye(t, {0, 0, 0}, at_zero);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column)
            out[column * 4 + row] = linear[row * 3 + column] * t.scale;
        out[12 + row] = at_zero[row];
        out[row * 4 + 3] = 0;
    }
    out[15] = 1;
}

projection_t camera_projection(const point3_t &min, const point3_t &max)
{
    const eye_transform_t t = camera_eye_transform();
    double nearest = 1e30;
    double farthest = -1e30;
    for (int corner = 0; corner < 8; ++corner) {
        double eye[3];
        world_to_eye(
            t, {corner & 1 ? max.x : min.x, corner & 2 ? max.y : min.y, corner & 4 ? max.z : min.z},
            eye);
        nearest = std::min(nearest, -eye[2]);
        farthest = std::max(farthest, -eye[2]);
    }
    if (!std::isfinite(nearest) || !std::isfinite(farthest) || farthest < nearest) {
        nearest = 0;
        farthest = 100;
    }
    projection_t out = {};
    out.perspective = camera_is_perspective();
    const double depth = std::max(farthest - nearest, 1e-3);
    if (out.perspective) {
        out.half_height = half_fov_tangent();
        out.far_plane = std::max(farthest + depth * 0.01, 1e-2);
        // A nearer plane costs precision: it never comes closer than a 2000th of the far one.
        out.near_plane = std::max(nearest - depth * 0.01, out.far_plane / 2000.0);
    } else {
        out.half_height = half_fov_tangent() * working_distance(t);
        out.near_plane = nearest - depth * 0.01;
        out.far_plane = farthest + depth * 0.01;
    }
    return out;
}

bool camera_project(const point3_t &point, double *out_x, double *out_y)
{
    const eye_transform_t t = camera_eye_transform();
    double eye[3];
    world_to_eye(t, point, eye);
    int geometry[4] = {};
    win_get_geom(VIEW_XYZ, geometry);
    double half = half_fov_tangent();
    if (camera_is_perspective()) {
        if (eye[2] > -1e-9)
            return false;
        half *= -eye[2];
    } else {
        half *= working_distance(t);
    }
    const double pixels = geometry[3] / 2.0 / half;
    *out_x = geometry[2] / 2.0 + eye[0] * pixels;
    *out_y = geometry[3] / 2.0 - eye[1] * pixels;
    return true;
}

double camera_units_per_pixel()
{
    int geometry[4] = {};
    win_get_geom(VIEW_XYZ, geometry);
    const double half = half_fov_tangent() * working_distance(camera_eye_transform());
    return 2.0 * half / std::max(geometry[3], 1);
}

void camera_look_along(int axis, bool from_positive)
{
    // Spin angles that bring the axis' end toward the viewer.
    const float turn_y[3] = {-90.0f, 0.0f, 0.0f};
    const float turn_x[3] = {0.0f, 90.0f, 0.0f};
    Person_t &person = *get_person();
    if (person.walk != 0) {
        point3_t direction = {0, 0, 0};
        axis_of(direction, axis) = from_positive ? -1.0f : 1.0f;
        person_set_direction(&person, &direction);
    } else {
        float x = turn_x[axis];
        float y = turn_y[axis];
        if (!from_positive) {
            x = -x;
            y = axis == 2 ? 180.0f : -y;
        }
        person.rotation = {x, y, 0};
    }
    redraw_3d();
}

void camera_look_from_corner()
{
    constexpr float from_above = 25, from_right = -35; // degrees
    person_reset();
    if (get_person()->walk == 0)
        person_set_spin_rotation(from_above, from_right);
    redraw_3d();
}
