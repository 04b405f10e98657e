#ifndef VESK_BASE_COMMAND_REGISTRY_H
#define VESK_BASE_COMMAND_REGISTRY_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* A handler; called with the arguments that the template says, its return value is ignored. It
   must have a real prototype, with `float` where the template has an "f". */
typedef void (*vesk_command_func_t)(void);

/* One sub-command of the script command "vesk".
   argtypes  one letter an argument: "d" int, "f" float, "s" text (valid during the call); null for
             none. Known: d f s dd ddd dsd ss sss dsss sd ds ff fff ffffff dffffff and d with 14 f.
   usage, help  shown by "list" and in the message about a wrong number of arguments; or null. */
typedef struct vesk_command {
    const char *name;
    vesk_command_func_t func;
    int nargs;
    const char *argtypes;
    const char *usage;
    const char *help;
} vesk_command_t;

/* Runs a sub-command: word 0 is its name, the others its arguments (at most 19). A wrong name or
   number of arguments is told on the console and becomes the command result. A fault in the
   handler ends in a message box, not in the end of the program.
   Returns 1 when a handler was called or there are no words, 0 when the command was refused. */
VESK_API int do_command(int count, const char *const *words);

/* The record of that name, or null: commands added by plug-ins first, then those that the program
   added, then the built-in ones. */
VESK_API vesk_command_t *find_command(const char *name);

/* The arity check, conversion and call of do_command, without its guard. */
VESK_API int execute_command(int count, const char *const *words, vesk_command_t *command);

/* Adds a sub-command; the four texts are copied. An added command shadows one of the program's of
   the same name; of two added ones the earlier is found. */
VESK_API void vesk_add_command_full(const char *name, vesk_command_func_t func, int nargs,
                                    const char *argtypes, const char *usage, const char *help);

/* Adds a sub-command without arguments. */
VESK_API void vesk_add_command(const char *name, vesk_command_func_t func);

/* A handler of the commands that take their arguments as words ("create", "uv_select" ...: those
   whose usage allows several numbers of arguments). */
typedef void (*vesk_words_func_t)(int count, const char *const *words);

/* Replaces the handler of a sub-command, also of a built-in one. For a command that takes its
   arguments as words it is a vesk_words_func_t, cast. Returns 1, or 0 when there is no such
   command. */
VESK_API int vesk_replace_command_function(const char *name, vesk_command_func_t func);

/* Handler of "list": one line for each command, its name, usage and help. */
VESK_API void command_list(void);

/* Shows (1) or takes away (0) the busy cursor. */
VESK_API void set_busy_cursor(int on);

VESK_END_DECLS

#ifdef VESK_INTERNAL

#include <span>
#include <string_view>

// The kind of a command. Changes of the model, the selection or the tool end a running drag first and
// are refused ("busy") from inside a pump of a running handler; queries and views always work.
enum class command_kind {
    query,  // changes nothing
    view,   // changes a view, a setting or the clipboard
    select, // changes the selection or the tool
    edit,   // changes the model; "repeat_last" runs it again
    once,   // the same, but is not repeated
    part,   // an edit of the running drag, which goes on
};
inline bool changes_model(command_kind kind) { return kind >= command_kind::edit; }
inline bool leaves_drag(command_kind kind)
{
    return kind <= command_kind::view || kind == command_kind::part;
}

// The handler of a row whose number of arguments is free between two bounds and which gets its
// arguments as texts: for what no template fits.
using command_words_t = vesk_words_func_t;

// A row of ours, made by command_row (base/command_row.h).
struct own_command_t {
    vesk_command_t row;
    command_kind kind;
    bool takes_words = false; // its handler is a command_words_t, its nargs the fewest
    int most = 0;             // arguments, when it takes words
};

// The built-in rows, in the order that "list" prints.
void command_registry_install(std::span<own_command_t> rows);

// Adds a row of our own after the built-in ones were installed.
void command_add_own(const own_command_t &command);

// `edit` for handlers that are not ours.
command_kind command_kind_of(const vesk_command_t *command);

// True when the handler is not ours: added by a plug-in, replaced, or in a record of a caller's own.
bool command_is_foreign(const vesk_command_t *command);

// Called round every handler, outside its guard: `before` with its words, `after` with whether it
// came to its end or faulted.
struct command_hooks_t {
    void (*before)(const vesk_command_t *command, int count, const char *const *words) = nullptr;
    void (*after)(const vesk_command_t *command, bool whole) = nullptr;
};
void command_registry_set_hooks(const command_hooks_t &hooks);

void command_registry_reset_for_test();

#endif

#endif
