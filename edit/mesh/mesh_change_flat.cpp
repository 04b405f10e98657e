// The flat mesh of an object after a change, from the one before and the change.

#include "base/big_vector.h"
#include "edit/mesh/mesh_change.h"
#include "model/change_marks_internal.h"
#include "model/deferred_records.h"
#include "model/flat_array.h"
#include "model/freed_internal.h"
#include "model/object_internal.h"
#include "model/vertex_colours.h"

namespace {

// It is kept for long in the history: without much room that is not used.
template <class T>
std::vector<T> &&tight(std::vector<T> &elements)
{
    if (elements.capacity() > elements.size() + elements.size() / 8)
        elements.shrink_to_fit();
    return std::move(elements);
}

std::size_t count_left(std::size_t all, const std::vector<char> &gone)
{
    return all - static_cast<std::size_t>(std::count(gone.begin(), gone.end(), 1));
}

// Those of the old elements that stay, then the new ones.
template <class T>
flat_array<T> joined(const flat_array<T> &old, const std::vector<char> &gone, std::vector<T> &&made)
{
    if (gone.empty() && made.empty())
        return old;
    const std::size_t left = count_left(old->size(), gone);
    if (left == 0)
        return flat_shared(tight(made));
    std::vector<T> all;
    reserve_big(all, left + made.size());
    if (gone.empty())
        all = *old;
    for (std::size_t i = 0; i < gone.size(); ++i) {
        if (gone[i] == 0)
            all.push_back((*old)[i]);
    }
    all.insert(all.end(), made.begin(), made.end());
    return flat_shared(std::move(all));
}

// The same for what every corner has; surfaces go.
template <class T>
std::vector<T> joined_corners(const flat_mesh &old, const std::vector<T> &of_old,
                              const std::vector<char> &gone, std::vector<T> &&made)
{
    const std::size_t left = count_left(old.surfaces->size(), gone);
    if (left == 0)
        return tight(made);
    std::vector<T> all;
    std::size_t corners = gone.empty() ? of_old.size() : 0;
    for (std::size_t s = 0; s < gone.size(); ++s)
        corners += gone[s] == 0 ? old.surface_corners(s).size() : 0;
    reserve_big(all, corners + made.size());
    if (gone.empty())
        all.insert(all.end(), of_old.begin(), of_old.end());
    for (std::size_t s = 0; s < gone.size(); ++s) {
        if (gone[s] == 0)
            all.insert(all.end(), of_old.begin() + old.first_corner(s),
                       of_old.begin() + old.end_corner(s));
    }
    all.insert(all.end(), made.begin(), made.end());
    return all;
}

} // namespace

bool mesh_change::can_hand_over() const
{
    const auto redirects = [](const corner_edit &edit) {
        return edit.kind == corner_edit::REDIRECT;
    };
    return before_->whole && std::all_of(edits_.begin(), edits_.end(), redirects) &&
           object_flat(object_) == before_; // a plug-in that heard of the selection changed nothing
}

// The places of the vertices among those that are left.
void mesh_change::number_corners(std::vector<std::int32_t> &corners) const
{
    if (gone_vertices_.empty())
        return;
    std::vector<std::int32_t> numbers(gone_vertices_.size());
    std::int32_t left = 0;
    for (std::size_t v = 0; v < numbers.size(); ++v)
        numbers[v] = gone_vertices_[v] != 0 ? -1 : left++;
    const int old = before_->num_vertices(), gone = old - left;
    in_parallel_ranges(static_cast<int>(corners.size()), [&](int begin, int end) {
        for (int c = begin; c < end; ++c)
            corners[c] = corners[c] < old ? numbers[corners[c]] : corners[c] - gone;
    });
}

void mesh_change::hand_over_corners(flat_mesh &flat)
{
    if (!corners_after_.empty() && gone_surfaces_.empty() && likes_.empty() &&
        gone_vertices_.empty()) {
        flat.texture_coords = before_->texture_coords;
        flat.corners = flat_shared(std::move(corners_after_));
        return;
    }
    // Always an array of its own: who finds the same one takes the vertices for the same, too.
    auto corners = joined_corners(*before_, corners_after(), gone_surfaces_, std::move(corners_));
    number_corners(corners);
    flat.corners = flat_shared(std::move(corners));
    flat.texture_coords = flat_shared(
        joined_corners(*before_, *before_->texture_coords, gone_surfaces_, std::move(uv_)));
}

std::vector<flat_surface> mesh_change::attributes_of_new() const
{
    auto attributes = big_vector<flat_surface>(likes_.size());
    in_parallel_ranges(static_cast<int>(likes_.size()), [&](int begin, int end) {
        const flat_surface plain = flat_attributes(plain_surface());
        for (int i = begin; i < end; ++i)
            attributes[i] = likes_[i] >= 0 ? before_->surface(likes_[i]) : plain;
    });
    for (const auto &[made, value] : types_)
        attributes[made].type = static_cast<std::uint8_t>(value);
    for (const auto &[made, value] : materials_)
        attributes[made].material = value;
    return attributes;
}

// All but the corners and the records.
void mesh_change::hand_over_surfaces(flat_mesh &flat)
{
    flat.surfaces = joined(before_->surfaces, gone_surfaces_, attributes_of_new());
    if (gone_surfaces_.empty() && likes_.empty()) {
        flat.corner_offsets = before_->corner_offsets;
        return;
    }
    const std::size_t left = count_left(before_->surfaces->size(), gone_surfaces_);
    std::vector<std::int32_t> offsets;
    if (left > 0) {
        reserve_big(offsets, left + likes_.size() + 1);
        std::int32_t at = 0;
        for (int s = 0; s < before_->num_surfaces(); ++s) {
            if (!gone_surfaces_.empty() && gone_surfaces_[s] != 0)
                continue;
            offsets.push_back(at);
            at += before_->end_corner(s) - before_->first_corner(s);
        }
        for (const std::int32_t first : first_corners_)
            offsets.push_back(at + first);
        offsets.push_back(at + static_cast<std::int32_t>(corners_.size()));
    } else {
        first_corners_.push_back(static_cast<std::int32_t>(corners_.size()));
        offsets = tight(first_corners_);
    }
    flat.corner_offsets = flat_shared(std::move(offsets));
}

// But for normals and records.
std::shared_ptr<flat_mesh> mesh_change::flat_after()
{
    auto flat = std::make_shared<flat_mesh>();
    flat->positions = joined(before_->positions, gone_vertices_, std::move(positions_));
    hand_over_surfaces(*flat);
    hand_over_corners(*flat);
    flat->whole = true;
    return flat;
}

void mesh_change::hand_over(const mesh_result &result)
{
    const std::shared_ptr<flat_mesh> flat = flat_after();
    flat->vertex_records =
        joined(before_->vertex_records, gone_vertices_, std::vector<vertex *>(result.vertices));
    flat->surface_records =
        joined(before_->surface_records, gone_surfaces_, std::vector<surface_t *>(result.surfaces));
    state_set_flat(object_, flat, CHANGED_NORMALS);
}

// ---- without records ----

bool mesh_change::can_renew() const
{
    const bool all_go = count_left(before_->surfaces->size(), gone_surfaces_) == 0;
    if (!renews_ || !all_go || !records_can_be_renewed(num_vertices(), num_made()) ||
        vesk_object_has_vertex_colours(object_) != 0 || freed_vertices_are_held())
        return false;
    for (int i = 0; i < num_made(); ++i) {
        if (end_of(i) == first_corners_[i])
            return false; // is not made
    }
    return true;
}

// As those whom they are like have them, else of new ones.
flat_array<point3_t> mesh_change::normals_of_vertices() const
{
    auto made = big_vector<point3_t>(vertex_likes_.size());
    in_parallel_ranges(static_cast<int>(made.size()), [&](int begin, int end) {
        const point3_t plain = plain_vertex({0, 0, 0}).normal;
        for (int i = begin; i < end; ++i)
            made[i] = vertex_likes_[i] >= 0 ? before_->normal(vertex_likes_[i]) : plain;
    });
    return joined(before_->normals, gone_vertices_, std::move(made));
}

flat_array<point3_t> mesh_change::normals_of_surfaces() const
{
    auto made = big_vector<point3_t>(likes_.size());
    in_parallel_ranges(static_cast<int>(made.size()), [&](int begin, int end) {
        for (int i = begin; i < end; ++i)
            made[i] = likes_[i] >= 0 ? before_->face_normal(likes_[i]) : plain_surface().normal;
    });
    return flat_shared(std::move(made));
}

mesh_result mesh_change::renew()
{
    const auto num_vertices = static_cast<std::ptrdiff_t>(positions_.size());
    const auto normals = normals_of_vertices(), face_normals = normals_of_surfaces();
    const std::shared_ptr<flat_mesh> flat = flat_after();
    flat->normals = normals;
    flat->face_normals = face_normals;
    object_set_whole(object_, flat);
    return {{flat->vertex_records->end() - num_vertices, flat->vertex_records->end()},
            *flat->surface_records};
}
