#include "program/command_table.h"

#include "base/command_row.h"
#include "base/desktop.h"
#include "base/prefs.h"
#include "base/prefs_file.h"
#include "base/redraw.h"
#include "edit/delete.h"
#include "edit/document/current_object.h"
#include "edit/document/modes.h"
#include "edit/document/selection.h"
#include "edit/document/undo.h"
#include "edit/duplicate.h"
#include "edit/extrude_path.h"
#include "edit/group.h"
#include "edit/holes.h"
#include "edit/hull.h"
#include "edit/make_surface.h"
#include "edit/object_flags.h"
#include "edit/optimize.h"
#include "edit/pieces.h"
#include "edit/primitives.h"
#include "edit/reduce.h"
#include "edit/revolve.h"
#include "edit/smooth_subdivide.h"
#include "edit/snap.h"
#include "edit/subdivide.h"
#include "edit/surface_attributes.h"
#include "edit/transform.h"
#include "edit/transform_undo.h"
#include "edit/triangulate.h"
#include "edit/uv/uvmap.h"
#include "edit/weld.h"
#include "fileio/clipboard.h"
#include "fileio/export_3ds.h"
#include "fileio/export_commands.h"
#include "fileio/export_vrml2.h"
#include "fileio/text_objects.h"
#include "model/palette.h"
#include "model/textures/texture_preview.h"
#include "plugin/filters.h"
#include "plugin/importers.h"
#include "plugin/loader.h"
#include "plugin/texture_commands.h"
#include "program/command_handlers.h"
#include "program/command_watch.h"
#include "program/own_commands.h"
#include "view/camera.h"
#include "view/fit.h"
#include "view/keys.h"
#include "view/view_picture.h"
#include "view/views.h"

namespace {

// clang-format off
// Never reordered. Deliberate: some usage and help texts are wrong or misspelt and stand as they
// are.
using enum command_kind;
own_command_t rows[] = {
    command_row("add_text", add_text, edit, "<string text>"),
    command_row("clear_all", command_clear_all, once, nullptr, "delete everything"),
    command_row("clear_background_image", command_clear_background_image, view, "<windownum>", "clear the background image of a window"),
    command_row("clear_selection", command_clear_selection, select),
    command_row("clipboard_copy", command_clipboard_copy, view, nullptr, "copy the selection to the clipboard"),
    command_row("clipboard_cut", command_clipboard_cut, edit, nullptr, "cut the selection to the clipboard"),
    command_row("clipboard_paste", command_clipboard_paste, edit, nullptr, "paste from the clipboard"),
    command_row("clone_selection", command_clone_selection, edit, nullptr, "clone the selection in place, returns the new object ids"),
    command_row("convexhull", command_convexhull, edit, nullptr, "convex hull of the selected vertices"),
    command_row("copy_3d_win_to_clipboard", command_copy_3d_win_to_clipboard, view, nullptr, "copy the 3D view to the clipboard"),
    command_row("createsurface", command_createsurface, edit, "<int type (0 polygon, 1 closed line, 2 line)>", "create a surface from the selected vertices"),
    command_row("create_text", add_text, edit, "<string text>"),
    command_row("delaunay", command_delaunay, edit, nullptr, "delaunay triangulation of the selected vertices"),
    command_row("edit_palette_entry", edit_palette_entry, view, "<int entrynum>", "open the material editor"),
    command_row("execute", system_execute, view, "<string system-command>"),
    command_row("extrude_along_path", vesk_extrude_along_path, edit, nullptr, "extrude along the defined path"),
    command_row("define_extrude_path", vesk_define_path_object, edit, nullptr, "define the selected object as the extrusion path"),
    command_row("delete", delete_selected, edit, nullptr, "delete the selection"),
    command_row("do_perspective", do_perspective, view, "<int 0 parallel, 1 perspective>", "projection of the 3D view"),
    command_row("duplicate", duplicate_selected, edit, nullptr, "duplicate the selection"),
    command_row("execute_surface_filter", execute_surface_filter, edit, "<string filter>", "run a surface filter on the selection"),
    command_row("file_select_texture", file_select_texture, edit, nullptr, "choose a texture for the selection"),
    command_row("file_select_background_image", file_select_background_image, view, "<windownum>", "choose a background image for a window"),
    command_row("fit_selected_all", fit_selected_all, view, nullptr, "Fit selection to orth views"),
    command_row("fit_all", fit_all, view, nullptr, "Fit model to orth views"),
    command_row("get_3d_cursor", command_get_3d_cursor, query, nullptr, "returns the 3D cursor"),
    command_row("get_app_mode", command_get_app_mode, query, nullptr, "returns select mode and draw mode"),
    command_row("get_world", command_get_world, query, nullptr, "returns the id of the world"),
    command_row("get_info", command_get_info, query, nullptr, "returns counts of the model and of the selection"),
    command_row("get_importer_info", command_get_importer_info, query, nullptr, "returns a list of all importers"),
    command_row("get_plugin_info_all", command_get_plugin_info_all, query, nullptr, "returns the information of all plugins"),
    command_row("get_plugin_info", command_get_plugin_info, query, "<string plugin>", "returns the information of a plugin"),
    command_row("get_plugin_about", command_get_plugin_about, query, "<string plugin>", "returns the about text of a plugin"),
    command_row("get_plugin_list", command_get_plugin_list, query, nullptr, "returns the list of plugins"),
    command_row("get_lights", command_get_lights, query, nullptr, "returns the ids of all lights"),
    command_row("get_platform", command_get_platform, query, nullptr, "returns a string indicating the OS/machine type"),
    command_row("get_selected_objects", command_get_selected_objects, query, nullptr, "returns the ids of the selected objects"),
    command_row("get_selection_size", command_get_selection_size, query, nullptr, "returns the size of the selection"),
    command_row("get_selection_centre", command_get_selection_centre, query, nullptr, "returns the centre of the selection"),
    command_row("get_texture_repoff", command_get_texture_repoff, query, nullptr, "returns texture repeats and offsets of the selection"),
    command_row("get_version_string", command_get_version_string, query, nullptr, "returns the version text"),
    command_row("get_version_number", command_get_version_number, query, nullptr, "returns the version number"),
    command_row("goto_selected_all", goto_selected_all, view, nullptr, "Centre orth views about selection"),
    command_row("group", group_selected_objects, edit, "group", "group selected objects"),
    command_row("hide_selected", command_hide_selected, edit, nullptr, "hide the selection"),
    command_row("hide_unselected", command_hide_unselected, edit, nullptr, "hide everything else"),
    command_row("insert_vertex", command_insert_vertex, edit, nullptr, "insert vertices in the middle of the selected edges"),
    command_row("inituv", command_inituv, edit, nullptr, "set initial texture coordinates"),
    command_row("keypress", handle_key_press, view, "<win> <key> <qual>", "handle keypress"),
    command_row("list", command_list, query),
    command_row("load_vesk", command_load_vesk, once, "<filename>", "load an VESK format file"),
    command_row("load_file", vesk_world_import_file, once, "<filename>", "load a geometry file (uses file suffix to determine importer)"),
    command_row("load_file_select", vesk_file_select_import, once, "<string title>", "choose a geometry file and load it"),
    command_row("add_new_texture", command_add_new_texture, edit, "<filename>", "add a texture, returns its id"),
    command_row("search_and_set_new_texture", command_search_and_set_new_texture, edit, "<geometryfilename> <texturename>"),
    command_row("load_background_image", load_background_image, view, "<filename> <windownum>", "Load named picture file into the bcakground of window"),
    command_row("lock_selected", command_lock_selected, edit, nullptr, "lock the selection"),
    command_row("lock_unselected", command_lock_unselected, edit, nullptr, "lock everything else"),
    command_row("menu_about", command_menu_about, view, nullptr, "show the about box"),
    command_row("mirror", mirror_selected, edit, "<int axis>", "mirror the selection"),
    command_row("move", move_selection_f, edit, "<float x> <float y> <float z>", "translate selection (relative)"),
    command_row("move_to", selection_move_to_f, edit, "<float x> <float y> <float z>", "translate selection (absolute - based on centre point)"),
    command_row("new_cube", command_new_cube, edit, nullptr, "add a regular cube centred at the origin"),
    command_row("new_palette_entry", command_new_palette_entry, edit, "<int entrynum>", "append a copy of a palette entry, returns its index"),
    command_row("prefs_set_defaults", command_prefs_set_defaults, view, nullptr, "set all preferences to their defaults"),
    command_row("object_explode", command_object_explode, edit, nullptr, "one object for each surface"),
    command_row("object_get_children", command_object_get_children, query, "<int object_id>", "returns the ids of the children"),
    command_row("object_get_name", command_object_get_name, query, "<int object_id>", "returns the name"),
    command_row("object_get_surfaces", command_object_get_surfaces, query, "<int object_id>", "returns list of surface ids"),
    command_row("object_get_vertices", command_object_get_vertices, query, "<int object_id>", "returns list of surfaces ids"),
    command_row("object_get_centre", command_object_get_centre, query, "<int object_id>", "returns the centre"),
    command_row("object_get_url", command_object_get_url, query, "<int object_id>", "returns the url"),
    command_row("object_get_data", command_object_get_data, query, "<int object_id>", "returns the data"),
    command_row("object_set_data", command_object_set_data, edit, "<int object_id> <string data>", "set object data"),
    command_row("object_fragment", command_object_fragment, edit, nullptr, "one object for each connected piece"),
    command_row("object_merge", command_object_merge, edit, nullptr, "merge the selected objects"),
    command_row("object_move_to_head", tcl_object_move_to_head, edit, "<int objectid>", "move object to the head in it's parents list of children"),
    command_row("object_recentre", command_object_recentre, edit, nullptr, "set the centre to the middle of the box"),
    command_row("object_is_selected", command_object_is_selected, query, "<int object_id>", "returns 1 when the object is selected"),
    command_row("object_is_hidden", command_object_is_hidden, query, "<int object_id>", "returns 1 when the object is hidden"),
    command_row("object_hide", command_object_hide, edit, "<int object_id>", "hide an object"),
    command_row("object_unhide", command_object_unhide, edit, "<int object_id>", "show an object"),
    command_row("object_select", command_object_select, select, "<int object_id>", "select an object"),
    command_row("object_deselect", command_object_deselect, select, "<int object_id>", "deselect an object"),
    command_row("object_mincentre", command_object_mincentre, edit, nullptr, "set the centre to the minimum corner of the box"),
    command_row("object_snap_together_by_vertices", allign_objects_using_2_vert, edit, nullptr, "snap objects together by their selected vertices"),
    command_row("optimize", optimize_selected, edit, nullptr, "merge vertices at the same place"),
    command_row("optimize_surfaces", selected_optimize_surfaces, edit, nullptr, "remove duplicate and degenerate surfaces"),
    command_row("person_get_loc_dir", command_person_get_loc_dir, query, nullptr, "returns location and direction of the viewer"),
    command_row("person_set_loc_dir", person_set_loc_dir_string, view, "<string - 6 floats>", "set the person location and direction"),
    command_row("person_level", viewer_level, view, nullptr, "set the viewpoint to be level"),
    command_row("plugin_load", plugin_load, once, "<filename>", "load a plugin"),
    command_row("recalc_normals_all", command_recalc_normals_all, edit, nullptr, "recalculate all normals"),
    command_row("redraw_all", redraw_all, view, nullptr, "redraw all windows"),
    command_row("redraw_3d", redraw_3d, view, nullptr, "redraw the 3D window"),
    command_row("redraw_orth", redraw_orth, view, nullptr, "redraw orthograpic windows"),
    command_row("reduce", selected_objects_reduce, edit, "<int target percentage vertex loss>", "reduce polys"),
    command_row("reset_views", reset_views, view, nullptr, "reset window views to initial setup"),
    command_row("remap_textures", selected_calc_texture_coors, edit, "<int window>", "map textures onto the selection"),
    command_row("removesurface", remove_selected_surfaces, edit, nullptr, "remove the selected surfaces, keep their vertices"),
    command_row("revolve", rotate_form_selected_objects, edit, "<int axis>", "Revolve selected around an axis"),
    command_row("rotate", rotate_selection_f, edit, "<float rx-degs> <float ry-degs> <float rz-degs>", "rotate selection about origin"),
    command_row("rotate_axis_angle", selection_rotate_axis_angle, edit, "<float axis> <float angle>", "Rotate selected around an axis, with angle"),
    command_row("rotate_about", rotate_selection_about_f, edit, "<float rx-degs> <float ry-degs> <float rz-degs> <float x_ <float y> <float z>", "rotate selection about a point"),
    command_row("save_vesk", command_save_vesk, once, "<filename>", "save an VESK format file"),
    command_row("save_selection_vesk", command_save_selection_vesk, edit, "<filename>", "save the selection in an VESK format file"),
    command_row("save_settings", save_prefs, view, nullptr, "save the preferences"),
    command_row("set_no_texture", selected_texture_off, edit, nullptr, "take the texture off the selection"),
    command_row("scale", selected_scale, edit, "<float scale-x> <float scale-y> <float scale-z>"),
    command_row("select_all", select_all, select, nullptr, "select everything"),
    command_row("select_by_name", select_by_name, select, "<string name>", "select objects by name"),
    command_row("select_part_selected_surfaces", select_part_selected_surfaces, select, nullptr, "select whole surfaces of the selected vertices"),
    command_row("selection_get_num_vertices", command_selection_get_num_vertices, query, nullptr, "returns the number of selected vertices"),
    command_row("selection_get_num_surfaces", command_selection_get_num_surfaces, query, nullptr, "returns the number of selected surfaces"),
    command_row("selection_get_num_objects", command_selection_get_num_objects, query, nullptr, "returns the number of selected objects"),
    command_row("selected_texture_off", selected_texture_off, edit, nullptr, "take the texture off the selection"),
    command_row("set_col", command_set_col, edit, "<int entrynum>", "set the material of the selection"),
    command_row("set_current_object_data", set_current_object_data, edit, "<string data>", "set the data of the current object"),
    command_row("set_current_object_name", set_current_object_name, edit, "<string name>", "set the name of the current object"),
    command_row("set_current_object_url", set_current_object_url, edit, "<string url>", "set the url of the current object"),
    command_row("set_draw_mode", command_set_draw_mode, select, "<string mode>", "set the draw mode"),
    command_row("set_view_3d_selection", set_3d_view_selection, view, nullptr, "centre view about selection"),
    command_row("set_view_3d_cursor", set_3d_view_cursor, view, nullptr, "centre view about cursor"),
    command_row("set_view_3d_origin", set_3d_view_origin, view, nullptr, "centre view about origin"),
    command_row("set_select_mode", command_set_select_mode, select, "<string mode>", "set the select mode"),
    command_row("set_texture", selected_texture_set, edit, "<texture id>", "set the texture of the selection"),
    command_row("set_texture_repeats", command_set_texture_repeats, edit, "<float x> <float y>", "set the texture repeats of the selection"),
    command_row("set_texture_offsets", command_set_texture_offsets, edit, "<float x> <float y>", "set the texture offsets of the selection"),
    command_row("set_palette_entry", command_set_palette_entry, edit, "<int entrynum> <float red> <float green> <float blue>  <float ambient-red> <float ambient-green> <float ambient-blue> <float emissive-red> <float emissive-green> <float emissive-blue> <float specular-red> <float specular-green> <float specular-blue> <float shininess> <float transp>"),
    command_row("set_surface_type", command_set_surface_type, edit, "<int type>", "set the type of the selected surfaces"),
    command_row("set_walk_viewer", person_set_walk, view, nullptr, "viewer to walk mode"),
    command_row("set_spin_viewer", person_set_spin, view, nullptr, "viewer to spin mode"),
    command_row("size_to", selection_size_to_f, edit, "<float x> <float y> <float z>", "size selection (absolute)"),
    command_row("snaptogether", selected_snap_together, edit, nullptr, "snap the selected vertices together"),
    command_row("snaptogetherdistance", selected_snap_together_distance, edit, "<dist>", "snap vertices together by distance"),
    command_row("snaptogrid", selected_snap_to_grid, edit, nullptr, "move all selected vertices to closest grid point"),
    command_row("surface_bevel", selected_surfaces_bevel, edit, nullptr, "bevel the selected surfaces"),
    command_row("start_web_browser", start_web_browser, view, "<string url>", "start up a web browser with this URL"),
    command_row("surface_change_vertex_order", command_surface_change_vertex_order, edit, nullptr, "change the first vertex of the selected surfaces"),
    command_row("surface_create_object", command_surface_create_object, edit, nullptr, "make an object of the selected surfaces"),
    command_row("surface_flip_normals", command_surface_flip_normals, edit, nullptr, "reverse the selected surfaces"),
    command_row("surface_make_hole", selected_surfaces_make_hole, edit, nullptr, "make holes in the selected surfaces"),
    command_row("surface_set_shaded", command_surface_set_shaded, edit, "<int 0 flat, 1 smooth>", "set the shading of the selected surfaces"),
    command_row("surface_set_twosided", command_surface_set_twosided, edit, "<int 0 or 1>", "set the sides of the selected surfaces"),
    command_row("surface_spike", command_surface_spike, edit, nullptr, "spike the selected surfaces"),
    command_row("surface_spline", command_surface_spline, edit, nullptr, "spline the selected lines"),
    command_row("surface_subdivide", command_surface_subdivide, edit, nullptr, "subdivide the selected surfaces"),
    command_row("surface_triangulate", selected_surface_triangulate, edit, nullptr, "triangulate the selected surfaces"),
    command_row("surface_loop_subdivision", surface_loop_subdivision, edit, "<0.0 -> 1.0 smoothing factor>"),
    command_row("texture_set", selected_texture_set, edit, "<texture id>", "set the texture of the selection"),
    command_row("ungroup", command_ungroup, edit, nullptr, "ungroup the selected groups"),
    command_row("undo", UNDO, once, nullptr, "undo"),
    command_row("unhide", show_all, edit, nullptr, "undo"),
    command_row("unlock", command_unlock, edit, nullptr, "unlock everything"),
    command_row("unselect_by_name", unselect_by_name, select, "<string name>", "unselect objects by name"),
    command_row("unshare_vertices", selected_unshare_vertices, edit, nullptr, "ensure each selected vertex is owned by one surface only"),
    command_row("viewer_flyto", person_flyto, view, "<steps> (pos x y x> <dir x y z>", "fly viewer to this pos/dir"),
    command_row("window_draw_texture", window_draw_texture, view, "<texture id> <window>", "draw a texture in a window"),
    command_row("write_dive", write_dive, query, "<filename>", "write the scene in Dive format"),
    command_row("write_inventor", write_inventor, query, "<filename>", "write the scene in Inventor format"),
    command_row("write_massive", write_massive, query, "<filename>", "write the scene in MASSIVE format"),
    command_row("write_vrml", write_vrml, query, "<filename>", "write the scene in VRML 1 format"),
    command_row("write_vrml2", write_vrml2, query, "<filename>", "write the scene in VRML 2 format"),
    command_row("write_vrml2_proto", write_vrml2_proto, query, "<filename>", "write the scene in VRML 2 (PROTO) format"),
    command_row("write_rib", write_rib, query, "<filename>", "write the scene in RIB format"),
    command_row("write_POV", write_POV, query, "<filename>", "write the scene in POV format"),
    command_row("write_dvs", write_dvs, query, "<filename>", "write the scene in dVS format"),
    command_row("write_tri", write_tri, query, "<filename>", "write the scene in triangle list format"),
    command_row("zoom_in", zoom_in, view, nullptr, "zoom in the orth views"),
    command_row("zoom_out", zoom_out, view, nullptr, "zoom out of the orth views"),
    command_row("zoomview", zoom_view, view, "<view id (0-3)> <direction>", "zoom a view"),
};

// clang-format on

} // namespace

std::span<const own_command_t> command_table() { return rows; }

void register_commands()
{
    command_registry_install(rows);
    command_watch_install();
    undo_install_kinds(transform_undo_kinds());
    for (const auto &list :
         {model_commands(), edge_commands(), topology_commands(), copy_commands(), check_commands(),
          file_commands(), history_commands(), panel_commands(), preference_commands(),
          recovery_commands(), uv_commands()}) {
        for (const own_command_t &command : list)
            command_add_own(command);
    }
    command_add_own(command_row("export_3ds", command_export_3ds, query, nullptr, "user command"));
    command_add_own(
        command_row("write_3ds", write_3ds, query, "<filename>", "write the scene in 3DS format"));
}
