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

#include "app/command_registry.h"
#include "app/command_result.h"
#include "app/coor_display.h"
#include "app/crash_guard.h"
#include "app/desktop.h"
#include "app/file_report.h"
#include "app/filename.h"
#include "app/home.h"
#include "app/linked_vars.h"
#include "app/messages.h"
#include "app/prefs.h"
#include "app/progress.h"
#include "app/tokens.h"
#include "app/types.h"
#include "app/utf8.h"
#include "app/version.h"
#include "edit/current_object.h"
#include "edit/delete.h"
#include "edit/duplicate.h"
#include "edit/edge_mesh.h"
#include "edit/extrude.h"
#include "edit/extrude_path.h"
#include "edit/group.h"
#include "edit/holes.h"
#include "edit/link_surfaces.h"
#include "edit/modes.h"
#include "edit/object_flags.h"
#include "edit/optimize.h"
#include "edit/primitives.h"
#include "edit/reduce.h"
#include "edit/resize.h"
#include "edit/revolve.h"
#include "edit/selection.h"
#include "edit/snap.h"
#include "edit/text_objects.h"
#include "edit/transform.h"
#include "edit/triangulate.h"
#include "edit/undo.h"
#include "edit/uvmap.h"
#include "edit/vertex_use.h"
#include "edit/weld.h"
#include "fileio/embedded_images.h"
#include "fileio/export_3ds.h"
#include "fileio/export_vrml2.h"
#include "fileio/foreign_scene.h"
#include "fileio/import_assimp.h"
#include "fileio/import_bsp.h"
#include "fileio/import_lightwave.h"
#include "fileio/import_text.h"
#include "fileio/import_vrml.h"
#include "fileio/output.h"
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
#include "view/redraw.h"
#include "view/texture_preview.h"
#include "view/textures.h"
#include "view/views.h"

#endif
