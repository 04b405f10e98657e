// Deliberate throughout: the matrix is indexed row * 4 + column and its columns are the viewer's
// side, up and direction. Element 6 belongs to two of them and element 9 is never set by
// person_set_direction; the drawing therefore takes the side and the direction only.
#include "base/command_result.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "model/vector.h"
#include "view/camera_internal.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace {

constexpr float radians_per_degree = 0.017453293f;

Person_t initial_person()
{
    Person_t person = {};
    person.scale = 1.0f;
    person.move_step = 0.2f;
    person.turn_step = 5.0f;
    person_init_matrix(&person);
    return person;
}

struct saved_camera_t {
    Person_t person;
    double fit;
    bool valid;
};

struct camera_t {
    Person_t person = initial_person();
    saved_camera_t saved_spin = {}, saved_walk = {};
    double fit = 1.0;
    bool perspective = true;
    point3_t depth = {0, 0, 0};
    int walk_indicator = 0;
};

camera_t &camera()
{
    static camera_t state;
    return state;
}

point3_t normalised(const point3_t &v)
{
    const double length = point_length(v);
    if (!(length > 0))
        return v;
    return {static_cast<float>(v.x / length), static_cast<float>(v.y / length),
            static_cast<float>(v.z / length)};
}

point3_t cross(const point3_t &a, const point3_t &b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

void set_identity(float matrix[16])
{
    for (int i = 0; i < 16; ++i)
        matrix[i] = i % 5 == 0 ? 1.0f : 0.0f;
}

void multiply(float out[16], const float a[16], const float b[16])
{
    float result[16];
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column) {
            float sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += a[row * 4 + k] * b[k * 4 + column];
            result[row * 4 + column] = sum;
        }
    std::memcpy(out, result, sizeof result);
}

// Column-vector rotation about x (0) or y (1).
void rotation(float out[16], int axis, float degrees)
{
    const float angle = degrees * radians_per_degree;
    const float c = std::cos(angle);
    const float s = std::sin(angle);
    set_identity(out);
    if (axis == 0) {
        out[5] = out[10] = c;
        out[6] = -s;
        out[9] = s;
    } else {
        out[0] = out[10] = c;
        out[2] = s;
        out[8] = -s;
    }
}

void turn(Person_t *person, int axis, float degrees)
{
    float r[16];
    rotation(r, axis, degrees);
    if (axis == 1)
        multiply(person->matrix, person->matrix, r);
    else
        multiply(person->matrix, r, person->matrix);
    person_set_direction_from_matrix(person);
}

void move(Person_t *person, const point3_t &along, float distance)
{
    person->location.x += along.x * distance;
    person->location.y += along.y * distance;
    person->location.z += along.z * distance;
}

void switch_mode(int walk, saved_camera_t &leaving, const saved_camera_t &entering)
{
    camera_t &state = camera();
    if (state.person.walk != walk) {
        leaving = {state.person, state.fit, true};
        if (entering.valid) {
            state.person = entering.person;
            state.fit = entering.fit;
        } else {
            state.person.walk = walk;
            person_reset();
        }
        state.walk_indicator = walk;
        ui_port().update_linked("person_walk_vehicle");
    }
    display_message("%s", walk != 0 ? "walk mode" : "spin mode");
    redraw_3d();
}

} // namespace

Person_t *get_person(void) { return &camera().person; }

int vesk_person_is_walk_vehicle(void) { return camera().person.walk; }

void person_set_walk(void) { switch_mode(1, camera().saved_spin, camera().saved_walk); }

void person_set_spin(void) { switch_mode(0, camera().saved_walk, camera().saved_spin); }

// ---- spin, zoom, origin, offset, location ----

void vesk_person_set_rotation(const point3_t *degrees) { camera().person.rotation = *degrees; }

void vesk_person_add_rotation(const point3_t *degrees)
{
    point3_t &rotation = camera().person.rotation;
    rotation = {rotation.x + degrees->x, rotation.y + degrees->y, rotation.z + degrees->z};
}

void person_set_spin_rotation(float x, float y)
{
    camera().person.rotation.x = x;
    camera().person.rotation.y = y;
}

void person_add_spin_rotation(float x, float y)
{
    camera().person.rotation.x += x;
    camera().person.rotation.y += y;
}

void person_get_spin_rotation(float *out_x, float *out_y)
{
    *out_x = camera().person.rotation.x;
    *out_y = camera().person.rotation.y;
}

void vesk_person_scale_mult(float factor) { camera().person.scale *= factor; }

void vesk_person_scale_div(float factor) { camera().person.scale /= factor; }

void person_set_origin(const point3_t *point) { camera().person.origin = *point; }

void person_zero_origin(void) { camera().person.origin = {0, 0, 0}; }

void person_set_offset(const point3_t *point) { camera().person.offset = *point; }

void person_zero_offset(void) { camera().person.offset = {0, 0, 0}; }

void person_set_location(Person_t *person, float x, float y, float z)
{
    person->location = {x, y, z};
}

void viewer_set_location(const point3_t *point) { camera().person.location = *point; }

void set_3d_view_origin(void)
{
    person_zero_origin();
    person_zero_offset();
    redraw_3d();
}

void set_3d_view_cursor(void)
{
    person_set_origin(vesk_get_depth_point());
    person_zero_offset();
    redraw_3d();
}

// ---- direction ----

void person_init_matrix(Person_t *person) { set_identity(person->matrix); }

void person_set_direction(Person_t *person, const point3_t *direction)
{
    const point3_t d = normalised(*direction);
    const point3_t side = normalised(cross(d, {0, 1, 0})); // zero when looking straight up or down
    const point3_t up = cross(side, d);
    float *m = person->matrix;
    set_identity(m);
    m[0] = side.x;
    m[4] = side.y;
    m[8] = side.z;
    m[1] = up.x;
    m[5] = up.y;
    m[6] = up.z;
    m[2] = d.x;
    m[6] = d.y;
    m[10] = d.z;
    person_set_direction_from_matrix(person);
}

void person_set_direction_from_matrix(Person_t *person)
{
    person->direction = {person->matrix[2], person->matrix[6], person->matrix[10]};
}

void person_copy_matrix(Person_t *to, const Person_t *from)
{
    std::memmove(to->matrix, from->matrix, sizeof to->matrix);
}

void person_level(Person_t *person)
{
    float *m = person->matrix;
    m[1] = m[4] = m[6] = m[9] = 0;
    m[5] = 1.0f;
    for (int row = 0; row < 3; ++row) {
        const point3_t v = normalised({m[row * 4], m[row * 4 + 1], m[row * 4 + 2]});
        m[row * 4] = v.x;
        m[row * 4 + 1] = v.y;
        m[row * 4 + 2] = v.z;
    }
    person_set_direction_from_matrix(person);
}

void viewer_level(void)
{
    person_level(get_person());
    redraw_3d();
}

// ---- turns and moves ----

void person_turn_left(Person_t *person, float degrees) { turn(person, 1, -degrees); }

void person_turn_right(Person_t *person, float degrees) { turn(person, 1, degrees); }

void person_turn_up(Person_t *person, float degrees) { turn(person, 0, degrees); }

void person_turn_down(Person_t *person, float degrees) { turn(person, 0, -degrees); }

void person_move_forward(Person_t *person, float distance)
{
    move(person, person->direction, distance);
}

void person_move_back(Person_t *person, float distance)
{
    move(person, person->direction, -distance);
}

// Deliberate: the sideways vector is not normalised, so looking up or down shortens the step.
void person_move_left(Person_t *person, float distance)
{
    move(person, {person->direction.z, 0, -person->direction.x}, distance);
}

void person_move_right(Person_t *person, float distance)
{
    move(person, {person->direction.z, 0, -person->direction.x}, -distance);
}

void person_move_up(Person_t *person, float distance) { person->location.y += distance; }

void person_move_down(Person_t *person, float distance) { person->location.y -= distance; }

void viewer_turn_left(float degrees) { person_turn_left(get_person(), degrees); }

void viewer_turn_right(float degrees) { person_turn_right(get_person(), degrees); }

void viewer_turn_up(float degrees) { person_turn_up(get_person(), degrees); }

void viewer_turn_down(float degrees) { person_turn_down(get_person(), degrees); }

void viewer_move_forward(float distance) { person_move_forward(get_person(), distance); }

void viewer_move_back(float distance) { person_move_back(get_person(), distance); }

void viewer_move_left(float distance) { person_move_left(get_person(), distance); }

void viewer_move_right(float distance) { person_move_right(get_person(), distance); }

void viewer_move_up(float distance) { person_move_up(get_person(), distance); }

void viewer_move_down(float distance) { person_move_down(get_person(), distance); }

// ---- reset, text, flight ----

void person_reset(void)
{
    Person_t &person = camera().person;
    person.scale = 1.0f;
    person.rotation = person.spare = {0, 0, 0};
    person.offset = person.origin = {0, 0, 0};
    person_init_matrix(&person);
    person.location = {static_cast<float>(prefs.init3d_x), static_cast<float>(prefs.init3d_y),
                       static_cast<float>(prefs.init3d_z)};
    camera().fit = 1.0;
    const point3_t forward = {0, 0, -1};
    person_set_direction(&person, &forward);
}

const char *person_get_loc_dir_string(void)
{
    static char text[6 * 64];
    const Person_t &p = camera().person;
    std::snprintf(text, sizeof text, "%f %f %f  %f %f %f", static_cast<double>(p.location.x),
                  static_cast<double>(p.location.y), static_cast<double>(p.location.z),
                  static_cast<double>(p.direction.x), static_cast<double>(p.direction.y),
                  static_cast<double>(p.direction.z));
    return text;
}

void person_set_loc_dir_string(const char *text)
{
    point3_t location;
    point3_t direction;
    if (std::sscanf(text, "%f %f %f  %f %f %f", &location.x, &location.y, &location.z, &direction.x,
                    &direction.y, &direction.z) != 6 ||
        !point_is_finite(location) || !point_is_finite(direction)) {
        debugf("invalid loc_dir string in person_set_loc_dir_string (got '%s', want 6 floats)\n",
               text);
        return;
    }
    viewer_set_location(&location);
    person_set_direction(get_person(), &direction);
    redraw_3d();
}

namespace {

constexpr int most_flight_steps = 100000; // an hour at 30 pictures a second

struct flight_t {
    point3_t increment;
    point3_t from, to; // directions
    int steps;
    int counter;
};

void log_direction(const char *what, const point3_t &d, const char *end)
{
    debugf("%s %f %f %f%s", what, static_cast<double>(d.x), static_cast<double>(d.y),
           static_cast<double>(d.z), end);
}

void flight_step(flight_t &flight)
{
    Person_t *person = get_person();
    redraw_view(VIEW_XYZ);
    if (flight.counter > 0)
        move(person, flight.increment, 1.0f);
    if (flight.counter <= flight.steps) {
        flight.to = normalised(flight.to);
        flight.from = normalised(flight.from);
        log_direction("dest DIR", flight.to, "\n");
        log_direction("START DIR", flight.from, "\n");
        const float fraction =
            static_cast<float>(flight.counter) / static_cast<float>(flight.steps);
        debugf("div %fzn", static_cast<double>(fraction));
        const point3_t direction = normalised({
            flight.from.x + (flight.to.x - flight.from.x) * fraction,
            flight.from.y + (flight.to.y - flight.from.y) * fraction,
            flight.from.z + (flight.to.z - flight.from.z) * fraction,
        });
        log_direction("NEW DIR", direction, "\n\n");
        person_set_direction(person, &direction);
    }
    ++flight.counter;
}

} // namespace

// Deliberate: the location advances `steps` times by 1 / (steps + 1) of the way and stops one
// increment short, while the direction arrives exactly.
void person_flyto(int steps, float x, float y, float z, float dx, float dy, float dz)
{
    if (steps < 1)
        return;
    steps = std::min(steps, most_flight_steps);
    const Person_t &person = *get_person();
    const float n = static_cast<float>(steps) + 1.0f;
    flight_t flight = {};
    flight.increment = {(x - person.location.x) / n, (y - person.location.y) / n,
                        (z - person.location.z) / n};
    flight.from = person.direction;
    flight.to = {dx, dy, dz};
    flight.steps = steps;
    const float dot = flight.from.x * dx + flight.from.y * dy + flight.from.z * dz;
    if (std::isnan(std::acos(dot)))
        return;
    progress_t progress(steps);
    while (flight.counter <= steps && progress.look(flight.counter))
        flight_step(flight);
    redraw_3d();
}

void person_print_info(void)
{
    const Person_t &p = camera().person;
    debugf("PERSON INFO:\n");
    log_direction("origin", p.origin, "\n");
    log_direction("location", p.location, "\n");
    log_direction("dir", p.direction, "\n");
    log_direction("rot", p.rotation, "\n");
    log_direction("offset", p.offset, "\n");
    debugf("scale %f\nwalk %d\nmove step %f\nturn step %f\n", static_cast<double>(p.scale), p.walk,
           static_cast<double>(p.move_step), static_cast<double>(p.turn_step));
    for (int row = 0; row < 4; ++row)
        debugf("%f %f %f %f\n", static_cast<double>(p.matrix[row * 4]),
               static_cast<double>(p.matrix[row * 4 + 1]),
               static_cast<double>(p.matrix[row * 4 + 2]),
               static_cast<double>(p.matrix[row * 4 + 3]));
}

void do_perspective(int perspective)
{
    camera().perspective = perspective != 0;
    redraw_3d();
}

void command_person_get_loc_dir(void) { command_result_set(person_get_loc_dir_string()); }

// ---- depth point ----

point3_t *vesk_get_depth_point(void) { return &camera().depth; }

void set_av_depth(const point3_t *min, const point3_t *max, point3_t *depth, int view)
{
    if (!is_orthographic(view))
        return;
    const view_axes_t &axes = view_axes[view];
    const float step = (std::fabs(axis_of(*max, axes.horizontal) - axis_of(*min, axes.horizontal)) +
                        std::fabs(axis_of(*max, axes.vertical) - axis_of(*min, axes.vertical))) /
                       2.0f;
    float &component = axis_of(*depth, axes.depth);
    component += component < 0 ? -step : step;
}

void set_av_depth_box(const point3_t *min, const point3_t *max, int view)
{
    set_av_depth(min, max, &camera().depth, view);
}

void command_get_3d_cursor(void)
{
    command_result_appendf("%g %g %g", static_cast<double>(camera().depth.x),
                           static_cast<double>(camera().depth.y),
                           static_cast<double>(camera().depth.z));
}

// ---- for the drawing ----

int *camera_walk_indicator() { return &camera().walk_indicator; }

bool camera_is_perspective() { return camera().perspective; }

void camera_set_fit(double factor)
{
    if (std::isfinite(factor) && factor > 0)
        camera().fit = factor;
}

double camera_fit() { return camera().fit; }

void camera_reset_for_test()
{
    camera() = camera_t{};
    person_reset();
}
