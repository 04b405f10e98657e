#include "base/command_result.h"
#include "base/command_row.h"
#include "base/current_file.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "edit/boolean.h"
#include "edit/boolean_live.h"
#include "edit/create.h"
#include "edit/document/current_object.h"
#include "edit/document/edit_support.h"
#include "edit/document/scene_counts.h"
#include "edit/document/selection_internal.h"
#include "edit/document/undo_internal.h"
#include "edit/extrude.h"
#include "edit/holes.h"
#include "edit/knife.h"
#include "edit/object_flags.h"
#include "edit/select_inside.h"
#include "edit/slice.h"
#include "edit/smooth_subdivide.h"
#include "edit/snap.h"
#include "fileio/backup.h"
#include "fileio/vesk_writer.h"
#include "model/angle.h"
#include "model/bounds.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/identity.h"
#include "model/matrix.h"
#include "model/object_internal.h"
#include "model/object_notes.h"
#include "model/object_tree.h"
#include "model/palette_internal.h"
#include "model/textures/texture_preview.h"
#include "model/textures/textures.h"
#include "model/vector.h"
#include "model/world.h"
#include "plugin/importers.h"
#include "program/command_table.h"
#include "program/object_rows.h"
#include "program/own_commands.h"
#include "view/tools.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

std::string number_text(float value)
{
    char buffer[32];
    snprintf(buffer, sizeof buffer, "%g", static_cast<double>(value));
    return buffer;
}

std::string point_text(const point3_t &p)
{
    return number_text(p.x) + " " + number_text(p.y) + " " + number_text(p.z);
}

void append_pair(const char *key, std::string_view value)
{
    command_result_append_element(key);
    command_result_append_element(value);
}

void append_pair(const char *key, int value) { append_pair(key, std::to_string(value)); }

const char *text_or_empty(const char *text) { return text == nullptr ? "" : text; }

// ---- queries ----

// Depth first, seven words an object: id, parent's id, type, name, surfaces, visible, locked.
void command_object_tree()
{
    std::string text;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (object == vesk_get_world())
            return;
        text += std::to_string(object_identity(object)) + " " +
                std::to_string(object_identity(object->parent)) + " " +
                object_type_word(object->type) + " " + list_element(object->name) + " " +
                std::to_string(object->num_surfaces) + (object->visible != 0 ? " 1" : " 0") +
                (object->locked != 0 ? " 1 " : " 0 ");
    });
    if (!text.empty())
        text.pop_back();
    command_result_set(text.c_str());
}

// Counts that grow when the model, the tree, the selection or the palette change.
void command_model_state()
{
    command_result_append_string(
        (std::to_string(model_change_count()) + " " + std::to_string(tree_change_count()) + " " +
         std::to_string(selection_change_count()) + " " + std::to_string(palette_change_count()))
            .c_str());
}

// Selected and all objects, surfaces, vertices.
void command_get_counts()
{
    const scene_counts_t counts = scene_counts();
    for (const int count : {counts.chosen_objects, counts.objects, counts.chosen_surfaces,
                            counts.surfaces, counts.chosen_vertices, counts.vertices})
        command_result_append_element(count);
}

void command_object_info(int id)
{
    const object_t *object = object_by_identity(id);
    if (object == nullptr)
        return;
    append_pair("type", object_type_word(object->type));
    append_pair("surfaces", object->num_surfaces);
    append_pair("vertices", object->num_vertices);
    append_pair("children", object->num_children);
    append_pair("visible", object->visible != 0 ? 1 : 0);
    append_pair("locked", object->locked != 0 ? 1 : 0);
    const char *texture = object->has_texture != 0 ? texture_id_to_name(object->texture)
                                                   : object_missing_texture(object);
    append_pair("texture", text_or_empty(texture));
    append_pair("texture_id", object_picture(object) != nullptr ? object->texture : -1);
    append_pair("texture_repeat", number_text(object->texture_repeat_x) + " " +
                                      number_text(object->texture_repeat_y));
    append_pair("texture_offset", number_text(object->texture_offset_x) + " " +
                                      number_text(object->texture_offset_y));
    append_pair("name", object->name);
    append_pair("url", text_or_empty(object->url));
    append_pair("data", object_user_data(object));
    append_pair("centre", point_text(object->centre));
    append_pair("angles", point_text(point_scale(matrix_angles(object->rotation),
                                                 static_cast<float>(degrees_per_radian))));
    append_pair("size", point_text(find_object_size(object)));
}

void command_get_palette()
{
    command_result_set("");
    for (int i = 0; i < vesk_get_num_palette(); ++i)
        command_result_append_element(std::string_view(index_to_string(i)));
}

// Name, then diffuse, ambient, emissive and specular r g b, shininess, transparency.
void command_get_material(int i)
{
    if (i < 0 || i >= vesk_get_num_palette())
        return;
    const material *m = vesk_palette_get_material(i);
    command_result_append_element(std::string_view(text_or_empty(m->name)));
    for (const float *colour : {m->diffuse, m->ambient, m->emissive, m->specular}) {
        for (int c = 0; c < 3; ++c)
            command_result_append_element(std::string_view(number_text(colour[c])));
    }
    command_result_append_element(std::string_view(number_text(m->shininess)));
    command_result_append_element(std::string_view(number_text(m->transparency)));
}

// Number of arguments, template, usage, help.
void command_command_info(const char *name)
{
    const vesk_command_t *command = find_command(name);
    if (command == nullptr)
        return;
    command_result_append_element(command->nargs);
    for (const char *text : {command->argtypes, command->usage, command->help})
        command_result_append_element(std::string_view(text_or_empty(text)));
}

// 1 when a running drag or a half-drawn outline took the key; the views' own keys come after it.
void command_tool_key(const char *keysym) { command_result_set(tool_key(keysym) ? "1" : "0"); }

// Selects these objects and nothing else, by the rule of the present mode.
void command_objects_select(const char *ids)
{
    owned_list objects;
    const char *end = ids + std::strlen(ids);
    int id = 0;
    while ((ids = scan_int(ids, end, &id)) != nullptr) {
        if (object_t *object = object_by_identity(id)) {
            objects.add(object);
        }
    }
    clear_selection();
    select_objectlist(objects.get());
    redraw_all();
    display_status();
}

// ---- edits ----

void command_object_set_name(int id, const char *name)
{
    set_object_name(object_by_identity(id), name);
}

void command_object_set_url(int id, const char *url)
{
    set_object_url(object_by_identity(id), url);
}

bool lies_below(const object_t *object, const object_t *top)
{
    while (object != nullptr && object != top)
        object = object->parent;
    return object != nullptr;
}

// Makes the object a child of the other, in front of one of its children (0: at the end). Result 1,
// or 0 when it cannot be.
void command_object_move_before(int id, int parent_id, int before_id)
{
    object_t *object = object_by_identity(id);
    object_t *parent = object_by_identity(parent_id);
    object_t *before = before_id == 0 ? nullptr : object_by_identity(before_id);
    if (object == nullptr || parent == nullptr || (before_id != 0 && before == nullptr))
        return;
    const bool can = object != vesk_get_world() && !lies_below(parent, object) &&
                     before != object && (before == nullptr || before->parent == parent);
    if (can) {
        new_undo_state("reparent");
        object_reparent_before(object, parent, before);
        redraw_all();
    }
    display_status();
    command_result_set(can ? "1" : "0");
}

void command_object_reparent(int id, int parent_id)
{
    command_object_move_before(id, parent_id, 0);
}

void command_vesk_material_set_name(int i, const char *name)
{
    if (i < 0 || i >= vesk_get_num_palette()) {
        display_message("name material - no palette entry %d", i);
        return;
    }
    new_undo_state("name material");
    vesk_material_set_name(vesk_palette_get_material(i), name);
    palette_mark();
    display_status();
}

// 1 when the file was read, written.
void command_file_load(const char *name)
{
    const int done = vesk_world_import_file(name);
    command_result_set(done != 0 ? "1" : "0");
}

void command_file_save(const char *name)
{
    const std::string kept = name; // the messages let scripts run
    current_file_set(kept.c_str());
    const std::string aside = backup_begin(kept.c_str());
    const int done = vesk_write_model(kept, vesk_get_world(), kept);
    if (done != 0)
        edited_file_set(kept);
    backup_end(kept.c_str(), aside, done != 0);
    command_result_set(done != 0 ? "1" : "0");
}

} // namespace

std::span<const own_command_t> model_commands()
{
    using enum command_kind;
    static const own_command_t rows[] = {
        command_row("create", command_create, edit, 8, 8,
                    "<kind> <int plane> <float x1> <float y1> <float z1> <float x2> <float y2> "
                    "<float z2>",
                    "create circle, disk, rect, grid, mesh, box, cylinder, sphere, cone or ico"),
        command_row("object_tree", command_object_tree, query, nullptr, "returns all objects"),
        command_row("object_rows", command_object_rows, query,
                    "<int number of the last answer, or 0>",
                    "returns what changed of object_tree, for the objects panel"),
        command_row("object_rows_begin", command_object_rows_begin, query,
                    "<int number of the last answer, or 0>",
                    "returns the head of object_rows, and how many rows follow it"),
        command_row("object_rows_part", command_object_rows_part, query,
                    "<int number of the answer> <int from> <int count>",
                    "returns some of the rows of object_rows_begin"),
        command_row("object_rows_edit", command_object_rows_edit, query,
                    "<int number of the answer>",
                    "returns how the rows come from those before, when most of them stay"),
        command_row("selected_objects_part", command_selected_objects_part, query,
                    "<int from> <int count>", "returns some of the ids of get_selected_objects"),
        command_row("objects_are_selected", command_objects_are_selected, query,
                    "<string object_ids>",
                    "returns 1 or 0 for each object: whether it is selected"),
        command_row("model_state", command_model_state, query, nullptr,
                    "returns counts of changes"),
        command_row("get_counts", command_get_counts, query, nullptr,
                    "returns selected and all objects, surfaces, vertices"),
        command_row("object_info", command_object_info, query, "<int object_id>",
                    "returns keys and values of an object"),
        command_row("object_set_name", command_object_set_name, edit,
                    "<int object_id> <string name>", "set object name"),
        command_row("object_set_url", command_object_set_url, edit, "<int object_id> <string url>",
                    "set object url"),
        command_row("object_lock", command_object_lock, edit, "<int object_id>", "lock an object"),
        command_row("object_unlock", command_object_unlock, edit, "<int object_id>",
                    "unlock an object"),
        command_row("object_reparent", command_object_reparent, edit,
                    "<int object_id> <int parent_object_id>", "make an object another's child"),
        command_row("object_move_before", command_object_move_before, edit,
                    "<int object_id> <int parent_object_id> <int before_object_id (0 the end)>",
                    "make an object another's child, in front of a child"),
        command_row("get_palette", command_get_palette, query, nullptr,
                    "returns all diffuse colours"),
        command_row("get_material", command_get_material, query, "<int entrynum>",
                    "returns a palette entry"),
        command_row("material_set_name", command_vesk_material_set_name, edit,
                    "<int entrynum> <string name>", "name a palette entry"),
        command_row("file_load", command_file_load, once, "<filename>",
                    "load a geometry file, returns 1 or 0"),
        command_row("file_save", command_file_save, once, "<filename>",
                    "save a VESK format file, returns 1 or 0"),
        command_row("command_info", command_command_info, query, "<string command>",
                    "returns arity, template, usage, help"),
        command_row("objects_select", command_objects_select, select, "<string object_ids>",
                    "select these objects only"),
        command_row("tool_key", command_tool_key, view, "<string keysym>",
                    "a key for a running drag or outline, returns 1 when it was used"),
        command_row("texture_photo", command_texture_photo, query, "<texture id> <int size>",
                    "makes a Tk picture of a texture, returns its name"),
        command_row("texture_list", command_texture_list, query, nullptr,
                    "returns name, file, width, height, depth of each texture"),
        command_row("surface_doosabin", command_surface_doosabin, edit, nullptr,
                    "Doo-Sabin subdivision of the selected objects"),
        command_row("cancel", progress_cancel, view, nullptr, "cancel long work"),
        command_row("extrude", command_extrude, edit, "<float x> <float y> <float z>",
                    "extrude the selected surfaces"),
        command_row("extrude_select", command_extrude_select, edit, 4, 4,
                    "<int automatic> <float x> <float y> <float z>",
                    "extrude the selected surfaces and select the new ones"),
        command_row("extrude_normal", command_extrude_normal, edit, 2, 2,
                    "<int automatic> <float distance>",
                    "extrude the selected surfaces where they face and select the new ones"),
        command_row("hole_select", command_hole_select, edit, nullptr,
                    "hole the selected surfaces and select the new ones"),
        command_row("bevel_select", command_bevel_select, edit, nullptr,
                    "bevel the selected surfaces and select the new ones"),
        command_row("weld", command_weld, edit, nullptr,
                    "bring the selected vertices together and join them"),
        command_row("weld_distance", command_weld_distance, edit, "<float distance>",
                    "bring selected vertices together by distance and join them"),
        command_row("create_outline", command_create_outline, edit,
                    "<string polygon, polyline or line> <string coordinates>",
                    "create a polygon or a line from x y z of each point"),
        command_row("boolean", command_boolean, edit, 1, 2,
                    "<string union, difference or intersection> [<int keep the others (0 or 1)>]",
                    "the first selected solid with the others"),
        command_row("boolean_live", command_boolean_live, select,
                    "<string union, difference, intersection or off>",
                    "show a boolean while its solids are moved"),
        command_row("boolean_live_keep", command_boolean_live_keep, once,
                    "<int keep the others (0 or 1)>", "make the boolean that is shown"),
        command_row("boolean_live_cancel", command_boolean_live_cancel, once, nullptr,
                    "as it was before the boolean that is shown"),
        command_row("select_inside", command_select_inside, select, nullptr,
                    "select what lies inside the selected solids"),
        command_row("knife", command_knife, edit, "<string coordinates>",
                    "cut polygons along a line on them, x y z of each point"),
        command_row("slice", command_slice, edit, 8, 8,
                    "<float px> <float py> <float pz> <float nx> <float ny> <float nz> "
                    "<string both, front or back> <int cap (0 or 1)>",
                    "cut the selection by a plane"),
        command_row("create_light", command_create_light, edit, "<float x> <float y> <float z>",
                    "create a light"),
    };
    return rows;
}
