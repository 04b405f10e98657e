#include "shell/clipboard_tk.h"

#include "shell/interp_tk.h"

#include <tk.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace {

struct offer_t {
    bool owned = false;                   // no other program has taken the clipboard since
    std::string_view (*text)() = nullptr; // null: a picture
    std::string picture; // each byte as the character of its code, for Tk to turn back into bytes
};
offer_t offer;

Tk_Window main_window() { return interp_has_tk() ? Tk_MainWindow(interp_tk()) : nullptr; }

// The next piece of a text; called with growing offsets.
int give(std::string_view text, int offset, char *buffer, int room)
{
    const auto from = std::min(static_cast<std::size_t>(offset), text.size());
    const auto n = std::min(static_cast<std::size_t>(room), text.size() - from);
    std::memcpy(buffer, text.data() + from, n);
    buffer[n] = '\0'; // there is room for it
    return static_cast<int>(n);
}

int give_text(ClientData, int offset, char *buffer, int room)
{
    return give(offer.text != nullptr ? offer.text() : std::string_view(), offset, buffer, room);
}

int give_picture(ClientData, int offset, char *buffer, int room)
{
    return give(offer.picture, offset, buffer, room);
}

void lost(ClientData) { offer = {}; }

// Makes the main window the clipboard's owner, with one kind of answer.
bool own(const char *target, Tk_SelectionProc *handler)
{
    Tk_Window window = main_window();
    if (window == nullptr)
        return false;
    const Atom clipboard = Tk_InternAtom(window, "CLIPBOARD");
    const Atom string = Tk_InternAtom(window, "STRING"); // and UTF8_STRING with it
    const Atom png = Tk_InternAtom(window, "image/png");
    Tk_DeleteSelHandler(window, clipboard, string);
    Tk_DeleteSelHandler(window, clipboard, png);
    // A picture is sent as STRING too: that way its bytes stay as they are.
    Tk_CreateSelHandler(window, clipboard, Tk_InternAtom(window, target), handler, nullptr, string);
    Tk_OwnSelection(window, clipboard, lost, nullptr);
    offer = {};
    offer.owned = true;
    return true;
}

int collect(ClientData to, Tcl_Interp *, const char *portion)
{
    *static_cast<std::string *>(to) += portion;
    return TCL_OK;
}

bool take(Tk_Window window, const char *target, std::string *text)
{
    text->clear();
    return Tk_GetSelection(interp_tk(), window, Tk_InternAtom(window, "CLIPBOARD"),
                           Tk_InternAtom(window, target), collect, text) == TCL_OK;
}

} // namespace

bool clipboard_tk_offer(std::string_view (*text)())
{
    if (!own("STRING", give_text))
        return false;
    offer.text = text;
    return true;
}

bool clipboard_tk_offer_picture(std::string_view png)
{
    if (!own("image/png", give_picture))
        return false;
    for (const char byte : png) { // as UTF-8, zero in the two-byte form that texts may hold
        const auto code = static_cast<unsigned char>(byte);
        if (code == 0 || code >= 0x80) {
            offer.picture += static_cast<char>(0xC0 | (code >> 6));
            offer.picture += static_cast<char>(0x80 | (code & 0x3F));
        } else {
            offer.picture += byte;
        }
    }
    return true;
}

const char *clipboard_tk_get()
{
    static std::string text;
    Tk_Window window = main_window();
    if (window == nullptr || offer.owned)
        return nullptr;
    Tcl_InterpState saved = Tcl_SaveInterpState(interp_tk(), TCL_OK);
    const bool taken = take(window, "UTF8_STRING", &text) || take(window, "STRING", &text);
    Tcl_RestoreInterpState(interp_tk(), saved);
    return taken ? text.c_str() : nullptr;
}
