#ifndef VESK_EDIT_DOCUMENT_MODEL_RESTORE_H
#define VESK_EDIT_DOCUMENT_MODEL_RESTORE_H

#include "edit/document/model_state.h"

// Makes the model as it was. Objects that did not change since stay as they are; where only values
// changed they are written back; else the geometry is made anew. Identities are
// kept, objects that the state does not have are freed, holders of references are notified. The
// selection becomes the given one, of elements of the state, and is announced with "undo"; null: it
// stays, without the freed elements. Draws nothing. Returns whether every object of the state was
// there and kept its vertices and surfaces: what others remember of them still holds.
bool model_state_restore(const state_ptr &state, const selection_image *selection);

#endif
