#include "fileio/tree_reader.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/prefs.h"
#include "edit/primitives.h"
#include "edit/primitives_flat.h"
#include "edit/transform.h"
#include "fileio/vesk_geometry.h"
#include "fileio/vesk_messages.h"
#include "fileio/vesk_place.h"
#include "model/alloc_internal.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/material_values.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/palette_internal.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace {

// An element that a shape keyword makes counts more than one that is only visited.
constexpr std::size_t cost_of_new = 15;

// One object block that is being read.
struct block {
    object_t *parent = nullptr;
    object_t *object = nullptr; // null before the first OBJECT line
    point3_t location = {};
    float rotation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    // `mat` sets the surfaces that the object has by then: done once, at the end.
    int mat_surfaces = 0;
    int mat = 0;
    int kids = 0; // claimed
    int kid = -1; // being read, from 1; -1 before the kids line
};

class tree_reader {
public:
    tree_reader(const file_text &text, const char *first, const char *filename)
        : filename_(filename), lines_(text, first), geometry_(lines_), budget_(text.size)
    {
    }

    object_t *read();
    [[nodiscard]] bool moved_progress_bar() const { return shown_ > 0; }

private:
    enum class ending { KIDS, END, FAILED };
    struct keyword {
        const char *word;
        bool needs_object;
        bool skips_blank_lines; // its values are scanned, not counted
        void (tree_reader::*handle)(block &);
    };
    static const keyword keywords[];

    void show_progress();
    ending read_lines(block &at);
    ending handle_line(block &at, bool blank);

    void read_material(block &);
    void read_mat_name(block &);
    void read_light(block &) { debugf("Light\n"); }
    void read_object(block &at);
    void read_data(block &at);
    void read_name(block &at);
    void read_texture(block &at);
    void read_texrep(block &at);
    void read_texoff(block &at);
    void read_rot(block &at);
    void read_loc(block &at);
    void read_url(block &at);
    void read_numvert(block &at) { geometry_.read_vertices(at.object); }
    void read_sphere(block &at);
    void read_cube(block &at);
    void read_ellipse(block &at);
    void read_cylinder(block &at);
    void read_scale(block &at);
    void read_mat(block &at);

    void apply_mat(block &at);
    template <class Fill>
    void add_shape(block &at, int segments, Fill fill);

    const char *filename_;
    vesk_lines lines_;
    vesk_geometry geometry_;
    load_budget budget_;
    palette_table palette_;
    double shown_ = 0; // fraction of the progress bar
    std::string word_; // not cleared by a blank line
};

void tree_reader::show_progress()
{
    if (lines_.number % 5 != 0)
        return;
    const double fraction = lines_.fraction();
    if (fraction - shown_ > 0.1) {
        set_progress_bar(static_cast<int>(fraction * 100));
        shown_ = fraction;
    }
}

// ---- objects ----

// clang-format off
const tree_reader::keyword tree_reader::keywords[] = {
    {"MATERIAL", false, false, &tree_reader::read_material},
    {"MAT",      false, false, &tree_reader::read_mat_name},
    {"LIGHT",    false, false, &tree_reader::read_light},
    {"OBJECT",   false, true,  &tree_reader::read_object},
    {"data",     false, false, &tree_reader::read_data},
    {"name",     true,  false, &tree_reader::read_name},
    {"texture",  true,  false, &tree_reader::read_texture},
    {"texrep",   true,  false, &tree_reader::read_texrep},
    {"texoff",   true,  false, &tree_reader::read_texoff},
    {"rot",      true,  true,  &tree_reader::read_rot},
    {"loc",      true,  true,  &tree_reader::read_loc},
    {"url",      true,  false, &tree_reader::read_url},
    {"numvert",  true,  true,  &tree_reader::read_numvert},
    {"sphere",   true,  false, &tree_reader::read_sphere},
    {"cube",     true,  false, &tree_reader::read_cube},
    {"ellipse",  true,  false, &tree_reader::read_ellipse},
    {"cylinder", true,  false, &tree_reader::read_cylinder},
    {"scale",    true,  false, &tree_reader::read_scale},
    {"mat",      true,  true,  &tree_reader::read_mat},
};
// clang-format on

object_t *tree_reader::read()
{
    std::vector<block> stack(1);
    object_t *result = nullptr;
    bool returned = false; // a child block ended with `result`
    while (!stack.empty()) {
        block &at = stack.back();
        bool complete = false;
        if (!returned) {
            const ending how = read_lines(at);
            complete = how != ending::KIDS;
            if (at.object && !at.parent && how == ending::FAILED)
                object_free(std::exchange(at.object, nullptr));
            result = how == ending::FAILED ? nullptr : at.object;
        } else if (!result) {
            complain("error reading expected child object %d of %d at line: %d\n", at.kid, at.kids,
                     lines_.number);
            at.kid = at.kids;
        }
        returned = true;
        if (!complete && at.kid < at.kids) {
            ++at.kid;
            if (stack.size() == deepest_nesting) {
                result = nullptr;
                continue;
            }
            object_t *parent = at.object;
            stack.push_back({.parent = parent});
            returned = false;
            continue;
        }
        if (!complete)
            result = at.object;
        stack.pop_back();
    }
    return result;
}

// Up to the kids line, which ends the block's own lines, or the end of the file.
tree_reader::ending tree_reader::read_lines(block &at)
{
    word_.clear();
    while (lines_.next()) {
        show_progress();
        const bool blank = !lines_.first_word(&word_);
        const ending how = handle_line(at, blank);
        if (how != ending::END)
            return how;
    }
    geometry_.settle();
    apply_mat(at);
    return ending::END;
}

// END: the block has further lines.
tree_reader::ending tree_reader::handle_line(block &at, bool blank)
{
    if (word_.empty())
        return ending::END;
    if (word_ != "numsurf")
        geometry_.settle();
    for (const keyword &row : keywords) {
        if (word_ != row.word)
            continue;
        if ((at.object || !row.needs_object) && !(blank && row.skips_blank_lines))
            (this->*row.handle)(at);
        return ending::END;
    }
    if (word_ == "numsurf") {
        if (blank || !at.object || geometry_.read_surfaces(at.object))
            return ending::END;
        complain("error whilst reading surface at line: %d\n", lines_.number);
        geometry_.settle();
        apply_mat(at);
        return ending::FAILED;
    }
    if (word_ == "kids") {
        if (blank)
            return ending::END;
        if (!at.object)
            return ending::FAILED;
        apply_mat(at);
        at.kids = std::max(lines_.integer(), 0);
        at.kid = 0;
        if (at.parent)
            place_object(at.object, at.location);
        return ending::KIDS;
    }
    complain("ignoring %s\n", word_.c_str());
    return ending::END;
}

// ---- keywords ----

void tree_reader::read_material(block &)
{
    if (lines_.split() != 22) {
        complain("expected 21 params after \"MATERIAL\" - line %d\n", lines_.number);
        return;
    }
    material_values mat;
    text_set(&mat.name, lines_.word(1));
    float *const groups[] = {mat.diffuse, mat.ambient, mat.emissive, mat.specular};
    int token = 3;
    for (float *group : groups) {
        for (int i = 0; i < 3; ++i)
            group[i] = lines_.real(token++);
        ++token; // the next keyword
    }
    mat.shininess = lines_.real(19);
    mat.transparency = lines_.real(21);
    const int index = vesk_palette_get_new_material_index(&mat);
    debugf("line %d new material (number %d in file, global id is %d)\n", lines_.number,
           static_cast<int>(geometry_.materials.size()), index);
    geometry_.materials.push_back(index);
}

void tree_reader::read_mat_name(block &)
{
    const int n = lines_.split();
    if (n != 2)
        complain("expected quoted name for MAT at line %d (got %d tokens)\n", lines_.number, n);
}

void tree_reader::read_object(block &at)
{
    apply_mat(at);
    if (at.object && !at.parent)
        object_free(at.object); // a second OBJECT line on top: the first is lost
    std::string type;
    const char *end = lines_.values() + std::strlen(lines_.values());
    const char *start = skip_space(lines_.values(), end);
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
    if (lines_.split() != 2) {
        complain("expected 'data <number>' at line %d\n", lines_.number);
        return;
    }
    const int claimed = int_of(lines_.word(1));
    if (claimed <= 0)
        return;
    const auto length = std::min<std::ptrdiff_t>(claimed, lines_.end() - lines_.place);
    const std::string text(lines_.place, strnlen(lines_.place, static_cast<std::size_t>(length)));
    lines_.place += length;
    const void *newline =
        std::memchr(lines_.place, '\n', static_cast<std::size_t>(lines_.end() - lines_.place));
    lines_.place = newline ? static_cast<const char *>(newline) + 1 : lines_.end();
    ++lines_.number;
    debugf("STRING %d, string \"%s\" \n", claimed, text.c_str());
    if (at.object)
        object_set_userdata(at.object, text.c_str());
}

void tree_reader::read_name(block &at)
{
    const int n = lines_.split();
    if (n == 2)
        object_set_name(at.object, lines_.word(1));
    else
        complain("expected quoted name at line %d (got %d tokens)\n", lines_.number, n);
}

void tree_reader::read_texture(block &at)
{
    if (lines_.split() != 2) {
        complain("expected quoted texture name at line %d\n", lines_.number);
        return;
    }
    if (search_and_set_texture(at.object, filename_, lines_.word(1)) == 0)
        complain("texture '%s' not found - line %d\n", lines_.word(1), lines_.number);
}

void tree_reader::read_texrep(block &at)
{
    if (lines_.split() == 3)
        object_set_texture_repeat(at.object, lines_.real(1), lines_.real(2));
    else
        complain("expected 'texrep <float> <float>' at line %d\n", lines_.number);
}

void tree_reader::read_texoff(block &at)
{
    if (lines_.split() == 3)
        object_set_texture_offset(at.object, lines_.real(1), lines_.real(2));
    else
        complain("expected 'texoff <float> <float>' at line %d\n", lines_.number);
}

void tree_reader::read_rot(block &at)
{
    lines_.reals(at.rotation, 9);
    std::copy_n(at.rotation, 9, at.object->rotation);
}

void tree_reader::read_loc(block &at)
{
    float location[] = {at.location.x, at.location.y, at.location.z};
    lines_.reals(location, 3);
    at.location = {location[0], location[1], location[2]};
}

void tree_reader::read_url(block &at)
{
    if (lines_.split() == 2) {
        object_set_url(at.object, lines_.word(1));
        return;
    }
    // Deliberate: the second number of this fixed text is an address, and means nothing.
    const auto address = static_cast<int>(reinterpret_cast<std::intptr_t>(&lines_));
    complain("expected one arg to url at line %d (got %d)\n", lines_.number, address);
}

void tree_reader::read_mat(block &at)
{
    const int number = lines_.integer();
    if (number > geometry_.last_material()) {
        complain("line %d object material index (%d) out of range [palette is 0->%d]\n",
                 lines_.number, number, geometry_.last_material());
        return;
    }
    at.mat_surfaces = at.object->num_surfaces;
    at.mat = geometry_.palette_index(number);
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
    geometry_.forget_vertices();
}

void tree_reader::read_sphere(block &at)
{
    if (lines_.split() != 2) {
        complain("expected 'sphere <float>' at line %d\n", lines_.number);
        return;
    }
    const int segments = std::clamp(prefs.num_surface_div, 1, 10000);
    add_shape(at, 2 * segments * segments, [&] {
        at.mat_surfaces = 0;
        object_free_geometry(at.object);
        object_add_sphere_view(at.object, lines_.real(1));
    });
}

void tree_reader::read_cube(block &at)
{
    if (lines_.split() != 4)
        complain("expected 'cube <float> <float> <float>' at line %d\n", lines_.number);
    else
        add_shape(at, 14, [&] {
            object_add_cube_view(at.object, lines_.real(1), lines_.real(2), lines_.real(3));
        });
}

void tree_reader::read_ellipse(block &at)
{
    if (lines_.split() != 3) {
        complain("expected 'ellipse <float> <float>' at line %d\n", lines_.number);
        return;
    }
    const int segments = prefs.disk_segments;
    add_shape(at, 2 * std::clamp(segments, 0, 1000000), [&] {
        object_add_disk_view(at.object, 0, lines_.real(1), lines_.real(2), segments);
    });
}

void tree_reader::read_cylinder(block &at)
{
    if (lines_.split() != 4) {
        complain("expected 'cylinder <float radius> <bool top(1 = true, 0 = false)> <bool bottom>' "
                 "at line %d\n",
                 lines_.number);
        return;
    }
    add_shape(at, 4 * std::clamp(prefs.cylinder_segments, 0, 1000000), [&] {
        object_add_cylinder_view(at.object, 2, lines_.real(1), 1.0f, int_of(lines_.word(2)),
                                 int_of(lines_.word(3)));
    });
}

void tree_reader::read_scale(block &at)
{
    if (lines_.split() != 4) {
        complain("expected 'scale <float> <float> <float>' at line %d\n", lines_.number);
        return;
    }
    if (!budget_.spend(static_cast<std::size_t>(at.object->num_vertices)))
        complain("ignoring %s\n", word_.c_str());
    else
        object_scale(at.object, lines_.real(1), lines_.real(2), lines_.real(3));
}

} // namespace

object_t *read_tree(const file_text &text, const char *first, const char *filename, bool *moved_bar)
{
    tree_reader reader(text, first, filename);
    object_t *top = reader.read();
    *moved_bar = reader.moved_progress_bar();
    return top;
}
