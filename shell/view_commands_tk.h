#ifndef VESK_SHELL_VIEW_COMMANDS_TK_H
#define VESK_SHELL_VIEW_COMMANDS_TK_H

// Adds the commands that need the windows: pictures of a view and its speed.
void register_view_commands();

#endif
