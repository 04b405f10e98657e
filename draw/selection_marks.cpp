#include "draw/selection_marks.h"

#include "edit/document/selection_internal.h"
#include "model/change_marks_internal.h"
#include "model/each.h"
#include "model/owners.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace {

struct marks_t {
    std::unordered_set<const object_t *> whole;
    std::unordered_map<object_t *, selected_part_t> parts; // with elements
    unsigned selection_count = ~0u;
    std::uint64_t link_count = ~0ull;
    std::uint64_t model_count = ~0ull; // when the places were last compared
    unsigned generation = 0;
};

marks_t &marks()
{
    static marks_t state;
    return state;
}

void collect_edges(marks_t &state)
{
    for (const owned_edges &owned : selected_edges()) {
        std::vector<int> &ends = state.parts[owned.object].edges;
        for (const int e : owned.edges) {
            ends.push_back(owned.topology->edge(e).a);
            ends.push_back(owned.topology->edge(e).b);
        }
    }
}

void collect(marks_t &state)
{
    state.parts.clear();
    state.whole.clear();
    const selection_t &now = selection();
    state.whole.reserve(static_cast<std::size_t>(selection_get_num_objects()));
    for (object_t *object : each<object_t>(now.objects)) {
        if (object->children == nullptr)
            state.whole.insert(object);
        else
            for_each_object(object, [&](object_t *below) { state.whole.insert(below); });
    }
    for (owned_elements &owned : surfaces_by_owner(now.surfaces))
        state.parts[owned.object].surfaces = std::move(owned.indices);
    for (owned_elements &owned : vertices_by_owner(now.vertices))
        state.parts[owned.object].vertices = std::move(owned.indices);
    if (select_mode() == SELECT_EDGE)
        collect_edges(state);
    for (auto &[object, part] : state.parts) {
        part.whole = state.whole.contains(object);
        if (part.surfaces.empty() && part.vertices.empty())
            continue;
        const flat_ptr flat = object_flat(object);
        part.surface_records = flat->surface_records;
        part.vertex_records = flat->vertex_records;
    }
}

// Whether the places of some selected elements are those of an object as it was before elements
// were added or removed, which also takes freed ones out of the selection without a word.
bool is_outdated(const marks_t &state)
{
    return std::any_of(state.parts.begin(), state.parts.end(), [](const auto &row) {
        const selected_part_t &part = row.second;
        if (part.surfaces.empty() && part.vertices.empty())
            return false;
        const flat_ptr flat = object_flat(row.first);
        return part.surface_records != flat->surface_records ||
               part.vertex_records != flat->vertex_records;
    });
}

void refresh(marks_t &state, bool outdated = false)
{
    if (!outdated && state.selection_count == selection_change_count() &&
        state.link_count == tree_link_count())
        return;
    state.selection_count = selection_change_count();
    state.link_count = tree_link_count();
    ++state.generation;
    collect(state);
}

} // namespace

void selection_marks_update()
{
    marks_t &state = marks();
    refresh(state);
    if (state.model_count == model_change_count())
        return;
    if (is_outdated(state))
        refresh(state, true);
    state.model_count = model_change_count();
}

const selected_part_t *selected_part(object_t *object)
{
    refresh(marks());
    return marked_part(object);
}

const selected_part_t *marked_part(object_t *object)
{
    static const selected_part_t whole = {true, {}, {}, {}, {}, {}};
    const marks_t &state = marks();
    if (!state.parts.empty())
        if (const auto found = state.parts.find(object); found != state.parts.end())
            return &found->second;
    return !state.whole.empty() && state.whole.contains(object) ? &whole : nullptr;
}

unsigned selection_marks_generation()
{
    refresh(marks());
    return marks().generation;
}
