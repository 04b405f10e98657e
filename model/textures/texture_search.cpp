#include "model/textures/texture_search.h"

#include "base/filename.h"
#include "base/home.h"
#include "base/messages.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

namespace {

std::string join(const std::string &folder, const std::string &file)
{
    return vesk_filename_concat_path_file(folder.c_str(), file.c_str());
}

bool has_directories(const char *name) { return std::strpbrk(name, "/\\") != nullptr; }

// "/a/b/../c" and "a/./b" in one form.
std::string plain_path(std::string name)
{
    std::replace(name.begin(), name.end(), '\\', '/');
    std::error_code error;
    const std::filesystem::path full = std::filesystem::absolute(name, error);
    return error ? name : full.lexically_normal().string();
}

} // namespace

const char *search_texture(const char *model_filename, const char *texture_name)
{
    static std::string found;
    const std::string folder = vesk_filename_get_path(model_filename);
    const std::string file = vesk_filename_get_file(texture_name);
    const bool absolute = filename_is_absolute(texture_name);
    const auto exists = [&](const std::string &candidate, const char *attempt) {
        if (attempt)
            debugf("search_texture - %s - trying %s\n", attempt, candidate.c_str());
        if (vesk_file_exists(candidate.c_str()) == 0)
            return false;
        found = candidate;
        return true;
    };

    if (absolute && exists(texture_name, nullptr))
        return found.c_str();
    if (!absolute && has_directories(texture_name)) {
        std::string below = texture_name;
        std::replace(below.begin(), below.end(), '\\', '/');
        if (exists(join(folder, below), "found relative path"))
            return found.c_str();
    }
    if (exists(join(folder, file), "checking in geom file dir"))
        return found.c_str();
    if (exists(join(join(folder, "textures"), file), "checking in geom file dir textures/"))
        return found.c_str();
    const char *home = vesk_get_vesk_homedir();
    // Deliberate: the folder itself, without the file.
    if (home && *home && exists(join(home, "textures"), "checking in $VESK_HOME/textures/"))
        return found.c_str();
    return nullptr;
}

const char *search_texture_save(const char *model_filename, const char *texture_filename)
{
    static std::string name;
    const std::string texture = plain_path(texture_filename);
    std::string folder =
        plain_path(vesk_filename_concat_path_file(vesk_filename_get_path(model_filename), "x"));
    folder.pop_back(); // the "x": the rest ends in "/"
    const bool below = *model_filename != '\0' && texture.size() > folder.size() &&
                       texture.compare(0, folder.size(), folder) == 0;
    if (below)
        name = texture.substr(folder.size());
    else
        name = texture; // in full: a relative name would lead nowhere from the file's folder
    return name.c_str();
}
