#include "plugin/filters.h"

#include "base/foreign.h"
#include "base/messages.h"
#include "edit/document/edit_support.h"
#include "edit/document/undo.h"
#include "model/alloc_internal.h"
#include "model/freed.h"
#include "model/owners.h"
#include "model/world.h"
#include "model/world_check.h"
#include "plugin/menus.h"

#include <cstring>
#include <string>
#include <unordered_set>

namespace {

listitem *filters = nullptr;

// Surfaces freed since the running filter began: it may delete more than the one in hand.
std::unordered_set<const surface_t *> freed_surfaces;

void note_freed(const freed_things &freed)
{
    freed_surfaces.insert(freed.surfaces.begin(), freed.surfaces.end());
}

struct task_t {
    object_t *object;
    surface_t *surface;
};

void add_surfaces(object_t *object, std::vector<task_t> *tasks)
{
    for (surface_t *surface : each<surface_t>(object->surfaces))
        tasks->push_back({object, surface});
}

std::vector<task_t> tasks_of(const listitem *surfaces)
{
    std::vector<task_t> tasks;
    for (const owned_elements &owned : surfaces_by_owner(surfaces)) {
        std::vector<task_t> all;
        add_surfaces(owned.object, &all);
        for (const int index : owned.indices)
            tasks.push_back(all[static_cast<size_t>(index)]);
    }
    return tasks;
}

void run_filter(const vesk_surface_filter_t &filter, const std::vector<task_t> &tasks)
{
    const foreign_scope scope(code_of_function(filter.filter), true);
    for (const task_t &task : tasks)
        if (!freed_surfaces.contains(task.surface))
            filter.filter(task.object, task.surface);
}

} // namespace

vesk_surface_filter_t *vesk_register_surface_filter(const char *name, const char *help,
                                                    vesk_surface_filter_func_t filter, int flags)
{
    auto *record = static_cast<vesk_surface_filter_t *>(myalloc(sizeof(vesk_surface_filter_t)));
    if (record == nullptr)
        return nullptr;
    const std::string identifier = "surface_filter_" + std::to_string(list_count(filters) + 1);
    *record = {text_copy(name == nullptr ? "" : name), text_copy(help == nullptr ? "" : help),
               filter, static_cast<std::uint32_t>(flags), text_copy(identifier.c_str())};
    list_add_item(&filters, record);
    vesk_add_surface_menu_item(record->name, ("vesk execute_surface_filter " + identifier).c_str(),
                               record->help);
    return record;
}

void vesk_register_internal_surface_filters(void) {}

void filters_reset_for_test()
{
    for (vesk_surface_filter_t *filter : each<vesk_surface_filter_t>(filters)) {
        myfree(filter->name);
        myfree(filter->help);
        myfree(filter->identifier);
        myfree(filter);
    }
    list_free(&filters);
}

// ---- commands ----

void execute_surface_filter(const char *identifier)
{
    for (const vesk_surface_filter_t *filter : each<vesk_surface_filter_t>(filters)) {
        if (std::strcmp(filter->identifier, identifier) == 0) {
            selected_surfaces_do_filter(filter);
            return;
        }
    }
    windows_message_dialog("No surface filter named '%s' found.", identifier);
}

void selected_surfaces_do_filter(const vesk_surface_filter_t *filter)
{
    static const bool listening = (freed_add_listener(note_freed), true);
    static_cast<void>(listening);
    const owned_list surfaces(find_selected_whole_surfaces());
    debugf("executing surface filter %s (%d)\n", filter->name, list_count(surfaces.get()));
    std::vector<task_t> tasks = tasks_of(surfaces.get());
    for (object_t *top : selected_top_objects())
        for_each_object(top, [&](object_t *object) { add_surfaces(object, &tasks); });
    if (tasks.empty()) {
        display_message("no surfaces selected");
        return;
    }
    display_message("%s...", filter->name);
    if ((filter->flags & VESK_FILTER_NO_UNDO) == 0) {
        new_undo(UNDO_WORLD, filter->name);
        set_undo_all();
    }
    freed_surfaces.clear();
    run_filter(*filter, tasks);
    freed_surfaces.clear();
    const bool cut = is_foreign_code(code_of_function(filter->filter)) &&
                     world_cut_rings(vesk_get_world(), filter->name);
    finish_edit();
    if (!cut)
        display_message("%s - done", filter->name);
}
