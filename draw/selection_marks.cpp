#include "draw/selection_marks.h"

#include "edit/document/selection_internal.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/owners.h"

#include <unordered_map>

namespace {

struct marks_t {
    std::unordered_map<const object_t *, selected_part_t> parts;
    unsigned selection_count = ~0u;
    std::uint64_t tree_count = ~0ull;
    unsigned generation = 0;
};

marks_t &marks()
{
    static marks_t state;
    return state;
}

void collect(marks_t &state)
{
    state.parts.clear();
    const selection_t &now = selection();
    for (object_t *object : each<object_t>(now.objects))
        for_each_object(object, [&](object_t *below) { state.parts[below].whole = true; });
    for (owned_elements &owned : surfaces_by_owner(now.surfaces))
        state.parts[owned.object].surfaces = std::move(owned.indices);
    for (owned_elements &owned : vertices_by_owner(now.vertices))
        state.parts[owned.object].vertices = std::move(owned.indices);
}

void refresh(marks_t &state)
{
    if (state.selection_count == selection_change_count() &&
        state.tree_count == tree_change_count())
        return;
    state.selection_count = selection_change_count();
    state.tree_count = tree_change_count();
    ++state.generation;
    collect(state);
}

} // namespace

const selected_part_t *selected_part(const object_t *object)
{
    marks_t &state = marks();
    refresh(state);
    const auto found = state.parts.find(object);
    return found != state.parts.end() ? &found->second : nullptr;
}

unsigned selection_marks_generation()
{
    refresh(marks());
    return marks().generation;
}
