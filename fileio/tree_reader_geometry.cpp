// Blocks of vertices and of surfaces.

#include "fileio/tree_reader.h"
#include "model/change_marks.h"
#include "model/each.h"

// ---- vertices ----

void tree_reader::know_vertices(const object_t *object)
{
    if (known_ == object && points_.size() == static_cast<std::size_t>(object->num_vertices))
        return;
    points_.clear();
    for (vertex *point : each<vertex>(object->vertices))
        points_.push_back(point);
    known_ = object;
}

void tree_reader::read_numvert(block &at)
{
    object_t *object = at.object;
    know_vertices(object);
    listitem *last = object->vertices ? list_end(object->vertices) : nullptr;
    for (int left = line_int(); left > 0;) {
        const scan_piece &piece = scanner_.vertices(p_, left);
        const float *xyz = scanner_.batch().xyz.data() + piece.first;
        for (int i = 0; i < piece.count; ++i, xyz += 3) {
            vertex *point = new_vertex_set(xyz[0], xyz[1], xyz[2]);
            last = list_add_item_fast(&object->vertices, last, point);
            points_.push_back(point);
        }
        object->num_vertices += piece.count;
        line_ += piece.count;
        left = piece.stopped ? 0 : left - piece.count;
        p_ = piece.end;
    }
    object_mark(object, CHANGED_TOPOLOGY);
}

// ---- surfaces ----

bool tree_reader::read_surfaces(block &at)
{
    object_t *object = at.object;
    know_vertices(object);
    object_mark(object, CHANGED_TOPOLOGY);
    for (int left = line_int(); left > 0;) {
        if (!verbose_) { // else every line is echoed
            const scan_piece &piece = scanner_.surfaces(p_, left);
            build_surfaces(object, piece);
            p_ = piece.end;
            left -= piece.count;
            if (!piece.stopped)
                continue;
        }
        if (!read_surface(object))
            return false;
        --left;
    }
    return true;
}

void tree_reader::build_surfaces(object_t *object, const scan_piece &piece)
{
    const scan_batch &batch = scanner_.batch();
    const scanned_ref *ref = batch.refs.data() + piece.first_ref;
    const scanned_surface *from = batch.surfaces.data() + piece.first;
    listitem *last = object->surfaces ? list_end(object->surfaces) : nullptr;
    for (int i = 0; i < piece.count; ++i, ++from) {
        surface_t *surface = new_surface();
        last = list_add_item_fast(&object->surfaces, last, surface);
        vesk_surface_set_flags(surface, from->flags);
        line_ += 2;
        set_material(surface, from->material);
        ++line_;
        listitem *last_ref = nullptr;
        for (int corner = 0; corner < from->num_refs; ++corner)
            add_reference(surface, &last_ref, *ref++);
    }
    object->num_surfaces += piece.count;
}

// By lines, in any order; false at the end of the file.
bool tree_reader::read_surface(object_t *object)
{
    surface_t *surface = new_surface();
    object_add_surface(object, surface);
    std::string word;
    while (next_line()) {
        const bool blank = !line_word(&word);
        if (word.empty())
            continue;
        if (word == "SURF") {
            if (tokens() == 2)
                vesk_surface_set_flags(surface, int_of_any_base(tokens_[1]));
            else
                complain("SURF should be followed by one flags argument\n");
        } else if (word == "mat") {
            if (!blank)
                set_material(surface, line_int());
        } else if (word == "refs") {
            if (!blank) {
                read_references(surface, line_int());
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

void tree_reader::read_references(surface_t *surface, int claimed)
{
    listitem *last = nullptr;
    for (int i = 0; i < claimed; ++i) {
        scanned_ref ref = {};
        const char *after = scan_int(p_, end_, &ref.index);
        if (!after) {
            p_ = skip_space(p_, end_);
            return;
        }
        p_ = after;
        for (float *value : {&ref.u, &ref.v}) {
            after = scan_float(p_, end_, value);
            if (!after)
                break;
            p_ = after;
        }
        p_ = skip_space(p_, end_);
        add_reference(surface, &last, ref);
    }
}

// Counts the reference's line.
void tree_reader::add_reference(surface_t *surface, listitem **last, const scanned_ref &ref)
{
    ++line_;
    if (ref.index < 0 || static_cast<std::size_t>(ref.index) >= points_.size()) {
        complain("ERROR in file line %d - surface's vertex index invalid (%d)\n", line_, ref.index);
        return;
    }
    *last =
        list_add_item_fast(&surface->refs, *last,
                           new_svertex(points_[static_cast<std::size_t>(ref.index)], ref.u, ref.v));
    ++surface->num_refs;
}

void tree_reader::set_material(surface_t *surface, int number)
{
    if (number > last_material()) {
        complain("line %d Surface material index (%d) out of range [palette is 0->%d]\n", line_,
                 number, last_material());
        return;
    }
    surface_set_col(surface, palette_index(number));
}
