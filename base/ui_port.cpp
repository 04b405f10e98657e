#include "base/ui_port.h"

#include <cstdlib>
#include <cstring>

namespace {

// The start value: does nothing, answers nothing.
const ui_port_t silent_port = {
    .eval =
        [](const char *, bool *ok) {
            *ok = true;
            return "";
        },
    .eval_file =
        [](const char *, bool *ok) {
            *ok = true;
            return "";
        },
    .result = [] { return ""; },
    .error_info = []() -> const char * { return nullptr; },
    .set_var = [](const char *, const char *) {},
    .get_var = [](const char *) -> const char * { return nullptr; },
    .get_element = [](const char *, const char *) -> const char * { return nullptr; },
    .update_linked = [](const char *) {},
    .alloc_text = [](const char *text) { return strdup(text); },
    .free_text = [](char *text) { std::free(text); },
    .message_box = [](const char *, const char *) {},
    .console_write = [](const char *) {},
    .busy_cursor = [](int) {},
    .post_redisplay = [](int) {},
    .draw_now = [](int) {},
    .make_current = [](int) {},
    .swap_buffers = [](int) {},
    .texture_upload = [](VESKImage *) { return false; },
    .texture_release = [](VESKImage *) {},
    .widget_size = [](const char *, int *) { return false; },
    .photo_put = [](const char *, int, int, const unsigned char *) { return false; },
    .set_cursor = [](int, const char *) {},
    .window_geometry = [](int, int *) { return false; },
    .read_pixels = [](int, int *, std::vector<unsigned char> *) { return false; },
    .pump_events = [] {},
    .update = [] {},
    .now_seconds = [] { return 0.0; },
    .wake = [](void (*)()) {},
    .start_program = [](const char *, void (*)(const char *, int)) { return false; },
    .open_address = [](const char *) { return false; },
    .clipboard_offer = [](std::string_view (*)()) { return false; },
    .clipboard_offer_picture = [](std::string_view) { return false; },
    .clipboard_get = []() -> const char * { return nullptr; },
};

ui_port_t installed = silent_port;

} // namespace

ui_port_t ui_port_silent() { return silent_port; }

const ui_port_t &ui_port() { return installed; }

void ui_port_install(const ui_port_t &port) { installed = port; }
