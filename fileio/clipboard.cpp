#include "fileio/clipboard.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/session_state.h"
#include "base/ui_port.h"
#include "edit/delete.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo.h"
#include "edit/mesh/surface_copy.h"
#include "fileio/vesk_reader.h"
#include "fileio/vesk_writer.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <string>

namespace {

struct clipboard_t {
    object_t *world = nullptr; // holds the copies
    std::string text;          // "" before another program asked for it
};
clipboard_t &clipboard()
{
    static auto *const record = new clipboard_t; // outlives the scene's allocator
    return *record;
}

void clear()
{
    if (clipboard().world != nullptr)
        object_free(clipboard().world);
    clipboard().world = nullptr;
    clipboard().text = {};
}

std::string_view text_for_others()
{
    clipboard_t &held = clipboard();
    if (held.text.empty() && held.world != nullptr)
        held.text = vesk_object_text(held.world);
    return held.text;
}

std::vector<object_t *> copies_of_selection()
{
    if (mode_has_elements(select_mode())) {
        const owned_list surfaces(find_selected_whole_surfaces());
        return objects_of_surfaces(surfaces.get());
    }
    std::vector<object_t *> copies;
    for (object_t *object : selected_top_objects())
        copies.push_back(object_clone(object));
    return copies;
}

// How many objects were copied; 0 after a message.
int copy_selection(const char *what)
{
    const std::vector<object_t *> copies = copies_of_selection();
    if (copies.empty()) {
        display_message("%s - nothing selected", what);
        return 0;
    }
    clear();
    clipboard().world = new_object(OBJECT_WORLD);
    for (object_t *copy : copies)
        object_add_child(clipboard().world, copy);
    ui_port().clipboard_offer(text_for_others);
    return static_cast<int>(copies.size());
}

// The objects of a model text that another program offers, without their container.
std::vector<object_t *> objects_of_others()
{
    pump_begin(); // events are let in while the other program answers
    const char *text = ui_port().clipboard_get();
    pump_end();
    object_t *top = text != nullptr ? vesk_object_of_text(text) : nullptr;
    if (top == nullptr || top->type != OBJECT_WORLD)
        return top == nullptr ? std::vector<object_t *>() : std::vector{top};
    const std::vector<object_t *> objects = elements_of<object_t>(top->children);
    for (object_t *object : objects)
        object->parent = nullptr;
    list_free(&top->children);
    top->num_children = 0;
    object_free(top);
    return objects;
}

std::vector<object_t *> objects_to_paste()
{
    std::vector<object_t *> objects = objects_of_others();
    if (!objects.empty() || clipboard().world == nullptr)
        return objects;
    for (object_t *object : each<object_t>(clipboard().world->children))
        objects.push_back(object_clone(object));
    return objects;
}

} // namespace

void clipboard_reset_for_test() { clear(); }

// ---- commands ----

void command_clipboard_copy()
{
    if (const int count = copy_selection("copy"); count > 0)
        display_message("copy - %d objects", count);
}

void command_clipboard_cut()
{
    if (copy_selection("cut") > 0)
        delete_selection("cut");
}

void command_clipboard_holds() { command_result_set(clipboard().world != nullptr ? "1" : "0"); }

void command_clipboard_paste()
{
    const std::vector<object_t *> objects = objects_to_paste();
    if (objects.empty()) {
        display_message("clipboard is empty");
        return;
    }
    display_message("paste...");
    owned_list pasted;
    for (object_t *object : objects)
        pasted.add(object);
    new_undo(UNDO_OBJECTS, "paste");
    set_undo_objectlist(pasted.get());
    for (object_t *object : objects)
        object_add_child(vesk_get_world(), object);
    select_results(objects);
    finish_edit();
    display_message("paste - %d objects", static_cast<int>(objects.size()));
}
