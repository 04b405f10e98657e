#include "fileio/embedded_images.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/filename.h"
#include "base/messages.h"
#include "base/session_state.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <filesystem>
#include <string_view>

namespace {

std::string &images_folder()
{
    static std::string folder;
    return folder;
}

// Without folders, and never the name of a hidden file or of anything but a picture: the model file
// is not trusted.
std::string plain_name(const char *name)
{
    std::string plain = vesk_filename_get_file(name);
    plain.erase(0, plain.rfind('\\') + 1);
    for (char &c : plain)
        if (static_cast<unsigned char>(c) < ' ' || c == 0x7F)
            c = '_';
    plain.erase(0, std::min(plain.find_first_not_of(". "), plain.size()));
    if (plain.empty())
        return plain;
    const size_t dot = plain.rfind('.');
    const bool known = dot != std::string::npos &&
                       vesk_get_texture_loader_by_suffix(plain.substr(dot).c_str()) != nullptr;
    return known ? plain : plain + ".img";
}

// Whether the name is taken; also by a link that leads nowhere, which a write would follow.
bool is_taken(const std::string &path)
{
    std::error_code none;
    return std::filesystem::symlink_status(path, none).type() !=
           std::filesystem::file_type::not_found;
}

// A name that no other file has, unless that file holds the very bytes.
std::string free_place(const std::string &folder, const std::string &name, std::string_view bytes)
{
    const size_t dot = std::min(name.rfind('.'), name.size());
    for (int number = 0;; ++number) {
        const std::string numbered =
            number == 0 ? name
                        : name.substr(0, dot) + "_" + std::to_string(number) + name.substr(dot);
        std::string path = vesk_filename_concat_path_file(folder.c_str(), numbered.c_str());
        std::string there;
        std::error_code none;
        if (!is_taken(path) || (!std::filesystem::is_symlink(path, none) &&
                                read_whole_file(path.c_str(), &there) && there == bytes))
            return path;
    }
}

} // namespace

void embedded_images_set_folder(const std::string &folder) { images_folder() = folder; }

const char *vesk_embedded_images_folder(const char *model_filename, int count)
{
    static std::string chosen;
    chosen = images_folder();
    if (!chosen.empty())
        return chosen.c_str();
    std::string folder = vesk_filename_get_path(model_filename);
    if (folder.empty())
        folder = ".";
    pump_begin(); // the question waits for the user
    const std::string answer = script_call("ask_import_images %d \"%s\"", count, folder.c_str());
    pump_end();
    chosen = answer == "1" ? folder : answer == "0" ? "" : answer;
    return chosen.c_str();
}

const char *vesk_embedded_image_write(const char *folder, const char *name, const void *bytes,
                                      size_t count)
{
    static std::string path;
    path.clear();
    const std::string_view content(static_cast<const char *>(bytes), count);
    const std::string plain = plain_name(name);
    if (*folder != '\0' && !plain.empty())
        path = free_place(folder, plain, content);
    if (!path.empty() && atomic_file_write(path.c_str(), content)) {
        last_file_report().images.push_back(path);
        return path.c_str();
    }
    vesk_report_warning(0, "the picture %s within the file was not written to a file", name);
    path.clear();
    return path.c_str();
}
