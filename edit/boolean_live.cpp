#include "edit/boolean_live.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "edit/boolean.h"
#include "edit/document/edit_support.h"
#include "edit/document/journal.h"
#include "edit/document/model_restore.h"
#include "edit/document/modes.h"
#include "edit/mesh/polygon_plane.h"
#include "edit/mesh/solid_boolean.h"
#include "edit/pieces.h"
#include "model/flat_array.h"
#include "model/identity.h"
#include "model/object_tree.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <unordered_map>
#include <utility>

namespace {

constexpr int most_vertices = 50000; // of all solids
constexpr double fast = 0.04;        // seconds that fit between two pictures
constexpr const char *off_word = "off";

struct live_t {
    std::vector<int> tops;    // identities, in the order of the selection; empty: nothing runs
    std::string word;         // the operation
    std::uint64_t change = 0; // names the model when it began
    int mode = 0;             // of selecting, then
    // What the result was computed from.
    std::vector<flat_ptr> inputs;
    std::string input_word;
    flat_ptr shown; // null: refused
    std::string told;
    double cost = 0;
    bool busy = false;
};
live_t live;

bool runs() { return !live.tops.empty(); }

// Null among them: one is gone.
std::vector<object_t *> top_records()
{
    std::vector<object_t *> found;
    for (const int id : live.tops)
        found.push_back(object_by_identity(id));
    return found;
}

void select_solids()
{
    if (select_mode() != live.mode)
        set_new_select_mode(live.mode);
    select_results(top_records());
}

void end()
{
    live = {};
    redraw_all();
}

// Of a history that was left behind, or of solids that are gone, nothing can be kept.
bool still_holds()
{
    const std::vector<object_t *> tops = top_records();
    if (std::find(tops.begin(), tops.end(), nullptr) == tops.end() &&
        journal_place_of(live.change) >= 0)
        return true;
    end();
    tcl_command("boolean_live_ended");
    return false;
}

void tell(const std::string &text)
{
    if (text != live.told)
        display_message("%s", text.c_str());
    live.told = text;
}

// ---- the mesh that shows the result ----

struct mesh_arrays {
    std::vector<point3_t> positions;
    std::vector<flat_surface> surfaces;
    std::vector<std::int32_t> corners, offsets = {0};
    std::vector<flat_uv> uvs;
};

flat_ptr mesh_of(mesh_arrays arrays)
{
    auto mesh = std::make_shared<flat_mesh>();
    mesh->positions = flat_shared(std::move(arrays.positions));
    mesh->surfaces = flat_shared(std::move(arrays.surfaces));
    mesh->corners = flat_shared(std::move(arrays.corners));
    mesh->corner_offsets = flat_shared(std::move(arrays.offsets));
    mesh->texture_coords = flat_shared(std::move(arrays.uvs));
    mesh->vertex_records = flat_shared(std::vector<vertex *>());
    mesh->surface_records = flat_shared(std::vector<surface_t *>());
    std::vector<vec3d> sums(mesh->num_vertices());
    std::vector<point3_t> face_normals, normals;
    for (int s = 0; s < mesh->num_surfaces(); ++s) {
        const vec3d area = polygon_area_vector(*mesh, s);
        face_normals.push_back(to_point(unit_of(area)));
        for (const int v : mesh->surface_corners(s))
            sums[v] += mesh->surface(s).is_line() ? vec3d{} : area;
    }
    for (const vec3d &sum : sums)
        normals.push_back(to_point(unit_of(sum)));
    mesh->face_normals = flat_shared(std::move(face_normals));
    mesh->normals = flat_shared(std::move(normals));
    return mesh;
}

class result_mesh {
public:
    result_mesh(const solid_meshes &solids, const solid_result &result)
        : solids_(solids), result_(result)
    {
    }
    flat_ptr make()
    {
        for (int unit = 0; unit < static_cast<int>(solids_.units().size()); ++unit) {
            if (result_.fates[unit] != solid_result::GONE)
                add_whole(unit);
        }
        for (const solid_result::polygon_t &polygon : result_.polygons) {
            for (const auto &[point, uv] : polygon.corners)
                add_corner(point, uv);
            end_unit(polygon.unit);
        }
        for (int m = 0; m < static_cast<int>(solids_.meshes().size()); ++m) {
            if (solids_.is_of_first(m))
                add_lines_and_points(m);
        }
        return mesh_of(std::move(arrays_));
    }

private:
    void add_whole(int number)
    {
        const solid_meshes::unit_t &unit = solids_.units()[number];
        const flat_mesh &mesh = *solids_.meshes()[unit.mesh];
        const auto points = solids_.outline(number);
        const auto n = static_cast<int>(points.size());
        const bool reversed = result_.fates[number] == solid_result::REVERSED;
        for (int i = 0; i < n; ++i) {
            const int at = reversed ? n - 1 - i : i;
            add_corner(points[at], mesh.uv(mesh.first_corner(unit.surface) + at));
        }
        end_unit(number);
    }
    // What is no part of the solid stays in the first one.
    void add_lines_and_points(int number)
    {
        const flat_mesh &mesh = *solids_.meshes()[number];
        for (int s = 0; s < mesh.num_surfaces(); ++s) {
            if (!mesh.surface(s).is_line())
                continue;
            for (int c = mesh.first_corner(s); c < mesh.end_corner(s); ++c)
                add_corner(solids_.point_of(number, mesh.corner(c)), mesh.uv(c));
            end_surface(mesh.surface(s));
        }
        for (const int v : flat_loose_vertices(mesh))
            arrays_.positions.push_back(mesh.position(v));
    }
    [[nodiscard]] point3_t position(int point) const
    {
        if (point >= result_.num_points)
            return result_.new_points[point - result_.num_points];
        const auto [mesh, v] = solids_.vertex_of(point);
        return solids_.meshes()[mesh]->position(v);
    }
    void add_corner(int point, const flat_uv &uv)
    {
        const auto [place, is_new] =
            place_of_.emplace(point, static_cast<int>(arrays_.positions.size()));
        if (is_new)
            arrays_.positions.push_back(position(point));
        arrays_.corners.push_back(place->second);
        arrays_.uvs.push_back(uv);
    }
    void end_unit(int number)
    {
        const solid_meshes::unit_t &unit = solids_.units()[number];
        end_surface(solids_.meshes()[unit.mesh]->surface(unit.surface));
    }
    void end_surface(const flat_surface &attributes)
    {
        arrays_.surfaces.push_back(attributes);
        arrays_.offsets.push_back(static_cast<int>(arrays_.corners.size()));
    }

    const solid_meshes &solids_;
    const solid_result &result_;
    std::unordered_map<int, int> place_of_; // points that are used, as vertices
    mesh_arrays arrays_;
};

// ---- computing ----

// The meshes of the solids and whose each is, as their places among the tops.
std::vector<std::pair<flat_ptr, int>> gather(const std::vector<object_t *> &tops)
{
    std::vector<std::pair<flat_ptr, int>> found;
    for (std::size_t part = 0; part < tops.size(); ++part) {
        for (object_t *object : objects_with_geometry({tops[part]}))
            found.emplace_back(object_flat(object), static_cast<int>(part));
    }
    return found;
}

std::string refused(const solid_meshes &solids, int unit, const char *why)
{
    const object_t *top = top_records()[solids.units()[unit].part];
    return std::string("boolean - '") + top->name + "' " + why;
}

// Returns what is to be told; without a mesh it is a refusal.
std::string compute(const std::vector<std::pair<flat_ptr, int>> &inputs, flat_ptr *out)
{
    solid_meshes solids;
    for (const auto &[mesh, part] : inputs)
        solids.add(mesh, part);
    if (!solids.finish())
        return "boolean - a coordinate is not a number";
    if (const auto open = solids.open_edges(); !open.empty())
        return refused(solids, open.front().unit, "is not closed");
    progress_t progress(3.0 * static_cast<double>(solids.triangles().size()));
    solid_faces faces(solids, progress);
    if (!faces.compute())
        return "boolean - cancelled";
    if (const auto crossings = boolean_self_crossings(solids, faces); !crossings.empty())
        return refused(solids, solids.triangles()[crossings.front().a].unit, "goes through itself");
    const solid_result result = solid_boolean(solids, faces, static_cast<int>(live.tops.size()),
                                              *boolean_operation_of(live.word.c_str()));
    *out = result_mesh(solids, result).make();
    return "boolean - " + std::to_string((*out)->num_surfaces()) + " surfaces; Return keeps it";
}

bool is_up_to_date(const std::vector<std::pair<flat_ptr, int>> &inputs)
{
    return live.input_word == live.word &&
           std::equal(inputs.begin(), inputs.end(), live.inputs.begin(), live.inputs.end(),
                      [](const auto &now, const flat_ptr &then) { return now.first == then; });
}

} // namespace

bool boolean_live_update(bool quick)
{
    if (!runs() || live.busy || !still_holds())
        return true;
    const auto inputs = gather(top_records());
    if (is_up_to_date(inputs))
        return true;
    if (quick && live.cost > fast)
        return false;
    live.busy = true; // the progress lets events in
    const double started = ui_port().now_seconds();
    flat_ptr shown;
    const std::string text = compute(inputs, &shown);
    live.busy = false;
    if (!runs())
        return true;
    live.shown = shown;
    live.cost = ui_port().now_seconds() - started;
    live.input_word = live.word;
    live.inputs.clear();
    for (const auto &[mesh, part] : inputs)
        live.inputs.push_back(mesh);
    tell(text);
    return true;
}

namespace {

// The place of an object among the tops; -1 when it is of none.
int part_of(const object_t *object)
{
    for (; object != nullptr; object = object->parent) {
        const auto at = std::find(live.tops.begin(), live.tops.end(), object_identity(object));
        if (at != live.tops.end())
            return static_cast<int>(at - live.tops.begin());
    }
    return -1;
}

} // namespace

bool boolean_live_runs() { return runs(); }

flat_ptr boolean_live_shown(const object_t *object)
{
    static const flat_ptr nothing = mesh_of({});
    if (!runs() || live.shown == nullptr || part_of(object) != 0)
        return nullptr;
    const std::vector<object_t *> of_first = objects_with_geometry({top_records().front()});
    return !of_first.empty() && of_first.front() == object ? live.shown : nothing;
}

bool boolean_live_is_outline(const object_t *object)
{
    return runs() && live.shown != nullptr && part_of(object) > 0;
}

void boolean_live_reset_for_test() { live = {}; }

// ---- commands ----

namespace {

std::vector<object_t *> solids_selected()
{
    std::vector<object_t *> tops;
    for (object_t *top : selected_top_objects()) {
        if (!objects_with_geometry({top}).empty())
            tops.push_back(top);
    }
    return tops;
}

int num_vertices_of(const std::vector<object_t *> &tops)
{
    int vertices = 0;
    for (const object_t *object : objects_with_geometry(tops))
        vertices += object->num_vertices;
    return vertices;
}

bool begin()
{
    const std::vector<object_t *> tops = solids_selected();
    if (tops.size() < 2) {
        display_message(tops.empty() ? "boolean - nothing selected"
                                     : "boolean - select two objects or more");
        return false;
    }
    if (num_vertices_of(tops) > most_vertices) {
        display_message("boolean - too many vertices to show it while it is moved");
        return false;
    }
    for (const object_t *top : tops)
        live.tops.push_back(object_identity(top));
    live.change = journal_change_number();
    live.mode = select_mode();
    select_results({tops.begin() + 1, tops.end()});
    finish_edit();
    return true;
}

} // namespace

void command_boolean_live(const char *operation)
{
    const bool off = std::strcmp(operation, off_word) == 0;
    if (!off && !boolean_operation_of(operation)) {
        display_message("boolean - union, difference, intersection or off, not '%s'", operation);
        return;
    }
    if (off && runs() && still_holds()) {
        select_solids();
        end();
        finish_edit();
    }
    if (off || (!runs() && !begin()))
        return;
    live.word = operation;
    boolean_live_update(false);
    redraw_all();
}

void command_boolean_live_keep(int keep_others)
{
    if (!runs()) {
        display_message("boolean - none is shown");
        command_result_set("0");
        return;
    }
    boolean_live_update(false);
    if (!runs() || live.shown == nullptr) {
        live.told.clear();
        live.inputs.clear(); // says once more what is in the way
        boolean_live_update(false);
        command_result_set("0");
        return;
    }
    const std::string word = live.word;
    const std::vector<int> tops = live.tops;
    const state_ptr moved = journal_state();
    const int start = journal_place_of(live.change);
    const bool moves = journal_change_number() != live.change;
    if (moves)
        journal_goto(start);
    select_solids();
    journal_before_step(true);
    if (moves) {
        open_world_undo("boolean");
        model_state_restore(moved, nullptr);
        select_solids();
    }
    end();
    const char *words[] = {word.c_str(), keep_others != 0 ? "1" : "0"};
    command_boolean(2, words);
    command_result_set("1");
}

void command_boolean_live_cancel()
{
    if (!runs() || !still_holds())
        return;
    if (journal_change_number() != live.change)
        journal_goto(journal_place_of(live.change));
    select_solids();
    end();
    finish_edit();
    display_message("boolean - cancelled");
}
