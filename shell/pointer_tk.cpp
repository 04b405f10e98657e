#include "shell/pointer_tk.h"

#include "shell/interp_tk.h"

#include <string_view>
#include <unordered_map>

namespace {

constexpr int side = 16;
constexpr int hot = 6;
// clang-format off
constexpr unsigned char glass[] = {
    0x00, 0x00, 0xf0, 0x01, 0xb8, 0x03, 0x0c, 0x06,
    0x06, 0x0c, 0x06, 0x0c, 0x02, 0x08, 0x06, 0x0c,
    0x06, 0x0c, 0x0c, 0x06, 0xb8, 0x0f, 0xf0, 0x1d,
    0x00, 0x38, 0x00, 0x70, 0x00, 0x60, 0x00, 0x00};
constexpr unsigned char glass_mask[] = {
    0xf8, 0x03, 0xfc, 0x07, 0xfe, 0x0f, 0xff, 0x1f,
    0x1f, 0x1f, 0x0f, 0x1e, 0x0f, 0x1e, 0x0f, 0x1e,
    0x1f, 0x1f, 0xff, 0x1f, 0xfe, 0x3f, 0xfc, 0x7f,
    0xf8, 0xff, 0x00, 0xfc, 0x00, 0xf8, 0x00, 0xf0};
// clang-format on

Tk_Cursor cursor_of(Tk_Window window, Tk_Uid shape)
{
    if (std::string_view(shape) != "glass")
        return Tk_GetCursor(interp_tk(), window, shape);
    return Tk_GetCursorFromData(interp_tk(), window, reinterpret_cast<const char *>(glass),
                                reinterpret_cast<const char *>(glass_mask), side, side, hot, hot,
                                Tk_GetUid("black"), Tk_GetUid("white"));
}

} // namespace

void pointer_show_tk(Tk_Window window, const char *shape)
{
    // Asked for with every motion: each shape is made once.
    static std::unordered_map<Tk_Uid, Tk_Cursor> made;
    const Tk_Uid name = Tk_GetUid(shape != nullptr ? shape : "left_ptr");
    const auto [place, is_new] = made.try_emplace(name, nullptr);
    if (is_new)
        place->second = cursor_of(window, name);
    if (place->second != nullptr)
        Tk_DefineCursor(window, place->second);
}
