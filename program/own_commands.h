#ifndef VESK_PROGRAM_OWN_COMMANDS_H
#define VESK_PROGRAM_OWN_COMMANDS_H

#include "base/command_registry.h"

#include <span>

// The program's commands beside the fixed table, one list a topic, in the order in which "list"
// prints them; each stands in program/commands_<topic>.cpp.
std::span<const own_command_t> model_commands();
std::span<const own_command_t> check_commands();
std::span<const own_command_t> copy_commands();
std::span<const own_command_t> edge_commands();
std::span<const own_command_t> file_commands();
std::span<const own_command_t> history_commands();
std::span<const own_command_t> panel_commands();
std::span<const own_command_t> preference_commands();
std::span<const own_command_t> recovery_commands();
std::span<const own_command_t> topology_commands();
std::span<const own_command_t> uv_commands();

#endif
