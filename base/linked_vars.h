#ifndef VESK_BASE_LINKED_VARS_H
#define VESK_BASE_LINKED_VARS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Tells the scripts that a linked program variable changed: `address` is the variable's own. One
   that is not linked is ignored. */
VESK_API void ui_update_linked_var(const void *address);

/* The same for every program variable; prints the name of each to the console. */
VESK_API void ui_update_linked_vars(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL

#include <span>

enum class link_kind { integer, real, boolean, text };

// A program variable and its name in the scripts. `address` is that of an int (integer, boolean), a
// double or a char * whose text comes from the port's allocator.
struct linked_var_t {
    const char *name;
    link_kind kind;
    bool read_only;
    void *address;
};

// The table is handed over once, at start, by the one place that sees all the variables.
void linked_vars_install(std::span<const linked_var_t> rows);
std::span<const linked_var_t> linked_vars();

#endif

#endif
