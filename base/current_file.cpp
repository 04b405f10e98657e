#include "base/current_file.h"

#include "base/filename.h"

namespace {

struct model_files {
    current_file_t current;
    std::string edited;
};

model_files &files()
{
    static model_files both;
    return both;
}

} // namespace

const current_file_t &current_file() { return files().current; }

void current_file_set(const char *name)
{
    files().current = {
        .name = name, .path = vesk_filename_get_path(name), .file = vesk_filename_get_file(name)};
}

const std::string &edited_file() { return files().edited; }

void edited_file_set(const std::string &name) { files().edited = name; }
