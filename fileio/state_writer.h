#ifndef VESK_FILEIO_STATE_WRITER_H
#define VESK_FILEIO_STATE_WRITER_H

// Model files from states: autosave and rescue copies. They have the whole palette and the full
// names of textures. Nothing here touches the current file, the writer's list of materials or the
// toolkit; any thread may call it.

#include "edit/document/model_state.h"

// The old file stays when writing fails.
bool write_model_state(const model_state &state, const char *file);

// The same without allocating, for when the heap cannot be trusted: writes to `temporary`, which is
// then renamed to `file`. May be called from a signal handler.
bool write_model_state_bare(const model_state &state, const char *temporary, const char *file);

#endif
