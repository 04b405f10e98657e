#include "edit/pieces.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/mesh/surface_copy.h"
#include "edit/mesh/union_find.h"
#include "model/change_marks.h"
#include "model/child_changes.h"
#include "model/freed.h"
#include "model/object_tree.h"
#include "model/property.h"
#include "model/textures/textures.h"
#include "model/vertex_colours.h"

#include <algorithm>
#include <numeric>
#include <string>
#include <unordered_set>
#include <utility>

namespace {

// Which piece each surface belongs to, numbered from 0 in the order of their first surfaces.
using piece_numbers = std::vector<int>;

int number_connected(const flat_mesh &mesh, piece_numbers *pieces)
{
    union_find vertices(mesh.num_vertices());
    for (int s = 0; s < mesh.num_surfaces(); ++s) {
        const auto corners = mesh.surface_corners(s);
        for (const int v : corners)
            vertices.join(v, corners.front());
    }
    int count = 0;
    std::vector<int> piece_of(mesh.num_vertices(), -1);
    for (int s = 0; s < mesh.num_surfaces(); ++s) {
        const auto corners = mesh.surface_corners(s);
        int lone = -1; // a surface without corners is a piece
        int &piece = corners.empty() ? lone : piece_of[vertices.find(corners.front())];
        if (piece < 0)
            piece = count++;
        (*pieces)[s] = piece;
    }
    return count;
}

int number_each(const flat_mesh &mesh, piece_numbers *pieces)
{
    std::iota(pieces->begin(), pieces->end(), 0);
    return mesh.num_surfaces();
}

using number_pieces = int (*)(const flat_mesh &, piece_numbers *);

// The pieces of an object as new objects; none when it is of one piece.
std::vector<object_t *> take_apart(object_t *object, number_pieces number)
{
    surface_copier copier(object);
    const flat_mesh &mesh = copier.mesh();
    piece_numbers pieces(mesh.num_surfaces());
    const int count = number(mesh, &pieces);
    const std::vector<int> loose = flat_loose_vertices(mesh);
    if (count + (loose.empty() ? 0 : 1) < 2)
        return {};
    // The surfaces in the order of their pieces.
    std::vector<int> starts(count + 1, 0), order(pieces.size());
    for (const int piece : pieces)
        ++starts[piece + 1];
    std::partial_sum(starts.begin(), starts.end(), starts.begin());
    std::vector<int> next(starts.begin(), starts.end() - 1);
    for (int s = 0; s < mesh.num_surfaces(); ++s)
        order[next[pieces[s]]++] = s;

    std::vector<object_t *> made;
    for (int piece = 0; piece < count; ++piece) {
        made.push_back(copier.copy(
            std::span(order).subspan(starts[piece], starts[piece + 1] - starts[piece])));
    }
    if (!loose.empty())
        made.push_back(copier.copy({}, loose));
    return made;
}

void copy_marks(object_t *to, const object_t *from)
{
    to->visible = from->visible;
    to->locked = from->locked;
}

// A group in the object's place, with its texts and properties, its pieces and then its children.
// Pieces of a hidden or locked object are so, too.
object_t *group_of(object_t *object, const std::vector<object_t *> &pieces)
{
    object_t *group = new_group();
    object_copy_header(group, object);
    proplist_free(&group->properties);
    group->properties = vesk_proplist_duplicate(object->properties);
    copy_marks(group, object);
    for (object_t *piece : pieces)
        copy_marks(piece, object);
    object_set_url(group, object->url);
    object_set_userdata(group, object->data);
    vesk_object_set_vertex_colours(group, nullptr); // the pieces have them
    for (object_t *piece : pieces)
        object_add_child(group, piece);
    return group;
}

struct replacement_t {
    object_t *object, *group;
};

// Each group takes the place of its object, whose children follow the pieces; the objects are
// freed.
void replace_by_groups(const std::vector<replacement_t> &replacements)
{
    child_changes changes;
    for (const auto &[object, group] : replacements)
        changes.replace(object, {group});
    changes.commit();
    freed_batch batch;
    for (const auto &[object, group] : replacements) {
        // By now groups stand for those of the children that were taken apart too.
        for (object_t *child : each<object_t>(object->children))
            object_add_child(group, child);
        list_free(&object->children);
        object->num_children = 0;
        batch.add(object);
    }
}

void apart(const char *what, number_pieces number)
{
    if (selection().objects == nullptr) {
        display_message("%s - nothing selected", what);
        return;
    }
    display_message("%s...", what);
    std::vector<replacement_t> replacements;
    std::vector<object_t *> all_pieces;
    for (object_t *top : selected_top_objects()) {
        for_each_object(top, [&](object_t *object) {
            const std::vector<object_t *> pieces = take_apart(object, number);
            if (pieces.empty())
                return;
            replacements.push_back({object, group_of(object, pieces)});
            all_pieces.insert(all_pieces.end(), pieces.begin(), pieces.end());
        });
    }
    if (replacements.empty()) {
        display_message("%s - of one piece already", what);
        return;
    }
    open_world_undo(what);
    replace_by_groups(replacements);
    if (select_mode() == SELECT_TREE) {
        std::vector<object_t *> tops;
        for (const replacement_t &done : replacements)
            tops.push_back(object_top_ancestor(done.group));
        select_results(tops);
    } else {
        select_results(all_pieces);
    }
    finish_edit();
    display_message("%s - %d objects", what, static_cast<int>(all_pieces.size()));
}

// ---- merge ----

struct merge_t {
    std::vector<object_t *> sources; // with geometry, in tree order, the target among them
    std::vector<object_t *> lights;
    bool textures_differ = false;
};

merge_t gather(const std::vector<object_t *> &tops)
{
    merge_t merge;
    for (object_t *top : tops) {
        for_each_object(top, [&](object_t *object) {
            if (object->vertices != nullptr || object->surfaces != nullptr)
                merge.sources.push_back(object);
            else if (object->type == OBJECT_LIGHT)
                merge.lights.push_back(object);
        });
    }
    return merge;
}

// Appends whole lists, node by node as they are.
class list_joiner {
public:
    explicit list_joiner(listitem **head) : head_(head), last_(*head ? list_end(*head) : nullptr) {}
    void append(listitem *list)
    {
        if (list == nullptr)
            return;
        (last_ != nullptr ? last_->next : *head_) = list;
        last_ = list_end(list);
    }

private:
    listitem **head_;
    listitem *last_;
};

// The colours of all vertices in the order in which they will stand; empty without any.
std::vector<unsigned char> joined_colours(const std::vector<object_t *> &sources, object_t *to)
{
    std::vector<object_t *> order(1, to);
    std::copy_if(sources.begin(), sources.end(), std::back_inserter(order),
                 [to](const object_t *from) { return from != to; });
    std::vector<unsigned char> all;
    bool any = false;
    for (const object_t *object : order) {
        std::vector<unsigned char> rgb = object_vertex_colours(object);
        any = any || !rgb.empty();
        rgb.resize(3 * static_cast<size_t>(object->num_vertices), 255);
        all.insert(all.end(), rgb.begin(), rgb.end());
    }
    return any ? all : std::vector<unsigned char>();
}

// Moves vertices and surfaces as they are.
void move_geometry(const std::vector<object_t *> &sources, object_t *to)
{
    list_joiner vertices(&to->vertices), surfaces(&to->surfaces);
    for (object_t *from : sources) {
        if (from == to)
            continue;
        vertices.append(std::exchange(from->vertices, nullptr));
        surfaces.append(std::exchange(from->surfaces, nullptr));
        to->num_vertices += std::exchange(from->num_vertices, 0);
        to->num_surfaces += std::exchange(from->num_surfaces, 0);
        object_mark(from, CHANGED_TOPOLOGY);
    }
}

void merge_into(object_t *target, const std::vector<object_t *> &tops, merge_t &merge)
{
    const object_t *first = merge.sources.front();
    if (target != first)
        object_copy_texture(target, first);
    for (object_t *object : merge.sources) {
        merge.textures_differ |= object->has_texture != target->has_texture ||
                                 (object->has_texture != 0 && object->texture != target->texture);
    }
    const std::vector<unsigned char> colours = joined_colours(merge.sources, target);
    move_geometry(merge.sources, target);
    if (!colours.empty())
        vesk_object_set_vertex_colours(target, colours.data());
    target->type = OBJECT_POLY;
    target->is_sphere = 0;
    object_mark(target, CHANGED_ALL);

    std::erase_if(merge.lights, [&](const object_t *light) { return light == target; });
    for (object_t *light : merge.lights)
        object_reparent(light, target);
    std::vector<object_t *> going(tops);
    std::erase(going, target);
    const std::unordered_set<const object_t *> kept(merge.lights.begin(), merge.lights.end());
    for (object_t *child : each<object_t>(target->children)) {
        if (!kept.contains(child))
            going.push_back(child);
    }
    std::erase_if(going, [&](const object_t *object) { return kept.contains(object); });
    objects_delete(going);
}

} // namespace

std::vector<object_t *> objects_with_geometry(const std::vector<object_t *> &tops)
{
    return gather(tops).sources;
}

bool objects_merge(const std::vector<object_t *> &tops)
{
    merge_t merge = gather(tops);
    if (!merge.sources.empty())
        merge_into(tops.front(), tops, merge);
    return merge.textures_differ;
}

// ---- commands ----

void command_object_fragment() { apart("fragment", number_connected); }

void command_object_explode() { apart("explode", number_each); }

void command_object_merge()
{
    const std::vector<object_t *> tops = selected_top_objects();
    merge_t merge = gather(tops);
    if (merge.sources.size() < 2) {
        display_message("merge - nothing selected");
        return;
    }
    display_message("merge...");
    open_world_undo("merge");
    object_t *target = tops.front();
    const auto count = static_cast<int>(merge.sources.size());
    merge_into(target, tops, merge);
    calc_normals_of({target});
    select_results({target});
    finish_edit();
    if (merge.textures_differ) {
        display_message("merge - %d objects, with the texture of the first", count);
    } else {
        display_message("merge - %d objects", count);
    }
}
