#include "edit/select_more.h"

#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/select_more_internal.h"
#include "model/world.h"

#include <algorithm>
#include <cstdint>

namespace {

// Everything that can be selected, for as long as this lives.
class all_selected {
public:
    all_selected() : kept_(selection_take())
    {
        selection_add_by_rule(elements_of<object_t>(vesk_get_world()->children));
    }
    ~all_selected()
    {
        saved_selection_t all = selection_take();
        selection_free(&all);
        selection_restore(&kept_);
    }
    all_selected(const all_selected &) = delete;
    all_selected &operator=(const all_selected &) = delete;

private:
    saved_selection_t kept_;
};

bool by_surfaces() { return select_mode() == SELECT_SURFACE; }
bool by_edges() { return select_mode() == SELECT_EDGE; }

// A word for each of them.
const char *element_word()
{
    return by_surfaces() ? "surfaces" : by_edges() ? "edges" : "vertices";
}

element_graph graph_of(const chosen_elements &part)
{
    const flat_mesh &mesh = *part.mesh;
    if (by_edges())
        return graph_of_edges(part.topology->table(), mesh.num_vertices());
    return by_surfaces() ? graph_of_surfaces(mesh) : graph_of_vertices(mesh);
}

std::vector<chosen_elements> selected_edge_flags()
{
    std::vector<chosen_elements> all;
    for (const owned_edges &owned : selected_edges()) {
        element_flags flags(owned.topology->size());
        for (const int e : owned.edges)
            flags[e] = 1;
        all.push_back({owned.object, object_flat(owned.object), owned.topology, std::move(flags)});
    }
    return all;
}

void select_edge_flags(const std::vector<chosen_elements> &all)
{
    std::vector<owned_edges> edges;
    for (const chosen_elements &part : all) {
        owned_edges owned = {part.object, part.topology, {}};
        for (std::size_t e = 0; e < part.chosen.size(); ++e) {
            if (part.chosen[e] != 0)
                owned.edges.push_back(static_cast<int>(e));
        }
        if (!owned.edges.empty())
            edges.push_back(std::move(owned));
    }
    select_edges(edges, edge_change::replace);
}

void select_flags(const std::vector<chosen_elements> &all)
{
    std::vector<surface_t *> surfaces;
    std::vector<vertex *> vertices;
    for (const chosen_elements &part : all) {
        for (std::size_t i = 0; i < part.chosen.size(); ++i) {
            if (part.chosen[i] == 0)
                continue;
            if (by_surfaces())
                surfaces.push_back(part.mesh->surface_record(i));
            else
                vertices.push_back(part.mesh->vertex_record(i));
        }
    }
    selection_add_surfaces(surfaces);
    selection_add_vertices(vertices);
}

int count_chosen(const std::vector<chosen_elements> &all)
{
    int count = 0;
    for (const chosen_elements &part : all) {
        for (const char flag : part.chosen)
            count += flag;
    }
    return count;
}

bool is_selection(const std::vector<chosen_elements> &all)
{
    std::vector<chosen_elements> now = selected_elements();
    std::size_t i = 0;
    for (const chosen_elements &part : all) {
        const bool any = std::any_of(part.chosen.begin(), part.chosen.end(),
                                     [](char flag) { return flag != 0; });
        const bool same = i < now.size() && now[i].object == part.object;
        if (any != same || (same && now[i].chosen != part.chosen))
            return false;
        i += same ? 1 : 0;
    }
    return i == now.size();
}

// Opens the undo record with the present selection, which is empty afterwards.
void put_selection_away()
{
    selection_t &now = selection();
    new_undo(UNDO_SELECTION, "selection");
    set_undo_selection(now.vertices, now.surfaces, now.objects, 1);
}

void show_selection(const char *tag)
{
    find_bounding_box();
    selection_changed(tag);
    finish_edit();
}

void by_graph(const char *what,
              element_flags (*change)(const element_graph &, const element_flags &))
{
    if (!has_elements_or_says(what))
        return;
    std::vector<chosen_elements> all = selected_elements();
    if (all.empty()) {
        display_message("%s - nothing selected", what);
        return;
    }
    for (chosen_elements &part : all)
        part.chosen = change(graph_of(part), part.chosen);
    choose_elements(what, all);
}

void invert_objects()
{
    const std::vector<object_t *> before = elements_of<object_t>(selection().objects);
    put_selection_away();
    selection_add_by_rule(elements_of<object_t>(vesk_get_world()->children));
    selection_drop_owned_by(before);
    show_selection("select_invert");
    display_message("select invert - %d objects", selection_get_num_objects());
}

// Evenly from 0 to below 100, from the seed and a running number.
double random_percent(std::uint64_t seed, std::uint64_t number)
{
    std::uint64_t h = (seed + 1) * 0x9E3779B97F4A7C15ULL + number * 0xBF58476D1CE4E5B9ULL;
    h = (h ^ (h >> 30)) * 0xBF58476D1CE4E5B9ULL;
    h = (h ^ (h >> 27)) * 0x94D049BB133111EBULL;
    return static_cast<double>((h ^ (h >> 31)) >> 11) * 100 / 9007199254740992.0;
}

} // namespace

bool has_elements_or_says(const char *what)
{
    if (mode_has_elements(select_mode()))
        return true;
    display_message("%s - choose surface, edge or vertex mode first", what);
    return false;
}

std::vector<chosen_elements> selected_elements()
{
    if (by_edges())
        return selected_edge_flags();
    std::vector<chosen_elements> all;
    for (const owned_elements &owned : by_surfaces() ? surfaces_by_owner(selection().surfaces)
                                                     : vertices_by_owner(selection().vertices)) {
        const flat_ptr mesh = object_flat(owned.object);
        element_flags flags(by_surfaces() ? mesh->num_surfaces() : mesh->num_vertices());
        for (const int i : owned.indices)
            flags[i] = 1;
        all.push_back({owned.object, mesh, nullptr, std::move(flags)});
    }
    return all;
}

std::vector<chosen_elements> selectable_elements()
{
    const all_selected now;
    return selected_elements();
}

void choose_elements(const char *what, const std::vector<chosen_elements> &all)
{
    const int count = count_chosen(all);
    if (!is_selection(all)) {
        put_selection_away();
        if (by_edges())
            select_edge_flags(all);
        else
            select_flags(all);
        show_selection(what);
    }
    display_message("%s - %d %s", what, count, element_word());
}

// ---- commands ----

void command_select_grow() { by_graph("select grow", grown); }

void command_select_shrink() { by_graph("select shrink", shrunk); }

void command_select_linked() { by_graph("select linked", linked); }

void command_select_invert()
{
    if (!mode_has_elements(select_mode())) {
        invert_objects();
        return;
    }
    std::vector<chosen_elements> all = selectable_elements();
    const std::vector<chosen_elements> before = selected_elements();
    std::size_t i = 0;
    for (chosen_elements &part : all) { // both in tree order
        if (i >= before.size() || before[i].object != part.object)
            continue;
        for (std::size_t at = 0; at < part.chosen.size(); ++at)
            part.chosen[at] = part.chosen[at] != 0 && before[i].chosen[at] == 0 ? 1 : 0;
        ++i;
    }
    choose_elements("select invert", all);
}

void command_select_random(int percent, int seed)
{
    if (!has_elements_or_says("select random"))
        return;
    if (percent < 0 || percent > 100) {
        display_message("select random - give a percentage from 0 to 100");
        return;
    }
    std::vector<chosen_elements> all = selected_elements();
    if (all.empty())
        all = selectable_elements();
    if (all.empty()) {
        display_message("select random - nothing to select");
        return;
    }
    std::uint64_t number = 0;
    for (chosen_elements &part : all) {
        for (char &flag : part.chosen) {
            if (flag != 0)
                flag = random_percent(static_cast<std::uint32_t>(seed), number++) < percent ? 1 : 0;
        }
    }
    choose_elements("select random", all);
}
