#include "edit/uv/uv_editor.h"

#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/modes.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_texture.h"
#include "edit/uv/uv_gather.h"
#include "model/deferred_records.h"
#include "model/identity.h"
#include "model/textures/textures.h"
#include "model/world.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

struct shown_object {
    object_t *object;
    int identity;
    bool operator==(const shown_object &) const = default;
};

struct editor_t {
    uv_state state;
    std::vector<shown_object> shown;
    // of the main selection, when it was last looked at
    unsigned selection_count = ~0u;
    int select_mode = -1;
    bool emptied = false;    // by choosing nothing here: the objects stay shown
    bool gather_due = false; // other objects are shown
    bool choice_due = false; // the main selection is to be looked at
    uv_totals totals;
    unsigned totals_geometry = ~0u, totals_choice = ~0u; // their versions
};
editor_t &editor()
{
    static auto *const record = new editor_t; // its arrays are not freed at exit
    return *record;
}

unsigned next_version()
{
    static unsigned last = 0;
    return ++last;
}

bool is_element_mode(int mode) { return mode == SELECT_SURFACE || mode == SELECT_VERTEX; }

// ---- the shown surfaces ----

bool is_in_the_world(const shown_object &shown)
{
    if (identity_known(shown.object) != shown.identity)
        return false;
    const object_t *top = shown.object;
    while (top->parent != nullptr)
        top = top->parent;
    return top == vesk_get_world();
}

std::vector<object_t *> objects_of_main_selection()
{
    std::vector<object_t *> objects;
    const selection_t &all = selection();
    if (select_mode() == SELECT_SURFACE)
        objects = owners_of_surfaces(elements_of<surface_t>(all.surfaces));
    else if (select_mode() == SELECT_VERTEX)
        objects = owners_of_vertices(elements_of<vertex>(all.vertices));
    for (object_t *top : selected_top_objects())
        for_each_object(top, [&](object_t *object) { objects.push_back(object); });
    std::erase_if(objects, [](const object_t *object) {
        return object == nullptr || object->visible == 0 || object->locked != 0;
    });
    return unique_objects(objects);
}

std::vector<object_t *> shown_objects()
{
    std::erase_if(editor().shown, [](const shown_object &o) { return !is_in_the_world(o); });
    std::vector<object_t *> objects;
    for (const shown_object &shown : editor().shown)
        objects.push_back(shown.object);
    return objects;
}

// ---- the choice ----

void count_chosen(uv_state &state)
{
    state.num_chosen = static_cast<int>(std::count(state.chosen.begin(), state.chosen.end(), 1));
    state.choice_version = next_version();
}

std::vector<char> none_of(const uv_mesh &mesh) { return std::vector<char>(mesh.at.size(), 0); }

void set_surface(const uv_mesh &mesh, int surface, std::vector<char> &corners)
{
    std::fill(corners.begin() + mesh.corners_begin(surface),
              corners.begin() + mesh.corners_end(surface), 1);
}

bool is_whole(const uv_mesh &mesh, int surface, const std::vector<char> &corners)
{
    return std::all_of(corners.begin() + mesh.corners_begin(surface),
                       corners.begin() + mesh.corners_end(surface),
                       [](char chosen) { return chosen != 0; });
}

bool has_any(const uv_mesh &mesh, int surface, const std::vector<char> &corners)
{
    return std::any_of(corners.begin() + mesh.corners_begin(surface),
                       corners.begin() + mesh.corners_end(surface),
                       [](char chosen) { return chosen != 0; });
}

std::vector<char> with_joined(const uv_state &state, const std::vector<char> &corners)
{
    std::vector<char> points(state.islands.num_points, 0);
    for (std::size_t c = 0; c < corners.size(); ++c)
        points[state.islands.point[c]] |= corners[c];
    std::vector<char> joined(corners.size());
    for (std::size_t c = 0; c < corners.size(); ++c)
        joined[c] = points[state.islands.point[c]];
    return joined;
}

std::vector<char> whole_islands(const uv_state &state, const std::vector<char> &corners)
{
    std::vector<char> islands(state.islands.num_islands, 0);
    for (int i = 0; i < state.mesh.num_surfaces(); ++i)
        islands[state.islands.island[i]] |= has_any(state.mesh, i, corners) ? 1 : 0;
    std::vector<char> chosen = none_of(state.mesh);
    for (int i = 0; i < state.mesh.num_surfaces(); ++i) {
        if (islands[state.islands.island[i]] != 0)
            set_surface(state.mesh, i, chosen);
    }
    return chosen;
}

std::vector<char> by_mode(const uv_state &state, const std::vector<char> &corners)
{
    if (state.mode == uv_mode::CORNER)
        return with_joined(state, corners);
    if (state.mode == uv_mode::ISLAND)
        return whole_islands(state, corners);
    std::vector<char> chosen = none_of(state.mesh);
    for (int i = 0; i < state.mesh.num_surfaces(); ++i) {
        if (has_any(state.mesh, i, corners))
            set_surface(state.mesh, i, chosen);
    }
    return chosen;
}

// ---- the main selection ----

// Calls found(part, place in its object) for those selected elements that their addresses tell; returns the
// others.
template <class T, class Found>
std::unordered_set<const T *> others_selected(const uv_mesh &mesh, const listitem *selected,
                                              const Found &found)
{
    std::unordered_map<const object_t *, const uv_part *> parts;
    for (const uv_part &part : mesh.parts)
        parts.emplace(part.object, &part);
    std::unordered_set<const T *> others;
    const deferred_elements deferred(vesk_get_world());
    const object_t *last = nullptr;
    const uv_part *part = nullptr; // of that object
    for (const T *element : each<T>(selected)) {
        const auto at = deferred.find(element);
        if (at.object != nullptr && std::exchange(last, at.object) != at.object) {
            const auto known = parts.find(at.object);
            part = known == parts.end() ? nullptr : known->second;
        }
        if (at.object == nullptr || (part != nullptr && !found(*part, at.index)))
            others.insert(element);
    }
    return others;
}

void choose_selected_surfaces(const uv_mesh &mesh, std::vector<char> &corners)
{
    const auto others =
        others_selected<surface_t>(mesh, selection().surfaces, [&](const uv_part &part, int index) {
            if (part.is_all())
                set_surface(mesh, part.first_surface + index, corners);
            return part.is_all();
        });
    for (int i = 0; i < mesh.num_surfaces() && !others.empty(); ++i) {
        if (others.count(mesh.surfaces[i]) != 0)
            set_surface(mesh, i, corners);
    }
}

void choose_selected_vertices(const uv_mesh &mesh, std::vector<char> &corners)
{
    std::vector<char> chosen(mesh.positions.size(), 0);
    const auto others =
        others_selected<vertex>(mesh, selection().vertices, [&](const uv_part &part, int index) {
            chosen[part.first_vertex + index] = 1;
            return true;
        });
    for (const uv_part &part : mesh.parts) {
        int v = part.first_vertex;
        for (const vertex *point : *part.flat->vertex_records)
            chosen[v++] |= !others.empty() && others.count(point) != 0 ? 1 : 0;
    }
    for (std::size_t c = 0; c < corners.size(); ++c)
        corners[c] = chosen[mesh.vertices[c]];
}

// The corners that the main selection means.
std::vector<char> corners_of_main_selection(const uv_mesh &mesh)
{
    std::vector<char> corners = none_of(mesh);
    if (select_mode() == SELECT_SURFACE)
        choose_selected_surfaces(mesh, corners);
    else if (select_mode() == SELECT_VERTEX)
        choose_selected_vertices(mesh, corners);
    return corners;
}

// Whether the main selection is the one that the choice was carried over to.
bool main_selection_is_ours(const uv_state &state)
{
    if (!is_element_mode(select_mode()))
        return true;
    const std::vector<char> theirs = corners_of_main_selection(state.mesh);
    if (select_mode() == SELECT_SURFACE) {
        for (int i = 0; i < state.mesh.num_surfaces(); ++i) {
            if (is_whole(state.mesh, i, theirs) != is_whole(state.mesh, i, state.chosen))
                return false;
        }
        return true;
    }
    std::vector<char> ours(state.mesh.positions.size(), 0);
    for (std::size_t c = 0; c < state.chosen.size(); ++c)
        ours[state.mesh.vertices[c]] |= state.chosen[c];
    for (std::size_t c = 0; c < state.chosen.size(); ++c) {
        if (ours[state.mesh.vertices[c]] != theirs[c])
            return false;
    }
    return true;
}

void follow_select_mode(uv_state &state)
{
    if (select_mode() == SELECT_VERTEX)
        state.mode = uv_mode::CORNER;
    else if (select_mode() == SELECT_SURFACE && state.mode == uv_mode::CORNER)
        state.mode = uv_mode::SURFACE;
}

void take_notice()
{
    editor().selection_count = selection_change_count();
    editor().select_mode = select_mode();
}

// Each once, in the order of their first corners.
std::vector<vertex *> chosen_vertices(const uv_state &state)
{
    std::vector<vertex *> vertices;
    std::vector<char> is_in(state.mesh.positions.size(), 0);
    for (const uv_part &part : state.mesh.parts) {
        const int end = part.first_surface + part.num_surfaces;
        for (int c = state.mesh.corners_begin(part.first_surface);
             c < state.mesh.corners_begin(end); ++c) {
            const int v = state.mesh.vertices[c];
            if (state.chosen[c] != 0 && std::exchange(is_in[v], 1) == 0)
                vertices.push_back(part.flat->vertex_record(v - part.first_vertex));
        }
    }
    return vertices;
}

void carry_over()
{
    uv_state &state = editor().state;
    const int wanted = state.mode == uv_mode::CORNER ? SELECT_VERTEX : SELECT_SURFACE;
    if (state.num_chosen == 0 && !is_element_mode(select_mode()))
        return;
    const bool changes_mode = select_mode() != wanted;
    if (changes_mode) {
        new_undo(UNDO_SELECTION, "selection");
        set_undo_selection(selection().vertices, selection().surfaces, selection().objects, 1);
    }
    saved_selection_t spent = selection_take();
    selection_free(&spent);
    selection_set_mode(wanted);
    if (wanted == SELECT_SURFACE) {
        std::vector<surface_t *> surfaces;
        for (int i = 0; i < state.mesh.num_surfaces(); ++i) {
            if (is_whole(state.mesh, i, state.chosen))
                surfaces.push_back(state.mesh.surfaces[i]);
        }
        selection_set_elements(surfaces);
    } else {
        selection_set_elements(chosen_vertices(state));
    }
    editor().emptied = state.num_chosen == 0;
    find_bounding_box();
    selection_changed("texture coordinates");
    take_notice();
    if (changes_mode)
        tcl_command("set_select_mode_ui %s", select_mode_name(wanted));
}

// ---- keeping up to date ----

bool same_topology(const uv_mesh &mesh)
{
    return std::all_of(mesh.parts.begin(), mesh.parts.end(), uv_part_is_current);
}

bool is_current(const uv_mesh &mesh)
{
    return std::all_of(mesh.parts.begin(), mesh.parts.end(), [](const uv_part &part) {
        if (!uv_part_is_current(part))
            return false;
        const flat_ptr now = object_flat(part.object);
        return now->texture_coords == part.flat->texture_coords &&
               now->positions == part.flat->positions;
    });
}

// Anew from the objects; the choice stays where the corners are the same. False: a worker is at it.
bool gather(bool waits)
{
    uv_state &state = editor().state;
    std::vector<uv_source> sources;
    for (object_t *object : shown_objects())
        sources.push_back({object, object_identity(object), object_flat(object)});
    uv_gathered found;
    if (!waits)
        state.islands = {}; // room for the new ones
    if (!waits)
        found = uv_gather(sources);
    else if (!uv_gather_later(sources, &found))
        return false;
    const bool keep = same_topology(state.mesh) && state.mesh.surfaces == found.mesh.surfaces &&
                      state.mesh.vertices == found.mesh.vertices;
    state.mesh = std::move(found.mesh);
    state.islands = std::move(found.islands);
    state.geometry_version = next_version();
    if (keep)
        return true;
    state.chosen = corners_of_main_selection(state.mesh);
    count_chosen(state);
    return true;
}

void follow_main_selection()
{
    uv_state &state = editor().state;
    const bool other_mode = select_mode() != editor().select_mode;
    std::vector<shown_object> shown;
    for (object_t *object : objects_of_main_selection())
        shown.push_back({object, object_identity(object)});
    const bool stays = shown.empty() && editor().emptied && !other_mode;
    take_notice();
    if (other_mode)
        follow_select_mode(state);
    if (!stays) {
        editor().emptied = false;
        editor().shown = std::move(shown);
    }
    std::vector<object_t *> gathered;
    for (const uv_part &part : state.mesh.parts)
        gathered.push_back(part.object);
    std::vector<object_t *> wanted = shown_objects();
    std::erase_if(wanted, [](const object_t *object) { return object->num_surfaces == 0; });
    editor().gather_due = editor().gather_due || gathered != wanted;
    editor().choice_due = true;
}

// False: a worker is at it.
bool bring_up_to_date(bool waits)
{
    editor_t &now = editor();
    if (now.selection_count != selection_change_count() || now.select_mode != select_mode())
        follow_main_selection();
    const bool outdated =
        shown_objects().size() < now.state.mesh.parts.size() || !is_current(now.state.mesh);
    if ((now.gather_due || outdated) && !gather(waits))
        return false;
    now.gather_due = false;
    if (now.choice_due && !main_selection_is_ours(now.state)) {
        now.state.chosen = corners_of_main_selection(now.state.mesh);
        count_chosen(now.state);
    }
    now.choice_due = false;
    return true;
}

} // namespace

const uv_state &uv_editor()
{
    bring_up_to_date(false);
    return editor().state;
}

bool uv_editor_is_ready() { return bring_up_to_date(true); }

bool uv_mode_of(std::string_view name, uv_mode *mode)
{
    for (const uv_mode each_mode : {uv_mode::CORNER, uv_mode::SURFACE, uv_mode::ISLAND}) {
        if (name == uv_mode_name(each_mode)) {
            *mode = each_mode;
            return true;
        }
    }
    return false;
}

const char *uv_mode_name(uv_mode mode)
{
    static constexpr const char *names[] = {"corner", "surface", "island"};
    return names[static_cast<int>(mode)];
}

void uv_set_mode(uv_mode mode)
{
    uv_editor();
    uv_state &state = editor().state;
    if (state.mode == mode)
        return;
    const uv_mode before = state.mode;
    state.mode = mode;
    if (before == uv_mode::CORNER && mode == uv_mode::SURFACE) {
        for (int i = 0; i < state.mesh.num_surfaces(); ++i) {
            if (!is_whole(state.mesh, i, state.chosen))
                std::fill(state.chosen.begin() + state.mesh.corners_begin(i),
                          state.chosen.begin() + state.mesh.corners_end(i), 0);
        }
    } else {
        state.chosen = by_mode(state, state.chosen);
    }
    count_chosen(state);
    carry_over();
}

void uv_choose(std::vector<char> corners)
{
    uv_editor();
    uv_state &state = editor().state;
    if (corners.size() != state.chosen.size())
        return;
    state.chosen = by_mode(state, corners);
    count_chosen(state);
    carry_over();
}

std::vector<char> uv_moving_corners(const uv_state &state)
{
    if (state.num_chosen == 0)
        return std::vector<char>(state.mesh.at.size(), 1);
    if (state.num_chosen == state.mesh.num_corners())
        return state.chosen;
    return with_joined(state, state.chosen);
}

std::vector<int> uv_chosen_surfaces(const uv_state &state)
{
    std::vector<int> surfaces;
    for (int i = 0; i < state.mesh.num_surfaces(); ++i) {
        if (state.num_chosen == 0 || is_whole(state.mesh, i, state.chosen))
            surfaces.push_back(i);
    }
    return surfaces;
}

std::vector<int> uv_chosen_islands(const uv_state &state)
{
    std::vector<char> chosen(state.islands.num_islands, state.num_chosen == 0 ? 1 : 0);
    for (int i = 0; i < state.mesh.num_surfaces(); ++i)
        chosen[state.islands.island[i]] |= has_any(state.mesh, i, state.chosen) ? 1 : 0;
    std::vector<int> islands;
    for (int i = 0; i < state.islands.num_islands; ++i) {
        if (chosen[i] != 0)
            islands.push_back(i);
    }
    return islands;
}

uv_box uv_box_of(const uv_mesh &mesh, const std::vector<char> &corners)
{
    uv_box box;
    for (std::size_t c = 0; c < corners.size(); ++c) {
        if (corners[c] != 0)
            box.add(mesh.at[c]);
    }
    return box;
}

const uv_totals &uv_totals_now()
{
    const uv_state &state = uv_editor();
    editor_t &now = editor();
    if (now.totals_geometry == state.geometry_version && now.totals_choice == state.choice_version)
        return now.totals;
    now.totals_geometry = state.geometry_version;
    now.totals_choice = state.choice_version;
    uv_totals &totals = now.totals = {};
    for (std::size_t c = 0; c < state.chosen.size(); ++c) {
        totals.all.add(state.mesh.at[c]);
        if (state.chosen[c] != 0)
            totals.chosen.add(state.mesh.at[c]);
    }
    if (state.num_chosen == 0)
        return totals;
    std::vector<char> islands(state.islands.num_islands, 0);
    for (int i = 0; i < state.mesh.num_surfaces(); ++i) {
        totals.chosen_surfaces += is_whole(state.mesh, i, state.chosen) ? 1 : 0;
        islands[state.islands.island[i]] |= has_any(state.mesh, i, state.chosen) ? 1 : 0;
    }
    totals.chosen_islands = static_cast<int>(std::count(islands.begin(), islands.end(), 1));
    return totals;
}

object_t *uv_picture_object()
{
    uv_editor_is_ready(); // else of those that were shown
    object_t *first = nullptr;
    for (const uv_part &part : editor().state.mesh.parts) {
        if (identity_known(part.object) != part.identity)
            continue;
        if (object_picture(part.object) != nullptr)
            return part.object;
        first = first != nullptr ? first : part.object;
    }
    return first;
}

uv_pixels uv_picture_size()
{
    uv_pixels pixels;
    const object_t *object = uv_picture_object();
    const VESKImage *image = object != nullptr ? object_picture(object) : nullptr;
    if (image == nullptr || image->width == 0 || image->height == 0)
        return pixels;
    const auto repeats = [](float repeat) {
        const double times = std::fabs(static_cast<double>(repeat));
        return times > 0 && std::isfinite(times) ? std::clamp(times, 1e-4, 1e4) : 1.0;
    };
    return {image->width * repeats(object->texture_repeat_x),
            image->height * repeats(object->texture_repeat_y)};
}

int uv_commit(const char *label, std::vector<flat_uv> at)
{
    const uv_mesh &mesh = uv_editor().mesh;
    for (std::size_t c = 0; c < at.size(); ++c) {
        if (!std::isfinite(at[c].u) || !std::isfinite(at[c].v))
            at[c] = mesh.at[c];
    }
    const std::vector<int> changed = uv_changed_surfaces(mesh, mesh.at, at);
    if (changed.empty())
        return 0;
    new_undo(UNDO_TEXTURE_COORDS, label);
    for (const uv_surfaces_of_part &some : uv_by_part(mesh, changed))
        set_undo_object_texture_coords(some.part->object, some.in_flat());
    uv_write(mesh, std::move(at), changed);
    redraw_all();
    return static_cast<int>(changed.size());
}

void uv_preview(std::vector<flat_uv> moved)
{
    uv_state &state = editor().state;
    if (moved.size() != state.mesh.at.size() || !same_topology(state.mesh))
        return;
    const std::vector<int> changed = uv_changed_surfaces(state.mesh, state.mesh.at, moved);
    const uv_array<flat_uv> at = std::move(moved);
    uv_write(state.mesh, at, changed);
    state.mesh.at = at;
    for (uv_part &part : state.mesh.parts)
        part.flat = object_flat(part.object);
    state.geometry_version = next_version();
}

void uv_editor_reset_for_test() { editor() = {}; }
