#include "program/command_handlers.h"

#include "base/command_result.h"
#include "base/current_file.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "base/version.h"
#include "edit/document/current_object.h"
#include "edit/document/edit_support.h"
#include "edit/document/journal.h"
#include "edit/document/modes.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "edit/mesh/surface_copy.h"
#include "edit/object_flags.h"
#include "fileio/vesk_writer.h"
#include "model/alloc_internal.h"
#include "model/change_marks.h"
#include "model/freed.h"
#include "model/identity.h"
#include "model/lights.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/world.h"
#include "plugin/importers.h"
#include "plugin/loader.h"

#include <string>
#include <utility>

namespace {

void append_identities(const listitem *objects)
{
    command_result_set("");
    for (const object_t *object : each<object_t>(objects))
        command_result_append_element(object_identity(object));
}

void append_places(int count)
{
    command_result_set("");
    for (int i = 0; i < count; ++i)
        command_result_append_element(i);
}

void append_point(const point3_t &p)
{
    command_result_appendf("%g %g %g", static_cast<double>(p.x), static_cast<double>(p.y),
                           static_cast<double>(p.z));
}

void append_plugin_text(const char *text) { command_result_append_string(text); }

// A world that holds copies of the selection, for writing: whole objects, or one object for each
// owner of selected surfaces.
object_t *copy_of_selection()
{
    object_t *container = new_object(OBJECT_WORLD);
    for (object_t *object : each<object_t>(selection().objects))
        object_add_child(container, object_clone(object));
    const owned_list surfaces(find_selected_whole_surfaces());
    for (object_t *object : objects_of_surfaces(surfaces.get()))
        object_add_child(container, object);
    return container;
}

struct counts_t {
    int objects = 0, surfaces = 0, vertices = 0;
};

counts_t counts_below(object_t *top)
{
    counts_t counts;
    for_each_object(top, [&](const object_t *object) {
        ++counts.objects;
        counts.surfaces += object->num_surfaces;
        counts.vertices += object->num_vertices;
    });
    return counts;
}

// Opens the undo record of a change of a palette entry. A slider makes many small changes: those
// that follow each other at once are one step.
void undo_of_material(int entry)
{
    if (entry < 0 || entry >= vesk_get_num_palette())
        return;
    if (!journal_joins("material " + std::to_string(entry)))
        new_undo_state("edit material");
}

} // namespace

// ---- selection and application ----

void command_clear_selection()
{
    clear_selection();
    redraw_all();
    display_status();
}

void command_get_app_mode()
{
    const char *tool = mode_to_string(draw_mode());
    command_result_appendf("%s %s", select_mode_name(select_mode()), tool == nullptr ? "" : tool);
}

void command_get_selected_objects() { append_identities(selection().objects); }

void command_get_selection_size()
{
    append_point(selection().box_valid != 0 ? selection().box_size : point3_t{0, 0, 0});
}

void command_get_selection_centre()
{
    append_point(selection().box_valid != 0 ? selection().box_centre : point3_t{0, 0, 0});
}

void command_selection_get_num_vertices()
{
    command_result_append_int(selection_get_num_vertices());
}

void command_selection_get_num_surfaces()
{
    command_result_append_int(selection_get_num_surfaces());
}

void command_selection_get_num_objects() { command_result_append_int(selection_get_num_objects()); }

void command_get_texture_repoff()
{
    const selection_t &all = selection();
    if (all.objects == nullptr) {
        command_result_append_string("1 1 0 0");
        return;
    }
    const object_t *object = item_of<object_t>(all.objects);
    command_result_appendf("%g %g %g %g", static_cast<double>(object->texture_repeat_x),
                           static_cast<double>(object->texture_repeat_y),
                           static_cast<double>(object->texture_offset_x),
                           static_cast<double>(object->texture_offset_y));
}

void command_get_info()
{
    counts_t all = counts_below(vesk_get_world());
    --all.objects; // the world itself
    counts_t chosen = {0, selection().num_surfaces, selection().num_vertices};
    for (object_t *object : selected_top_objects()) {
        const counts_t below = counts_below(object);
        chosen.objects += below.objects;
        chosen.surfaces += below.surfaces;
        chosen.vertices += below.vertices;
    }
    command_result_appendf("Objects: %d\nVertices: %d\nSurfaces: %d\n", all.objects, all.vertices,
                           all.surfaces);
    command_result_appendf("Selected objects: %d\nSelected vertices: %d\nSelected surfaces: %d\n",
                           chosen.objects, chosen.vertices, chosen.surfaces);
    command_result_appendf("Textures: %d\nMaterials: %d\nMemory used: %.1f MB\n",
                           vesk_get_num_textures(), vesk_get_num_palette(),
                           static_cast<double>(alloc_process_bytes()) / 1e6);
}

void command_get_version_string() { command_result_append_string(vesk_get_version_string()); }

void command_get_version_number() { command_result_appendf("%g", vesk_get_version_number()); }

void command_get_platform(void) { command_result_append_string(vesk_get_platform()); }

void command_get_importer_info()
{
    char *text = vesk_get_all_importer_info();
    command_result_append_string(text);
    myfree(text);
}

void command_get_plugin_info_all() { append_plugin_text(vesk_get_plugin_info_all()); }
void command_get_plugin_info(const char *path) { append_plugin_text(vesk_get_plugin_info(path)); }
void command_get_plugin_about(const char *path) { append_plugin_text(vesk_get_plugin_about(path)); }
void command_get_plugin_list() { append_plugin_text(vesk_get_plugin_list()); }

void command_prefs_set_defaults()
{
    prefs_set_defaults();
    redraw_all();
    display_status();
}

void command_recalc_normals_all()
{
    object_calc_normals_force(vesk_get_world());
    redraw_all();
    display_status();
}

void command_add_new_texture(const char *filename)
{
    command_result_append_int(add_new_texture_opt(filename, filename));
}

void command_search_and_set_new_texture(const char *model_filename, const char *texture_name)
{
    for (object_t *object : each<object_t>(selection().objects))
        search_and_set_texture(object, model_filename, texture_name);
    redraw_all();
    display_status();
}

void command_new_palette_entry(int entry) { command_result_append_int(new_palette_entry(entry)); }

void command_set_palette_entry(int i, float r, float g, float b, float ambient_r, float ambient_g,
                               float ambient_b, float emissive_r, float emissive_g,
                               float emissive_b, float specular_r, float specular_g,
                               float specular_b, float shininess, float transparency)
{
    undo_of_material(i);
    set_palette_entry(i, r, g, b, ambient_r, ambient_g, ambient_b, emissive_r, emissive_g,
                      emissive_b, specular_r, specular_g, specular_b, shininess, transparency);
    redraw_all();
    display_status();
}

// ---- files ----

void command_clear_all(void)
{
    clear_selection();
    clear_all_undos();
    {
        freed_batch at_once; // who hears of freed things looks through all that it keeps
        for (object_t *child : elements_of<object_t>(vesk_get_world()->children))
            object_delete_nocleanup(child);
    }
    current_file_set("");
    edited_file_set("");
    object_flags_changed(); // none is hidden or locked any more
    display_status();
}

void command_save_vesk(const char *filename)
{
    edited_file_set(filename);
    write_vesk(filename);
    display_status();
}

void command_save_selection_vesk(const char *filename)
{
    if (nothing_is_selected() != 0) {
        display_message("save selection - nothing selected");
        return;
    }
    const std::string name = filename; // the messages let scripts run
    object_t *copies = copy_of_selection();
    vesk_write_model(name, copies, name);
    object_free(copies);
    display_status();
}

// ---- objects ----

void command_get_world() { command_result_append_int(object_identity(vesk_get_world())); }

void command_get_lights() { append_identities(world_lights()); }

void command_object_get_children(int id)
{
    if (const object_t *object = object_by_identity(id))
        append_identities(object->children);
}

void command_object_get_name(int id)
{
    if (const object_t *object = object_by_identity(id))
        command_result_append_string(object->name);
}

void command_object_get_surfaces(int id)
{
    if (const object_t *object = object_by_identity(id))
        append_places(object->num_surfaces);
}

void command_object_get_vertices(int id)
{
    if (const object_t *object = object_by_identity(id))
        append_places(object->num_vertices);
}

void command_object_get_centre(int id)
{
    if (const object_t *object = object_by_identity(id))
        append_point(object->centre);
}

void command_object_get_url(int id)
{
    if (const object_t *object = object_by_identity(id))
        command_result_append_string(object->url);
}

void command_object_get_data(int id)
{
    if (const object_t *object = object_by_identity(id))
        command_result_append_string(object->data);
}

void command_object_set_data(int id, const char *data)
{
    set_object_data(object_by_identity(id), data);
}

void tcl_object_move_to_head(int id)
{
    object_t *object = object_by_identity(id);
    if (object == nullptr)
        return;
    if (object->parent != nullptr && item_of<object_t>(object->parent->children) != object) {
        new_undo_state("move to head");
        object_move_to_head(object);
    }
    redraw_all();
    display_status();
}

void command_object_is_selected(int id)
{
    object_t *object = object_by_identity(id);
    if (object != nullptr)
        command_result_append_int(list_index(selection().objects, object) >= 0 ? 1 : 0);
}

void command_object_is_hidden(int id)
{
    if (const object_t *object = object_by_identity(id))
        command_result_append_int(object->visible == 0 ? 1 : 0);
}

void command_object_select(int id)
{
    object_t *object = object_by_identity(id);
    if (object == nullptr)
        return;
    select_object(object);
    redraw_all();
    display_status();
}

void command_object_deselect(int id)
{
    object_t *object = object_by_identity(id);
    if (object == nullptr)
        return;
    unselect_object(object);
    redraw_all();
    display_status();
}
