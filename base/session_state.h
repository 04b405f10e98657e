#ifndef VESK_BASE_SESSION_STATE_H
#define VESK_BASE_SESSION_STATE_H

// Whatever is "open" process-wide. The crash guard copies it on entry and puts the copy back
// after a fault, so nothing here relies on a destructor.
struct session_state_t {
    int command_depth = 0;       // handlers that are running, one inside the other
    int pump_depth = 0;          // event pumps (events, message boxes, file dialogs, updates)
    int pumps_in_commands = 0;   // those that a running handler started
    bool committing = false;     // an operation writes its result back: no pump, script or box
    bool progress_shown = false; // long work shows its bar
    bool cancel_requested = false;
    const char *command = nullptr; // name of the running command
    const void *foreign = nullptr; // a plug-in's function, when the code that runs now is one
    int foreign_depth = 0;         // functions of plug-ins that are running, one inside the other
};

session_state_t &session();

// Round everything that lets events in.
void pump_begin();
void pump_end();

// True inside a pump of a running handler: an edit that arrives now is refused.
bool session_is_busy();

#endif
