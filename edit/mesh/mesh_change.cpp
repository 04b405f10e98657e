#include "edit/mesh/mesh_change.h"

#include "base/big_vector.h"
#include "base/console.h"
#include "base/session_state.h"
#include "edit/mesh/nearest_points.h"
#include "model/alloc.h"
#include "model/change_marks.h"
#include "model/freed.h"
#include "model/list_internal.h"
#include "model/object_internal.h"
#include "model/record_maker.h"
#include "model/vertex_colours.h"

#include <algorithm>
#include <optional>

namespace {

void set_flag(std::vector<char> &flags, int index, int count)
{
    if (flags.empty())
        flags.resize(count);
    flags[index] = 1;
}

bool flag(const std::vector<char> &flags, int index) { return !flags.empty() && flags[index] != 0; }

// A caller that makes room again and again pays for each element a few times at most.
template <class T>
void make_room(std::vector<T> &elements, std::size_t more)
{
    const std::size_t needed = elements.size() + more;
    if (needed > elements.capacity())
        reserve_big(elements, std::max(needed, elements.capacity() / 2 * 3));
}

} // namespace

mesh_change::mesh_change(object_t *object) : object_(object), before_(object_flat(object)) {}

int mesh_change::index_of(const surface_t *surface)
{
    if (places_.empty()) {
        int i = 0;
        for (const surface_t *record : *before_->surface_records)
            places_.emplace(record, i++);
    }
    const auto found = places_.find(surface);
    return found == places_.end() ? -1 : found->second;
}

void mesh_change::reserve(std::size_t vertices, std::size_t surfaces, std::size_t corners)
{
    make_room(positions_, vertices);
    make_room(vertex_likes_, vertices);
    make_room(likes_, surfaces);
    make_room(first_corners_, surfaces + 1);
    make_room(corners_, corners);
    make_room(uv_, corners);
}

mesh_room mesh_change::grow(const mesh_room &more)
{
    const mesh_room begin = {static_cast<int>(positions_.size()), static_cast<int>(likes_.size()),
                             static_cast<int>(corners_.size())};
    mesh_room end = begin;
    end += more;
    reserve(more.vertices, more.surfaces, more.corners);
    positions_.resize(end.vertices);
    vertex_likes_.resize(end.vertices);
    likes_.resize(end.surfaces);
    first_corners_.resize(end.surfaces);
    corners_.resize(end.corners);
    uv_.resize(end.corners);
    gone_surfaces_.resize(before_->num_surfaces());
    return begin;
}

int mesh_change::add_vertex(const point3_t &position, int like)
{
    positions_.push_back(position);
    vertex_likes_.push_back(like);
    return num_vertices() - 1;
}

point3_t mesh_change::position(int at) const
{
    const int old = before_->num_vertices();
    return at < old ? before_->position(at) : positions_[at - old];
}

void mesh_change::add_surface(int like)
{
    likes_.push_back(like);
    first_corners_.push_back(static_cast<std::int32_t>(corners_.size()));
}

void mesh_change::add_corner(int at, flat_uv uv)
{
    corners_.push_back(at);
    uv_.push_back(uv);
}

void mesh_change::set_type(int type)
{
    types_.push_back({static_cast<int>(likes_.size()) - 1, type});
}

void mesh_change::set_material(int material)
{
    materials_.push_back({static_cast<int>(likes_.size()) - 1, material});
}

void mesh_change::reverse(int first, int end)
{
    std::reverse(corners_.begin() + first, corners_.begin() + end);
    std::reverse(uv_.begin() + first, uv_.begin() + end);
}

void mesh_change::reverse_corners()
{
    reverse(first_corners_.back(), static_cast<int>(corners_.size()));
}

void mesh_change::turn_corners()
{
    reverse(first_corners_.back() + 1, static_cast<int>(corners_.size()));
}

void mesh_change::redirect_corner(int corner, int at)
{
    edits_.push_back({corner_edit::REDIRECT, corner, at, {0, 0}});
}

void mesh_change::insert_corner_after(int corner, int at, flat_uv uv)
{
    edits_.push_back({corner_edit::INSERT, corner, at, uv});
}

void mesh_change::remove_corner(int corner)
{
    edits_.push_back({corner_edit::REMOVE, corner, -1, {0, 0}});
}

void mesh_change::redirect_corners(std::vector<std::int32_t> &&corners)
{
    corners_after_ = std::move(corners);
}

void mesh_change::remove_surface(int surface)
{
    set_flag(gone_surfaces_, surface, before_->num_surfaces());
}

void mesh_change::remove_vertex(int at) { set_flag(gone_vertices_, at, before_->num_vertices()); }

void mesh_change::apply_to_corners()
{
    if (!before_->whole) {
        // The corners of a record are not those of the flat mesh: it takes one edit after the other.
        for (int c = 0; c < static_cast<int>(corners_after_.size()); ++c) {
            if (corners_after_[c] != before_->corner(c))
                redirect_corner(c, corners_after_[c]);
        }
    }
    if (edits_.empty())
        return;
    corners_after_ = *before_->corners;
    for (const corner_edit &edit : edits_) {
        if (edit.kind != corner_edit::INSERT)
            corners_after_[edit.corner] = edit.vertex;
    }
}

void mesh_change::remove_small_surfaces()
{
    const std::vector<std::int32_t> &now = corners_after();
    std::vector<int> inserted(edits_.empty() ? 0 : now.size());
    for (const corner_edit &edit : edits_)
        inserted[edit.corner] += edit.kind == corner_edit::INSERT ? 1 : 0;
    for (int i = 0; i < before_->num_surfaces(); ++i) {
        int lost = 0, left = 0;
        for (int c = before_->first_corner(i); c < before_->end_corner(i); ++c) {
            const int v = now[c];
            const bool goes = is_old(v) && flag(gone_vertices_, v);
            lost += goes ? 1 : 0;
            left += v >= 0 && !goes ? 1 : 0;
            left += inserted.empty() ? 0 : inserted[c];
        }
        const bool is_line = before_->surface(i).type != SURFACE_POLYGON;
        if (lost > 0 && left < (is_line ? 2 : 3))
            remove_surface(i);
    }
}

void mesh_change::find_unused()
{
    enum { UNTOUCHED, LOST, KEPT };
    std::vector<char> use(before_->num_vertices(), UNTOUCHED);
    const auto keep = [&](int v) {
        if (is_old(v))
            use[v] = KEPT;
    };
    const auto lose = [&](int v) {
        if (use[v] == UNTOUCHED)
            use[v] = LOST;
    };
    for (int i = 0; i < before_->num_surfaces(); ++i) {
        const bool stays = !flag(gone_surfaces_, i);
        for (int c = before_->first_corner(i); c < before_->end_corner(i); ++c) {
            const int v = before_->corner(c);
            const int now = corners_after()[c];
            if (stays)
                keep(now);
            if (!stays || now != v)
                lose(v);
        }
    }
    for (const corner_edit &edit : edits_) {
        if (edit.kind == corner_edit::INSERT)
            keep(edit.vertex);
    }
    for (const int v : corners_)
        keep(v);
    for (int v = 0; v < before_->num_vertices(); ++v) {
        if (use[v] == LOST)
            remove_vertex(v);
    }
}

// Whether the point is one of the object's vertices, by the numbers in their scratch words.
bool mesh_change::is_own(const vertex *point) const
{
    if (point == nullptr)
        return false;
    const std::size_t i = vertex_number(point);
    return i < before_->vertex_records->size() && before_->vertex_record(i) == point;
}

vertex *mesh_change::vertex_at(int at, const mesh_result &result) const
{
    const int old = before_->num_vertices();
    return at < old ? before_->vertex_record(at) : result.vertices[at - old];
}

// Puts the nodes of the surface's corners into `nodes` as the edits leave them, then links them.
// The corners of the flat mesh are those of the list without the ones that are not its own.
void mesh_change::edit_surface(int surface, std::span<const corner_edit> edits,
                               const mesh_result &result, std::vector<listitem *> &nodes) const
{
    surface_t *record = before_->surface_record(surface);
    int corner = before_->first_corner(surface);
    auto edit = edits.begin();
    nodes.clear();
    for (listitem *node = record->refs, *next = nullptr; node != nullptr; node = next) {
        next = node->next;
        auto *reference = item_of<svertex>(node);
        const auto place = static_cast<std::ptrdiff_t>(nodes.size());
        nodes.push_back(node);
        if (!is_own(reference->vertex))
            continue;
        bool removed = false;
        for (; edit != edits.end() && edit->corner == corner; ++edit) {
            vertex *to =
                edit->kind == corner_edit::REMOVE ? nullptr : vertex_at(edit->vertex, result);
            if (edit->kind == corner_edit::INSERT) {
                listitem *made = nullptr;
                nodes.push_back(list_add_item_head(&made, new_svertex(to, edit->uv.u, edit->uv.v)));
                continue;
            }
            removed = edit->kind == corner_edit::REMOVE;
            if (!removed)
                reference->vertex = to;
        }
        if (removed) {
            nodes.erase(nodes.begin() + place);
            myfree(reference);
            myfree(node);
        }
        ++corner;
    }
    listitem **link = &record->refs;
    for (listitem *node : nodes) {
        *link = node;
        link = &node->next;
    }
    *link = nullptr;
    record->num_refs = static_cast<int>(nodes.size());
}

// Where the corners of the records are those of the flat mesh.
void mesh_change::redirect_records(const mesh_result &result)
{
    in_parallel_ranges(before_->num_surfaces(), [&](int begin, int end) {
        for (int s = begin; s < end; ++s) {
            const auto first = before_->first_corner(s), last = before_->end_corner(s);
            if (flag(gone_surfaces_, s) ||
                std::equal(corners_after_.begin() + first, corners_after_.begin() + last,
                           before_->corners->begin() + first))
                continue;
            auto now = corners_after_.begin() + first;
            for (svertex *reference : each<svertex>(before_->surface_record(s)->refs))
                reference->vertex = vertex_at(*now++, result);
        }
    });
}

void mesh_change::edit_corners(const mesh_result &result)
{
    if (edits_.empty() && !corners_after_.empty())
        redirect_records(result);
    if (edits_.empty())
        return;
    const auto earlier = [](const corner_edit &a, const corner_edit &b) {
        return a.corner < b.corner;
    };
    if (!std::is_sorted(edits_.begin(), edits_.end(), earlier))
        std::stable_sort(edits_.begin(), edits_.end(), earlier);
    number_vertices(object_);
    const std::vector<std::int32_t> &offsets = *before_->corner_offsets;
    auto at = offsets.begin();
    std::vector<listitem *> nodes; // of the surface in hand
    for (std::size_t i = 0; i < edits_.size();) {
        while (*(at + 1) <= edits_[i].corner)
            ++at;
        const std::size_t first = i;
        while (i < edits_.size() && edits_[i].corner < *(at + 1))
            ++i;
        const auto surface = static_cast<int>(at - offsets.begin());
        if (!flag(gone_surfaces_, surface))
            edit_surface(surface, std::span(edits_).subspan(first, i - first), result, nodes);
    }
}

// Removes the corners of removed vertices from the surfaces that stay.
void mesh_change::drop_references() const
{
    const auto goes = [&](const vertex *point) {
        return is_own(point) && gone_vertices_[vertex_number(point)] != 0;
    };
    number_vertices(object_);
    for (int i = 0; i < before_->num_surfaces(); ++i) {
        const auto first = corners_after().begin() + before_->first_corner(i);
        const auto end = corners_after().begin() + before_->end_corner(i);
        if (flag(gone_surfaces_, i) ||
            std::none_of(first, end, [&](int v) { return is_old(v) && flag(gone_vertices_, v); }))
            continue;
        surface_t *surface = before_->surface_record(i);
        for (listitem **at = &surface->refs; *at != nullptr;) {
            listitem *node = *at;
            auto *reference = item_of<svertex>(node);
            if (!goes(reference->vertex)) {
                at = &node->next;
                continue;
            }
            *at = node->next;
            myfree(reference);
            myfree(node);
            --surface->num_refs;
        }
    }
}

void mesh_change::unlink()
{
    if (!gone_vertices_.empty())
        drop_references();
    freed_batch batch;
    if (!gone_surfaces_.empty()) {
        object_->num_surfaces -= list_unlink_if<surface_t>(
            &object_->surfaces, batch, [&](const surface_t * /*surface*/, std::size_t i) {
                return i < gone_surfaces_.size() && gone_surfaces_[i] != 0;
            });
    }
    if (!gone_vertices_.empty()) {
        object_->num_vertices -= list_unlink_if<vertex>(
            &object_->vertices, batch, [&](const vertex * /*point*/, std::size_t i) {
                return i < gone_vertices_.size() && gone_vertices_[i] != 0;
            });
    }
}

int mesh_change::end_of(int made) const
{
    const auto next = static_cast<std::size_t>(made) + 1;
    return next < first_corners_.size() ? first_corners_[next] : static_cast<int>(corners_.size());
}

surface_t *mesh_change::make_surface(int index, const mesh_result &result,
                                     record_maker &maker) const
{
    const int first = first_corners_[index], end = end_of(index), like = likes_[index];
    if (end == first)
        return nullptr;
    surface_t *surface = maker.make(like >= 0 ? *before_->surface_record(like) : plain_surface());
    listitem *last = nullptr;
    for (int c = first; c < end; ++c)
        last =
            maker.add_corner(surface, last, {vertex_at(corners_[c], result), uv_[c].u, uv_[c].v});
    return surface;
}

void mesh_change::set_own_values(const mesh_result &result) const
{
    for (const auto &[made, value] : types_) {
        if (surface_t *surface = result.surfaces[made]; surface != nullptr)
            surface_set_type(surface, value);
    }
    for (const auto &[made, value] : materials_) {
        if (surface_t *surface = result.surfaces[made]; surface != nullptr)
            surface_set_col(surface, value);
    }
}

void mesh_change::link(mesh_result &result)
{
    result.vertices.resize(positions_.size());
    const record_chain points =
        make_records(static_cast<int>(positions_.size()), [&](int i, record_maker &maker) {
            const int like = vertex_likes_[i];
            vertex value = like < 0 ? plain_vertex({}) : *before_->vertex_record(like);
            value.position = positions_[i];
            return result.vertices[i] = maker.make(value);
        });
    list_append_chain(&object_->vertices, &object_->num_vertices, points);

    result.surfaces.resize(likes_.size());
    const record_chain made =
        make_records(static_cast<int>(likes_.size()), [&](int i, record_maker &maker) {
            return result.surfaces[i] = make_surface(i, result, maker);
        });
    set_own_values(result);
    list_append_chain(&object_->surfaces, &object_->num_surfaces, made);
    if (made.count < static_cast<int>(result.surfaces.size()))
        std::erase(result.surfaces, nullptr);
}

// Colours of another number of vertices might fit by chance now.
void mesh_change::drop_colours() const
{
    vesk_object_set_vertex_colours(object_, nullptr);
    console_printf("%s: the colours of its points fit no more and are gone\n",
                   object_->name == nullptr ? "" : object_->name);
}

// A new vertex has the colour of the one it is like, else of the nearest one.
void mesh_change::carry_colours(const std::vector<unsigned char> &old) const
{
    std::vector<unsigned char> rgb;
    const auto take = [&](int v) {
        const auto first = old.begin() + 3 * static_cast<std::ptrdiff_t>(v);
        rgb.insert(rgb.end(), first, first + 3);
    };
    for (int v = 0; v < before_->num_vertices(); ++v) {
        if (!flag(gone_vertices_, v))
            take(v);
    }
    std::optional<nearest_points> nearest;
    for (std::size_t i = 0; i < positions_.size(); ++i) {
        const int like = vertex_likes_[i];
        if (like < 0 && !nearest)
            nearest.emplace(*before_->positions);
        take(like >= 0 ? like : std::max(nearest->nearest(positions_[i]), 0));
    }
    vesk_object_set_vertex_colours(object_, rgb.data());
}

std::vector<mesh_result> commit_all(std::vector<mesh_change> &changes)
{
    freed_batch at_once;
    std::vector<mesh_result> results;
    results.reserve(changes.size());
    for (mesh_change &change : changes)
        results.push_back(change.commit());
    return results;
}

mesh_result mesh_change::commit()
{
    mesh_result result;
    apply_to_corners();
    if (std::find(gone_surfaces_.begin(), gone_surfaces_.end(), 1) == gone_surfaces_.end())
        gone_surfaces_.clear();
    const bool takes_corners = !gone_vertices_.empty();
    if (takes_corners)
        remove_small_surfaces();
    if (remove_unused_ && (!gone_surfaces_.empty() || edits_corners()))
        find_unused();
    const bool removes = !gone_vertices_.empty() || !gone_surfaces_.empty();
    if (!removes && positions_.empty() && likes_.empty() && !edits_corners())
        return result;

    const bool other_vertices = !gone_vertices_.empty() || !positions_.empty();
    const std::vector<unsigned char> colours =
        other_vertices ? object_vertex_colours(object_) : std::vector<unsigned char>();
    const bool hands_over = !takes_corners && can_hand_over();
    session().committing = true;
    if (hands_over && can_renew()) {
        result = renew();
        session().committing = false;
        return result;
    }
    link(result); // before the elements it copies from are freed
    edit_corners(result);
    if (removes)
        unlink();
    if (!colours.empty())
        carry_colours(colours);
    else if (other_vertices && vesk_object_has_vertex_colours(object_) != 0)
        drop_colours();
    object_mark(object_, CHANGED_TOPOLOGY);
    if (hands_over && result.surfaces.size() == likes_.size())
        hand_over(result);
    session().committing = false;
    return result;
}
