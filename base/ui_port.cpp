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
    .start_program = [](const char *, void (*)(const char *, int)) { return false; },
    .open_address = [](const char *) { return false; },
    .clipboard_offer = [](std::string_view (*)()) { return false; },
    .clipboard_offer_picture = [](std::string_view) { return false; },
    .clipboard_get = []() -> const char * { return nullptr; },
};

ui_port_t installed = silent_port;

template <class F>
void keep_start_value(F &function, F start)
{
    if (function == nullptr)
        function = start;
}

} // namespace

ui_port_t &ui_port() { return installed; }

void ui_port_install(const ui_port_t &port)
{
    installed = port;
    const ui_port_t &s = silent_port;
    keep_start_value(installed.eval, s.eval);
    keep_start_value(installed.eval_file, s.eval_file);
    keep_start_value(installed.result, s.result);
    keep_start_value(installed.error_info, s.error_info);
    keep_start_value(installed.set_var, s.set_var);
    keep_start_value(installed.get_var, s.get_var);
    keep_start_value(installed.get_element, s.get_element);
    keep_start_value(installed.update_linked, s.update_linked);
    keep_start_value(installed.alloc_text, s.alloc_text);
    keep_start_value(installed.free_text, s.free_text);
    keep_start_value(installed.message_box, s.message_box);
    keep_start_value(installed.console_write, s.console_write);
    keep_start_value(installed.busy_cursor, s.busy_cursor);
    keep_start_value(installed.post_redisplay, s.post_redisplay);
    keep_start_value(installed.draw_now, s.draw_now);
    keep_start_value(installed.make_current, s.make_current);
    keep_start_value(installed.swap_buffers, s.swap_buffers);
    keep_start_value(installed.texture_upload, s.texture_upload);
    keep_start_value(installed.texture_release, s.texture_release);
    keep_start_value(installed.widget_size, s.widget_size);
    keep_start_value(installed.photo_put, s.photo_put);
    keep_start_value(installed.set_cursor, s.set_cursor);
    keep_start_value(installed.window_geometry, s.window_geometry);
    keep_start_value(installed.read_pixels, s.read_pixels);
    keep_start_value(installed.pump_events, s.pump_events);
    keep_start_value(installed.update, s.update);
    keep_start_value(installed.now_seconds, s.now_seconds);
    keep_start_value(installed.start_program, s.start_program);
    keep_start_value(installed.open_address, s.open_address);
    keep_start_value(installed.clipboard_offer_picture, s.clipboard_offer_picture);
    keep_start_value(installed.clipboard_offer, s.clipboard_offer);
    keep_start_value(installed.clipboard_get, s.clipboard_get);
}

void ui_port_reset_for_test() { installed = silent_port; }
