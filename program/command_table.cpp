#include "program/command_table.h"

#include "base/command_row.h"
#include "base/desktop.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "edit/delete.h"
#include "edit/document/current_object.h"
#include "edit/document/modes.h"
#include "edit/document/selection.h"
#include "edit/document/undo.h"
#include "edit/duplicate.h"
#include "edit/edge_mesh.h"
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
#include "program/added_commands.h"
#include "program/command_handlers.h"
#include "program/command_watch.h"
#include "view/camera.h"
#include "view/fit.h"
#include "view/keys.h"
#include "view/view_picture.h"
#include "view/views.h"

namespace {

// clang-format off
// Never reordered. Deliberate: some usage and help texts are wrong or misspelt and stand as they
// are.
vesk_command_t rows[] = {
    command_row("add_text", add_text, "<string text>"),
    command_row("clear_all", command_clear_all, nullptr, "delete everything"),
    command_row("clear_background_image", command_clear_background_image, "<windownum>", "clear the background image of a window"),
    command_row("clear_selection", command_clear_selection),
    command_row("clipboard_copy", command_clipboard_copy, nullptr, "copy the selection to the clipboard"),
    command_row("clipboard_cut", command_clipboard_cut, nullptr, "cut the selection to the clipboard"),
    command_row("clipboard_paste", command_clipboard_paste, nullptr, "paste from the clipboard"),
    command_row("clone_selection", command_clone_selection, nullptr, "clone the selection in place, returns the new object ids"),
    command_row("convexhull", command_convexhull, nullptr, "convex hull of the selected vertices"),
    command_row("copy_3d_win_to_clipboard", command_copy_3d_win_to_clipboard, nullptr, "copy the 3D view to the clipboard"),
    command_row("createsurface", command_createsurface, "<int type (0 polygon, 1 closed line, 2 line)>", "create a surface from the selected vertices"),
    command_row("create_text", add_text, "<string text>"),
    command_row("delaunay", command_delaunay, nullptr, "delaunay triangulation of the selected vertices"),
    command_row("edit_palette_entry", edit_palette_entry, "<int entrynum>", "open the material editor"),
    command_row("execute", system_execute, "<string system-command>"),
    command_row("extrude_along_path", vesk_extrude_along_path, nullptr, "extrude along the defined path"),
    command_row("define_extrude_path", vesk_define_path_object, nullptr, "define the selected object as the extrusion path"),
    command_row("delete", delete_selected, nullptr, "delete the selection"),
    command_row("do_perspective", do_perspective, "<int 0 parallel, 1 perspective>", "projection of the 3D view"),
    command_row("duplicate", duplicate_selected, nullptr, "duplicate the selection"),
    command_row("execute_surface_filter", execute_surface_filter, "<string filter>", "run a surface filter on the selection"),
    command_row("file_select_texture", file_select_texture, nullptr, "choose a texture for the selection"),
    command_row("file_select_background_image", file_select_background_image, "<windownum>", "choose a background image for a window"),
    command_row("fit_selected_all", fit_selected_all, nullptr, "Fit selection to orth views"),
    command_row("fit_all", fit_all, nullptr, "Fit model to orth views"),
    command_row("get_3d_cursor", command_get_3d_cursor, nullptr, "returns the 3D cursor"),
    command_row("get_app_mode", command_get_app_mode, nullptr, "returns select mode and draw mode"),
    command_row("get_world", command_get_world, nullptr, "returns the id of the world"),
    command_row("get_info", command_get_info, nullptr, "returns counts of the model and of the selection"),
    command_row("get_importer_info", command_get_importer_info, nullptr, "returns a list of all importers"),
    command_row("get_plugin_info_all", command_get_plugin_info_all, nullptr, "returns the information of all plugins"),
    command_row("get_plugin_info", command_get_plugin_info, "<string plugin>", "returns the information of a plugin"),
    command_row("get_plugin_about", command_get_plugin_about, "<string plugin>", "returns the about text of a plugin"),
    command_row("get_plugin_list", command_get_plugin_list, nullptr, "returns the list of plugins"),
    command_row("get_lights", command_get_lights, nullptr, "returns the ids of all lights"),
    command_row("get_platform", command_get_platform, nullptr, "returns a string indicating the OS/machine type"),
    command_row("get_selected_objects", command_get_selected_objects, nullptr, "returns the ids of the selected objects"),
    command_row("get_selection_size", command_get_selection_size, nullptr, "returns the size of the selection"),
    command_row("get_selection_centre", command_get_selection_centre, nullptr, "returns the centre of the selection"),
    command_row("get_texture_repoff", command_get_texture_repoff, nullptr, "returns texture repeats and offsets of the selection"),
    command_row("get_version_string", command_get_version_string, nullptr, "returns the version text"),
    command_row("get_version_number", command_get_version_number, nullptr, "returns the version number"),
    command_row("goto_selected_all", goto_selected_all, nullptr, "Centre orth views about selection"),
    command_row("group", group_selected_objects, "group", "group selected objects"),
    command_row("hide_selected", command_hide_selected, nullptr, "hide the selection"),
    command_row("hide_unselected", command_hide_unselected, nullptr, "hide everything else"),
    command_row("insert_vertex", command_insert_vertex, nullptr, "insert vertices in the middle of the selected edges"),
    command_row("inituv", command_inituv, nullptr, "set initial texture coordinates"),
    command_row("keypress", handle_key_press, "<win> <key> <qual>", "handle keypress"),
    command_row("list", command_list),
    command_row("load_vesk", command_load_vesk, "<filename>", "load an VESK format file"),
    command_row("load_file", vesk_world_import_file, "<filename>", "load a geometry file (uses file suffix to determine importer)"),
    command_row("load_file_select", vesk_file_select_import, "<string title>", "choose a geometry file and load it"),
    command_row("add_new_texture", command_add_new_texture, "<filename>", "add a texture, returns its id"),
    command_row("search_and_set_new_texture", command_search_and_set_new_texture, "<geometryfilename> <texturename>"),
    command_row("load_background_image", load_background_image, "<filename> <windownum>", "Load named picture file into the bcakground of window"),
    command_row("lock_selected", command_lock_selected, nullptr, "lock the selection"),
    command_row("lock_unselected", command_lock_unselected, nullptr, "lock everything else"),
    command_row("menu_about", command_menu_about, nullptr, "show the about box"),
    command_row("mirror", mirror_selected, "<int axis>", "mirror the selection"),
    command_row("move", move_selection_f, "<float x> <float y> <float z>", "translate selection (relative)"),
    command_row("move_to", selection_move_to_f, "<float x> <float y> <float z>", "translate selection (absolute - based on centre point)"),
    command_row("new_cube", command_new_cube, nullptr, "add a regular cube centred at the origin"),
    command_row("new_palette_entry", command_new_palette_entry, "<int entrynum>", "append a copy of a palette entry, returns its index"),
    command_row("prefs_set_defaults", command_prefs_set_defaults, nullptr, "set all preferences to their defaults"),
    command_row("object_explode", command_object_explode, nullptr, "one object for each surface"),
    command_row("object_get_children", command_object_get_children, "<int object_id>", "returns the ids of the children"),
    command_row("object_get_name", command_object_get_name, "<int object_id>", "returns the name"),
    command_row("object_get_surfaces", command_object_get_surfaces, "<int object_id>", "returns list of surface ids"),
    command_row("object_get_vertices", command_object_get_vertices, "<int object_id>", "returns list of surfaces ids"),
    command_row("object_get_centre", command_object_get_centre, "<int object_id>", "returns the centre"),
    command_row("object_get_url", command_object_get_url, "<int object_id>", "returns the url"),
    command_row("object_get_data", command_object_get_data, "<int object_id>", "returns the data"),
    command_row("object_set_data", command_object_set_data, "<int object_id> <string data>", "set object data"),
    command_row("object_fragment", command_object_fragment, nullptr, "one object for each connected piece"),
    command_row("object_merge", command_object_merge, nullptr, "merge the selected objects"),
    command_row("object_move_to_head", tcl_object_move_to_head, "<int objectid>", "move object to the head in it's parents list of children"),
    command_row("object_recentre", command_object_recentre, nullptr, "set the centre to the middle of the box"),
    command_row("object_is_selected", command_object_is_selected, "<int object_id>", "returns 1 when the object is selected"),
    command_row("object_is_hidden", command_object_is_hidden, "<int object_id>", "returns 1 when the object is hidden"),
    command_row("object_hide", command_object_hide, "<int object_id>", "hide an object"),
    command_row("object_unhide", command_object_unhide, "<int object_id>", "show an object"),
    command_row("object_select", command_object_select, "<int object_id>", "select an object"),
    command_row("object_deselect", command_object_deselect, "<int object_id>", "deselect an object"),
    command_row("object_mincentre", command_object_mincentre, nullptr, "set the centre to the minimum corner of the box"),
    command_row("object_snap_together_by_vertices", allign_objects_using_2_vert, nullptr, "snap objects together by their selected vertices"),
    command_row("optimize", optimize_selected, nullptr, "merge vertices at the same place"),
    command_row("optimize_surfaces", selected_optimize_surfaces, nullptr, "remove duplicate and degenerate surfaces"),
    command_row("person_get_loc_dir", command_person_get_loc_dir, nullptr, "returns location and direction of the viewer"),
    command_row("person_set_loc_dir", person_set_loc_dir_string, "<string - 6 floats>", "set the person location and direction"),
    command_row("person_level", viewer_level, nullptr, "set the viewpoint to be level"),
    command_row("plugin_load", plugin_load, "<filename>", "load a plugin"),
    command_row("recalc_normals_all", command_recalc_normals_all, nullptr, "recalculate all normals"),
    command_row("redraw_all", redraw_all, nullptr, "redraw all windows"),
    command_row("redraw_3d", redraw_3d, nullptr, "redraw the 3D window"),
    command_row("redraw_orth", redraw_orth, nullptr, "redraw orthograpic windows"),
    command_row("reduce", selected_objects_reduce, "<int target percentage vertex loss>", "reduce polys"),
    command_row("reset_views", reset_views, nullptr, "reset window views to initial setup"),
    command_row("remap_textures", selected_calc_texture_coors, "<int window>", "map textures onto the selection"),
    command_row("removesurface", remove_selected_surfaces, nullptr, "remove the selected surfaces, keep their vertices"),
    command_row("revolve", rotate_form_selected_objects, "<int axis>", "Revolve selected around an axis"),
    command_row("rotate", rotate_selection_f, "<float rx-degs> <float ry-degs> <float rz-degs>", "rotate selection about origin"),
    command_row("rotate_axis_angle", selection_rotate_axis_angle, "<float axis> <float angle>", "Rotate selected around an axis, with angle"),
    command_row("rotate_about", rotate_selection_about_f, "<float rx-degs> <float ry-degs> <float rz-degs> <float x_ <float y> <float z>", "rotate selection about a point"),
    command_row("save_vesk", command_save_vesk, "<filename>", "save an VESK format file"),
    command_row("save_selection_vesk", command_save_selection_vesk, "<filename>", "save the selection in an VESK format file"),
    command_row("save_settings", save_prefs, nullptr, "save the preferences"),
    command_row("set_no_texture", selected_texture_off, nullptr, "take the texture off the selection"),
    command_row("scale", selected_scale, "<float scale-x> <float scale-y> <float scale-z>"),
    command_row("select_all", select_all, nullptr, "select everything"),
    command_row("select_by_name", select_by_name, "<string name>", "select objects by name"),
    command_row("select_part_selected_surfaces", select_part_selected_surfaces, nullptr, "select whole surfaces of the selected vertices"),
    command_row("selection_get_num_vertices", command_selection_get_num_vertices, nullptr, "returns the number of selected vertices"),
    command_row("selection_get_num_surfaces", command_selection_get_num_surfaces, nullptr, "returns the number of selected surfaces"),
    command_row("selection_get_num_objects", command_selection_get_num_objects, nullptr, "returns the number of selected objects"),
    command_row("selected_texture_off", selected_texture_off, nullptr, "take the texture off the selection"),
    command_row("set_col", command_set_col, "<int entrynum>", "set the material of the selection"),
    command_row("set_current_object_data", set_current_object_data, "<string data>", "set the data of the current object"),
    command_row("set_current_object_name", set_current_object_name, "<string name>", "set the name of the current object"),
    command_row("set_current_object_url", set_current_object_url, "<string url>", "set the url of the current object"),
    command_row("set_draw_mode", command_set_draw_mode, "<string mode>", "set the draw mode"),
    command_row("set_view_3d_selection", set_3d_view_selection, nullptr, "centre view about selection"),
    command_row("set_view_3d_cursor", set_3d_view_cursor, nullptr, "centre view about cursor"),
    command_row("set_view_3d_origin", set_3d_view_origin, nullptr, "centre view about origin"),
    command_row("set_select_mode", command_set_select_mode, "<string mode>", "set the select mode"),
    command_row("set_texture", selected_texture_set, "<texture id>", "set the texture of the selection"),
    command_row("set_texture_repeats", command_set_texture_repeats, "<float x> <float y>", "set the texture repeats of the selection"),
    command_row("set_texture_offsets", command_set_texture_offsets, "<float x> <float y>", "set the texture offsets of the selection"),
    command_row("set_palette_entry", command_set_palette_entry, "<int entrynum> <float red> <float green> <float blue>  <float ambient-red> <float ambient-green> <float ambient-blue> <float emissive-red> <float emissive-green> <float emissive-blue> <float specular-red> <float specular-green> <float specular-blue> <float shininess> <float transp>"),
    command_row("set_surface_type", command_set_surface_type, "<int type>", "set the type of the selected surfaces"),
    command_row("set_walk_viewer", person_set_walk, nullptr, "viewer to walk mode"),
    command_row("set_spin_viewer", person_set_spin, nullptr, "viewer to spin mode"),
    command_row("size_to", selection_size_to_f, "<float x> <float y> <float z>", "size selection (absolute)"),
    command_row("snaptogether", selected_snap_together, nullptr, "snap the selected vertices together"),
    command_row("snaptogetherdistance", selected_snap_together_distance, "<dist>", "snap vertices together by distance"),
    command_row("snaptogrid", selected_snap_to_grid, nullptr, "move all selected vertices to closest grid point"),
    command_row("surface_bevel", selected_surfaces_bevel, nullptr, "bevel the selected surfaces"),
    command_row("start_web_browser", start_web_browser, "<string url>", "start up a web browser with this URL"),
    command_row("surface_change_vertex_order", command_surface_change_vertex_order, nullptr, "change the first vertex of the selected surfaces"),
    command_row("surface_create_object", command_surface_create_object, nullptr, "make an object of the selected surfaces"),
    command_row("surface_flip_normals", command_surface_flip_normals, nullptr, "reverse the selected surfaces"),
    command_row("surface_make_hole", selected_surfaces_make_hole, nullptr, "make holes in the selected surfaces"),
    command_row("surface_set_shaded", command_surface_set_shaded, "<int 0 flat, 1 smooth>", "set the shading of the selected surfaces"),
    command_row("surface_set_twosided", command_surface_set_twosided, "<int 0 or 1>", "set the sides of the selected surfaces"),
    command_row("surface_spike", command_surface_spike, nullptr, "spike the selected surfaces"),
    command_row("surface_spline", command_surface_spline, nullptr, "spline the selected lines"),
    command_row("surface_subdivide", command_surface_subdivide, nullptr, "subdivide the selected surfaces"),
    command_row("surface_triangulate", selected_surface_triangulate, nullptr, "triangulate the selected surfaces"),
    command_row("surface_loop_subdivision", surface_loop_subdivision, "<0.0 -> 1.0 smoothing factor>"),
    command_row("texture_set", selected_texture_set, "<texture id>", "set the texture of the selection"),
    command_row("ungroup", command_ungroup, nullptr, "ungroup the selected groups"),
    command_row("undo", UNDO, nullptr, "undo"),
    command_row("unhide", show_all, nullptr, "undo"),
    command_row("unlock", command_unlock, nullptr, "unlock everything"),
    command_row("unselect_by_name", unselect_by_name, "<string name>", "unselect objects by name"),
    command_row("unshare_vertices", selected_unshare_vertices, nullptr, "ensure each selected vertex is owned by one surface only"),
    command_row("viewer_flyto", person_flyto, "<steps> (pos x y x> <dir x y z>", "fly viewer to this pos/dir"),
    command_row("window_draw_texture", window_draw_texture, "<texture id> <window>", "draw a texture in a window"),
    command_row("write_dive", write_dive, "<filename>", "write the scene in Dive format"),
    command_row("write_inventor", write_inventor, "<filename>", "write the scene in Inventor format"),
    command_row("write_massive", write_massive, "<filename>", "write the scene in MASSIVE format"),
    command_row("write_vrml", write_vrml, "<filename>", "write the scene in VRML 1 format"),
    command_row("write_vrml2", write_vrml2, "<filename>", "write the scene in VRML 2 format"),
    command_row("write_vrml2_proto", write_vrml2_proto, "<filename>", "write the scene in VRML 2 (PROTO) format"),
    command_row("write_rib", write_rib, "<filename>", "write the scene in RIB format"),
    command_row("write_POV", write_POV, "<filename>", "write the scene in POV format"),
    command_row("write_dvs", write_dvs, "<filename>", "write the scene in dVS format"),
    command_row("write_tri", write_tri, "<filename>", "write the scene in triangle list format"),
    command_row("zoom_in", zoom_in, nullptr, "zoom in the orth views"),
    command_row("zoom_out", zoom_out, nullptr, "zoom out of the orth views"),
    command_row("zoomview", zoom_view, "<view id (0-3)> <direction>", "zoom a view"),
};

using enum command_kind;
// Every row that is not an edit.
const command_kind_row_t kinds[] = {
    {"get_3d_cursor", query}, {"get_app_mode", query}, {"get_world", query}, {"get_info", query},
    {"get_importer_info", query}, {"get_plugin_info_all", query}, {"get_plugin_info", query},
    {"get_plugin_about", query}, {"get_plugin_list", query}, {"get_lights", query},
    {"get_platform", query}, {"get_selected_objects", query}, {"get_selection_size", query},
    {"get_selection_centre", query}, {"get_texture_repoff", query}, {"get_version_string", query},
    {"get_version_number", query}, {"list", query}, {"object_get_children", query},
    {"object_get_name", query}, {"object_get_surfaces", query}, {"object_get_vertices", query},
    {"object_get_centre", query}, {"object_get_url", query}, {"object_get_data", query},
    {"object_is_selected", query}, {"object_is_hidden", query}, {"person_get_loc_dir", query},
    {"selection_get_num_vertices", query}, {"selection_get_num_surfaces", query},
    {"selection_get_num_objects", query},
    {"clear_background_image", view}, {"clipboard_copy", view}, {"copy_3d_win_to_clipboard", view},
    {"do_perspective", view}, {"edit_palette_entry", view}, {"execute", view},
    {"fit_selected_all", view}, {"fit_all", view}, {"goto_selected_all", view},
    {"keypress", view}, {"menu_about", view}, {"person_set_loc_dir", view},
    {"person_level", view}, {"prefs_set_defaults", view}, {"redraw_all", view},
    {"redraw_3d", view}, {"redraw_orth", view}, {"reset_views", view}, {"save_settings", view},
    {"set_view_3d_selection", view}, {"set_view_3d_cursor", view}, {"set_view_3d_origin", view},
    {"set_walk_viewer", view}, {"set_spin_viewer", view}, {"start_web_browser", view},
    {"viewer_flyto", view}, {"window_draw_texture", view}, {"zoom_in", view}, {"zoom_out", view},
    {"zoomview", view},
    // added at start
    {"object_tree", query}, {"object_at", query}, {"model_state", query}, {"get_counts", query}, {"object_info", query},
    {"get_palette", query}, {"get_material", query}, {"command_info", query}, {"cancel", view}, {"texture_photo", query}, {"texture_list", query}, {"tool_key", view}, {"objects_select", view}, {"select_elements", view},
    {"change_count", query}, {"can_take_back", query}, {"history_list", query}, {"undo_name", query}, {"history_limit", view}, {"history_note", view},
    {"check_model", query}, {"check_counts", query}, {"check_select", view},
    {"autosave", query}, {"recovery_list", query}, {"recovery_drop", view},
    {"set_backup_versions", view}, {"prefs_rows", query}, {"axis_colours", view},
    {"plugins_skip", view}, {"material_counts", query}, {"material_select", view},
    {"uv_outlines", query}, {"uv_texture", query}, {"picture_photo", query}, {"measure", query}, {"get_texture_loaders", query}, {"measure_points", view}, {"get_measures", query}, {"set_view_tool", view},
    {"uv_info", query}, {"uv_islands", query}, {"uv_stretch", query}, {"uv_overlaps", query},
    {"uv_keep", view}, {"uv_tool", view}, {"uv_option", view}, {"uv_view_fit", view},
    {"uv_view_zoom", view}, {"uv_key", view}, {"uv_view_save_picture", query},
    {"uv_view_benchmark", query}, {"view_save_picture", query},
};
// clang-format on

} // namespace

std::span<const vesk_command_t> command_table() { return rows; }

void register_commands()
{
    command_registry_install(rows, kinds);
    command_watch_install();
    undo_install_kinds(transform_undo_kinds());
    register_added_commands();
    command_add_own(command_row("export_3ds", command_export_3ds, nullptr, "user command"));
    command_add_own(
        command_row("write_3ds", write_3ds, "<filename>", "write the scene in 3DS format"));
}
