#include "plugin/texture_commands.h"

#include "base/messages.h"
#include "base/redraw.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/make_surface.h"
#include "model/textures/textures.h"
#include "plugin/dialogs.h"
#include "view/background.h"
#include "view/views_internal.h"

#include <string>

namespace {

// Changes every selected object and its descendants in one undoable step. Selected surfaces become
// objects of their own first, as a texture belongs to an object.
template <class Change>
void change_objects(const char *what, Change &&change)
{
    std::vector<object_t *> tops = selected_top_objects();
    const bool surfaces = tops.empty() && owned_list(find_selected_whole_surfaces());
    if (tops.empty() && !surfaces) {
        display_message("%s - nothing selected", what);
        return;
    }
    display_message("%s...", what);
    new_undo(UNDO_WORLD, what);
    set_undo_all();
    if (surfaces)
        tops = separate_selected_surfaces();
    int count = 0;
    for (object_t *top : tops)
        for_each_object(top, [&](object_t *object) {
            change(object);
            ++count;
        });
    redraw_all();
    display_status();
    display_message("%s - %d objects", what, count);
}

// Asks with a title; "" when the user cancelled.
std::string ask_for_image(const char *title)
{
    std::string suffixes;
    for (const texture_loader_t *loader : each<texture_loader_t>(texture_loaders()))
        suffixes += std::string(loader->suffixes) + " ";
    const char *const filters[] = {"Texture files", suffixes.c_str(), "All files", "*", nullptr};
    const char *name = vesk_get_open_texturefilename(title, filters);
    return name == nullptr ? "" : name;
}

bool is_flat_view(int view)
{
    if (is_orthographic(view))
        return true;
    display_message("background image - there is no flat view %d", view);
    return false;
}

} // namespace

// ---- commands ----

void selected_texture_set(int id)
{
    if (id < 0 || id >= vesk_get_num_textures()) {
        display_message("set texture - there is no texture %d", id);
        return;
    }
    change_objects("set texture", [id](object_t *object) { object_texture_set(object, id); });
}

void selected_texture_off(void) { change_objects("clear texture", object_texture_clear); }

void command_set_texture_repeats(float x, float y)
{
    change_objects("set texture",
                   [=](object_t *object) { object_set_texture_repeat(object, x, y); });
}

void command_set_texture_offsets(float x, float y)
{
    change_objects("set texture",
                   [=](object_t *object) { object_set_texture_offset(object, x, y); });
}

const char *file_select_texture_name(void)
{
    static std::string name;
    name = ask_for_image("Load a texture");
    return name.c_str();
}

void file_select_texture(void)
{
    const std::string name = file_select_texture_name();
    if (name.empty())
        return;
    const int id = add_new_texture_opt(name.c_str(), name.c_str());
    if (id < 0)
        display_message("can't load texture file: %s", name.c_str());
    else
        selected_texture_set(id);
}

void load_background_image(const char *filename, int view)
{
    if (!is_flat_view(view))
        return;
    const std::string name = filename;
    VESKImage *image = texture_read(name.c_str(), name.c_str());
    if (image == nullptr) {
        display_message("can't load background image: %s", name.c_str());
        return;
    }
    view_background_set(view, image);
    redraw(view);
}

void file_select_background_image(int view)
{
    if (!is_flat_view(view))
        return;
    const std::string name = ask_for_image("Load a background image");
    if (!name.empty())
        load_background_image(name.c_str(), view);
}

void command_clear_background_image(int view)
{
    if (!is_flat_view(view))
        return;
    view_background_set(view, nullptr);
    redraw(view);
}
