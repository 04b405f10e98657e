#include "model/textures/textures.h"

#include "base/atomic_file.h"
#include "base/crash_guard.h"
#include "base/file_report.h"
#include "base/filename.h"
#include "base/foreign.h"
#include "base/messages.h"
#include "base/ui_port.h"
#include "model/alloc_internal.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/property.h"
#include "model/textures/image_bmp.h"
#include "model/textures/image_gif.h"
#include "model/textures/image_sgi.h"
#include "model/textures/texture_search.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <utility>

namespace {

constexpr int growth = 20;

struct texture_record {
    listitem *loaders; // of texture_loader_t, the newest first
    VESKImage **images;
    int count;
    int capacity;
    bool loaders_listed; // the message about a missing loader was shown
    bool in_load;
    bool box_shown; // in this load
};
texture_record textures;

// A box, but only one in a load.
void tell_failure(const char *text)
{
    if (textures.in_load && std::exchange(textures.box_shown, true))
        console_printf("%s\n", text);
    else
        windows_message_dialog("%s", text);
}

void tell_missing_loader(const char *suffix)
{
    if (std::exchange(textures.loaders_listed, true))
        return;
    debugf("I can load these files as textures:\n");
    for (const texture_loader_t *loader : each<texture_loader_t>(textures.loaders))
        debugf("%s (%s)\n", loader->suffixes, loader->description);
    const std::string text = "Sorry, there is no texture loader for " + std::string(suffix) +
                             " files\nCheck the VESK home page for plugins or updates.";
    tell_failure(text.c_str());
}

void grow()
{
    const int capacity = textures.capacity + growth;
    auto **images = static_cast<VESKImage **>(
        myalloc(static_cast<std::uint32_t>(sizeof(VESKImage *)) * static_cast<unsigned>(capacity)));
    std::copy_n(textures.images, textures.count, images);
    myfree(textures.images);
    textures.images = images;
    textures.capacity = capacity;
    debugf("texture space expanded , is now %d\n", capacity);
}

bool is_texture(int id) { return id >= 0 && id < textures.count; }

int texture_append(VESKImage *image)
{
    if (textures.count == textures.capacity)
        grow();
    const int id = textures.count++;
    textures.images[id] = image;
    texture_build_for_all_windows(image);
    ui_port().make_current(VIEW_XYZ);
    create_texture_menubutton(image->origname, id);
    debugf("added texture %d - %s\n", id, image->origname);
    return id;
}

int texture_add(const char *filename, const char *origname)
{
    VESKImage *image = texture_read(filename, origname);
    return image ? texture_append(image) : -1;
}

bool is_whole(const VESKImage *image)
{
    return image->data != nullptr && image->width > 0 && image->height > 0 && image->depth >= 1 &&
           image->depth <= 4;
}

// A folder has no length and a pipe may never end: loaders need not know that.
bool is_other_than_file(const char *filename)
{
    struct stat about = {};
    return stat(filename, &about) == 0 && !S_ISREG(about.st_mode);
}

// A loader may be a plug-in's: a fault in it costs a message, and an image without pixels is none.
VESKImage *load_guarded(const texture_loader_t *loader, const char *filename)
{
    VESKImage *image = nullptr;
    fault_t fault;
    const bool returned = guarded_with_recovery(
        [&] {
            const foreign_scope scope(code_of_function(loader->load), loader->built_in == 0);
            image = loader->load(filename);
        },
        &fault);
    if (!returned) {
        const std::string text =
            "The texture loader for " + std::string(loader->suffixes) + " files failed on " +
            filename + "\n" +
            (fault.kind == fault_t::CODE ? vesk_exception_get_message(fault.code) : fault.what);
        tell_failure(text.c_str());
        return nullptr;
    }
    if (image != nullptr && !is_whole(image)) {
        debugf("the texture loader for %s files returned no picture for %s\n", loader->suffixes,
               filename);
        free_veskimage(image);
        return nullptr;
    }
    return image;
}

// ---- the built-in loaders ----

using decode_t = bool (*)(std::string_view, const char *, decoded_image *);

// The record of decoded pixels; null without memory.
VESKImage *make_image(const char *filename, const decoded_image &decoded)
{
    auto *data =
        static_cast<unsigned char *>(myalloc(static_cast<std::uint32_t>(decoded.pixels.size())));
    VESKImage *image = data != nullptr ? new_veskimage(filename) : nullptr;
    if (image == nullptr) {
        myfree(data);
        return nullptr;
    }
    std::memcpy(data, decoded.pixels.data(), decoded.pixels.size());
    vesk_image_set_dim(image, decoded.width, decoded.height, decoded.depth);
    vesk_image_set_data(image, data);
    return image;
}

struct messages_t {
    const char *cannot_open;
    const char *no_memory;
};

VESKImage *load_by(decode_t decode, const char *filename, const messages_t &texts)
{
    std::string bytes;
    if (!read_whole_file(filename, &bytes)) {
        debugf("%s", texts.cannot_open);
        return nullptr;
    }
    decoded_image decoded;
    if (!decode(bytes, filename, &decoded))
        return nullptr;
    VESKImage *image = make_image(filename, decoded);
    if (image == nullptr)
        debugf("%s", texts.no_memory);
    return image;
}

VESKImage *load_gif(const char *filename)
{
    VESKImage *image = load_by(decode_gif, filename,
                               {"divepic_read_gif: error reading magic number\n",
                                "gif_ReadImage: Not enough memory to create Dive pic\n"});
    if (image == nullptr)
        debugf("gif load failed - %s\n", filename);
    return image;
}

VESKImage *load_sgi(const char *filename)
{
    return load_by(decode_sgi, filename, {"error opening rgb file\n", "Out of memory!\n"});
}

VESKImage *load_bmp(const char *filename)
{
    return load_by(decode_bmp, filename,
                   {"error opening bitmap file\n", "bitmap file: out of memory\n"});
}

} // namespace

// ---- loaders ----

texture_loader_t *vesk_register_texture_loader(const char *suffixes, const char *description,
                                               texture_load_t load)
{
    auto *loader = static_cast<texture_loader_t *>(myalloc(sizeof(texture_loader_t)));
    if (!loader)
        return nullptr;
    *loader = {text_copy(suffixes), text_copy(description), load, 0};
    list_add_item_head(&textures.loaders, loader);
    return loader;
}

void vesk_register_builtin_texture_loaders(void)
{
    for (texture_loader_t *loader :
         {vesk_register_texture_loader(".gif", "GIF image files", load_gif),
          vesk_register_texture_loader(".rgb .rgba", "SGI rgb image files", load_sgi),
          vesk_register_texture_loader(".bmp", "Bitmap files", load_bmp)}) {
        if (loader != nullptr)
            loader->built_in = 1;
    }
}

texture_loader_t *vesk_get_texture_loader_by_suffix(const char *suffix)
{
    for (texture_loader_t *loader : each<texture_loader_t>(textures.loaders)) {
        if (std::strcmp(loader->suffixes, suffix) == 0)
            return loader;
    }
    for (texture_loader_t *loader : each<texture_loader_t>(textures.loaders)) {
        if (std::strstr(loader->suffixes, suffix))
            return loader;
    }
    return nullptr;
}

VESKImage *new_veskimage(const char *name)
{
    auto *image = static_cast<VESKImage *>(myalloc(sizeof(VESKImage)));
    if (!image)
        return nullptr;
    *image = {};
    image->name = text_copy(name ? name : "");
    image->origname = text_copy("");
    return image;
}

void vesk_image_set_dim(VESKImage *image, int width, int height, int depth)
{
    image->width = static_cast<std::uint16_t>(width);
    image->height = static_cast<std::uint16_t>(height);
    image->depth = static_cast<std::uint16_t>(depth);
}

void vesk_image_set_data(VESKImage *image, unsigned char *data) { image->data = data; }

void free_veskimage(VESKImage *image)
{
    if (!image)
        return;
    if (image->draw_word != 0)
        ui_port().texture_release(image);
    myfree(image->data);
    myfree(image->name);
    myfree(image->origname);
    myfree(image);
}

VESKImage *texture_read(const char *filename, const char *origname)
{
    const char *suffix = string_get_suffix(filename);
    if (!suffix) {
        const std::string text =
            "texture_read:I need a filename with a suffix (e.g. file.rgb) - got '" +
            std::string(filename) + "'";
        tell_failure(text.c_str());
        return nullptr;
    }
    const texture_loader_t *loader = vesk_get_texture_loader_by_suffix(suffix);
    if (!loader) {
        tell_missing_loader(suffix);
        return nullptr;
    }
    if (is_other_than_file(filename)) {
        tell_failure(
            (std::string(filename) + " is a folder, a pipe or a device: no picture").c_str());
        return nullptr;
    }
    VESKImage *image = load_guarded(loader, filename);
    if (!image)
        return nullptr;
    text_set(&image->origname, origname);
    vesk_unbackslash_string(image->name);
    vesk_unbackslash_string(image->origname);
    return image;
}

// ---- table ----

int add_new_texture_opt(const char *filename, const char *origname)
{
    const int known = texture_find_by_name(filename);
    return known >= 0 ? known : texture_add(filename, origname);
}

int add_new_texture_reload(const char *filename, const char *origname)
{
    const int known = texture_find_by_name(filename);
    if (known >= 0) {
        display_message("reloading texture");
        debugf("reloading texture");
        VESKImage *image = texture_read(filename, origname);
        if (image) {
            std::swap(image->draw_word, textures.images[known]->draw_word);
            free_veskimage(std::exchange(textures.images[known], image));
            texture_build_for_all_windows(image);
            ui_port().make_current(VIEW_XYZ);
        }
    }
    // Deliberate: the reloaded file is read once more and appended.
    return texture_add(filename, origname);
}

int texture_find_by_name(const char *filename)
{
    for (int id = 0; id < textures.count; ++id) {
        if (std::strcmp(textures.images[id]->name, filename) == 0)
            return id;
    }
    return -1;
}

VESKImage *texture_id_to_image(int id)
{
    if (id == -1)
        debugf("texture id -1 invalid - in texture_id_to_image\n");
    return is_texture(id) ? textures.images[id] : nullptr;
}

const char *texture_id_to_name(int id)
{
    if (is_texture(id))
        return textures.images[id]->name;
    debugf("invalid texture id passed to texture_id_to_name (%d)\n", id);
    return nullptr;
}

const char *texture_id_to_origname(int id)
{
    if (is_texture(id))
        return textures.images[id]->origname;
    debugf("invalid texture id passed to texture_id_to_origname (%d)\n", id);
    return nullptr;
}

int vesk_get_num_textures(void) { return textures.count; }

int texture_build(VESKImage *image)
{
    if (image == nullptr || !is_whole(image))
        return 0;
    image->draw_word2 = 0;
    return ui_port().texture_upload(image) ? 1 : 0;
}

void texture_build_for_all_windows(VESKImage *image) { texture_build(image); }

void texture_rebuild_all(void)
{
    for (int id = 0; id < textures.count; ++id)
        texture_build(textures.images[id]);
}

bool image_has_alpha(VESKImage *image)
{
    enum : uintptr_t { unknown = 0, opaque = 1, some = 2 };
    if (image->draw_word2 == unknown) {
        image->draw_word2 = opaque;
        const size_t depth = image->depth;
        const size_t size = depth * image->width * image->height;
        for (size_t i = depth - 1; depth % 2 == 0 && i < size; i += depth)
            if (image->data[i] != 255) {
                image->draw_word2 = some;
                break;
            }
    }
    return image->draw_word2 == some;
}

const listitem *texture_loaders() { return textures.loaders; }

texture_load_scope::texture_load_scope() : within_another_(std::exchange(textures.in_load, true))
{
    if (!within_another_)
        textures.box_shown = false;
}

texture_load_scope::~texture_load_scope() { textures.in_load = within_another_; }

void textures_reset_for_test()
{
    while (textures.count > 0)
        free_veskimage(textures.images[--textures.count]);
    for (texture_loader_t *loader : each<texture_loader_t>(textures.loaders)) {
        myfree(loader->suffixes);
        myfree(loader->description);
    }
    list_free_all(&textures.loaders);
    myfree(textures.images);
    textures = {};
}

// ---- of objects ----

int search_and_set_texture(object_t *object, const char *model_filename, const char *texture_name)
{
    debugf("search_and_set_texture: geometry file %s, texturename %s\n", model_filename,
           texture_name);
    const char *found = search_texture(model_filename, texture_name);
    file_report_texture(texture_name, found ? found : "");
    if (!found) {
        debugf("can't load texture file: %s\n", texture_name);
        vesk_object_set_prop_value(object, missing_texture_property, "text", texture_name);
        return 0;
    }
    const std::string file = found;
    const int known = texture_find_by_name(file.c_str());
    if (known >= 0) {
        debugf("already loaded\n");
        object_texture_set(object, known);
        return 1;
    }
    if (object_set_init_texture(object, file.c_str(), texture_name) != 0)
        return 1;
    vesk_report_warning(0, "the texture %s cannot be read", texture_name);
    vesk_object_set_prop_value(object, missing_texture_property, "text", texture_name);
    return 0;
}

int object_set_init_texture(object_t *object, const char *filename, const char *origname)
{
    const int id = add_new_texture_opt(filename, origname);
    debugf("object_set_init_texture fullname %s origname %s\n", filename, origname);
    if (id < 0) {
        debugf("can't assign texture %s\n", filename);
        return 0;
    }
    object_texture_set(object, id);
    return 1;
}

void object_texture_set(object_t *object, int id)
{
    object->has_texture = 1;
    object->texture = id;
    proplist_remove(&object->properties, missing_texture_property);
    object_mark(object, CHANGED_RECORD);
}

void object_texture_clear(object_t *object)
{
    object->has_texture = 0;
    object->texture = 0;
    proplist_remove(&object->properties, missing_texture_property);
    object_mark(object, CHANGED_RECORD);
}

void object_copy_texture(object_t *to, const object_t *from)
{
    object_texture_clear(to);
    to->has_texture = from->has_texture;
    to->texture = from->texture;
    to->texture_repeat_x = from->texture_repeat_x;
    to->texture_repeat_y = from->texture_repeat_y;
    to->texture_offset_x = from->texture_offset_x;
    to->texture_offset_y = from->texture_offset_y;
    if (const char *missing = object_missing_texture(from))
        vesk_object_set_prop_value(to, missing_texture_property, "text", missing);
    object_mark(to, CHANGED_RECORD);
}

VESKImage *object_picture(const object_t *object)
{
    return object->has_texture != 0 && is_texture(object->texture)
               ? textures.images[object->texture]
               : nullptr;
}

const char *object_missing_texture(const object_t *object)
{
    return object->has_texture != 0 ? nullptr
                                    : vesk_object_get_prop_value(object, missing_texture_property);
}

const char *object_texture_beside(const object_t *object, const char *filename)
{
    static std::string name;
    const char *file = object->has_texture != 0 ? texture_id_to_name(object->texture) : nullptr;
    if (file == nullptr) {
        const char *missing = object_missing_texture(object);
        name = missing == nullptr ? "" : missing;
        return name.c_str();
    }
    name = search_texture_save(filename, file);
    if (!filename_is_absolute(name.c_str()))
        return name.c_str();
    const std::string folder = vesk_filename_get_path(filename);
    std::error_code error; // links would lead ".." astray
    const auto from = std::filesystem::weakly_canonical(folder.empty() ? "." : folder, error);
    const auto to = error ? from : std::filesystem::weakly_canonical(file, error);
    const auto first_folder = [](const std::filesystem::path &path) {
        return *std::next(path.begin()); // after the root
    };
    if (!error && from.has_relative_path() && to.has_relative_path() &&
        first_folder(from) == first_folder(to))
        name = to.lexically_relative(from).string();
    return name.c_str();
}
