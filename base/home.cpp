#include "base/home.h"

#include "base/ui_port.h"

namespace {
char *home = nullptr;
} // namespace

const char *vesk_get_vesk_homedir(void) { return home == nullptr ? "" : home; }

char **vesk_homedir_address() { return &home; }

void vesk_set_homedir(const char *directory)
{
    char *copy = ui_port().alloc_text(directory);
    if (home != nullptr)
        ui_port().free_text(home);
    home = copy;
}
