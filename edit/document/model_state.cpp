#include "edit/document/model_state.h"

#include "base/worker.h"
#include "edit/document/following_normals.h"
#include "edit/document/geometry_image.h"
#include "edit/document/model_state_internal.h"
#include "edit/document/selection_image.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/normals_internal.h"
#include "model/palette.h"
#include "model/property.h"
#include "model/textures/textures.h"
#include "model/world.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <mutex>

namespace {

// ---- accounting ----

struct image_accounts {
    struct held_array {
        std::size_t bytes;
        int images;
    };
    std::mutex mutex; // a worker may drop the last reference to an image
    std::unordered_map<const void *, held_array> arrays;
    std::size_t bytes = 0;
};

image_accounts &accounts()
{
    static auto *const record = new image_accounts; // outlives the states that others keep
    return *record;
}

template <class Visit>
void for_each_array(const flat_mesh &geometry, Visit &&visit)
{
    const auto array = [&](const auto &elements) {
        if (elements && !elements->empty()) {
            visit(static_cast<const void *>(elements.get()),
                  elements->size() * sizeof(elements->front()));
        }
    };
    array(geometry.positions);
    array(geometry.normals);
    array(geometry.face_normals);
    array(geometry.surfaces);
    array(geometry.corner_offsets);
    array(geometry.corners);
    array(geometry.texture_coords);
}

// ---- images ----

std::optional<std::string> optional_text(const char *text)
{
    return text ? std::optional<std::string>(text) : std::nullopt;
}

std::string plain_text(const char *text) { return text ? text : ""; }

std::vector<property_image> properties_of(const listitem *list)
{
    std::vector<property_image> images;
    for (const vesk_prop_t *prop : each<vesk_prop_t>(list))
        images.push_back({plain_text(prop->name), plain_text(prop->kind), plain_text(prop->value)});
    return images;
}

object_t plain_fields(const object_t &object)
{
    object_t record = object;
    record.name = record.data = record.url = nullptr;
    record.num_vertices = record.num_surfaces = record.num_children = 0;
    record.vertices = record.surfaces = record.children = record.properties = nullptr;
    record.parent = nullptr;
    return record;
}

void images_hold(const flat_mesh &geometry)
{
    image_accounts &all = accounts();
    const std::lock_guard lock(all.mutex);
    for_each_array(geometry, [&](const void *array, std::size_t bytes) {
        if (all.arrays.try_emplace(array, image_accounts::held_array{bytes, 0})
                .first->second.images++ == 0)
            all.bytes += bytes;
    });
}

void images_release(const flat_mesh &geometry)
{
    image_accounts &all = accounts();
    const std::lock_guard lock(all.mutex);
    for_each_array(geometry, [&](const void *array, std::size_t) {
        const auto held = all.arrays.find(array);
        if (held != all.arrays.end() && --held->second.images == 0) {
            all.bytes -= held->second.bytes;
            all.arrays.erase(held);
        }
    });
}

bool same_bits(float a, float b)
{
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

bool same_bits(const point3_t &a, const point3_t &b)
{
    return same_bits(a.x, b.x) && same_bits(a.y, b.y) && same_bits(a.z, b.z);
}

bool face_normals_follow(const flat_mesh &mesh)
{
    if (normals_are_known_to_follow(mesh))
        return true;
    std::atomic<bool> follow = true;
    in_parallel_ranges(mesh.num_surfaces(), [&](int begin, int end) {
        for (int i = begin; i < end && follow; ++i) {
            if (!same_bits(mesh.face_normal(i), normal_of_corners(mesh, i)))
                follow = false;
        }
    });
    return follow;
}

image_ptr image_of(object_t *object, const object_image *before)
{
    auto image = std::make_shared<object_image>();
    image->identity = object_identity(object);
    image->record = plain_fields(*object);
    image->name = plain_text(object->name);
    image->data = optional_text(object->data);
    image->url = optional_text(object->url);
    if (object->has_texture != 0 && object->texture < vesk_get_num_textures())
        image->texture_file = optional_text(texture_id_to_name(object->texture));
    image->properties = properties_of(object->properties);
    image->geometry = object_flat(object)->without_records();
    flat_mesh &mesh = image->geometry;
    // Derived face normals are not kept a second time. Those of the image before are known.
    if (before && before->geometry.face_normals != mesh.face_normals && face_normals_follow(mesh))
        mesh.face_normals = nullptr;
    images_hold(mesh);
    return image;
}

template <class T>
bool same_array(const flat_array<T> &a, const flat_array<T> &b)
{
    return a == b ||
           (a && b && a->size() == b->size() &&
            (a->empty() || std::memcmp(a->data(), b->data(), a->size() * sizeof(T)) == 0));
}

bool images_near(const object_image &a, const object_image &b, float slack = 0);

// Whether an object that was marked as changed is as it was, to the bit: a drag was taken back.
// `face_normals` are those that `now` was made from.
bool is_unchanged(const object_image &now, const flat_array<point3_t> &face_normals,
                  const object_image &before)
{
    const flat_mesh &a = now.geometry, &b = before.geometry;
    const bool same_faces =
        b.face_normals ? same_array(face_normals, b.face_normals) : !a.face_normals;
    return same_array(a.positions, b.positions) && same_array(a.normals, b.normals) && same_faces &&
           std::memcmp(now.record.rotation, before.record.rotation, sizeof now.record.rotation) ==
               0 &&
           same_bits(now.record.centre, before.record.centre) && images_near(now, before);
}

bool properties_equal(const std::vector<property_image> &a, const std::vector<property_image> &b)
{
    const auto same = [](const property_image &x, const property_image &y) {
        return x.name == y.name && x.kind == y.kind && x.value == y.value;
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

bool materials_equal(const material_image &a, const material_image &b)
{
    const auto same_bytes = [](const auto &x, const auto &y) {
        return std::memcmp(&x, &y, sizeof x) == 0;
    };
    const material &x = a.values;
    const material &y = b.values;
    return same_bytes(x.diffuse, y.diffuse) && same_bytes(x.ambient, y.ambient) &&
           same_bytes(x.emissive, y.emissive) && same_bytes(x.specular, y.specular) &&
           same_bits(x.shininess, y.shininess) && same_bits(x.transparency, y.transparency) &&
           x.extra_word == y.extra_word && a.name == b.name &&
           properties_equal(a.properties, b.properties);
}

// As far as both go.
bool palettes_same(const std::vector<material_image> &a, const std::vector<material_image> &b)
{
    const auto both = static_cast<std::ptrdiff_t>(std::min(a.size(), b.size()));
    return &a == &b || std::equal(a.begin(), a.begin() + both, b.begin(), materials_equal);
}

using palette_image = std::shared_ptr<const std::vector<material_image>>;

palette_image palette_image_take()
{
    auto image = std::make_shared<std::vector<material_image>>();
    for (int i = 0; i < vesk_get_num_palette(); ++i) {
        const material *entry = vesk_palette_get_material(i);
        material values = *entry;
        values.name = nullptr;
        values.properties = nullptr;
        image->push_back({values, optional_text(entry->name), properties_of(entry->properties)});
    }
    return image;
}

// ---- taking ----

// Entry by entry into blocks; a block that equals the old state's is shared.
class block_builder {
public:
    explicit block_builder(const model_state *old) : old_(old) {}

    void add(state_entry &&entry)
    {
        entries_.push_back(std::move(entry));
        if (entries_.size() == model_state::block_size)
            close();
    }
    void finish(model_state *state)
    {
        if (!entries_.empty())
            close();
        state->blocks = std::move(blocks_);
    }

private:
    void close()
    {
        const std::size_t at = blocks_.size();
        if (old_ && at < old_->blocks.size() && *old_->blocks[at] == entries_) {
            blocks_.push_back(old_->blocks[at]);
        } else {
            blocks_.push_back(std::make_shared<const model_state::block>(entries_));
        }
        entries_.clear();
    }

    const model_state *old_;
    model_state::block entries_;
    std::vector<std::shared_ptr<const model_state::block>> blocks_;
};

class capture {
public:
    capture() : known_(tracked()), old_(known_.state.get()) {}

    void run()
    {
        auto state = std::make_shared<model_state>();
        if (!known_.state || known_.world != vesk_get_world() ||
            (known_.tree_count != tree_change_count() && !is_same_tree())) {
            take_tree(state.get());
        } else {
            take_changed(state.get());
        }
        if (!old_ || known_.palette_count != palette_change_count()) {
            state->palette = palette_image_take();
            if (old_ && std::equal(state->palette->begin(), state->palette->end(),
                                   old_->palette->begin(), old_->palette->end(), materials_equal))
                state->palette = old_->palette; // it was only suspected of having changed
        } else {
            state->palette = old_->palette;
        }
        state->selection = take_selection();
        if (!old_ || *old_ != *state)
            known_.state = std::move(state);
        known_.model_count = model_change_count();
        known_.tree_count = tree_change_count();
        known_.palette_count = palette_change_count();
        known_.selection_count = selection_change_count();
    }

private:
    image_ptr image_for(object_t *object, std::uint64_t stamp, const state_entry *before,
                        std::uint64_t before_stamp)
    {
        if (before && before_stamp == stamp)
            return before->image;
        image_ptr image = image_of(object, before ? before->image.get() : nullptr);
        if (before && is_unchanged(*image, object_flat(object)->face_normals, *before->image))
            return before->image;
        if (!before || before->image->geometry.corners != image->geometry.corners ||
            before->image->geometry.positions->size() != image->geometry.positions->size())
            places_changed_ = true;
        return image;
    }

    // Most marks of the tree are of a name or a frame: it has the same objects, in the same order and with the
    // same parents, which is cheaper to see than to look each of them up.
    [[nodiscard]] bool is_same_tree() const
    {
        const auto &objects = known_.objects;
        std::size_t i = 0;
        const object_t *other = find_object_where(vesk_get_world(), [&](const object_t *object) {
            if (i == objects.size() || objects[i].object != object)
                return true;
            const int parent = old_->entry(static_cast<int>(i++)).parent;
            return parent >= 0 && objects[parent].object != object->parent;
        });
        return other == nullptr && i == objects.size();
    }

    // The same objects as before, in the same places.
    void take_changed(model_state *state)
    {
        state->num_objects = old_->num_objects;
        state->blocks = old_->blocks;
        std::shared_ptr<model_state::block> copy; // of the block that is being changed
        for (int i = 0; i < old_->num_objects; ++i) {
            if (i % model_state::block_size == 0)
                copy = nullptr;
            tracked_model::tracked_object &at = known_.objects[i];
            const std::uint64_t stamp = object_stamp(at.object);
            if (stamp == at.stamp)
                continue;
            const state_entry &before = old_->entry(i);
            image_ptr image = image_for(at.object, stamp, &before, at.stamp);
            at.stamp = stamp;
            if (image == before.image)
                continue;
            const auto block = static_cast<std::size_t>(i / model_state::block_size);
            if (!copy) {
                copy = std::make_shared<model_state::block>(*old_->blocks[block]);
                state->blocks[block] = copy;
            }
            (*copy)[i % model_state::block_size].image = std::move(image);
        }
    }

    void take_tree(model_state *state)
    {
        places_changed_ = true;
        block_builder blocks(old_);
        std::vector<tracked_model::tracked_object> objects;
        std::unordered_map<const object_t *, int> places;
        for_each_object(vesk_get_world(), [&](object_t *object) {
            const std::uint64_t stamp = object_stamp(object);
            const state_entry *before = nullptr;
            std::uint64_t before_stamp = 0;
            const auto place = known_.places.find(object);
            if (place != known_.places.end()) {
                before_stamp = known_.objects[place->second].stamp;
                before = &old_->entry(place->second);
            }
            const auto parent = places.find(object->parent);
            blocks.add({image_for(object, stamp, before, before_stamp),
                        parent == places.end() ? -1 : parent->second,
                        list_count(object->children)});
            places.emplace(object, static_cast<int>(objects.size()));
            objects.push_back({object, stamp});
        });
        state->num_objects = static_cast<int>(objects.size());
        blocks.finish(state);
        known_.objects = std::move(objects);
        known_.places = std::move(places);
        known_.world = vesk_get_world();
    }

    std::shared_ptr<const selection_image> take_selection()
    {
        if (old_ && !places_changed_ && known_.selection_count == selection_change_count() &&
            old_->selection->mode == select_mode())
            return old_->selection;
        auto image = selection_image_take(known_.objects);
        return old_ && *old_->selection == *image ? old_->selection : image;
    }

    tracked_model &known_;
    const model_state *old_;
    bool places_changed_ = false; // of vertices and surfaces in their lists, of objects in the tree
};

// ---- comparing ----

// `slack` is the loss allowed at any scale; an infinite one allows every difference.
bool near(float a, float b, float scale, float slack)
{
    if (same_bits(a, b) || std::isinf(slack))
        return true;
    return std::fabs(a - b) <= std::max(scale * 1e-5f, slack); // false for no number
}

float largest(const std::vector<point3_t> &points)
{
    float most = 1e-6f;
    for (const point3_t &p : points)
        most = std::max({most, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
    return most;
}

bool near(const point3_t &a, const point3_t &b, float scale, float slack)
{
    return near(a.x, b.x, scale, slack) && near(a.y, b.y, scale, slack) &&
           near(a.z, b.z, scale, slack);
}

bool positions_near(const std::vector<point3_t> &a, const std::vector<point3_t> &b, float slack)
{
    if (a.size() != b.size())
        return false;
    const float scale = std::max(largest(a), largest(b));
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!near(a[i], b[i], scale, slack))
            return false;
    }
    return true;
}

template <class T>
bool arrays_equal(const flat_array<T> &a, const flat_array<T> &b)
{
    return a == b || *a == *b;
}

bool geometry_near(const flat_mesh &a, const flat_mesh &b, float slack)
{
    return arrays_equal(a.corner_offsets, b.corner_offsets) && arrays_equal(a.corners, b.corners) &&
           arrays_equal(a.surfaces, b.surfaces) &&
           arrays_equal(a.texture_coords, b.texture_coords) &&
           (a.positions == b.positions || positions_near(*a.positions, *b.positions, slack));
}

bool frames_near(const object_t &a, const object_t &b, float slack)
{
    for (int i = 0; i < 9; ++i) {
        if (!near(a.rotation[i], b.rotation[i], 1, 0))
            return false;
    }
    const point3_t &p = a.centre;
    const point3_t &q = b.centre;
    const float scale = std::max(largest({p, q}), 1.0f);
    return near(p, q, scale, slack);
}

bool images_near(const object_image &a, const object_image &b, float slack)
{
    const object_t &r = a.record;
    const object_t &s = b.record;
    return a.identity == b.identity && a.name == b.name && a.data == b.data && a.url == b.url &&
           properties_equal(a.properties, b.properties) && r.type == s.type &&
           r.visible == s.visible && r.locked == s.locked && r.has_texture == s.has_texture &&
           r.texture == s.texture && r.texture_repeat_x == s.texture_repeat_x &&
           r.texture_repeat_y == s.texture_repeat_y && r.texture_offset_x == s.texture_offset_x &&
           r.texture_offset_y == s.texture_offset_y && frames_near(r, s, slack) &&
           geometry_near(a.geometry, b.geometry, slack);
}

} // namespace

object_image::~object_image() { images_release(geometry); }

std::size_t model_state_bytes()
{
    const std::lock_guard lock(accounts().mutex);
    return accounts().bytes;
}

tracked_model &tracked()
{
    static tracked_model model;
    return model;
}

state_ptr model_state_capture()
{
    const tracked_model &known = tracked();
    const bool unchanged = known.state && known.world == vesk_get_world() &&
                           known.model_count == model_change_count() &&
                           known.selection_count == selection_change_count() &&
                           known.state->selection->mode == select_mode();
    if (!unchanged)
        capture().run();
    return known.state;
}

float model_state_reach(const model_state &state)
{
    float reach = 0;
    const auto look = [&](const point3_t &p) {
        for (const float c : {p.x, p.y, p.z})
            reach = std::isfinite(c) ? std::max(reach, std::fabs(c))
                                     : std::numeric_limits<float>::infinity();
    };
    for (const auto &block : state.blocks) {
        for (const state_entry &entry : *block) {
            look(entry.image->record.centre);
            std::for_each(entry.image->geometry.positions->begin(),
                          entry.image->geometry.positions->end(), look);
        }
    }
    return reach;
}

bool model_state_same(const model_state &a, const model_state &b)
{
    if (a.num_objects != b.num_objects)
        return false;
    for (int i = 0; i < a.num_objects; ++i) {
        const auto block = static_cast<std::size_t>(i / model_state::block_size);
        if (i % model_state::block_size == 0 && a.blocks[block] == b.blocks[block]) {
            i += model_state::block_size - 1;
            continue;
        }
        const state_entry &x = a.entry(i), &y = b.entry(i);
        if (x == y)
            continue;
        if (x.parent != y.parent || x.num_children != y.num_children ||
            x.image->identity != y.image->identity ||
            !is_unchanged(*x.image, x.image->geometry.face_normals, *y.image))
            return false;
    }
    return palettes_same(*a.palette, *b.palette);
}

bool model_state_nearly_equal(const model_state &a, const model_state &b, float reach)
{
    const float slack = reach * 1e-6f;
    if (a.num_objects != b.num_objects)
        return false;
    for (std::size_t block = 0; block < a.blocks.size(); ++block) {
        if (a.blocks[block] == b.blocks[block])
            continue;
        for (std::size_t i = 0; i < a.blocks[block]->size(); ++i) {
            const state_entry &x = (*a.blocks[block])[i];
            const state_entry &y = (*b.blocks[block])[i];
            if (x.parent != y.parent ||
                (x.image != y.image && !images_near(*x.image, *y.image, slack)))
                return false;
        }
    }
    return palettes_same(*a.palette, *b.palette);
}

void model_state_reset_for_test() { tracked() = {}; }
