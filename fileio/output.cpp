#include "fileio/output.h"

#include "base/atomic_file.h"
#include "fileio/write_report.h"

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
