#include "edit/undo.h"

#include "app/messages_internal.h"
#include "app/prefs.h"
#include "app/ui_port.h"
#include "edit/modes.h"
#include "edit/selection_internal.h"
#include "edit/transform.h"
#include "model/each.h"
#include "model/freed.h"
#include "model/normals.h"
#include "view/redraw.h"

#include <algorithm>
#include <list>
#include <memory>
#include <string>
#include <utility>

namespace {

struct undo_record {
    int kind = 0;
    std::string description;
    point3_t vector = {0, 0, 0};
    saved_selection_t saved; // of the time of the change

    undo_record() = default;
    undo_record(const undo_record &) = delete;
    undo_record &operator=(const undo_record &) = delete;
    ~undo_record() { selection_free(&saved); }
};

using record_ptr = std::unique_ptr<undo_record>;

std::list<record_ptr> records; // oldest first
int record_count = 0;          // linked: what scripts read
bool listening = false;

void drop_freed(const freed_things &freed)
{
    for (const record_ptr &record : records) {
        list_drop_freed(&record->saved.vertices, freed.vertices);
        list_drop_freed(&record->saved.surfaces, freed.surfaces);
        list_drop_freed(&record->saved.objects, freed.objects);
    }
}

void hold_saved(freed_things &held)
{
    for (const record_ptr &record : records) {
        for (vertex *v : each<vertex>(record->saved.vertices))
            held.vertices.push_back(v);
        for (surface_t *surface : each<surface_t>(record->saved.surfaces))
            held.surfaces.push_back(surface);
        for (object_t *object : each<object_t>(record->saved.objects))
            held.objects.push_back(object);
    }
}

bool undo_is_off() { return prefs.undo_levels <= 0; }

undo_record *current() { return records.empty() ? nullptr : records.back().get(); }

void count_changed()
{
    record_count = static_cast<int>(records.size());
    ui_port().update_linked("undo_count");
}

void drop_newest()
{
    records.pop_back();
    count_changed();
    set_undo_string(undo_label());
}

// Runs `change` on what was selected when the record was made; the live selection comes back.
template <class Change>
void on_saved_selection(undo_record &record, Change &&change)
{
    saved_selection_t live = selection_take();
    const int mode = select_mode();
    saved_selection_t then = std::exchange(record.saved, {});
    selection_restore(&then);
    find_bounding_box();
    change();
    saved_selection_t spent = selection_take();
    selection_free(&spent);
    live.mode = mode;
    selection_restore(&live);
    find_bounding_box();
}

void reverse_selection(undo_record &record)
{
    clear_selection();
    saved_selection_t saved = std::exchange(record.saved, {});
    selection_restore(&saved);
    find_bounding_box();
    redraw_all();
    tcl_command("set_select_mode_ui %s", select_mode_name(select_mode()));
    drop_newest();
    selection_changed("undo");
}

void reverse_move(undo_record &record)
{
    const point3_t v = record.vector;
    on_saved_selection(record, [&] {
        const point3_t back = {-v.x, -v.y, -v.z};
        translate_all_selected(&back);
        selected_calc_normals();
    });
    drop_newest();
}

void reverse_scale(undo_record &record)
{
    const point3_t v = record.vector;
    on_saved_selection(record, [&] { scale_selection(v.x, v.y, v.z); });
    drop_newest();
}

// Each reversal drops its record.
struct kind_row_t {
    int kind;
    void (*reverse)(undo_record &record);
    bool captures_selection; // when the record is opened: the reversal works on it
};
const kind_row_t kinds[] = {
    {UNDO_SELECTION, reverse_selection, false},
    {UNDO_MOVE, reverse_move, true},
    {UNDO_SCALE, reverse_scale, true},
};

const kind_row_t *row_of(int kind)
{
    const auto *found = std::find_if(std::begin(kinds), std::end(kinds),
                                     [&](const auto &r) { return r.kind == kind; });
    return found == std::end(kinds) ? nullptr : found;
}

// The newest record for the setter `name` to fill; null when undo is off or there is none.
undo_record *record_for(const char *name)
{
    if (undo_is_off())
        return nullptr;
    if (current() == nullptr)
        console_printf("%s - cal new_undo first!\n", name);
    return current();
}

} // namespace

int *undo_count_address() { return &record_count; }

const char *undo_label() { return records.empty() ? nullptr : current()->description.c_str(); }

void new_undo(int kind, const char *description)
{
    if (undo_is_off())
        return;
    debugf("setting up undo for %s\n", description);
    if (!std::exchange(listening, true)) {
        freed_add_listener(drop_freed);
        freed_add_holder(hold_saved);
    }
    auto record = std::make_unique<undo_record>();
    record->kind = kind;
    record->description = description;
    const kind_row_t *row = row_of(kind);
    if (row != nullptr && row->captures_selection)
        record->saved = selection_clone();
    records.push_back(std::move(record));
    while (static_cast<int>(records.size()) > prefs.undo_levels)
        records.pop_front();
    count_changed();
    set_undo_string(description);
}

void set_undo_vert(float x, float y, float z)
{
    if (undo_record *record = record_for("set_undo_vert"))
        record->vector = {x, y, z};
}

void set_undo_selection(listitem *vertices, listitem *surfaces, listitem *objects, int take)
{
    undo_record *record = record_for("set_undo_selection(List");
    if (record == nullptr) {
        if (take != 0 && undo_is_off())
            clear_selection();
        return;
    }
    selection_free(&record->saved);
    record->saved = take != 0 ? selection_take()
                              : saved_selection_t{list_clone(vertices), list_clone(surfaces),
                                                  list_clone(objects), select_mode()};
    record->saved.mode = select_mode();
}

void clear_all_undos(void)
{
    records.clear();
    count_changed();
    set_undo_string(nullptr);
}

// ---- commands ----

void UNDO(void)
{
    if (undo_is_off())
        return;
    if (current() == nullptr) {
        display_message("nothing to undo.");
        return;
    }
    display_message("undo...");
    // Records of an unknown kind stay where they are.
    if (const kind_row_t *row = row_of(current()->kind)) {
        row->reverse(*current());
        redraw_all();
    }
    display_message("undo done");
    display_status();
}
