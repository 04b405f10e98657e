#ifndef VESK_EDIT_DOCUMENT_JOURNAL_H
#define VESK_EDIT_DOCUMENT_JOURNAL_H

// The history beside the fixed undo: one list of states of the whole model, each with its undo
// records, and the place in it where the model stands. A state is taken when an outermost command
// or a drag that changed the model ends. The interface's undo and redo and the history go from state
// to state; a new change drops the states ahead. The oldest states are dropped when all together
// exceed the byte limit. Selections are no steps of their own, they travel with the steps: going
// back over one brings the selection it began with, going on over it the one it left. The select
// mode changes only when there is a selection to bring.

#include "edit/document/model_state.h"

#include <cstdint>
#include <string>
#include <vector>

// Before the first change: the state that the history starts with.
void journal_begin();

// The model as it is becomes the start of a new history: the program is set up.
void journal_restart();

// Before a step; one that is to change the model has its selection remembered, which costs nothing
// while that is known.
void journal_before_step(bool changes);

// After a change: a new state, when the model changed since the last or a plug-in's operation was
// done. Its label is that of the newest record, else `label`. Returns whether there is a new state.
// `words` are the command that repeats it, for "repeat_last"; none for most.
bool journal_step(const char *label, const std::vector<std::string> &words = {});

// The running step is one of a series of that name, as a slider makes them. True when the newest
// step is of that series and ended a moment ago: the two become one, and this one opens no undo
// record.
bool journal_joins(const std::string &series);

// The same for a command that faulted: "take back" goes to the state before it.
bool journal_step_after_fault(const char *label);

// Called at the end of a step, before its state is taken, with the number of the last undo record
// that was opened before it; null for none. Not after a fault.
void journal_set_before_state(void (*listener)(unsigned first_serial));

// While held (a drag is under way) no state is taken.
void journal_hold(bool held);
// Model, selection and undo records as they were when the running step began.
void journal_rewind();

// One state on, to a state, to before the command that faulted last. They restore model, selection
// and undo records. False when there is no such state.
bool journal_redo();
bool journal_goto(int index);

// One state back: what the interface's undo does. A plug-in's operation goes by its own reversal as
// long as that holds. It does not lead to before the scene was opened. The label is that of the
// present state, null when there is no way back.
bool journal_back();
const char *journal_back_label();

bool journal_take_back();
bool journal_can_take_back();

struct journal_item {
    const char *label;
    bool current;
    bool foreign; // holds an operation of a plug-in that only its own undo reverses
};
std::vector<journal_item> journal_items();

// Names the content of the model: the same number means the same model, also after undo and redo.
std::uint64_t journal_change_number();

// The place of the model with that number, up to the present one; -1 when the history has it no more.
int journal_place_of(std::uint64_t change_number);

// The words of the newest step that has some. Empty for none.
const std::vector<std::string> &journal_repeat_words();

// The oldest states go when all together hold more; the newest step can always be taken back.
constexpr std::size_t journal_default_limit = 512u << 20;
void journal_set_limit(std::size_t bytes);
std::size_t journal_limit();

// The present state; null before the first.
state_ptr journal_state();

// After a fault, which skipped the end of a drag or a jump.
void journal_reset_after_fault();
void journal_reset_for_test();

#endif
