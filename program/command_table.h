#ifndef VESK_PROGRAM_COMMAND_TABLE_H
#define VESK_PROGRAM_COMMAND_TABLE_H

#include "base/command_registry.h"

#include <span>

// Hands the built-in rows to the registry, adds the rows that are registered at start, and sets the
// hooks that keep marks and references right after foreign handlers. Once, before the first
// command.
void register_commands();

// The built-in rows, in the order that "list" prints.
std::span<const own_command_t> command_table();

#endif
