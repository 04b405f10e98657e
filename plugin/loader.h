#ifndef VESK_PLUGIN_LOADER_H
#define VESK_PLUGIN_LOADER_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* A plug-in is a shared library "*.p" that exports:
     int VESKPluginInit(void)            registers what it adds; non-zero for success
     void VESKPluginExit(void)           called at the end of the run, in reverse load order
     const char *VESKPluginAbout(void)   text of the about box; may be missing
     const char *VESKPluginInfo(void)    one line; may be missing
   Every call into it is guarded. */

/* Loads every plug-in of the home directory's "plugins", by name. Once, at start. */
VESK_API void load_all_plugins(void);

/* Loads one plug-in. A failure gives a console line and a message box and leaves nothing
   behind. Returns 1 or 0. Command "plugin_load". */
VESK_API int plugin_load(const char *path);

/* Paths of the loaded plug-ins, each in double quotes and followed by a blank, then a line feed;
   valid until the next call. */
VESK_API const char *vesk_get_plugin_list(void);

/* The texts of a plug-in about itself, by its path as listed; "" for an unknown one or none. Valid until
   the next call. */
VESK_API const char *vesk_get_plugin_info(const char *path);
VESK_API const char *vesk_get_plugin_about(const char *path);

/* The information of all plug-ins, a line each; valid until the next call. */
VESK_API const char *vesk_get_plugin_info_all(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// File names in the home directory's "plugins" that are not loaded at the start; "*" means all.
void plugins_skip(int count, const char *const *names);
// Calls the exit entry points, newest plug-in first; each once.
void plugins_exit();
// After a fault in a plug-in's code: the scripts offer to switch it off, by "plugin_faulted" with its
// file name.
void plugin_tell_fault(const void *code);
#endif

#endif
