#ifndef VESK_BASE_ENTRY_GUARD_H
#define VESK_BASE_ENTRY_GUARD_H

// The guard round every entry from Tcl or Tk that is not a command: the main loop, event handlers,
// drawing callbacks, timers.

#include "base/crash_guard.h"

// Shows the dialog of a fault in the main code.
void tell_main_fault(const fault_t &fault);

// Runs `callable`; after a fault the recovery steps, then the dialog. False when it faulted.
template <class F>
bool guarded_entry(F &&callable)
{
    fault_t fault;
    if (guarded_with_recovery(callable, &fault))
        return true;
    tell_main_fault(fault);
    return false;
}

#endif
