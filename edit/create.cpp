#include "edit/create.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "edit/document/journal.h"
#include "edit/document/selection.h"
#include "edit/document/undo.h"
#include "edit/primitives.h"
#include "edit/primitives_flat.h"
#include "edit/transform.h"
#include "model/bounds.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/lights.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>

namespace {

object_t *moved_to_middle(object_t *object, const point3_t &c1, const point3_t &c2)
{
    const point3_t middle = {(c1.x + c2.x) / 2, (c1.y + c2.y) / 2, (c1.z + c2.z) / 2};
    translate_object(object, &middle);
    return object;
}

object_t *make_ellipse(int plane, const point3_t &c1, const point3_t &c2)
{
    return moved_to_middle(
        point_equal(c1, c2) ? create_regular_elipse(plane) : add_circle(plane, &c1, &c2), c1, c2);
}

object_t *make_disk(int plane, const point3_t &c1, const point3_t &c2)
{
    return moved_to_middle(
        point_equal(c1, c2) ? create_regular_disk(plane) : add_disk(plane, &c1, &c2), c1, c2);
}

object_t *make_rect(int plane, const point3_t &c1, const point3_t &c2)
{
    return add_rect(plane, &c1, &c2);
}

object_t *make_grid(int plane, const point3_t &c1, const point3_t &c2)
{
    return add_grid(plane, &c1, &c2);
}

object_t *make_mesh(int plane, const point3_t &c1, const point3_t &c2)
{
    return add_mesh(plane, &c1, &c2);
}

// The constructors leave some of their objects without a name.
object_t *named(object_t *object, const char *name)
{
    object_set_name(object, name);
    return object;
}

object_t *make_box(int plane, const point3_t &c1, const point3_t &c2)
{
    return point_equal(c1, c2) ? named(create_regular_cube(&c1), "cube")
                               : add_cube(plane, &c1, &c2);
}

object_t *make_sphere(int plane, const point3_t &c1, const point3_t &c2)
{
    return point_equal(c1, c2) ? create_regular_sphere(&c1) : add_sphere(plane, &c1, &c2);
}

object_t *make_cylinder(int plane, const point3_t &c1, const point3_t &c2)
{
    object_t *object = new_cylinder(plane);
    if (!point_equal(c1, c2)) {
        object_scale(object, std::fabs(c2.x - c1.x), std::fabs(c2.y - c1.y),
                     std::fabs(c2.z - c1.z));
        object_calc_normals_force(object);
    }
    return moved_to_middle(object, c1, c2);
}

object_t *make_cone(int plane, const point3_t &c1, const point3_t &c2)
{
    if (point_equal(c1, c2)) {
        constexpr int segments = 12;
        return moved_to_middle(new_cone(plane, 0.5f, 0.5f, 1.0f, segments), c1, c2);
    }
    return moved_to_middle(create_cone(plane, &c1, &c2), c1, c2);
}

object_t *make_ico(int, const point3_t &c1, const point3_t &c2)
{
    constexpr float width = 2 * 0.8506508f; // of the regular one, along each axis
    object_t *object = named(create_ico(), "icosahedron");
    if (!point_equal(c1, c2)) {
        object_scale(object, std::fabs(c2.x - c1.x) / width, std::fabs(c2.y - c1.y) / width,
                     std::fabs(c2.z - c1.z) / width);
        object_calc_normals_force(object);
    }
    return moved_to_middle(object, c1, c2);
}

const create_kind_t kinds[] = {
    {"circle", "add elipse", false, make_ellipse}, // Deliberate: spelt so
    {"disk", "add disk", false, make_disk},
    {"rect", "add rect", false, make_rect},
    {"grid", "add grid", false, make_grid},
    {"mesh", "add mesh", false, make_mesh},
    {"box", "add cube", true, make_box},
    {"cylinder", "add cylinder", true, make_cylinder},
    {"sphere", "add sphere", true, make_sphere},
    {"cone", "add cone", true, make_cone},
    {"ico", "add icosahedron", true, make_ico},
};

// "cube", then "cube 2" and so on after the largest number that there is. The new object is in no
// tree yet.
void number_name(object_t *object)
{
    const std::string name = object->name;
    bool taken = false;
    int largest = 1;
    for_each_object(vesk_get_world(), [&](const object_t *other) {
        const std::string_view text = other->name;
        if (!text.starts_with(name))
            return;
        const std::string_view rest = text.substr(name.size());
        taken = taken || rest.empty();
        if (rest.size() > 1 && rest.front() == ' ')
            largest = std::max(largest, int_of(rest.data() + 1));
    });
    if (taken && !name.empty())
        object_set_name(object, (name + " " + std::to_string(largest + 1)).c_str());
}

// The sphere's record is a plug-in's kind: it takes the object out as such, by its identity.
void take_out(void *identity)
{
    object_t *object = object_by_identity(static_cast<int>(reinterpret_cast<intptr_t>(identity)));
    if (object != nullptr) {
        object_delete(object);
    }
}

void open_undo(object_t *object, const char *label, bool as_operation)
{
    if (!as_operation) {
        new_undo(UNDO_OBJECT, label);
        set_undo_object(object);
        return;
    }
    const auto identity = static_cast<intptr_t>(object_identity(object));
    const vesk_undoable_t operation = {[](void *, int) {}, [](void *) {}, take_out,
                                       reinterpret_cast<void *>(identity)}; // NOLINT
    add_undoable(label, &operation);
}

} // namespace

const outline_kind_t *outline_kind(const char *name)
{
    static const outline_kind_t outlines[] = {
        {"polygon", "add polygon", SURFACE_POLYGON, 3, 1000000},
        {"polyline", "add polyline", SURFACE_LINE, 2, 1000000},
        {"line", "add line", SURFACE_LINE, 2, 2},
    };
    for (const outline_kind_t &kind : outlines) {
        if (std::strcmp(kind.name, name) == 0) {
            return &kind;
        }
    }
    return nullptr;
}

object_t *new_outline(const outline_kind_t &kind, const std::vector<point3_t> &points)
{
    if (points.size() < kind.fewest || points.size() > kind.most) {
        const bool few = points.size() < kind.fewest;
        display_message("%s - %s %d points", kind.name, few ? "needs at least" : "takes at most",
                        static_cast<int>(few ? kind.fewest : kind.most));
        return nullptr;
    }
    object_t *object = new_object(OBJECT_POLY);
    object_set_name(object, kind.name);
    surface_t *surface = new_surface();
    surface_set_type(surface, kind.type);
    for (const point3_t &p : points) {
        surface_add_vertex(surface, object_add_new_vertex(object, p.x, p.y, p.z), 0, 0);
    }
    object_add_surface(object, surface);
    object_calc_normals_force(object);
    object_calculate_centre(object);
    return object;
}

void add_light_at(const point3_t &at)
{
    object_t *light = new_light();
    vesk_object_set_centre(light, at.x, at.y, at.z);
    link_created(light, "add light");
    register_light(light);
}

const create_kind_t *create_kind(const char *name)
{
    for (const create_kind_t &kind : kinds) {
        if (std::strcmp(kind.name, name) == 0) {
            return &kind;
        }
    }
    return nullptr;
}

void link_created(object_t *object, const char *label, bool as_operation)
{
    if (object == nullptr) {
        return;
    }
    number_name(object);
    object_add_child(vesk_get_world(), object);
    open_undo(object, label, as_operation);
    clear_selection();
    select_object(object);
    redraw_all();
    display_status();
}

// ---- commands ----

void command_create_outline(const char *name, const char *coordinates)
{
    const outline_kind_t *kind = outline_kind(name);
    if (kind == nullptr) {
        display_message("create outline - no kind named '%s'", name);
        return;
    }
    std::vector<point3_t> points;
    const char *end = coordinates + std::strlen(coordinates);
    for (;;) {
        point3_t p;
        const char *at = scan_float(coordinates, end, &p.x);
        at = at == nullptr ? at : scan_float(at, end, &p.y);
        at = at == nullptr ? at : scan_float(at, end, &p.z);
        if (at == nullptr) {
            break;
        }
        if (!point_is_finite(p)) {
            display_message("create outline - a coordinate is no number");
            return;
        }
        points.push_back(p);
        coordinates = at;
    }
    object_t *object = new_outline(*kind, points);
    if (object == nullptr) {
        return;
    }
    link_created(object, kind->label);
    command_result_set(std::to_string(object_identity(object)).c_str());
}

void command_create_light(float x, float y, float z) { add_light_at({x, y, z}); }

void command_create(int, const char *const *words)
{
    const create_kind_t *kind = create_kind(words[0]);
    if (kind == nullptr) {
        display_message("create - no kind named '%s'", words[0]);
        return;
    }
    const int plane = int_of(words[1]);
    if (plane < VIEW_XY || plane > VIEW_XZ) {
        display_message("create - no plane %d", plane);
        return;
    }
    float c[6];
    for (int i = 0; i < 6; ++i) {
        c[i] = finite_float_of(words[2 + i]);
    }
    object_t *object = kind->make(plane, {c[0], c[1], c[2]}, {c[3], c[4], c[5]});
    if (object == nullptr) {
        return;
    }
    link_created(object, kind->label, kind->make == make_sphere);
    command_result_set(std::to_string(object_identity(object)).c_str());
}
