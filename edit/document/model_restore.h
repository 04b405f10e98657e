#ifndef VESK_EDIT_DOCUMENT_MODEL_RESTORE_H
#define VESK_EDIT_DOCUMENT_MODEL_RESTORE_H

#include "edit/document/model_state.h"

// Makes the model as it was. Objects that did not change since stay as they are; where only values
// changed they are written back; else the geometry is made anew. Identities are
// kept, objects that the state does not have are freed, holders of references are notified. The
// selection becomes the state's and is announced with "undo", or stays, without the freed elements.
// Draws nothing.
enum class restore_selection { no, yes };
void model_state_restore(const state_ptr &state, restore_selection selection);

#endif
