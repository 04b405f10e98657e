#include "fileio/vesk_geometry.h"

#include "base/numbers.h"
#include "fileio/vesk_messages.h"
#include "model/change_marks.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/flat_array.h"
#include "model/object_internal.h"

#include <algorithm>
#include <memory>
#include <utility>

// ---- what is gathered ----

void vesk_geometry::settle()
{
    gathered_t all = std::exchange(gathered_, {});
    if (all.object == nullptr)
        return;
    auto flat = std::make_shared<flat_mesh>();
    flat->positions = flat_shared(std::move(all.positions));
    flat->surfaces = flat_shared(std::move(all.surfaces));
    flat->corner_offsets = flat_shared(std::move(all.offsets));
    flat->corners = flat_shared(std::move(all.corners));
    flat->texture_coords = flat_shared(std::move(all.uv));
    object_set_whole(all.object, std::move(flat));
}

// ---- vertices ----

void vesk_geometry::know_vertices(const object_t *object)
{
    if (known_ == object && points_.size() == static_cast<std::size_t>(object->num_vertices))
        return;
    points_.clear();
    for (vertex *point : each<vertex>(object->vertices))
        points_.push_back(point);
    known_ = object;
}

void vesk_geometry::read_vertices(object_t *object)
{
    settle();
    if (object->vertices == nullptr && object->surfaces == nullptr) {
        gather_vertices(object);
        return;
    }
    know_vertices(object);
    listitem *last = object->vertices ? list_end(object->vertices) : nullptr;
    for (int left = lines_.integer(); left > 0;) {
        const scan_piece &piece = scanner_.vertices(lines_.place, left);
        const float *xyz = scanner_.batch().xyz.data() + piece.first;
        for (int i = 0; i < piece.count; ++i, xyz += 3) {
            vertex *point = new_vertex_set(xyz[0], xyz[1], xyz[2]);
            last = list_add_item_fast(&object->vertices, last, point);
            points_.push_back(point);
        }
        object->num_vertices += piece.count;
        lines_.number += piece.count;
        left = piece.stopped ? 0 : left - piece.count;
        lines_.place = piece.end;
    }
    object_mark(object, CHANGED_TOPOLOGY);
}

void vesk_geometry::gather_vertices(object_t *object)
{
    constexpr std::size_t least_bytes = 2; // of a vertex: the others' numbers may be missing
    gathered_.object = object;
    gathered_.offsets.push_back(0);
    int left = lines_.integer();
    const auto could_be = static_cast<std::size_t>(lines_.end() - lines_.place) / least_bytes;
    gathered_.positions.reserve(std::min(static_cast<std::size_t>(std::max(left, 0)), could_be));
    while (left > 0) {
        const scan_piece &piece = scanner_.vertices(lines_.place, left);
        const float *xyz = scanner_.batch().xyz.data() + piece.first;
        for (int i = 0; i < piece.count; ++i, xyz += 3)
            gathered_.positions.push_back({xyz[0], xyz[1], xyz[2]});
        lines_.number += piece.count;
        left = piece.stopped ? 0 : left - piece.count;
        lines_.place = piece.end;
    }
}

// ---- surfaces ----

// Of an object whose vertices were gathered, the pieces in the plain form are; else by lines.
bool vesk_geometry::read_surfaces(object_t *object)
{
    int left = lines_.integer();
    if (gathered_.object != object || lines_.echoed())
        settle();
    else
        reserve_surfaces(left);
    while (left > 0) {
        if (gathered_.object != nullptr) {
            const scan_piece &piece = scanner_.surfaces(lines_.place, left);
            gather_surfaces(piece);
            lines_.place = piece.end;
            left -= piece.count;
            if (!piece.stopped)
                continue;
            settle();
        }
        know_vertices(object);
        object_mark(object, CHANGED_TOPOLOGY);
        if (!read_surface(object))
            return false;
        --left;
    }
    return true;
}

void vesk_geometry::reserve_surfaces(int claimed)
{
    constexpr std::size_t least_bytes = 16, least_of_corner = 6, usual_corners = 4;
    const auto bytes = static_cast<std::size_t>(lines_.end() - lines_.place);
    const auto count =
        std::min(static_cast<std::size_t>(std::max(claimed, 0)), bytes / least_bytes);
    const std::size_t corners = std::min(count * usual_corners, bytes / least_of_corner);
    gathered_.surfaces.reserve(gathered_.surfaces.size() + count);
    gathered_.offsets.reserve(gathered_.offsets.size() + count);
    gathered_.corners.reserve(gathered_.corners.size() + corners);
    gathered_.uv.reserve(gathered_.uv.size() + corners);
}

void vesk_geometry::gather_surfaces(const scan_piece &piece)
{
    const scan_batch &batch = scanner_.batch();
    const scanned_ref *ref = batch.refs.data() + piece.first_ref;
    const scanned_surface *from = batch.surfaces.data() + piece.first;
    for (int i = 0; i < piece.count; ++i, ++from) {
        surface_t surface = plain_surface();
        vesk_surface_set_flags(&surface, from->flags);
        lines_.number += 2;
        set_material(&surface, from->material);
        ++lines_.number;
        for (int corner = 0; corner < from->num_refs; ++corner, ++ref) {
            if (!is_reference(*ref, gathered_.positions.size()))
                continue;
            gathered_.corners.push_back(ref->index);
            gathered_.uv.push_back({ref->u, ref->v});
        }
        gathered_.surfaces.push_back(flat_attributes(surface));
        gathered_.offsets.push_back(static_cast<std::int32_t>(gathered_.corners.size()));
    }
}

// By lines, in any order; false at the end of the file.
bool vesk_geometry::read_surface(object_t *object)
{
    surface_t *surface = new_surface();
    object_add_surface(object, surface);
    std::string word;
    while (lines_.next()) {
        const bool blank = !lines_.first_word(&word);
        if (word.empty())
            continue;
        if (word == "SURF") {
            if (lines_.split() == 2)
                vesk_surface_set_flags(surface, int_of_any_base(lines_.word(1)));
            else
                complain("SURF should be followed by one flags argument\n");
        } else if (word == "mat") {
            if (!blank)
                set_material(surface, lines_.integer());
        } else if (word == "refs") {
            if (!blank) {
                read_references(surface, lines_.integer());
                return true;
            }
        } else if (word == "kids" || word == "OBJECT") {
            complain("didn't expect '%s' before a surface had finished!\nIt looks like things may "
                     "have gone a bit wrong here - giving up reading a surface\nand going back to "
                     "toplevel parsing.\n",
                     word.c_str());
            return true;
        } else {
            complain("ignoring %s\n", word.c_str());
        }
    }
    return false;
}

void vesk_geometry::read_references(surface_t *surface, int claimed)
{
    listitem *last = nullptr;
    for (int i = 0; i < claimed; ++i) {
        scanned_ref ref = {};
        const char *after = scan_int(lines_.place, lines_.end(), &ref.index);
        if (!after) {
            lines_.place = skip_space(lines_.place, lines_.end());
            return;
        }
        lines_.place = after;
        for (float *value : {&ref.u, &ref.v}) {
            after = scan_float(lines_.place, lines_.end(), value);
            if (!after)
                break;
            lines_.place = after;
        }
        lines_.place = skip_space(lines_.place, lines_.end());
        add_reference(surface, &last, ref);
    }
}

bool vesk_geometry::is_reference(const scanned_ref &ref, std::size_t num_vertices)
{
    ++lines_.number;
    if (ref.index >= 0 && static_cast<std::size_t>(ref.index) < num_vertices)
        return true;
    complain("ERROR in file line %d - surface's vertex index invalid (%d)\n", lines_.number,
             ref.index);
    return false;
}

void vesk_geometry::add_reference(surface_t *surface, listitem **last, const scanned_ref &ref)
{
    if (!is_reference(ref, points_.size()))
        return;
    *last =
        list_add_item_fast(&surface->refs, *last,
                           new_svertex(points_[static_cast<std::size_t>(ref.index)], ref.u, ref.v));
    ++surface->num_refs;
}

void vesk_geometry::set_material(surface_t *surface, int number)
{
    if (number > last_material()) {
        complain("line %d Surface material index (%d) out of range [palette is 0->%d]\n",
                 lines_.number, number, last_material());
        return;
    }
    surface_set_col(surface, palette_index(number));
}
