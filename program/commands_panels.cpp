// Commands of panels and dialogs: transforms and properties with an undo record.

#include "base/command_result.h"
#include "base/command_row.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/document/element_text.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/insert_vertex.h"
#include "edit/make_surface.h"
#include "edit/measure.h"
#include "edit/object_place.h"
#include "edit/object_properties.h"
#include "edit/palette_preview.h"
#include "edit/panel_transform.h"
#include "edit/uv/uv_editor.h"
#include "fileio/clipboard.h"
#include "model/deferred_records.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/identity.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/texture_preview.h"
#include "model/world.h"
#include "program/own_commands.h"
#include "view/camera_eye.h"
#include "view/camera_internal.h"
#include "view/highlight.h"
#include "view/interaction.h"
#include "view/pick.h"
#include "view/ruler.h"
#include "view/tool_options.h"
#include "view/tool_transform.h"
#include "view/tools.h"
#include "view/views_internal.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace {

// The identity of the object under a place of a view; nothing while a drag runs.
void command_object_at(int view, int x, int y)
{
    if (view < 0 || view >= num_views || interaction_drag() != drag_kind::none) {
        return;
    }
    const std::vector<pick_hit_t> hits =
        pick_at(view, pick_kind::OBJECT, x, y, prefs.pick_pixel_range);
    if (!hits.empty()) {
        command_result_set(std::to_string(object_identity(hits.front().object)).c_str());
    }
}

void command_get_projection() { command_result_set(camera_is_perspective() ? "1" : "0"); }

// Where the pointer rests; not while a drag runs.
void command_highlight_at(int view, int x, int y)
{
    if (view >= 0 && view < num_views && interaction_drag() == drag_kind::none)
        highlight_at(view, x, y);
}

// Of the tool "extrude", not of the commands.
void command_set_extrude_automatic(int on)
{
    set_extrusion_sides(on != 0 ? extrude_sides::automatic : extrude_sides::by_preferences);
}

// Surfaces of each palette entry.
void command_material_counts()
{
    std::vector<int> counts(static_cast<std::size_t>(vesk_get_num_palette()));
    for_each_object(vesk_get_world(), [&](object_t *object) {
        for (const flat_surface &surface : *object_flat(object)->surfaces) {
            if (surface.material >= 0 && surface.material < static_cast<int>(counts.size()))
                ++counts[static_cast<std::size_t>(surface.material)];
        }
    });
    command_result_set("");
    for (const int count : counts)
        command_result_append_element(count);
}

// Counts how often each value comes. Neighbours mostly have the same one: it is looked up once for them.
class value_counts {
public:
    void add(int value)
    {
        if (value != value_ || count_ == nullptr) {
            value_ = value;
            count_ = &counts_[value];
        }
        ++*count_;
    }
    [[nodiscard]] const std::map<int, int> &counts() const { return counts_; }

private:
    std::map<int, int> counts_;
    int value_ = 0;
    int *count_ = nullptr; // of that value
};

void count_materials(object_t *object, value_counts *counts)
{
    for (const flat_surface &surface : *object_flat(object)->surfaces)
        counts->add(surface.material);
}

void count_materials_of_selected(value_counts *counts)
{
    const deferred_elements deferred(vesk_get_world());
    const object_t *last = nullptr;
    flat_ptr flat; // its own
    for (const surface_t *surface : each<surface_t>(selection().surfaces)) {
        const auto at = deferred.find(surface);
        if (at.object != nullptr && std::exchange(last, at.object) != at.object)
            flat = object_flat(at.object);
        counts->add(at.object != nullptr ? flat->surface(at.index).material : surface->material);
    }
}

// Palette entries of the selected surfaces and objects, the most frequent first.
void command_selection_materials()
{
    value_counts materials;
    for (const object_t *listed : each<object_t>(selection().objects)) {
        auto *const top = const_cast<object_t *>(listed);
        if (top->children == nullptr) // most: no walk, which takes memory for its way
            count_materials(top, &materials);
        else
            for_each_object(top, [&](object_t *object) { count_materials(object, &materials); });
    }
    if (select_mode() == SELECT_SURFACE)
        count_materials_of_selected(&materials);
    std::vector<std::pair<int, int>> found; // count negated, entry
    for (const auto &[entry, count] : materials.counts())
        found.emplace_back(-count, entry);
    std::sort(found.begin(), found.end());
    command_result_set("");
    for (const auto &[count, entry] : found)
        command_result_append_element(entry);
}

void command_palette_preview(int, const char *const *words)
{
    palette_values values = {};
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = finite_float_of(words[i + 1]);
    palette_preview(int_of(words[0]), values);
    redraw_all();
}

// Selects every visible, unlocked surface of a palette entry.
void command_material_select(int entry)
{
    if (entry < 0 || entry >= vesk_get_num_palette()) {
        display_message("select material - no palette entry %d", entry);
        return;
    }
    set_new_select_mode(SELECT_SURFACE);
    clear_selection();
    owned_list found;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (object->visible == 0 || object->locked != 0)
            return;
        const flat_ptr mesh = object_flat(object);
        for (std::size_t i = 0; i < mesh->surfaces->size(); ++i) {
            if ((*mesh->surfaces)[i].material == entry)
                found.add((*mesh->surface_records)[i]);
        }
    });
    select_surfacelist(found.get());
    redraw_all();
    display_status();
}

// The outlines in the picture that the editor of texture coordinates would show: one element a
// surface, 1 or 0 for whether all of it is chosen, then u v of its corners; at most `most` of them.
void command_uv_outlines(int most)
{
    const uv_state &state = uv_editor();
    command_result_set("");
    std::string line;
    for (int s = 0; s < std::min(most, state.mesh.num_surfaces()); ++s) {
        bool chosen = state.num_chosen > 0;
        std::string corners;
        for (int c = state.mesh.corners_begin(s); c < state.mesh.corners_end(s); ++c) {
            const auto place = static_cast<std::size_t>(c);
            chosen = chosen && state.chosen[place] != 0;
            char text[64];
            snprintf(text, sizeof text, " %.5g %.5g", static_cast<double>(state.mesh.at[place].u),
                     static_cast<double>(state.mesh.at[place].v));
            corners += text;
        }
        line = (chosen ? "1" : "0") + corners;
        command_result_append_element(std::string_view(line));
    }
}

// The number of the texture of the objects that the editor would show, -1 for none.
void command_uv_texture()
{
    const object_t *object = uv_picture_object();
    const int id = object == nullptr || object->has_texture == 0 ? -1 : object->texture;
    command_result_set(std::to_string(id).c_str());
}

void command_rotate_each(int, const char *const *words)
{
    rotate_each_with_undo(int_of(words[0]), finite_float_of(words[1]));
}

} // namespace

std::span<const own_command_t> panel_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("rotate_each_with_undo", command_rotate_each, edit, 2, 2,
                    "<int view> <float degrees>",
                    "rotate each selected object about its own centre and the axis of a view"),
        command_row("insert_vertex_at", command_insert_vertex_at, edit, 4, 4,
                    "<int object_id> <int vertex> <int vertex> <float share>",
                    "insert a vertex on the edge between two vertices, returns its place"),
        command_row("objects_place", command_objects_place, edit, 3, 3,
                    "<string object_ids> <int parent_object_id> <int before_object_id>",
                    "make objects children of a parent in front of another, with an undo record"),
        command_row("objects_set", command_objects_set, edit, 3, 3,
                    "<string object_ids> <string name, url, data, visible or locked> "
                    "<string value>",
                    "set a property of objects, with an undo record"),
        command_row("move_with_undo", move_with_undo, edit, "<float x> <float y> <float z>",
                    "translate the selection, with an undo record"),
        command_row("rotate_with_undo", rotate_with_undo, edit,
                    "<float rx-degs> <float ry-degs> <float rz-degs>",
                    "rotate the selection about its middle, with an undo record"),
        command_row("rotate_about_with_undo", rotate_about_with_undo, edit,
                    "<float rx-degs> <float ry-degs> <float rz-degs> <float x> <float y> <float z>",
                    "rotate the selection about a point, with an undo record"),
        command_row("rotate_to_with_undo", rotate_to_with_undo, edit,
                    "<float rx-degs> <float ry-degs> <float rz-degs> <float x> <float y> <float z>",
                    "rotate the selection about a point until its first object has these angles"),
        command_row("rotate_axis_angle_with_undo", rotate_axis_angle_with_undo, edit,
                    "<float axis> <float angle>",
                    "rotate the selection about an axis, with an undo record"),
        command_row("resize_with_undo", resize_with_undo, edit,
                    "<float minx> <float miny> <float minz> <float maxx> <float maxy> <float maxz>",
                    "bring the selection's box to these corners, with an undo record"),
        command_row("scale_about_with_undo", scale_about_with_undo, edit,
                    "<float sx> <float sy> <float sz> <float x> <float y> <float z>",
                    "scale the selection about a point, with an undo record"),
        command_row("select_elements", command_select_elements, select,
                    "<string set, add or remove> <string elements>",
                    "select objects (\"3 7\"), or vertices or surfaces of them (\"3:0-5,9 7:2\")"),
        command_row("mirror_with_undo", mirror_with_undo, edit, "<int axis>",
                    "mirror the selection, with an undo record"),
        command_row("object_at", command_object_at, query, "<view> <int x> <int y>",
                    "returns the id of the object under a place of a view"),
        command_row("highlight_at", command_highlight_at, view, "<view> <int x> <int y>",
                    "lights what a click at a place of a view would select"),
        command_row("set_extrude_automatic", command_set_extrude_automatic, view, "<0|1>",
                    "how the extrude tool closes what it makes: so that bodies go on facing "
                    "outwards, or as the preferences say"),
        command_row("transform_begin", panel_transform_begin, part,
                    "<string move, rotate or scale>", "begin a transform that follows a number"),
        command_row("transform_about", panel_transform_about, part, "<float x> <float y> <float z>",
                    "the centre of the transform that rotates"),
        command_row("transform_to", panel_transform_to, part, "<float x> <float y> <float z>",
                    "how far the transform has come"),
        command_row("transform_end", panel_transform_end, part, nullptr,
                    "keep the transform, one undo record"),
        command_row("transform_cancel", panel_transform_cancel, part, nullptr,
                    "take the transform back"),
        command_row("material_counts", command_material_counts, query, nullptr,
                    "returns the number of surfaces of each palette entry"),
        command_row("surfaces_separate", command_surfaces_separate, edit, nullptr,
                    "move the selected surfaces into objects of their own"),
        command_row("selection_materials", command_selection_materials, query, nullptr,
                    "returns the palette entries of what is selected, the most frequent first"),
        command_row("palette_preview", command_palette_preview, part, 15, 15,
                    "<int entrynum> <float red> <float green> <float blue> <float ambient-red> "
                    "<float ambient-green> <float ambient-blue> <float emissive-red> "
                    "<float emissive-green> <float emissive-blue> <float specular-red> "
                    "<float specular-green> <float specular-blue> <float shininess> "
                    "<float transp>",
                    "shows an entry while its slider is dragged, without a step of the history"),
        command_row("material_select", command_material_select, select, "<int entrynum>",
                    "select the surfaces of a palette entry"),
        command_row("uv_outlines", command_uv_outlines, query, "<int most>",
                    "returns the outlines that the editor of texture coordinates shows"),
        command_row("uv_texture", command_uv_texture, query, nullptr,
                    "returns the id of the texture that the editor shows, or -1"),
        command_row("picture_photo", command_picture_photo, query, "<string file> <int size>",
                    "makes a Tk picture of a picture file, returns name, width, height, depth"),
        command_row(
            "get_projection", command_get_projection, query, nullptr,
            "returns 1 while the 3D view is drawn in perspective, 0 in parallel projection"),
        command_row("clipboard_holds", command_clipboard_holds, query, nullptr,
                    "returns 1 while there are objects to paste that were copied here"),
        command_row("view_3d_from_corner", camera_look_from_corner, view, nullptr,
                    "resets the 3D view to one from three quarters above"),
        command_row("view_wheel", interaction_wheel, view, "<view id (0-3)> <direction>",
                    "a notch of the wheel over a view"),
        command_row("set_view_tool", command_set_view_tool, select, "<string name or none>",
                    "set a tool of the views beside the draw modes"),
        command_row("set_tool_option", command_set_tool_option, view,
                    "<string name> <string value>", "set an option of a tool of the views"),
        command_row("get_tool_option", command_get_tool_option, query, "<string name>",
                    "returns an option of a tool of the views"),
        command_row("measure_points", command_measure_points, view, "<string coordinates>",
                    "lay the ruler between two or three points, tell distance or angle"),
        command_row("get_measures", command_get_measures, query, nullptr,
                    "returns what the selection measures"),
        command_row("measure", command_measure, query, nullptr,
                    "tell distances, angles, areas and volumes of the selection"),
    };
    return rows;
}
