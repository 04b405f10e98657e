#include "fileio/write_report.h"

#include "base/atomic_file.h"
#include "base/messages.h"

void tell_cannot_write(const char *name)
{
    display_message("can't open file '%s' for writing", name);
    tell_write_reason(name);
}

void tell_write_reason(const char *name)
{
    display_message("%s was not written: %s", name, atomic_file_reason().c_str());
}
