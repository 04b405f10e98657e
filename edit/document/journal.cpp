#include "edit/document/journal.h"

#include "base/messages.h"
#include "base/session_state.h"
#include "base/ui_port.h"
#include "edit/document/journal_internal.h"
#include "edit/document/model_restore.h"
#include "edit/document/modes.h"
#include "model/change_marks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace {

using selection_ptr = std::shared_ptr<const selection_image>;

struct journal_entry {
    state_ptr state;
    selection_ptr after;  // at the end of the step
    selection_ptr before; // when the next step began; null: `after`
    std::string label;
    undo_stack records;
    // The step opened the records first_serial + 1 .. last_serial.
    unsigned first_serial = 0, last_serial = 0;
    std::uint64_t change = 0;       // the same number: the same model
    bool foreign = false;           // opened a plug-in's operation
    bool faulted = false;           // made by a command that faulted
    std::vector<std::string> words; // of the command
    std::string series;             // that steps may go on; "" for none
    double seconds = 0;             // when its newest step ended
};

constexpr double series_pause = 1.5; // seconds

struct journal_list {
    std::vector<journal_entry> entries;
    int present = -1;
    // When the present entry was made or gone to.
    std::uint64_t model_count = 0;
    unsigned last_serial = 0;
    unsigned selection_count = 0; // while the selection is the one that the entry has
    std::uint64_t changes = 0;
    std::size_t limit = journal_default_limit;
    // Of the running step: its series, and what was selected when it began, null for what the
    // present entry has.
    std::string series;
    selection_ptr selected;
    undo_stack records; // when it began
    bool held = false;
    void (*before_state)(unsigned first_serial) = nullptr;
};

journal_list &journal()
{
    static auto *const list = new journal_list; // states are not freed at exit
    return *list;
}

journal_entry &entry(int i) { return journal().entries[i]; }
int num_entries() { return static_cast<int>(journal().entries.size()); }

void in_step_now()
{
    journal().model_count = model_change_count();
    journal().last_serial = undo_last_serial();
}

// Whether the selection is the one that going back to the present entry brings.
void set_selection_known(bool known)
{
    journal().selection_count = selection_change_count() - (known ? 0 : 1);
}

journal_entry entry_of_now(const char *label)
{
    journal_entry now;
    now.state = model_state_capture();
    now.after = now.state->selection;
    now.seconds = ui_port().now_seconds();
    now.label = label;
    now.records = undo_records();
    now.first_serial = now.last_serial = undo_last_serial();
    return now;
}

void drop_ahead()
{
    const auto end = journal().entries.begin() + journal().present + 1;
    journal().entries.erase(end, journal().entries.end());
}

// Oldest first; then the states ahead, from the far end. The present one stays, and one beside it: what
// was done last can be taken back, however large the model is.
void keep_limit()
{
    journal_list &list = journal();
    while (num_entries() > 2 && model_state_bytes() > list.limit) {
        if (list.present > 1) {
            list.entries.erase(list.entries.begin());
            --list.present;
        } else {
            list.entries.pop_back();
        }
    }
}

std::string label_of_step(const char *label)
{
    const undo_stack &records = undo_records();
    if (!records.empty() && records.back()->serial > journal().last_serial)
        return records.back()->description;
    return label ? label : "change";
}

// Whether the step opened a plug-in's operation.
bool opened_foreign(const journal_entry &step)
{
    return std::any_of(step.records.begin(), step.records.end(), [&](const auto &record) {
        return record->serial > step.first_serial && record->operation() &&
               record->operation()->foreign;
    });
}

bool joins_present(const std::string &series)
{
    const journal_entry &present = entry(journal().present);
    return !series.empty() && series == present.series &&
           ui_port().now_seconds() - present.seconds <= series_pause;
}

bool take_step(const char *label, const std::vector<std::string> &words, bool faulted)
{
    journal_list &list = journal();
    if (list.held)
        return false;
    journal_begin();
    const unsigned first_serial = list.last_serial;
    if (undo_last_serial() == first_serial && list.model_count == model_change_count())
        return false;
    if (!faulted && list.before_state)
        list.before_state(first_serial);
    journal_entry now = entry_of_now(label_of_step(label).c_str());
    now.first_serial = first_serial;
    now.foreign = opened_foreign(now);
    now.faulted = faulted;
    now.words = words;
    now.series = std::exchange(list.series, {});
    in_step_now();
    journal_entry &before = entry(list.present);
    const bool changed = !model_state_same(*now.state, *before.state);
    if (!changed && !now.foreign) {
        before.state = now.state; // the palette may have grown
        before.records = now.records;
        return false;
    }
    now.change = changed ? ++list.changes : before.change;
    drop_ahead();
    if (joins_present(now.series)) {
        now.first_serial = before.first_serial;
        now.label = before.label;
        before = std::move(now);
    } else {
        if (list.selected)
            before.before = list.selected;
        list.entries.push_back(std::move(now));
        ++list.present;
    }
    set_selection_known(true);
    keep_limit();
    return true;
}

// Scripts that a command's messages run may ask: its step is not cut in two for that.
bool inside_a_command() { return session().command_depth > 1; }

// Model and selection as in a state; without a selection the mode stays. Undo records that name
// freed elements are marked broken. Returns whether all that the state has stayed what it was.
bool jump(const state_ptr &state, const selection_image &then)
{
    const int mode = select_mode();
    selection_image selected = then;
    if (then.vertices.empty() && then.surfaces.empty() && then.objects.empty())
        selected.mode = mode;
    undo_set_jumping(true);
    const bool kept = model_state_restore(state, &selected);
    undo_set_jumping(false);
    if (select_mode() != mode)
        tcl_command("set_select_mode_ui %s", select_mode_name(select_mode()));
    in_step_now();
    return kept;
}

const selection_image &selection_before(const journal_entry &next)
{
    return next.before ? *next.before : *next.after;
}

// Operations of plug-ins whose steps were crossed otherwise than by themselves cannot be reversed
// by themselves any more.
void break_operations(int first, int last)
{
    for (int i = first; i <= last; ++i) {
        for (const undo_record_ptr &record : entry(i).records) {
            if (record->serial > entry(i).first_serial && record->serial <= entry(i).last_serial &&
                record->operation())
                record->broken = true;
        }
    }
}

void go_to(int index)
{
    const int from = journal().present;
    journal_entry &to = entry(index);
    journal().present = index;
    const undo_stack records = to.records;
    if (!jump(to.state, index < from ? selection_before(to) : *to.after))
        undo_break_external();
    set_selection_known(index < from);
    break_operations(std::min(from, index) + 1, std::max(from, index));
    to.state = model_state_capture(); // the palette may have grown since
    undo_records_restore(records);
}

// The entry whose step opened the record; 0 when none did.
int entry_that_opened(const undo_record &record)
{
    for (int i = 1; i < num_entries(); ++i) {
        if (entry(i).first_serial < record.serial && record.serial <= entry(i).last_serial)
            return i;
    }
    return 0;
}

float largest(const point3_t &p)
{
    return std::max({std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
}

// By how much the reversal enlarges the shrunk part; infinite for a box without extent.
float enlargement(const undo_resize &resize)
{
    const auto extents = [](const point3_t(&box)[2]) {
        return std::array{box[1].x - box[0].x, box[1].y - box[0].y, box[1].z - box[0].z};
    };
    const auto before = extents(resize.before), after = extents(resize.after);
    float most = 1;
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (before[i] != 0)
            most = std::max(most, std::fabs(before[i] / after[i]));
    }
    return most;
}

// The largest number that the change and its reversal reckoned with, in terms of the result.
float reach(const model_state &changed, const undo_record &record)
{
    const float own = model_state_reach(changed);
    if (const auto *vector = std::get_if<undo_vector>(&record.data))
        return record.kind == UNDO_SCALE ? own * std::max(1.0f, largest(vector->vector))
                                         : std::max(own, largest(vector->vector));
    if (const auto *turn = std::get_if<undo_turn>(&record.data))
        return std::max(own, largest(turn->centre));
    if (const auto *resize = std::get_if<undo_resize>(&record.data))
        return std::max({own, largest(resize->before[0]), largest(resize->before[1]),
                         largest(resize->after[0]), largest(resize->after[1])}) *
               enlargement(*resize);
    return own;
}

// The result of an undo that leads to no earlier state stands before the state that was undone.
void insert_before_present(const std::string &label)
{
    journal_list &list = journal();
    journal_entry now = entry_of_now(label.c_str());
    now.change = ++list.changes;
    list.entries.insert(list.entries.begin() + list.present, std::move(now));
    keep_limit();
}

} // namespace

void journal_begin()
{
    journal_list &list = journal();
    if (list.present >= 0)
        return;
    list.entries.push_back(entry_of_now("start"));
    entry(0).change = ++list.changes;
    list.present = 0;
    in_step_now();
    set_selection_known(true);
}

void journal_restart()
{
    journal().entries.clear();
    journal().present = -1;
    journal_begin();
}

void journal_before_step(bool changes)
{
    journal_list &list = journal();
    journal_begin();
    if (list.held)
        return;
    list.series.clear();
    list.selected = nullptr;
    if (!changes)
        return;
    if (list.model_count != model_change_count())
        journal_settle();
    if (list.selection_count != selection_change_count())
        list.selected = model_state_capture()->selection;
    list.records = undo_records();
}

bool journal_step(const char *label, const std::vector<std::string> &words)
{
    return take_step(label, words, false);
}

bool journal_joins(const std::string &series)
{
    journal_begin();
    journal().series = series;
    return joins_present(series);
}

bool journal_step_after_fault(const char *label)
{
    const bool step = take_step(label, {}, true);
    if (!step && journal().present >= 0)
        entry(journal().present).faulted = false; // this one changed nothing
    return step;
}

void journal_set_before_state(void (*listener)(unsigned first_serial))
{
    journal().before_state = listener;
}

void journal_hold(bool held) { journal().held = held; }

void journal_rewind()
{
    journal_list &list = journal();
    journal_entry &now = entry(list.present);
    const undo_stack records = list.records;
    if (!jump(now.state, list.selected ? *list.selected : selection_before(now)))
        undo_break_external();
    set_selection_known(!list.selected);
    now.state = model_state_capture(); // the palette may have grown since
    undo_records_restore(records);
    in_step_now();
}

bool journal_redo()
{
    journal_settle();
    if (journal().present + 1 >= num_entries())
        return false;
    go_to(journal().present + 1);
    return true;
}

bool journal_goto(int index)
{
    journal_settle();
    if (index < 0 || index >= num_entries())
        return false;
    go_to(index);
    return true;
}

const char *journal_back_label()
{
    const int present = journal().present;
    if (present < 1)
        return nullptr;
    const std::string &label = entry(present).label;
    const bool loaded = label.starts_with("load");
    const bool opened = loaded && (present == 1 || entry(present - 1).label == "clear all");
    return opened || label == "clear all" ? nullptr : label.c_str();
}

namespace {

// The newest record is a plug-in's operation, of the present step, that nothing else has crossed.
bool present_reverses_itself()
{
    const undo_stack &records = undo_records();
    return !records.empty() && records.back()->operation() &&
           records.back()->operation()->foreign && !records.back()->broken &&
           entry_that_opened(*records.back()) == journal().present;
}

} // namespace

bool journal_back()
{
    journal_settle();
    if (journal_back_label() == nullptr)
        return false;
    const int back = journal().present - 1;
    if (!present_reverses_itself()) {
        go_to(back);
        return true;
    }
    UNDO();
    if (journal().present == back)
        jump(entry(back).state, selection_before(entry(back)));
    return true;
}

bool journal_can_take_back() { return journal().present > 0 && entry(journal().present).faulted; }

bool journal_take_back()
{
    if (!journal_can_take_back())
        return false;
    go_to(journal().present - 1);
    return true;
}

std::vector<journal_item> journal_items()
{
    if (!inside_a_command())
        journal_settle();
    std::vector<journal_item> items;
    items.reserve(journal().entries.size());
    for (int i = 0; i < num_entries(); ++i)
        items.push_back({entry(i).label.c_str(), i == journal().present, entry(i).foreign});
    return items;
}

std::uint64_t journal_change_number()
{
    if (!inside_a_command())
        journal_settle();
    const bool behind = journal().model_count != model_change_count();
    // Changes of the running command get the next number when it ends.
    return behind ? journal().changes + 1 : entry(journal().present).change;
}

int journal_place_of(std::uint64_t change_number)
{
    int place = journal().present;
    while (place >= 0 && entry(place).change != change_number)
        --place;
    return place;
}

const std::vector<std::string> &journal_repeat_words()
{
    static const std::vector<std::string> none;
    for (int i = journal().present; i > 0; --i) {
        if (!entry(i).words.empty())
            return entry(i).words;
    }
    return none;
}

void journal_set_limit(std::size_t bytes)
{
    journal().limit = bytes;
    keep_limit();
}

std::size_t journal_limit() { return journal().limit; }

state_ptr journal_state()
{
    return journal().present < 0 ? nullptr : entry(journal().present).state;
}

void journal_reset_after_fault()
{
    journal().held = false;
    undo_set_jumping(false);
}

void journal_reset_for_test()
{
    journal() = {};
    model_state_reset_for_test();
}

// ---- for the fixed undo ----

void journal_settle()
{
    journal_begin();
    take_step(nullptr, {}, false);
}

void journal_restore_before(const undo_record_ptr &record)
{
    const int opened = entry_that_opened(*record);
    if (opened > 0) {
        jump(entry(opened - 1).state, selection_before(entry(opened - 1)));
        undo_break_external();
    }
    if (undo_kind_of(record->kind)->clears_all) {
        clear_all_undos();
    } else {
        undo_drop_newest();
    }
    if (opened > 0)
        journal().present = opened - 1;
}

void journal_undone(const undo_record_ptr &record)
{
    journal_list &list = journal();
    set_selection_known(false);
    const int opened = entry_that_opened(*record);
    if (opened > 0 && list.present == opened - 1 &&
        model_state_same(*model_state_capture(), *entry(list.present).state)) {
        in_step_now(); // by the state itself
        return;
    }
    const bool alone = opened > 0 && opened == list.present &&
                       entry(opened).first_serial + 1 == entry(opened).last_serial;
    const auto only_rounded = [&] {
        const state_ptr now = model_state_capture();
        const model_state &before = *entry(opened - 1).state;
        return model_state_nearly_equal(*now, before) ||
               model_state_nearly_equal(*now, before, reach(*entry(opened).state, *record));
    };
    if (alone && only_rounded()) {
        // The difference is rounding: the old numbers are restored.
        model_state_restore(entry(opened - 1).state, nullptr);
        list.present = opened - 1;
    } else if (!model_state_same(*model_state_capture(), *entry(list.present).state)) {
        insert_before_present("undo " + record->description);
    }
    in_step_now();
}
