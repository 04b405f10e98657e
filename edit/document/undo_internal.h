#ifndef VESK_EDIT_DOCUMENT_UNDO_INTERNAL_H
#define VESK_EDIT_DOCUMENT_UNDO_INTERNAL_H

#include "edit/document/undo.h"
#include "edit/document/undo_kinds.h"

#include <memory>
#include <vector>

using undo_record_ptr = std::shared_ptr<undo_record>;
using undo_stack = std::vector<undo_record_ptr>;

// Beside the public kinds: the saved model comes back, older records stay. For changes that free
// nothing: names, links, flags, the palette.
constexpr int undo_state_kind = 0x800000;
// Opens such a record, with the model as it is now.
void new_undo_state(const char *description);

// The records as they stand, and putting them there again: the journal keeps them beside its
// states. A record that no stack and no state holds any longer is freed.
const undo_stack &undo_records();
void undo_records_restore(const undo_stack &stack);
// Takes the newest record off and shows the label of the one before.
void undo_drop_newest();
// Of the record opened last; grows with every one.
unsigned undo_last_serial();
// Drops the records after `serial` that their commands had not filled: after a fault.
void undo_drop_unfilled(unsigned serial);
// While true (undo and jumps), records that lose something they name are marked broken.
void undo_set_jumping(bool jumping);
// Tells the operation's owner that nobody needs it any more.
void undoable_destroy(const vesk_undoable_t &operation);
// Marks the operations of plug-ins broken: a jump changed the model without them.
void undo_break_external();

#endif
