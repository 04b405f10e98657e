#ifndef VESK_PLUGIN_ENTRY_POINTS_H
#define VESK_PLUGIN_ENTRY_POINTS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* The functions that a plug-in defines. Non-zero from the initialisation means success. About and Info
   may be missing; their texts stay the plug-in's. */
VESK_API int VESKPluginInit(void);
VESK_API void VESKPluginExit(void);
VESK_API const char *VESKPluginAbout(void);
VESK_API const char *VESKPluginInfo(void);

VESK_END_DECLS

#endif
