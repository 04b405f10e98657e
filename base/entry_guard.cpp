#include "base/entry_guard.h"

#include "base/messages.h"

void tell_main_fault(const fault_t &fault)
{
    switch (fault.kind) {
    case fault_t::EXCEPTION:
        windows_message_dialog("Exception occured in the main code of VESK\nException what()=%s\n"
                               "Last Error: %s\n\nPlease report this to Dovan.",
                               fault.what.c_str(), fault.last_error.c_str());
        break;
    case fault_t::CODE:
        windows_message_dialog(
            "Exception occured in the main code of VESK\ncode: 0x%x\ntype: %s\n\n"
            "Please report this to Dovan",
            fault.code, vesk_exception_get_message(fault.code));
        break;
    case fault_t::OTHER:
        windows_message_dialog("Exception occured in the main code of VESK\n"
                               "Last Error (not necessarily the problem): %s\n\n"
                               "Please report this to Dovan.",
                               fault.last_error.c_str());
        break;
    }
}
