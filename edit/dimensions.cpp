#include "edit/dimensions.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/edge_selection.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "model/change_marks.h"
#include "model/identity.h"
#include "model/object_notes.h"
#include "model/object_tree.h"
#include "model/vec3d.h"
#include "model/world.h"

#include <algorithm>
#include <functional>
#include <sstream>

namespace {

// Two places in the object's list.
struct places_t {
    int a, b;
};

std::vector<places_t> places_in(const object_t *object)
{
    std::vector<places_t> all;
    for (const std::string &note : object_notes(object, note_of_dimension)) {
        std::istringstream words(note);
        std::string counts;
        places_t places = {};
        if (words >> counts >> places.a >> places.b && counts == object_counts(object) &&
            std::min(places.a, places.b) >= 0 &&
            std::max(places.a, places.b) < object->num_vertices)
            all.push_back(places);
    }
    return all;
}

void for_each_dimension(const std::function<void(object_t *, const flat_mesh &, places_t)> &visit)
{
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (object->visible == 0 || object->data == nullptr)
            return;
        const std::vector<places_t> all = places_in(object);
        if (all.empty())
            return;
        const flat_ptr mesh = object_flat(object);
        for (const places_t &places : all) {
            if (std::max(places.a, places.b) < mesh->num_vertices())
                visit(object, *mesh, places);
        }
    });
}

void add_to(object_t *object, const std::vector<places_t> &added)
{
    std::vector<std::string> notes = object_notes(object, note_of_dimension);
    for (const places_t &places : added) {
        const std::string note = object_counts(object) + " " +
                                 std::to_string(std::min(places.a, places.b)) + " " +
                                 std::to_string(std::max(places.a, places.b));
        if (std::find(notes.begin(), notes.end(), note) == notes.end())
            notes.push_back(note);
    }
    object_set_notes(object, note_of_dimension, notes);
}

// The selected edges, or the line between two selected vertices.
std::vector<std::pair<object_t *, std::vector<places_t>>> selected_lines()
{
    std::vector<std::pair<object_t *, std::vector<places_t>>> lines;
    if (select_mode() == SELECT_EDGE) {
        for (const owned_edges &owned : selected_edges()) {
            lines.emplace_back(owned.object, std::vector<places_t>());
            for (const int e : owned.edges)
                lines.back().second.push_back(
                    {owned.topology->edge(e).a, owned.topology->edge(e).b});
        }
    } else if (selection().num_vertices == 2) {
        for (const owned_elements &owned : vertices_by_owner(selection().vertices)) {
            if (owned.indices.size() == 2)
                lines.push_back({owned.object, {{owned.indices[0], owned.indices[1]}}});
        }
    }
    return lines;
}

} // namespace

const std::vector<dimension_t> &dimensions_shown()
{
    static std::vector<dimension_t> shown;
    static std::uint64_t model = ~std::uint64_t{0};
    if (model == model_change_count())
        return shown;
    model = model_change_count();
    shown.clear();
    for_each_dimension([](object_t *, const flat_mesh &mesh, places_t places) {
        shown.push_back({mesh.vertex_record(places.a), mesh.vertex_record(places.b)});
    });
    return shown;
}

// ---- commands ----

void command_dimension_add()
{
    const auto lines = selected_lines();
    if (lines.empty()) {
        display_message("dimension - select edges, or two vertices of one object");
        return;
    }
    new_undo_state("add dimension");
    std::size_t count = 0;
    for (const auto &[object, places] : lines) {
        add_to(object, places);
        count += places.size();
    }
    redraw_all();
    display_status();
    display_message("dimension - %d added", static_cast<int>(count));
}

void command_dimension_remove()
{
    std::vector<object_t *> owners = selected_objects();
    std::vector<vertex *> points = elements_of<vertex>(selection().vertices);
    for (const surface_t *surface : each<surface_t>(selection().surfaces))
        append_surface_vertices(surface, &points);
    for (object_t *owner : owners_of_vertices(points)) {
        if (owner != nullptr)
            owners.push_back(owner);
    }
    std::vector<object_t *> having;
    for (object_t *top : without_descendants(owners)) {
        for_each_object(top, [&](object_t *object) {
            if (!object_notes(object, note_of_dimension).empty())
                having.push_back(object);
        });
    }
    if (having.empty()) {
        display_message("dimension - the selection has none");
        return;
    }
    new_undo_state("remove dimensions");
    for (object_t *object : having)
        object_set_notes(object, note_of_dimension, {});
    redraw_all();
    display_status();
    display_message("dimension - removed");
}

void command_get_dimensions()
{
    for_each_dimension([](object_t *object, const flat_mesh &mesh, places_t places) {
        command_result_append_element(object_identity(object));
        command_result_append_element(places.a);
        command_result_append_element(places.b);
        command_result_appendf(" %g",
                               length(between(mesh.position(places.a), mesh.position(places.b))));
    });
}
