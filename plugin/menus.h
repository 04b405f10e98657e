#ifndef VESK_PLUGIN_MENUS_H
#define VESK_PLUGIN_MENUS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Menu entries of plug-ins. Labels and help texts may hold any text; `menu` is the path of a Tk
   menu and `command` a script. */

VESK_API void vesk_add_menu_item(const char *menu, const char *label, const char *command);
VESK_API void vesk_add_export_menu_item(const char *label, const char *command);
VESK_API void vesk_add_tools_menu_item(const char *label, const char *command, const char *help);
VESK_API void vesk_add_surface_menu_item(const char *label, const char *command, const char *help);

/* Retired: shows a message box that names vesk_register_file_importer. */
VESK_API void vesk_add_import_menu_item(const char *label, const char *command);

VESK_END_DECLS

#endif
