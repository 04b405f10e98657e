// The older line vocabulary, revisions below 11. After the first word ("VESKa") the file is one
// block, nested:
//
//     OBJECT "name"              (backslash before a quote or backslash)
//     type CODE                  (0 poly, 1 group, 2 light, 3 cube, 4 sphere, 999 world)
//     translation X Y Z          each of these lines may be left out, in any order:
//     rotation M0 .. M8          place and orientation relative to the parent
//     texture "file"
//     texturerep X Y
//     url "text"
//     dataitems N                number of string lines that follow; not used
//     string N                   then N bytes and a line end: the object's data
//     points N                   then N lines X Y Z
//     surfaces N                 then N surfaces, each:
//         type CODE              0 polygon (may be left out), 1 closed line, 2 line
//         rgb 0xRRGGBB           or "matindex I" or "col I": an entry of the present palette
//         shaded                 when smooth
//         twosided               when both faces show
//         points N               then N lines INDEX U V; index -1 is accepted and left out
//     children N                 ends the block's own lines; then N blocks
//
// A line that is none of these is an error and nothing is loaded.

#include "fileio/vesk_old.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/file_text.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/progress.h"
#include "base/tokens.h"
#include "fileio/export_scene.h"
#include "fileio/output.h"
#include "fileio/vesk_format.h"
#include "fileio/vesk_messages.h"
#include "fileio/vesk_place.h"
#include "fileio/vesk_scan.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/material_values.h"
#include "model/normals.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/texture_search.h"
#include "model/textures/textures.h"
#include "model/world.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

// ---- reading ----

class old_reader {
public:
    old_reader(const char *first, const char *end, const char *filename)
        : p_(first), end_(end), filename_(filename)
    {
    }

    // The tree, or null on the first line that is not understood.
    object_t *read();

private:
    struct block {
        object_t *object;
        point3_t location;
        int children; // still to be read
    };

    bool next_line();
    bool word_is(const char *word, int arguments) const
    {
        return count_ == arguments + 1 && std::strcmp(tokens_[0], word) == 0;
    }
    [[nodiscard]] const char *text(int i) const { return tokens_[i]; }
    [[nodiscard]] int integer(int i) const { return int_of(std::string_view(tokens_[i])); }
    [[nodiscard]] float number(int i) const
    {
        return static_cast<float>(double_of(std::string_view(tokens_[i])));
    }
    bool begin_block(object_t *parent, block *at);
    bool read_lines(block *at);
    bool read_line(block *at);
    bool read_data(object_t *object, int length);
    void read_points(object_t *object, int claimed);
    bool read_surfaces(object_t *object, int claimed);
    bool read_surface(surface_t *surface);
    void read_corners(surface_t *surface, int claimed);

    const char *p_;
    const char *end_;
    const char *filename_;
    std::string line_;
    char *tokens_[VESK_MAX_TOKENS];
    int count_ = 0;
    std::vector<vertex *> points_; // of the object being read
};

// Blank lines are passed over.
bool old_reader::next_line()
{
    do {
        p_ = skip_space(p_, end_);
        if (p_ == end_)
            return false;
        const void *newline = std::memchr(p_, '\n', static_cast<std::size_t>(end_ - p_));
        const char *stop = newline ? static_cast<const char *>(newline) + 1 : end_;
        line_.assign(p_, stop);
        p_ = stop;
        count_ = vesk_get_tokens(line_.data(), nullptr, tokens_);
    } while (count_ == 0);
    return count_ <= VESK_MAX_TOKENS;
}

object_t *old_reader::read()
{
    std::vector<block> stack;
    object_t *top = nullptr;
    bool good = true;
    do {
        object_t *parent = stack.empty() ? nullptr : stack.back().object;
        if (parent)
            --stack.back().children;
        block at = {};
        good = stack.size() < deepest_nesting && begin_block(parent, &at);
        if (good && !top)
            top = at.object;
        good = good && read_lines(&at);
        if (!good)
            break;
        if (parent)
            place_object(at.object, at.location);
        stack.push_back(at);
        while (!stack.empty() && stack.back().children == 0)
            stack.pop_back();
    } while (!stack.empty());
    if (!good) {
        object_free(top);
        return nullptr;
    }
    return top;
}

bool old_reader::begin_block(object_t *parent, block *at)
{
    if (!next_line() || !word_is("OBJECT", 1))
        return false;
    const std::string name = text(1);
    if (!next_line() || !word_is("type", 1))
        return false;
    at->object = new_object(integer(1));
    object_set_name(at->object, name.c_str());
    if (parent)
        object_add_child(parent, at->object);
    points_.clear();
    return true;
}

// Up to the children line, which ends the block's own lines.
bool old_reader::read_lines(block *at)
{
    at->children = -1;
    while (at->children < 0) {
        if (!next_line() || !read_line(at))
            return false;
    }
    return true;
}

bool old_reader::read_line(block *at)
{
    object_t *object = at->object;
    if (word_is("translation", 3)) {
        at->location = {number(1), number(2), number(3)};
    } else if (word_is("rotation", 9)) {
        for (int i = 0; i < 9; ++i)
            object->rotation[i] = number(i + 1);
    } else if (word_is("texture", 1)) {
        search_and_set_texture(object, filename_, text(1));
    } else if (word_is("texturerep", 2)) {
        object_set_texture_repeat(object, number(1), number(2));
    } else if (word_is("url", 1)) {
        object_set_url(object, text(1));
    } else if (word_is("dataitems", 1)) {
        return true; // the string lines that follow have their own lengths
    } else if (word_is("string", 1)) {
        return read_data(object, integer(1));
    } else if (word_is("points", 1)) {
        read_points(object, integer(1));
    } else if (word_is("surfaces", 1)) {
        return read_surfaces(object, integer(1));
    } else if (word_is("children", 1)) {
        at->children = std::max(integer(1), 0);
    } else {
        return false;
    }
    return true;
}

bool old_reader::read_data(object_t *object, int length)
{
    if (length < 0 || length > end_ - p_)
        return false;
    const std::string data(p_, strnlen(p_, static_cast<std::size_t>(length)));
    p_ += length;
    object_set_userdata(object, data.c_str());
    return true;
}

void old_reader::read_points(object_t *object, int claimed)
{
    listitem *last = object->vertices ? list_end(object->vertices) : nullptr;
    scan_batch batch;
    while (claimed > 0) {
        batch.clear();
        const scan_piece &piece = scan_vertices(p_, end_, claimed, &batch);
        for (int i = 0; i < piece.count; ++i) {
            const float *xyz = &batch.xyz[3 * static_cast<std::size_t>(i)];
            points_.push_back(new_vertex_set(xyz[0], xyz[1], xyz[2]));
            last = list_add_item_fast(&object->vertices, last, points_.back());
        }
        object->num_vertices += piece.count;
        p_ = piece.end;
        claimed = piece.stopped ? 0 : claimed - piece.count;
    }
    object_mark(object, CHANGED_TOPOLOGY);
}

bool old_reader::read_surfaces(object_t *object, int claimed)
{
    for (; claimed > 0; --claimed) {
        surface_t *surface = new_surface();
        surface->twosided = 0;
        object_add_surface(object, surface);
        if (!read_surface(surface))
            return false;
    }
    return true;
}

// Up to its points line.
bool old_reader::read_surface(surface_t *surface)
{
    const auto set_entry = [surface](int i) {
        if (i >= 0 && i < vesk_get_num_palette())
            surface_set_col(surface, i);
    };
    while (next_line()) {
        if (word_is("type", 1))
            surface_set_type(surface, integer(1) & SURFACE_TYPE_MASK);
        else if (word_is("shaded", 0))
            surface_set_shading(surface, 1);
        else if (word_is("twosided", 0))
            surface_set_twosided(surface, 1);
        else if (word_is("col", 1) || word_is("matindex", 1))
            set_entry(integer(1));
        else if (word_is("rgb", 1))
            surface_set_col(surface, rgb_to_index(int_of_any_base(text(1))));
        else if (word_is("points", 1)) {
            read_corners(surface, integer(1));
            return true;
        } else
            return false;
    }
    return false;
}

// A corner of vertex -1, or of one that is not there, is left out.
void old_reader::read_corners(surface_t *surface, int claimed)
{
    listitem *last = nullptr;
    for (; claimed > 0; --claimed) {
        int index = -1;
        float uv[2] = {};
        const char *after = scan_int(p_, end_, &index);
        for (float &value : uv) {
            p_ = after ? after : p_;
            after = after ? scan_float(after, end_, &value) : nullptr;
        }
        if (!after)
            return;
        p_ = after;
        if (index < 0 || static_cast<std::size_t>(index) >= points_.size())
            continue;
        svertex *reference = new_svertex(points_[static_cast<std::size_t>(index)], uv[0], uv[1]);
        last = list_add_item_fast(&surface->refs, last, reference);
        ++surface->num_refs;
    }
}

// ---- writing ----

void append_text(std::string &out, const char *word, const char *text)
{
    if (is_set(text))
        append_line(out, word, quoting::QUOTED, text);
}

void append_surface(std::string &out, const flat_mesh &mesh, size_t i)
{
    const flat_surface &surface = (*mesh.surfaces)[i];
    if (surface.type != SURFACE_POLYGON)
        append_count(out, "type", surface.type);
    char colour[32];
    std::snprintf(colour, sizeof colour, "rgb 0x%x\n",
                  static_cast<unsigned>(index_to_rgb(surface.material)));
    out += colour;
    out += surface.smooth != 0 ? "shaded\n" : "";
    out += surface.twosided != 0 ? "twosided\n" : "";
    const auto first = static_cast<size_t>((*mesh.corner_offsets)[i]);
    const auto last = static_cast<size_t>((*mesh.corner_offsets)[i + 1]);
    append_count(out, "points", static_cast<int>(last - first));
    for (size_t corner = first; corner < last; ++corner) {
        const flat_uv &uv = (*mesh.texture_coords)[corner];
        const float values[] = {uv.u, uv.v};
        append_line(out, std::to_string((*mesh.corners)[corner]).c_str(), values, 2);
    }
}

struct work_t {
    const char *filename;
    progress_t progress;
    double done = 0;
};

void append_object(std::string &out, object_t *object, const local_frame_t &frame, work_t &work)
{
    out += "OBJECT ";
    append_quoted(out, object->name == nullptr ? "" : object->name);
    out += "\ntype " + std::to_string(object->type) + '\n';
    const float location[] = {frame.location.x, frame.location.y, frame.location.z};
    if (location[0] != 0 || location[1] != 0 || location[2] != 0)
        append_line(out, "translation", location, 3);
    if (frame.has_rotation)
        append_line(out, "rotation", frame.rotation, 9);
    const char *texture = object->has_texture != 0 ? texture_id_to_name(object->texture)
                                                   : object_missing_texture(object);
    if (texture != nullptr && object->has_texture != 0)
        texture = search_texture_save(work.filename, texture);
    append_text(out, "texture", texture);
    const float repeat[] = {object->texture_repeat_x, object->texture_repeat_y};
    if (repeat[0] != 1 || repeat[1] != 1)
        append_line(out, "texturerep", repeat, 2);
    append_text(out, "url", object->url);
    if (is_set(object->data)) {
        const std::string_view data = object->data;
        out += "dataitems 1\n";
        append_count(out, "string", static_cast<int>(data.size()));
        out += data;
        out += '\n';
    }
    const flat_ptr mesh = object_flat(object);
    if (mesh->num_vertices() != 0)
        append_count(out, "points", mesh->num_vertices());
    for (const point3_t &position : *mesh->positions) {
        append_point(out, frame.local(position));
        out += '\n';
    }
    if (mesh->num_surfaces() != 0)
        append_count(out, "surfaces", mesh->num_surfaces());
    for (size_t i = 0; i < mesh->surfaces->size() && work.progress.step(++work.done); ++i)
        append_surface(out, *mesh, i);
    append_count(out, "children", list_count(object->children));
}

// Surfaces have a plain colour only: of how many materials the rest is left out.
int poorer_materials()
{
    material_values plain;
    std::set<int> poorer;
    for_each_object(vesk_get_world(), [&](const object_t *object) {
        int last = -1;
        for (const surface_t *surface : each<surface_t>(object->surfaces)) {
            const material *m = vesk_palette_get_material(surface->material);
            if (m == nullptr || surface->material == last)
                continue;
            last = surface->material;
            std::copy_n(m->diffuse, 3, plain.diffuse);
            if (material_compare(m, &plain) == 0)
                poorer.insert(last);
        }
    });
    return static_cast<int>(poorer.size());
}

} // namespace

object_t *readfile_vesk_old2(const char *filename)
{
    const std::string name = filename;
    complaints_clear();
    file_text text;
    if (!file_text_read(name.c_str(), &text)) {
        console_printf("can't open file for readiing\n");
        return nullptr;
    }
    const char *first = nullptr;
    const std::optional<unsigned> revision =
        vesk_revision_of(std::string_view(text.begin(), text.size), &first);
    if (!revision) {
        tell_not_valid(name.c_str());
        return nullptr;
    }
    if (*revision >= vesk_revision) {
        tell_newer_version(name.c_str());
        return nullptr;
    }
    display_message("Loading VESK file");
    const texture_load_scope one_box;
    object_t *top = old_reader(first, text.end(), name.c_str()).read();
    if (!top) {
        console_printf("Error whilst reading file %s\n", name.c_str());
        return nullptr;
    }
    display_message("calculating normals...");
    complain_of_numbers(top);
    object_calc_normals_force(top);
    tell_load_done();
    return top;
}

int write_vesk_old(const char *filename)
{
    const std::string name = filename; // the messages let scripts run
    vesk_report_export(name.c_str());
    std::string text = "VESKa\n";
    work_t work = {name.c_str(), progress_t(surfaces_of_world())};
    for_each_written(vesk_get_world(), [&](object_t *object, const local_frame_t &frame) {
        append_object(text, object, frame, work);
    });
    if (work.progress.cancelled()) {
        display_message("write VESK - cancelled");
        return 0;
    }
    atomic_writer_t file(name.c_str());
    if (!file.opened()) {
        windows_message_dialog("can't open file '%s' for writing", name.c_str());
        tell_write_reason(name.c_str());
        return 0;
    }
    file.write(text);
    if (!file.commit()) {
        windows_message_dialog("An error occured when writing the .vesk file \"%s\"", name.c_str());
        tell_write_reason(name.c_str());
        return 0;
    }
    debugf("written file %s OK\n", name.c_str());
    vesk_report_loss(poorer_materials(), "shining colours");
    display_message("written file %s%s", name.c_str(), vesk_report_losses("the older VESK"));
    return 1;
}
