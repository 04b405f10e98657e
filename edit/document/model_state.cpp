#include "edit/document/model_state.h"

#include "edit/document/model_state_internal.h"
#include "edit/document/selection_image.h"
#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/palette.h"
#include "model/world.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <utility>

namespace {

bool materials_equal(const material_image &a, const material_image &b)
{
    const auto same_bytes = [](const auto &x, const auto &y) {
        return std::memcmp(&x, &y, sizeof x) == 0;
    };
    const material &x = a.values;
    const material &y = b.values;
    return same_bytes(x.diffuse, y.diffuse) && same_bytes(x.ambient, y.ambient) &&
           same_bytes(x.emissive, y.emissive) && same_bytes(x.specular, y.specular) &&
           same_bytes(x.shininess, y.shininess) && same_bytes(x.transparency, y.transparency) &&
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
        const bool interrupted = std::exchange(known_.interrupted, true); // by a fault
        if (!known_.state || known_.world != vesk_get_world() ||
            (known_.link_count != tree_link_count() && !is_same_tree())) {
            take_tree(state.get());
        } else {
            take_changed(state.get(), interrupted);
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
        known_.link_count = tree_link_count();
        known_.palette_count = palette_change_count();
        known_.selection_count = selection_change_count();
        known_.interrupted = false;
    }

private:
    image_ptr image_for(object_t *object, std::uint64_t stamp, const state_entry *before,
                        std::uint64_t before_stamp)
    {
        if (before && before_stamp == stamp)
            return before->image;
        image_ptr image = image_of(object, before ? before->image.get() : nullptr, alike_.get());
        alike_ = image;
        if (before && is_unchanged(*image, object_flat(object)->face_normals, *before->image))
            return before->image;
        if (!before || before->image->geometry->corners != image->geometry->corners ||
            before->image->geometry->positions->size() != image->geometry->positions->size())
            places_changed_ = true;
        return image;
    }

    // What is only suspected of other links has the same objects, in the same order and with the same
    // parents, which is cheaper to see than to look each of them up.
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

    // Ascending, each once.
    std::vector<int> changed_places(bool all)
    {
        std::vector<object_t *> changed;
        std::vector<int> places;
        if (!changed_objects_take(&changed) || all) {
            places.resize(known_.objects.size());
            std::iota(places.begin(), places.end(), 0);
            return places;
        }
        for (const object_t *object : changed) {
            if (const int place = known_.place_of(object); place >= 0)
                places.push_back(place);
        }
        if (!std::is_sorted(places.begin(), places.end()))
            std::sort(places.begin(), places.end());
        return places;
    }

    // The same objects as before, in the same places.
    void take_changed(model_state *state, bool all)
    {
        state->num_objects = old_->num_objects;
        state->blocks = old_->blocks;
        std::shared_ptr<model_state::block> copy; // of the block that is being changed
        std::size_t copied = old_->blocks.size();
        for (const int i : changed_places(all)) {
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
            if (block != copied) {
                copy = std::make_shared<model_state::block>(*old_->blocks[block]);
                state->blocks[block] = copy;
                copied = block;
            }
            (*copy)[i % model_state::block_size].image = std::move(image);
        }
    }

    void take_tree(model_state *state)
    {
        std::vector<object_t *> changed; // all are looked at
        changed_objects_take(&changed);
        places_changed_ = true;
        block_builder blocks(old_);
        std::vector<tracked_model::tracked_object> objects;
        std::vector<int> parents;
        objects.reserve(known_.objects.size());
        parents.reserve(known_.objects.size());
        for_each_object(vesk_get_world(), [&](object_t *object) {
            const std::uint64_t stamp = object_stamp(object);
            const int place = known_.place_of(object);
            const state_entry *before = place >= 0 ? &old_->entry(place) : nullptr;
            // Depth first: the parent is the one before or above it.
            auto parent = static_cast<int>(objects.size()) - 1;
            while (parent >= 0 && objects[parent].object != object->parent)
                parent = parents[parent];
            blocks.add({image_for(object, stamp, before, before ? known_.objects[place].stamp : 0),
                        parent, list_count(object->children)});
            objects.push_back({object, stamp});
            parents.push_back(parent);
        });
        state->num_objects = static_cast<int>(objects.size());
        blocks.finish(state);
        known_.set_objects(std::move(objects));
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
    image_ptr alike_;             // the last one that was made
    bool places_changed_ = false; // of vertices and surfaces in their lists, of objects in the tree
};

} // namespace

int tracked_model::place_of(const object_t *object) const
{
    const int place = state_of(object).place;
    const bool valid = place >= 0 && place < static_cast<int>(objects.size());
    return valid && objects[place].object == object ? place : -1;
}

void tracked_model::set_objects(std::vector<tracked_object> &&all)
{
    objects = std::move(all);
    int place = 0;
    for (const tracked_object &at : objects)
        state_of(at.object).place = place++;
    world = vesk_get_world();
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

std::size_t model_state_bytes() { return images_bytes(); }

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
            look(entry.image->centre);
            const flat_mesh &geometry = *entry.image->geometry;
            std::for_each(geometry.positions->begin(), geometry.positions->end(), look);
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
            !is_unchanged(*x.image, x.image->geometry->face_normals, *y.image))
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
