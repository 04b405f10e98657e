#include "base/linked_vars.h"

#include "base/messages.h"
#include "base/ui_port.h"

namespace {
std::span<const linked_var_t> installed;
} // namespace

void linked_vars_install(std::span<const linked_var_t> rows) { installed = rows; }

std::span<const linked_var_t> linked_vars() { return installed; }

void ui_update_linked_var(const void *address)
{
    for (const linked_var_t &row : installed)
        if (row.address == address)
            ui_port().update_linked(row.name);
}

void ui_update_linked_vars(void)
{
    for (const linked_var_t &row : installed) {
        ui_port().update_linked(row.name);
        console_printf("%s\n", row.name);
    }
}
