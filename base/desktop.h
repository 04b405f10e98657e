#ifndef VESK_BASE_DESKTOP_H
#define VESK_BASE_DESKTOP_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Command "execute": runs a command line in the user's shell; the program goes on meanwhile and
   shows the exit status when it ends. Never to be called with text from a file. Nothing is started
   in batch mode. */
VESK_API void system_execute(const char *command_line);

/* Command "start_web_browser": opens an http, https or file address with the desktop's opener;
   others are refused with a message. Nothing is opened in batch mode. */
VESK_API void start_web_browser(const char *url);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// Command "menu_about".
void command_menu_about();
#endif

#endif
