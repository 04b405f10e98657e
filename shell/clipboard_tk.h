#ifndef VESK_SHELL_CLIPBOARD_TK_H
#define VESK_SHELL_CLIPBOARD_TK_H

#include <string_view>

// The desktop's clipboard, as the port describes it. Nothing is copied to it before another program
// asks.
bool clipboard_tk_offer(std::string_view (*text)());
bool clipboard_tk_offer_picture(std::string_view png);
const char *clipboard_tk_get();

#endif
