#include "fileio/output.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/messages.h"

#include <memory>
#include <string>

struct vesk_output {
    explicit vesk_output(const char *filename) : name(filename), file(filename) {}
    const std::string name;
    atomic_writer_t file;
};

vesk_output_t *vesk_output_open(const char *filename)
{
    return std::make_unique<vesk_output>(filename).release();
}

int vesk_output_write(vesk_output_t *output, const void *bytes, size_t count)
{
    return output->file.write({static_cast<const char *>(bytes), count}) ? 1 : 0;
}

int vesk_output_close(vesk_output_t *output, int keep)
{
    const std::unique_ptr<vesk_output> owned(output);
    if (keep == 0)
        return 0;
    if (owned->file.commit())
        return 1;
    tell_cannot_write(owned->name.c_str());
    return 0;
}

void tell_cannot_write(const char *name)
{
    display_message("can't open file '%s' for writing", name);
    tell_write_reason(name);
}

void tell_write_reason(const char *name)
{
    display_message("%s was not written: %s", name, atomic_file_reason().c_str());
}

int export_end(const std::string &filename, const char *format, bool cancelled, bool written)
{
    if (cancelled)
        display_message("write %s - cancelled", format);
    else if (!written)
        tell_cannot_write(filename.c_str());
    else
        display_message("written file %s%s", filename.c_str(), vesk_report_losses(format));
    return !cancelled && written ? 1 : 0;
}
