#ifndef VESK_PLUGIN_VESK_H
#define VESK_PLUGIN_VESK_H

/* The one header of a plug-in, in C99 or C++: everything that the program lets a plug-in call.

   The smallest plug-in, which adds the command "vesk hello":

     #include <plugin/vesk.h>

     static void hello(void) { display_message("hello from a plug-in"); }

     int VESKPluginInit(void)
     {
         vesk_add_command("hello", hello);
         return 1;
     }
     void VESKPluginExit(void) {}

   Build it as a shared library with the suffix ".p" and hidden visibility; the program resolves its
   references when it is loaded. All positions are in world coordinates; counts are 32-bit; lists
   hold words as wide as a pointer. Everything runs on one thread. */

#include "base/command_registry.h"
#include "base/command_result.h"
#include "base/console.h"
#include "base/coor_display.h"
#include "base/crash_guard.h"
#include "base/desktop.h"
#include "base/file_report.h"
#include "base/filename.h"
#include "base/home.h"
#include "base/linked_vars.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/prefs_file.h"
#include "base/progress.h"
#include "base/redraw.h"
#include "base/tokens.h"
#include "base/types.h"
#include "base/ui_calls.h"
#include "base/utf8.h"
#include "base/version.h"
#include "edit/delete.h"
#include "edit/document/current_object.h"
#include "edit/document/modes.h"
#include "edit/document/selection.h"
#include "edit/document/undo.h"
#include "edit/duplicate.h"
#include "edit/edge_mesh.h"
#include "edit/extrude.h"
#include "edit/extrude_path.h"
#include "edit/group.h"
#include "edit/holes.h"
#include "edit/link_surfaces.h"
#include "edit/mesh/vertex_use.h"
#include "edit/object_flags.h"
#include "edit/optimize.h"
#include "edit/primitives.h"
#include "edit/primitives_flat.h"
#include "edit/reduce.h"
#include "edit/resize.h"
#include "edit/revolve.h"
#include "edit/smooth_subdivide.h"
#include "edit/snap.h"
#include "edit/transform.h"
#include "edit/triangulate.h"
#include "edit/uv/uvmap.h"
#include "edit/weld.h"
#include "fileio/embedded_images.h"
#include "fileio/export_3ds.h"
#include "fileio/export_vrml2.h"
#include "fileio/foreign_scene.h"
#include "fileio/import_assimp.h"
#include "fileio/import_bsp.h"
#include "fileio/import_dxf.h"
#include "fileio/import_lightwave.h"
#include "fileio/import_text.h"
#include "fileio/import_vrml.h"
#include "fileio/output.h"
#include "fileio/text_objects.h"
#include "fileio/vesk_old.h"
#include "fileio/vesk_reader.h"
#include "fileio/vesk_writer.h"
#include "model/alloc.h"
#include "model/bounds.h"
#include "model/frame.h"
#include "model/lights.h"
#include "model/list.h"
#include "model/material.h"
#include "model/matrix.h"
#include "model/mesh_arrays.h"
#include "model/normals.h"
#include "model/object.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/property.h"
#include "model/textures/texture_preview.h"
#include "model/textures/texture_search.h"
#include "model/textures/textures.h"
#include "model/vertex_colours.h"
#include "model/world.h"
#include "plugin/dialogs.h"
#include "plugin/entry_points.h"
#include "plugin/exporters.h"
#include "plugin/filters.h"
#include "plugin/importers.h"
#include "plugin/loader.h"
#include "plugin/menus.h"
#include "plugin/texture_commands.h"
#include "view/camera.h"
#include "view/fit.h"
#include "view/keys.h"
#include "view/near_snap.h"
#include "view/projection.h"
#include "view/views.h"

#ifdef __cplusplus
#include "model/material_values.h"
#endif

#endif
