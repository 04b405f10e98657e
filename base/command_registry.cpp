#include "base/command_registry.h"

#include "base/command_result.h"
#include "base/crash_guard.h"
#include "base/foreign.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "base/session_state.h"
#include "base/ui_port.h"

#include <cfloat>
#include <cmath>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

constexpr int max_words = 20;
constexpr char bell = 7;

// ---- the call: one typed call for each template ----

union slot_t {
    int number;
    float real;
    const char *text;
};

template <char>
struct argument;
template <>
struct argument<'d'> {
    using type = int;
    static int get(const slot_t &slot) { return slot.number; }
};
template <>
struct argument<'f'> {
    using type = float;
    static float get(const slot_t &slot) { return slot.real; }
};
template <>
struct argument<'s'> {
    using type = const char *;
    static const char *get(const slot_t &slot) { return slot.text; }
};

template <char... Letters>
struct caller {
    static constexpr char text[] = {Letters..., '\0'};
    template <size_t... I>
    static void go(vesk_command_func_t func, const slot_t *slots, std::index_sequence<I...>)
    {
        reinterpret_cast<int (*)(typename argument<Letters>::type...)>(func)(
            argument<Letters>::get(slots[I])...);
    }
    static void call(vesk_command_func_t func, const slot_t *slots)
    {
        go(func, slots, std::make_index_sequence<sizeof...(Letters)>{});
    }
};

struct call_template_t {
    const char *letters;
    void (*call)(vesk_command_func_t, const slot_t *);
};
template <char... Letters>
constexpr call_template_t call_template()
{
    return {caller<Letters...>::text, caller<Letters...>::call};
}
const call_template_t call_templates[] = {
    call_template<'d'>(),
    call_template<'f'>(),
    call_template<'s'>(),
    call_template<'d', 'd'>(),
    call_template<'d', 'd', 'd'>(),
    call_template<'d', 's', 'd'>(),
    call_template<'s', 's'>(),
    call_template<'s', 's', 's'>(),
    call_template<'d', 's', 's', 's'>(),
    call_template<'s', 'd'>(),
    call_template<'d', 's'>(),
    call_template<'f', 'f'>(),
    call_template<'f', 'f', 'f'>(),
    call_template<'f', 'f', 'f', 'f', 'f', 'f'>(),
    call_template<'d', 'f', 'f', 'f', 'f', 'f', 'f'>(),
    call_template<'d', 'f', 'f', 'f', 'f', 'f', 'f', 'f', 'f', 'f', 'f', 'f', 'f', 'f', 'f'>(),
};

// False for an unknown template; no handler ran then.
bool call_by_template(const char *letters, vesk_command_func_t func, const slot_t *slots)
{
    if (letters == nullptr) {
        func();
        return true;
    }
    for (const call_template_t &row : call_templates) {
        if (std::strcmp(row.letters, letters) == 0) {
            row.call(func, slots);
            return true;
        }
    }
    return false;
}

// 0, told on the console, for what a float cannot hold: no operation survives it.
float float_argument(const char *command, int place, const char *word)
{
    const double value = double_of(word);
    if (std::fabs(value) <= static_cast<double>(FLT_MAX))
        return static_cast<float>(value);
    console_printf("%s: argument %d, '%s', is no number that can be used - 0 is taken\n", command,
                   place, word);
    return 0;
}

bool convert(char letter, const char *command, int place, const char *word, slot_t *slot)
{
    switch (letter) {
    case 'd':
        slot->number = int_of(word);
        return true;
    case 'f':
        slot->real = float_argument(command, place, word);
        return true;
    case 's':
        slot->text = word;
        return true;
    default:
        return false;
    }
}

// ---- the records ----

struct added_t {
    own_command_t command;
    std::string name;
    std::optional<std::string> argtypes, usage, help;
    bool own;
};

struct registry_t {
    std::span<own_command_t> rows;
    std::unordered_map<std::string_view, own_command_t *> row_by_name;
    std::vector<std::unique_ptr<added_t>> added;
    std::unordered_map<std::string_view, added_t *> added_by_name;   // the one that is found
    std::unordered_map<const vesk_command_t *, own_command_t *> own; // rows of ours by their record
    std::unordered_map<const vesk_command_t *, vesk_command_func_t>
        replaced; // and their own handlers
    command_hooks_t hooks;
};

registry_t &registry()
{
    static registry_t instance;
    return instance;
}

const char *text_or_null(const std::optional<std::string> &text)
{
    return text ? text->c_str() : nullptr;
}

std::optional<std::string> copy_of(const char *text)
{
    return text == nullptr ? std::nullopt : std::optional<std::string>(text);
}

void add(const own_command_t &command, bool own)
{
    const vesk_command_t &row = command.row;
    auto entry = std::make_unique<added_t>();
    entry->name = row.name;
    entry->argtypes = copy_of(row.argtypes);
    entry->usage = copy_of(row.usage);
    entry->help = copy_of(row.help);
    entry->own = own;
    entry->command = command;
    entry->command.row = {entry->name.c_str(),
                          row.func,
                          row.nargs,
                          text_or_null(entry->argtypes),
                          text_or_null(entry->usage),
                          text_or_null(entry->help)};
    registry_t &all = registry();
    if (own)
        all.own.emplace(&entry->command.row, &entry->command);
    // The earliest of a name, but those of plug-ins before ours.
    added_t *&found = all.added_by_name[entry->name];
    if (found == nullptr || (found->own && !own))
        found = entry.get();
    all.added.push_back(std::move(entry));
}

// The row of ours that holds a record; null for those of plug-ins and a caller's own.
const own_command_t *own_row_of(const vesk_command_t *command)
{
    const auto found = registry().own.find(command);
    return found == registry().own.end() ? nullptr : found->second;
}

bool arity_fits(const vesk_command_t *command, int given)
{
    const own_command_t *own = own_row_of(command);
    return own != nullptr && own->takes_words ? given >= command->nargs && given <= own->most
                                              : given == command->nargs;
}

void show_fault(const char *name, const fault_t &fault)
{
    switch (fault.kind) {
    case fault_t::EXCEPTION:
        windows_message_dialog("Exception occured in command %s\nException what()=%s\nLast Error: "
                               "%s\n\nPlease report this to Dovan.",
                               name, fault.what.c_str(), fault.last_error.c_str());
        break;
    case fault_t::CODE:
        if (fault.code == crash_guard::stopped_code) {
            windows_message_dialog("The command %s was stopped.\n\nUndo takes back what it had "
                                   "changed; a copy of the work was written.",
                                   name);
            break;
        }
        windows_message_dialog(
            "Exception occured in command %s\ncode: 0x%x\ntype: %s\n\nPlease report this to Dovan",
            name, fault.code, vesk_exception_get_message(fault.code));
        break;
    case fault_t::OTHER: // Deliberate: "then problem"
        windows_message_dialog("Exception occured in command %s\nLast Error (not necessarily then "
                               "problem): %s\n\nPlease report this to Dovan.",
                               name, fault.last_error.c_str());
        break;
    }
}

void trace_words(int count, const char *const *words)
{
    if (!debug_mode())
        return;
    debugf("received command : ");
    for (int i = 0; i < count; ++i)
        console_printf(" '%s' ", words[i]);
    console_printf("\n");
}

void append_list_line(const vesk_command_t &row)
{
    const auto text = [](const char *t) { return t == nullptr ? "" : t; };
    command_result_append_string(row.name);
    command_result_append_string(" ");
    command_result_append_string(text(row.usage));
    command_result_append_string(" ");
    command_result_append_string(text(row.help));
    command_result_append_string("\n");
}

} // namespace

int do_command(int count, const char *const *words)
{
    command_result_set(nullptr);
    if (count == 0)
        return 1;
    if (count > max_words) {
        console_printf("max number of command parameters exceeded\n");
        return 0;
    }
    trace_words(count, words);
    vesk_command_t *command = find_command(words[0]);
    if (command == nullptr) {
        console_printf("%ccommand %s not found!\n", bell, words[0]);
        command_result_set("command not found");
        return 0;
    }
    if (command_kind_of(command) > command_kind::view && session_is_busy()) {
        command_result_set("busy");
        return 0;
    }
    const command_hooks_t &hooks = registry().hooks;
    if (hooks.before != nullptr)
        hooks.before(command, count, words);
    int result = 0;
    fault_t fault;
    const bool whole = guarded_with_recovery(
        [&] {
            session_state_t &state = session();
            const char *outer = std::exchange(state.command, command->name);
            ++state.command_depth;
            result = execute_command(count, words, command);
            --state.command_depth;
            state.command = outer;
        },
        &fault);
    if (hooks.after != nullptr)
        hooks.after(command, whole);
    if (!whole) {
        const char *now = command_result_get();
        const auto kept = now == nullptr ? std::nullopt : std::optional<std::string>(now);
        show_fault(command->name, fault);
        command_result_set(kept ? kept->c_str() : nullptr); // the box let scripts run
        return 0;
    }
    return result;
}

vesk_command_t *find_command(const char *name)
{
    const registry_t &all = registry();
    if (const auto found = all.added_by_name.find(name); found != all.added_by_name.end())
        return &found->second->command.row;
    const auto found = all.row_by_name.find(name);
    return found == all.row_by_name.end() ? nullptr : &found->second->row;
}

int execute_command(int count, const char *const *words, vesk_command_t *command)
{
    debugf("executing command '%s'\n", command->name);
    if (!arity_fits(command, count - 1)) {
        const std::string text = std::string("incorrect number of args for ") + command->name +
                                 " (should be " + std::to_string(command->nargs) + ", got " +
                                 std::to_string(count - 1) + ") - usage:\n    " +
                                 (command->usage == nullptr ? "" : command->usage);
        console_printf("%s\n", text.c_str());
        command_result_set(text.c_str());
        return 0;
    }
    const foreign_scope scope(code_of_function(command->func), command_is_foreign(command));
    if (const own_command_t *own = own_row_of(command); own != nullptr && own->takes_words) {
        reinterpret_cast<command_words_t>(command->func)(count - 1, words + 1);
        return 1;
    }
    slot_t slots[max_words] = {};
    const size_t letters = command->argtypes == nullptr ? 0 : std::strlen(command->argtypes);
    for (int i = 0; i < command->nargs; ++i) {
        const auto at = static_cast<size_t>(i);
        const char letter = at < letters ? command->argtypes[at] : '\0';
        if (!convert(letter, command->name, i + 1, words[i + 1], &slots[i])) {
            console_printf("error - internal command - unknown parameter type - tell Dovan\n");
            return 0;
        }
    }
    set_busy_cursor(1);
    if (!call_by_template(command->argtypes, command->func, slots)) {
        // Deliberate: the second line names only 8 of the templates.
        console_printf("%cunknown arg template %s for command %s\n", bell, command->argtypes,
                       command->name);
        console_printf("templates are: d, f, s, sd, ff, fff, ffffff, dffffffffffffff\n where "
                       "d=int, f=float, s=string (use NULL for no template)\n");
    }
    set_busy_cursor(0);
    return 1;
}

void vesk_add_command_full(const char *name, vesk_command_func_t func, int nargs,
                           const char *argtypes, const char *usage, const char *help)
{
    add({{name, func, nargs, argtypes, usage, help}, command_kind::edit}, false);
}

void vesk_add_command(const char *name, vesk_command_func_t func)
{
    add({{name, func, 0, nullptr, nullptr, "user command"}, command_kind::edit}, false);
}

int vesk_replace_command_function(const char *name, vesk_command_func_t func)
{
    vesk_command_t *command = find_command(name);
    if (command == nullptr)
        return 0;
    const auto original = registry().replaced.try_emplace(command, command->func).first;
    if (original->second == func)
        registry().replaced.erase(original);
    command->func = func;
    return 1;
}

void command_list(void)
{
    command_result_set("");
    for (const auto &entry : registry().added)
        append_list_line(entry->command.row);
    for (const own_command_t &own : registry().rows)
        append_list_line(own.row);
}

void set_busy_cursor(int on) { ui_port().busy_cursor(on); }

void command_registry_install(std::span<own_command_t> rows)
{
    registry_t &all = registry();
    all.rows = rows;
    for (own_command_t &own : rows) {
        all.row_by_name.emplace(own.row.name, &own); // the topmost of a name stays
        all.own.emplace(&own.row, &own);
    }
}

void command_add_own(const own_command_t &command) { add(command, true); }

command_kind command_kind_of(const vesk_command_t *command)
{
    const own_command_t *own = command_is_foreign(command) ? nullptr : own_row_of(command);
    return own == nullptr ? command_kind::edit : own->kind;
}

bool command_is_foreign(const vesk_command_t *command)
{
    return own_row_of(command) == nullptr || registry().replaced.contains(command);
}

void command_registry_set_hooks(const command_hooks_t &hooks) { registry().hooks = hooks; }

void command_registry_reset_for_test() { registry() = registry_t(); }
