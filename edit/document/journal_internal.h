#ifndef VESK_EDIT_DOCUMENT_JOURNAL_INTERNAL_H
#define VESK_EDIT_DOCUMENT_JOURNAL_INTERNAL_H

// The journal's part in the command "undo".

#include "edit/document/journal.h"
#include "edit/document/undo_internal.h"

// The model as it is becomes the present state, if it is not yet.
void journal_settle();
// Reverses a record whose own means are gone, by the state before it; takes the record off.
void journal_restore_before(const undo_record_ptr &record);
// The record was reversed and taken off: the place in the history follows.
void journal_undone(const undo_record_ptr &record);

#endif
