#include "fileio/texture_beside.h"

#include "base/filename.h"
#include "model/textures/texture_search.h"

std::string texture_to_search(const std::string &filename, const std::string &name)
{
    if (search_texture(filename.c_str(), name.c_str()) != nullptr)
        return name;
    const std::string plain = vesk_filename_get_file(name.c_str());
    const bool beside =
        !plain.empty() && search_texture(filename.c_str(), plain.c_str()) != nullptr;
    return beside ? plain : name;
}
