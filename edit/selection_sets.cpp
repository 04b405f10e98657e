#include "edit/selection_sets.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/edge_selection.h"
#include "edit/document/edit_support.h"
#include "edit/document/element_text.h"
#include "edit/document/modes.h"
#include "edit/document/undo_internal.h"
#include "model/flat_mesh.h"
#include "model/object_notes.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <algorithm>
#include <set>
#include <sstream>
#include <string_view>
#include <vector>

namespace {

struct set_t {
    std::string kind, counts, places, name;
};

std::vector<set_t> sets_of(const object_t *object)
{
    std::vector<set_t> sets;
    for (const std::string &note : object_notes(object, note_of_selection_set)) {
        std::istringstream words(note);
        set_t set;
        if (words >> set.kind >> set.counts >> set.places &&
            std::getline(words >> std::ws, set.name))
            sets.push_back(std::move(set));
    }
    return sets;
}

void write_sets(object_t *object, const std::vector<set_t> &sets)
{
    std::vector<std::string> notes;
    for (const set_t &set : sets)
        notes.push_back(set.kind + " " + set.counts + " " + set.places + " " + set.name);
    object_set_notes(object, note_of_selection_set, notes);
}

// A name is the rest of a line.
std::string tidy_name(const char *name)
{
    std::string tidy = name;
    std::replace_if(
        tidy.begin(), tidy.end(), [](char c) { return static_cast<unsigned char>(c) < 32; }, ' ');
    tidy.erase(0, tidy.find_first_not_of(' '));
    tidy.erase(tidy.find_last_not_of(' ') + 1);
    return tidy;
}

// What is selected, by owners; an object as a whole has no places.
std::vector<owned_elements> selected_parts()
{
    std::vector<owned_elements> parts;
    switch (select_mode()) {
    case SELECT_SURFACE:
        return surfaces_by_owner(selection().surfaces);
    case SELECT_VERTEX:
        return vertices_by_owner(selection().vertices);
    case SELECT_EDGE:
        for (owned_edges &owned : selected_edges()) {
            std::sort(owned.edges.begin(), owned.edges.end());
            parts.push_back({owned.object, std::move(owned.edges)});
        }
        return parts;
    default:
        for (object_t *object : selected_objects())
            parts.push_back({object, {}});
        return parts;
    }
}

bool take_out(object_t *object, const std::string &name)
{
    std::vector<set_t> sets = sets_of(object);
    if (std::erase_if(sets, [&](const set_t &set) { return set.name == name; }) == 0)
        return false;
    write_sets(object, sets);
    return true;
}

bool has_set(const std::string &name)
{
    return find_object_where(vesk_get_world(), [&](const object_t *object) {
               const std::vector<set_t> sets = sets_of(object);
               return std::any_of(sets.begin(), sets.end(),
                                  [&](const set_t &set) { return set.name == name; });
           }) != nullptr;
}

// ---- loading ----

// The text may come from any file.
bool is_select_mode(const std::string &name)
{
    for (int mode = 0; select_mode_name(mode) != nullptr; ++mode) {
        if (name == select_mode_name(mode))
            return true;
    }
    return false;
}

struct found_t {
    std::string kind;
    std::vector<std::pair<object_t *, std::string>> parts; // with their places
    int changed = 0;                                       // objects whose counts are others
};

found_t find_set(const std::string &name)
{
    found_t found;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        for (set_t &set : sets_of(object)) {
            if (set.name != name || (!found.kind.empty() && set.kind != found.kind))
                continue;
            if (!is_select_mode(set.kind))
                continue;
            found.kind = set.kind;
            if (set.places != "-" && set.counts != object_counts(object))
                ++found.changed;
            else if (object->visible != 0 && object->locked == 0)
                found.parts.emplace_back(object, std::move(set.places));
        }
    });
    return found;
}

void select_found_edges(const found_t &found)
{
    std::vector<owned_edges> edges;
    for (const auto &[object, places] : found.parts) {
        topology_ptr topology = object_topology(object);
        std::vector<int> numbers = places_of_text(places.c_str(), topology->size());
        edges.push_back({object, std::move(topology), std::move(numbers)});
    }
    select_edges(edges, edge_change::replace);
}

void select_found(const found_t &found)
{
    if (select_mode() == SELECT_EDGE) {
        select_found_edges(found);
        return;
    }
    owned_list list;
    for (const auto &[object, places] : found.parts) {
        const flat_ptr mesh = object_flat(object);
        if (select_mode() == SELECT_SURFACE) {
            for (const int s : places_of_text(places.c_str(), mesh->num_surfaces()))
                list.add(mesh->surface_record(s));
        } else if (select_mode() == SELECT_VERTEX) {
            for (const int v : places_of_text(places.c_str(), mesh->num_vertices()))
                list.add(mesh->vertex_record(v));
        } else {
            list.add(object);
        }
    }
    clear_selection();
    change_selection(list.get(), true);
}

} // namespace

// ---- commands ----

void command_selection_set_save(const char *text)
{
    const std::string name = tidy_name(text);
    const std::vector<owned_elements> parts = selected_parts();
    if (name.empty() || parts.empty()) {
        display_message("selection set - %s",
                        name.empty() ? "a name is needed" : "nothing selected");
        return;
    }
    new_undo_state("save selection set");
    for_each_object(vesk_get_world(), [&](object_t *object) { take_out(object, name); });
    const std::string kind = select_mode_name(select_mode());
    for (const owned_elements &part : parts) {
        std::vector<set_t> sets = sets_of(part.object);
        const std::string places = places_text(part.indices);
        sets.push_back({kind, object_counts(part.object), places.empty() ? "-" : places, name});
        write_sets(part.object, sets);
    }
    display_status();
    display_message("selection set '%s' - saved", name.c_str());
}

void command_selection_set_load(const char *text)
{
    const std::string name = tidy_name(text);
    const found_t found = find_set(name);
    if (found.kind.empty()) {
        display_message("selection set - there is none named '%s'", name.c_str());
        return;
    }
    if (found.kind != select_mode_name(select_mode()))
        command_set_select_mode(found.kind.c_str());
    select_found(found);
    redraw_all();
    display_status();
    if (found.changed > 0)
        display_message("selection set '%s' - %d objects have other vertices and surfaces since",
                        name.c_str(), found.changed);
    else
        display_message("selection set '%s'", name.c_str());
}

void command_selection_set_delete(const char *text)
{
    const std::string name = tidy_name(text);
    if (!has_set(name)) {
        display_message("selection set - there is none named '%s'", name.c_str());
        return;
    }
    new_undo_state("delete selection set");
    for_each_object(vesk_get_world(), [&](object_t *object) { take_out(object, name); });
    display_status();
    display_message("selection set '%s' - deleted", name.c_str());
}

void command_selection_set_list()
{
    std::set<std::string> names;
    for_each_object(vesk_get_world(), [&](const object_t *object) {
        for (const set_t &set : sets_of(object))
            names.insert(set.name);
    });
    for (const std::string &name : names)
        command_result_append_element(name.c_str());
}
