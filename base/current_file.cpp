#include "base/current_file.h"

#include "base/filename.h"

current_file_t &current_file()
{
    static current_file_t slots;
    return slots;
}

void current_file_set(const char *name)
{
    current_file() = {
        .name = name, .path = vesk_filename_get_path(name), .file = vesk_filename_get_file(name)};
}
