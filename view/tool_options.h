#ifndef VESK_VIEW_TOOL_OPTIONS_H
#define VESK_VIEW_TOOL_OPTIONS_H

// What the tools of the mouse ask for beside the drag, by name: "slice_keep" (both, front, back),
// "slice_cap" (0, 1), "bevel_segments", "bevel_profile", "inset_of" (each, region), "shell_rim"
// (0, 1). Kept while the program runs.

#include <string>

// The value as a word of a command; empty for a name that there is none of.
const std::string &tool_option(const char *name);

// Adds to an option that is a whole number, within its limits, and tells the scripts
// ("set_tool_option_ui").
void tool_option_step(const char *name, int by);

// Commands "set_tool_option" and "get_tool_option". Another word than the option's, or a number
// beyond its limits, is told and changes nothing.
void command_set_tool_option(const char *name, const char *value);
void command_get_tool_option(const char *name);

void tool_options_reset_for_test();

#endif
