#include "edit/document/scene_counts.h"

#include "base/session_state.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_internal.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/world.h"

#include <cstdint>

namespace {

// What the counts were taken of.
struct version_t {
    const object_t *world = nullptr;
    std::uint64_t model = 0;
    unsigned selection = 0;
    const listitem *first = nullptr; // of the selected objects
    int chosen_objects = 0;
    bool operator==(const version_t &) const = default;
};

version_t version_now()
{
    const selection_t &all = selection();
    return {vesk_get_world(), model_change_count(), selection_change_count(), all.objects,
            all.num_objects};
}

struct sums_t {
    int objects = 0, surfaces = 0, vertices = 0;
    void add(const object_t *object)
    {
        ++objects;
        surfaces += object->num_surfaces;
        vertices += object->num_vertices;
    }
    void add_tree(object_t *top)
    {
        if (top != nullptr &&
            top->children == nullptr) // most: no walk, which takes memory for its way
            add(top);
        else
            for_each_object(top, [this](const object_t *object) { add(object); });
    }
};

struct kept_t {
    version_t all_of, chosen_of;
    sums_t all, chosen;
};

const kept_t &counted()
{
    static kept_t kept;
    // A command that is running may have changed what it has not marked yet.
    const bool is_settled = session().command_depth <= 1;
    const version_t now = version_now();
    if (!is_settled || now.world != kept.all_of.world || now.model != kept.all_of.model) {
        kept.all = {};
        kept.all.add_tree(vesk_get_world());
        kept.all_of = now;
    }
    if (!is_settled || now != kept.chosen_of) {
        kept.chosen = {};
        for (object_t *top : selected_top_objects())
            kept.chosen.add_tree(top);
        kept.chosen_of = now;
    }
    return kept;
}

} // namespace

scene_counts_t scene_counts()
{
    const kept_t &kept = counted();
    const selection_t &all = selection();
    return {.objects = kept.all.objects - 1, // the world itself does not count
            .surfaces = kept.all.surfaces,
            .vertices = kept.all.vertices,
            .chosen_objects = all.num_objects,
            .chosen_surfaces = all.num_surfaces + kept.chosen.surfaces,
            .chosen_vertices = all.num_vertices + kept.chosen.vertices};
}
