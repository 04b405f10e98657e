#ifndef VESK_PROGRAM_ADDED_COMMANDS_H
#define VESK_PROGRAM_ADDED_COMMANDS_H

// Commands that are registered at start beside the fixed table: what panels and scripts need to
// show and change the model. They stand first in "list".
void register_added_commands();
// By the former.
void register_check_commands();
void register_file_commands();
void register_history_commands();
void register_panel_commands();
void register_preference_commands();
void register_safety_commands();
void register_uv_commands();

#endif
