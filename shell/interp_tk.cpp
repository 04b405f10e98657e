#include "shell/interp_tk.h"

namespace {

struct interp_t {
    Tcl_Interp *interp = nullptr;
    bool has_tk = false;
};
interp_t state;

} // namespace

Tcl_Interp *interp_tk() { return state.interp; }

bool interp_has_tk() { return state.has_tk; }

void interp_tk_set(Tcl_Interp *interp, bool has_tk) { state = {interp, has_tk}; }
