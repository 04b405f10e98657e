#ifndef VESK_SHELL_INTERP_TK_H
#define VESK_SHELL_INTERP_TK_H

#include <tcl.h>

// The one interpreter of the process; null before the start made it.
Tcl_Interp *interp_tk();
// Whether Tk is up: only then can anything be shown.
bool interp_has_tk();
void interp_tk_set(Tcl_Interp *interp, bool has_tk);

#endif
