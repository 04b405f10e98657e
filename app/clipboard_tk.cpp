#include "app/clipboard_tk.h"

#include "app/bridge_tk.h"

#include <tk.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

struct offer_t {
    std::string_view (*text)() = nullptr; // null while another program has the clipboard
    Tk_Window handled = nullptr;          // the window that answers for us
};
offer_t offer;

Tk_Window main_window() { return bridge_has_tk() ? Tk_MainWindow(bridge_interp()) : nullptr; }

// The next piece of the text; called with growing offsets.
int give_text(ClientData, int offset, char *buffer, int room)
{
    const std::string_view text = offer.text != nullptr ? offer.text() : std::string_view();
    const auto from = std::min(static_cast<std::size_t>(offset), text.size());
    const auto n = std::min(static_cast<std::size_t>(room), text.size() - from);
    std::memcpy(buffer, text.data() + from, n);
    buffer[n] = '\0'; // there is room for it
    return static_cast<int>(n);
}

void lost(ClientData) { offer.text = nullptr; }

int collect(ClientData to, Tcl_Interp *, const char *portion)
{
    *static_cast<std::string *>(to) += portion;
    return TCL_OK;
}

bool take(Tk_Window window, const char *target, std::string *text)
{
    text->clear();
    return Tk_GetSelection(bridge_interp(), window, Tk_InternAtom(window, "CLIPBOARD"),
                           Tk_InternAtom(window, target), collect, text) == TCL_OK;
}

} // namespace

bool clipboard_tk_offer(std::string_view (*text)())
{
    Tk_Window window = main_window();
    if (window == nullptr)
        return false;
    const Atom clipboard = Tk_InternAtom(window, "CLIPBOARD");
    if (offer.handled != window) {
        const Atom string = Tk_InternAtom(window, "STRING"); // and UTF8_STRING with it
        Tk_CreateSelHandler(window, clipboard, string, give_text, nullptr, string);
        offer.handled = window;
    }
    Tk_OwnSelection(window, clipboard, lost, nullptr);
    offer.text = text;
    return true;
}

const char *clipboard_tk_get()
{
    static std::string text;
    Tk_Window window = main_window();
    if (window == nullptr || offer.text != nullptr)
        return nullptr;
    Tcl_InterpState saved = Tcl_SaveInterpState(bridge_interp(), TCL_OK);
    const bool taken = take(window, "UTF8_STRING", &text) || take(window, "STRING", &text);
    Tcl_RestoreInterpState(bridge_interp(), saved);
    return taken ? text.c_str() : nullptr;
}
