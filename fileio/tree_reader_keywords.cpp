// What the keywords of an object block do.

#include "base/prefs.h"
#include "edit/primitives.h"
#include "edit/primitives_flat.h"
#include "edit/transform.h"
#include "fileio/tree_reader.h"
#include "model/alloc_internal.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <utility>

namespace {
// An element that a shape keyword makes counts more than one that is only visited.
constexpr std::size_t cost_of_new = 15;
} // namespace

void tree_reader::read_material(block &)
{
    if (tokens() != 22) {
        complain("expected 21 params after \"MATERIAL\" - line %d\n", line_);
        return;
    }
    material mat;
    material_init(&mat);
    text_set(&mat.name, tokens_[1]);
    float *const groups[] = {mat.diffuse, mat.ambient, mat.emissive, mat.specular};
    int token = 3;
    for (float *group : groups) {
        for (int i = 0; i < 3; ++i)
            group[i] = number(token++);
        ++token; // the next keyword
    }
    mat.shininess = number(19);
    mat.transparency = number(21);
    const int index = vesk_palette_get_new_material_index(&mat);
    myfree(mat.name);
    debugf("line %d new material (number %d in file, global id is %d)\n", line_,
           static_cast<int>(materials_.size()), index);
    materials_.push_back(index);
}

void tree_reader::read_mat_name(block &)
{
    const int n = tokens();
    if (n != 2)
        complain("expected quoted name for MAT at line %d (got %d tokens)\n", line_, n);
}

void tree_reader::read_object(block &at)
{
    apply_mat(at);
    if (at.object && !at.parent)
        object_free(at.object); // a second OBJECT line on top: the first is lost
    std::string type;
    const char *end = values_ + std::strlen(values_);
    const char *start = skip_space(values_, end);
    while (start < end && !is_blank(*start))
        type += *start++;
    at.object = new_object(object_type_of_word(type.c_str()));
    if (at.parent)
        object_add_child(at.parent, at.object);
    if (at.object->type == OBJECT_LIGHT)
        register_light(at.object);
}

void tree_reader::read_data(block &at)
{
    if (tokens() != 2) {
        complain("expected 'data <number>' at line %d\n", line_);
        return;
    }
    const int claimed = int_of(tokens_[1]);
    if (claimed <= 0)
        return;
    const auto length = std::min<std::ptrdiff_t>(claimed, end_ - p_);
    const std::string text(p_, strnlen(p_, static_cast<std::size_t>(length)));
    p_ += length;
    const void *newline = std::memchr(p_, '\n', static_cast<std::size_t>(end_ - p_));
    p_ = newline ? static_cast<const char *>(newline) + 1 : end_;
    ++line_;
    debugf("STRING %d, string \"%s\" \n", claimed, text.c_str());
    if (at.object)
        object_set_userdata(at.object, text.c_str());
}

void tree_reader::read_name(block &at)
{
    const int n = tokens();
    if (n == 2)
        object_set_name(at.object, tokens_[1]);
    else
        complain("expected quoted name at line %d (got %d tokens)\n", line_, n);
}

void tree_reader::read_texture(block &at)
{
    if (tokens() != 2) {
        complain("expected quoted texture name at line %d\n", line_);
        return;
    }
    if (search_and_set_texture(at.object, filename_, tokens_[1]) == 0)
        complain("texture '%s' not found - line %d\n", tokens_[1], line_);
}

void tree_reader::read_texrep(block &at)
{
    if (tokens() == 3)
        object_set_texture_repeat(at.object, number(1), number(2));
    else
        complain("expected 'texrep <float> <float>' at line %d\n", line_);
}

void tree_reader::read_texoff(block &at)
{
    if (tokens() == 3)
        object_set_texture_offset(at.object, number(1), number(2));
    else
        complain("expected 'texoff <float> <float>' at line %d\n", line_);
}

void tree_reader::read_rot(block &at)
{
    const char *p = values_;
    const char *end = p + std::strlen(p);
    for (float &value : at.rotation) {
        p = scan_float(p, end, &value);
        if (!p) // what is missing keeps what an earlier line had
            break;
    }
    std::copy_n(at.rotation, 9, at.object->rotation);
}

void tree_reader::read_loc(block &at)
{
    const char *p = values_;
    const char *end = p + std::strlen(p);
    for (float *value : {&at.location.x, &at.location.y, &at.location.z}) {
        p = scan_float(p, end, value);
        if (!p)
            break;
    }
}

void tree_reader::read_url(block &at)
{
    if (tokens() == 2) {
        object_set_url(at.object, tokens_[1]);
        return;
    }
    // Deliberate: the second number is not the token count but an address.
    const auto address = static_cast<int>(reinterpret_cast<std::intptr_t>(tokens_));
    complain("expected one arg to url at line %d (got %d)\n", line_, address);
}

void tree_reader::read_mat(block &at)
{
    const int number = line_int();
    if (number > last_material()) {
        complain("line %d object material index (%d) out of range [palette is 0->%d]\n", line_,
                 number, last_material());
        return;
    }
    at.mat_surfaces = at.object->num_surfaces;
    at.mat = palette_index(number);
}

void tree_reader::apply_mat(block &at)
{
    int left = std::exchange(at.mat_surfaces, 0);
    if (left == 0)
        return;
    for (surface_t *surface : each<surface_t>(at.object->surfaces)) {
        if (left-- == 0)
            break;
        surface_set_col(surface, at.mat);
    }
    object_mark(at.object, CHANGED_ATTRIBUTES);
}

// ---- shapes ----

// `segments`: roughly how many surfaces it makes.
template <class Fill>
void tree_reader::add_shape(block &at, int segments, Fill fill)
{
    const auto existing = static_cast<std::size_t>(at.object->num_surfaces) +
                          static_cast<std::size_t>(at.object->num_vertices);
    const auto made = static_cast<std::size_t>(std::max(segments, 8)) * cost_of_new;
    if (!budget_.spend(existing + made)) {
        complain("ignoring %s\n", word_.c_str());
        return;
    }
    fill();
    known_ = nullptr;
}

void tree_reader::read_sphere(block &at)
{
    if (tokens() != 2) {
        complain("expected 'sphere <float>' at line %d\n", line_);
        return;
    }
    const int segments = std::clamp(prefs.num_surface_div, 1, 10000);
    add_shape(at, 2 * segments * segments, [&] {
        at.mat_surfaces = 0;
        object_free_geometry(at.object);
        object_add_sphere_view(at.object, number(1));
    });
}

void tree_reader::read_cube(block &at)
{
    if (tokens() != 4)
        complain("expected 'cube <float> <float> <float>' at line %d\n", line_);
    else
        add_shape(at, 14,
                  [&] { object_add_cube_view(at.object, number(1), number(2), number(3)); });
}

void tree_reader::read_ellipse(block &at)
{
    if (tokens() != 3) {
        complain("expected 'ellipse <float> <float>' at line %d\n", line_);
        return;
    }
    const int segments = prefs.disk_segments;
    add_shape(at, 2 * std::clamp(segments, 0, 1000000),
              [&] { object_add_disk_view(at.object, 0, number(1), number(2), segments); });
}

void tree_reader::read_cylinder(block &at)
{
    if (tokens() != 4) {
        complain("expected 'cylinder <float radius> <bool top(1 = true, 0 = false)> <bool bottom>' "
                 "at line %d\n",
                 line_);
        return;
    }
    add_shape(at, 4 * std::clamp(prefs.cylinder_segments, 0, 1000000), [&] {
        object_add_cylinder_view(at.object, 2, number(1), 1.0f, int_of(tokens_[2]),
                                 int_of(tokens_[3]));
    });
}

void tree_reader::read_scale(block &at)
{
    if (tokens() != 4) {
        complain("expected 'scale <float> <float> <float>' at line %d\n", line_);
        return;
    }
    if (!budget_.spend(static_cast<std::size_t>(at.object->num_vertices)))
        complain("ignoring %s\n", word_.c_str());
    else
        object_scale(at.object, number(1), number(2), number(3));
}
