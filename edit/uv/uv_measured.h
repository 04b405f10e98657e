#ifndef VESK_EDIT_UV_UV_MEASURED_H
#define VESK_EDIT_UV_UV_MEASURED_H

// The stretch and the overlaps of what the editor shows, kept until its coordinates change. Those of many
// surfaces are found by a worker, for whoever can wait.

#include "edit/uv/uv_measure.h"

enum class uv_patience {
    none,  // computed now where it is not known
    waits, // for a worker
};

// One a surface of uv_editor(). Null: a worker is at it; ask again later.
const std::vector<uv_stretch> *uv_stretch_now(uv_patience patience);
const std::vector<char> *uv_overlaps_now(uv_patience patience);

// Whether a worker is at one of them.
bool uv_measures();

// The editor's window is closed: nothing is kept.
void uv_measured_forget();

// With fewer surfaces there is nothing to wait for.
constexpr int least_uv_measure_job = 20000;

#endif
