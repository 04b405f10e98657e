#include "fileio/assimp_module.h"

#include "app/filename.h"
#include "app/home.h"
#include "app/messages.h"

#include <dlfcn.h>
#include <string>

namespace {

using read_t = object_t *(*)(const char *filename, const char *suffix, char *reason, int size);

// The module's one function; null, with the reason told, when it cannot be opened.
read_t open_module(std::string *reason)
{
    static void *library = nullptr;
    if (library == nullptr) {
        const std::string folder = vesk_filename_concat_path_file(vesk_get_vesk_homedir(), "lib");
        const std::string path = vesk_filename_concat_path_file(folder.c_str(), "assimp_module.so");
        library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            const char *text = dlerror();
            *reason = text == nullptr ? "" : text;
            return nullptr;
        }
    }
    return reinterpret_cast<read_t>(dlsym(library, "vesk_assimp_read"));
}

} // namespace

object_t *vesk_assimp_import(const char *filename, const char *suffix)
{
    const std::string name = filename;
    std::string reason = "the module for this format is damaged";
    object_t *object = nullptr;
    if (const read_t read = open_module(&reason)) {
        char text[1024] = "";
        object = read(name.c_str(), suffix, text, static_cast<int>(sizeof text));
        reason = text;
    }
    if (object == nullptr)
        windows_message_dialog("can't read %s\n%s", name.c_str(), reason.c_str());
    return object;
}
