#include "base/session_state.h"

session_state_t &session()
{
    static session_state_t state;
    return state;
}

void pump_begin()
{
    session_state_t &state = session();
    ++state.pump_depth;
    if (state.command_depth > 0)
        ++state.pumps_in_commands;
}

void pump_end()
{
    session_state_t &state = session();
    --state.pump_depth;
    if (state.pumps_in_commands > 0)
        --state.pumps_in_commands;
}

bool session_is_busy() { return session().pumps_in_commands > 0; }
