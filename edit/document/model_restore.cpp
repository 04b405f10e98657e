// Making the model that of a state: first the objects that the state lacks are freed, then its own
// are made or written, then the tree is linked, so that nothing freed is ever linked.

#include "edit/document/model_restore.h"

#include "base/ui_port.h"
#include "edit/document/geometry_image.h"
#include "edit/document/model_state_internal.h"
#include "edit/document/selection_image.h"
#include "model/alloc_internal.h"
#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/freed.h"
#include "model/identity.h"
#include "model/object_internal.h"
#include "model/palette.h"
#include "model/property.h"
#include "model/world.h"

#include <unordered_set>

namespace {

const char *c_text(const std::optional<std::string> &text)
{
    return text ? text->c_str() : nullptr;
}

bool properties_match(const listitem *list, const std::vector<property_image> &images)
{
    return (list == nullptr && images.empty()) || properties_equal(properties_of(list), images);
}

// Everything of the record but geometry and links.
void write_record(object_t *object, const object_image &image)
{
    object_t fresh = image.record();
    fresh.name = object->name;
    fresh.data = object->data;
    fresh.url = object->url;
    fresh.num_vertices = object->num_vertices;
    fresh.num_surfaces = object->num_surfaces;
    fresh.num_children = object->num_children;
    fresh.vertices = object->vertices;
    fresh.surfaces = object->surfaces;
    fresh.children = object->children;
    fresh.parent = object->parent;
    fresh.properties = object->properties;
    *object = fresh;
    text_set(&object->name, image.name.c_str());
    text_set(&object->data, c_text(image.details->data));
    text_set(&object->url, c_text(image.details->url));
    if (!properties_match(object->properties, image.details->properties)) {
        proplist_free(&object->properties);
        for (const property_image &prop : image.details->properties) {
            list_add_item(&object->properties,
                          vesk_new_prop(prop.name.c_str(), prop.kind.c_str(), prop.value.c_str()));
        }
    }
    object_mark(object, CHANGED_RECORD);
}

// Values go back into their entries; the palette never shrinks, so later entries stay. Properties
// of materials may be shared between entries: they are set, none is taken away.
void write_palette(const std::vector<material_image> &images)
{
    bool changed = false;
    const auto size = static_cast<std::size_t>(vesk_get_num_palette());
    for (std::size_t i = 0; i < images.size() && i < size; ++i) {
        const material_image &image = images[i];
        material *entry = vesk_palette_get_material(static_cast<int>(i));
        material fresh = image.values;
        fresh.name = entry->name;
        fresh.properties = entry->properties;
        *entry = fresh;
        text_set(&entry->name, c_text(image.name));
        for (const property_image &prop : image.properties) {
            vesk_material_set_prop_value(entry, prop.name.c_str(), prop.kind.c_str(),
                                         prop.value.c_str());
        }
        changed = true;
    }
    if (changed)
        palette_mark();
}

class restoration {
public:
    explicit restoration(const state_ptr &state) : state_(state), targets_(size()) {}

    // Whether nothing of the state had to be made anew.
    bool run(const selection_image *selection)
    {
        if (has_known_tree()) {
            write_differences();
        } else {
            find_targets();
            const bool relink = !tree_is_same();
            if (relink)
                free_others();
            for (int i = 0; i < state_->num_objects; ++i)
                write_object(i);
            if (relink)
                link_tree();
            note_objects();
        }
        if (!known_.state || known_.state->palette != state_->palette ||
            known_.palette_count != palette_change_count())
            write_palette(*state_->palette);
        update_flags();
        note();
        if (selection != nullptr)
            selection_image_restore(*selection, by_identity());
        return kept_;
    }

private:
    [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(state_->num_objects); }
    object_t *&target(int i) { return targets_[i]; }

    // ---- the tree is that of the newest state, which tells where there is something to write ----

    [[nodiscard]] bool has_known_tree() const
    {
        if (!known_.state || known_.interrupted || known_.world != vesk_get_world() ||
            known_.link_count != tree_link_count() ||
            known_.state->num_objects != state_->num_objects)
            return false;
        const auto same = [](const state_entry &a, const state_entry &b) {
            return a.parent == b.parent && a.image->identity == b.image->identity;
        };
        for (std::size_t i = 0; i < state_->blocks.size(); ++i) {
            const auto &a = state_->blocks[i], &b = known_.state->blocks[i];
            if (a != b && !std::equal(a->begin(), a->end(), b->begin(), same))
                return false;
        }
        return true;
    }

    void write_differences()
    {
        std::transform(known_.objects.begin(), known_.objects.end(), targets_.begin(),
                       [](const auto &at) { return at.object; });
        std::vector<object_t *> changed;
        const bool known = changed_objects_take(&changed);
        known_.interrupted = true; // until the end
        std::vector<char> marked(size(), known ? 0 : 1);
        for (const object_t *object : changed) {
            if (const int place = known_.place_of(object); place >= 0)
                marked[place] = 1;
        }
        for (int i = 0; i < state_->num_objects; ++i) {
            const auto block = static_cast<std::size_t>(i / model_state::block_size);
            if (marked[i] == 0 && (state_->blocks[block] == known_.state->blocks[block] ||
                                   state_->entry(i).image == known_.state->entry(i).image))
                continue;
            write_object(i);
            known_.objects[i].stamp = object_stamp(target(i));
        }
    }

    // ---- any tree ----

    void find_targets()
    {
        for_each_object(vesk_get_world(), [&](object_t *object) {
            live_.push_back(object);
            if (const int identity = identity_known(object); identity != 0)
                by_identity_.emplace(identity, object);
        });
        target(0) = vesk_get_world();
        for (int i = 1; i < state_->num_objects; ++i) {
            const auto found = by_identity_.find(state_->entry(i).image->identity);
            if (found != by_identity_.end() && found->second != vesk_get_world())
                target(i) = found->second;
        }
    }

    // Depth first with the same parents is the same tree.
    bool tree_is_same()
    {
        if (live_ != targets_)
            return false;
        for (int i = 1; i < state_->num_objects; ++i) {
            if (target(i)->parent != target(state_->entry(i).parent))
                return false;
        }
        return true;
    }

    // Also takes the tree apart: it is linked anew from kept and new objects.
    void free_others()
    {
        const std::unordered_set<const object_t *> kept(targets_.begin(), targets_.end());
        freed_batch batch;
        for (object_t *object : live_) {
            list_free(&object->children);
            object->num_children = 0;
            object->parent = nullptr;
        }
        for (object_t *object : live_) {
            if (kept.count(object) != 0)
                continue;
            by_identity_.erase(identity_known(object)); // the selection may name it
            batch.add(object);
        }
        tree_mark();
    }

    bool equals_image(const object_t *object, std::uint64_t stamp, const image_ptr &image)
    {
        const int place = known_.state ? known_.place_of(object) : -1;
        return place >= 0 && known_.objects[place].stamp == stamp &&
               known_.state->entry(place).image == image;
    }

    void write_object(int i)
    {
        const image_ptr &image = state_->entry(i).image;
        object_t *&object = target(i);
        if (object) {
            if (equals_image(object, object_stamp(object), image))
                return;
        } else {
            kept_ = false;
            object = new_object(image->details->record.type);
            by_identity_[image->identity] = object;
        }
        if (identity_known(object) != image->identity)
            identity_assign(image->identity, object);
        write_record(object, *image);
        kept_ &= object_write_geometry(object, *image->geometry);
    }

    void link_tree()
    {
        std::vector<listitem *> last(size());
        for (int i = 1; i < state_->num_objects; ++i) {
            const int parent_place = state_->entry(i).parent;
            object_t *parent = target(parent_place);
            listitem *&node = last[parent_place];
            node = list_add_item_fast(&parent->children, node, target(i));
            ++parent->num_children;
            target(i)->parent = parent;
        }
        tree_mark();
    }

    // The linked script variables show the new state.
    void update_flags()
    {
        object_marks &marks = objects_marks();
        const object_marks before = marks;
        marks = {};
        for (int i = 1; i < state_->num_objects; ++i) {
            marks.hidden |= target(i)->visible == 0 ? 1 : 0;
            marks.locked |= target(i)->locked != 0 ? 1 : 0;
        }
        if (before.hidden != marks.hidden)
            ui_port().update_linked("objects_are_hidden");
        if (before.locked != marks.locked)
            ui_port().update_linked("objects_are_locked");
    }

    void note_objects()
    {
        std::vector<object_t *> changed; // these are what was written
        changed_objects_take(&changed);
        std::vector<tracked_model::tracked_object> objects;
        objects.reserve(size());
        for (object_t *object : targets_)
            objects.push_back({object, object_stamp(object)});
        known_.set_objects(std::move(objects));
    }

    // The model now equals the state.
    void note()
    {
        known_.state = state_;
        known_.interrupted = false;
        known_.model_count = model_change_count();
        known_.link_count = tree_link_count();
        // Entries that were added since are still there: they are looked at again.
        const bool grown =
            state_->palette->size() < static_cast<std::size_t>(vesk_get_num_palette());
        known_.palette_count = palette_change_count() - (grown ? 1 : 0);
        known_.selection_count = selection_change_count() - 1; // the selection is looked at again
    }

    const objects_by_identity &by_identity()
    {
        const int end = by_identity_.empty() ? state_->num_objects : 0;
        for (int i = 0; i < end; ++i)
            by_identity_.emplace(state_->entry(i).image->identity, target(i));
        return by_identity_;
    }

    tracked_model &known_ = tracked();
    const state_ptr state_;
    std::vector<object_t *> live_;
    std::vector<object_t *> targets_; // the object of each entry
    objects_by_identity by_identity_;
    bool kept_ = true;
};

} // namespace

bool model_state_restore(const state_ptr &state, const selection_image *selection)
{
    const bool kept = restoration(state).run(selection);
    find_bounding_box();
    if (selection != nullptr)
        selection_changed("undo");
    return kept;
}
