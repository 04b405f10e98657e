#include "edit/object_flags.h"

#include "base/messages.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "edit/document/selection_internal.h"
#include "edit/document/selection_scan.h"
#include "edit/document/undo_internal.h"
#include "model/identity.h"
#include "model/object_internal.h"
#include "model/object_tree.h"
#include "model/world.h"

#include <unordered_set>

namespace {

using set_flag_t = void (*)(object_t *, int);

// The flag's value that takes objects out of reach: hidden is 0, locked is 1.
struct flag_t {
    set_flag_t set;
    int on;
    const char *word;
    const char *opposite;
};
const flag_t hidden = {object_set_visible, 0, "hide", "unhide"};
const flag_t locked = {object_set_locked, 1, "lock", "unlock"};

std::vector<object_t *> whole_selected_objects()
{
    if (!mode_has_elements(select_mode()))
        return elements_of<object_t>(selection().objects);
    const owned_list owners(selection_get_part_selected_objects());
    return elements_of<object_t>(owners.get());
}

void set_selected(const flag_t &flag)
{
    const std::vector<object_t *> objects = whole_selected_objects();
    if (objects.empty()) {
        display_message("%s - nothing selected", flag.word);
        return;
    }
    new_undo_state(flag.word);
    for (object_t *object : objects)
        flag.set(object, flag.on);
    object_flags_changed();
    display_message("%s - %d objects", flag.word, static_cast<int>(objects.size()));
}

// Everything that is not selected, lies below nothing selected and holds nothing selected.
void set_unselected(const flag_t &flag)
{
    std::unordered_set<const object_t *> kept;
    for (object_t *object : whole_selected_objects()) {
        for_each_object(object, [&](object_t *below) { kept.insert(below); });
        for (const object_t *above = object; above != nullptr; above = above->parent)
            kept.insert(above);
    }
    std::vector<object_t *> objects;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        const bool top_of_unselected = !kept.contains(object) && kept.contains(object->parent);
        const bool child_of_world = object->parent == vesk_get_world() && !kept.contains(object);
        if (top_of_unselected || child_of_world)
            objects.push_back(object);
    });
    if (!objects.empty())
        new_undo_state(flag.word);
    for (object_t *object : objects)
        flag.set(object, flag.on);
    object_flags_changed();
    display_message("%s - %d objects", flag.word, static_cast<int>(objects.size()));
}

// Whether any object of the world has the flag on.
bool any_has(const flag_t &flag)
{
    const auto has = [&flag](const object_t *object) {
        if (object == vesk_get_world())
            return false;
        return &flag == &hidden ? object->visible == 0 : object->locked != 0;
    };
    return find_object_where(vesk_get_world(), has) != nullptr;
}

void set_all_off(const flag_t &flag)
{
    if (any_has(flag)) {
        new_undo_state(flag.opposite);
        for (object_t *object : elements_of<object_t>(vesk_get_world()->children))
            flag.set(object, 1 - flag.on);
    }
    object_flags_changed();
}

void set_one(int id, const flag_t &flag, int value)
{
    object_t *object = object_by_identity(id);
    if (object == nullptr)
        return;
    new_undo_state(value == flag.on ? flag.word : flag.opposite);
    flag.set(object, value);
    object_flags_changed();
}

} // namespace

// Recomputes both linked variables.
void object_flags_changed()
{
    object_marks &marks = objects_marks();
    marks = {};
    std::vector<object_t *> unreachable;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (object == vesk_get_world())
            return;
        marks.hidden |= object->visible == 0 ? 1 : 0;
        marks.locked |= object->locked != 0 ? 1 : 0;
        if (object->visible == 0 || object->locked != 0)
            unreachable.push_back(object);
    });
    ui_port().update_linked("objects_are_hidden");
    ui_port().update_linked("objects_are_locked");
    selection_drop_owned_by(unreachable);
    find_bounding_box();
    selection_changed("object flags");
    redraw_all();
    display_status();
}

// ---- commands ----

void command_hide_selected() { set_selected(hidden); }
void command_hide_unselected() { set_unselected(hidden); }
void command_lock_selected() { set_selected(locked); }
void command_lock_unselected() { set_unselected(locked); }
void show_all(void) { set_all_off(hidden); }
void command_unlock() { set_all_off(locked); }

void command_object_hide(int id) { set_one(id, hidden, 0); }
void command_object_unhide(int id) { set_one(id, hidden, 1); }
void command_object_lock(int id) { set_one(id, locked, 1); }
void command_object_unlock(int id) { set_one(id, locked, 0); }
