#include "base/filename.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

const char *last_separator(const char *name)
{
    const char *found = nullptr;
    for (const char *p = name; *p != '\0'; ++p) {
        if (*p == '/' || *p == '\\')
            found = p;
    }
    return found;
}

} // namespace

const char *vesk_filename_get_path(const char *filename)
{
    static std::string path;
    const char *separator = last_separator(filename);
    if (separator == nullptr) {
        path.clear();
    } else {
        path.assign(filename,
                    separator == filename ? 1 : static_cast<size_t>(separator - filename));
    }
    return path.c_str();
}

const char *vesk_filename_get_file(const char *filename)
{
    const char *separator = last_separator(filename);
    return separator == nullptr ? filename : separator + 1;
}

const char *vesk_filename_concat_path_file(const char *path, const char *file)
{
    static std::string joined;
    std::string result = path == nullptr ? "" : path;
    if (!result.empty() && result.back() != '/' && result.back() != '\\')
        result += '/';
    result += file;
    joined = std::move(result);
    return joined.c_str();
}

char *vesk_unbackslash_string(char *text)
{
    std::replace(text, text + std::strlen(text), '\\', '/');
    return text;
}

const char *string_get_suffix(const char *filename) { return std::strrchr(filename, '.'); }

int vesk_file_exists(const char *filename)
{
    return filename != nullptr && access(filename, F_OK) == 0 ? 1 : 0;
}

bool filename_is_absolute(const char *filename)
{
    if (filename[0] == '/' || filename[0] == '\\')
        return true;
    return std::isalpha(static_cast<unsigned char>(filename[0])) != 0 && filename[1] == ':';
}
