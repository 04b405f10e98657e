#ifndef VESK_BASE_UI_PORT_H
#define VESK_BASE_UI_PORT_H

// The only way from the core to the toolkit: one record of functions. The start value does nothing
// (linked texts come from malloc); the shell installs the Tk one or the batch one before the
// preferences are first set, tests install one that records. A new service is a line here, one in
// the silent port and one in each port that offers it.

#include <string_view>
#include <vector>

struct VESKImage;

struct ui_port_t {
    // ---- script ----
    // Evaluates a script text; its result (valid until the next call) and whether it succeeded.
    const char *(*eval)(const char *script, bool *ok);
    const char *(*eval_file)(const char *file, bool *ok);
    const char *(*result)(); // the interpreter's result
    // After a failure: the global variable errorInfo, or null.
    const char *(*error_info)();
    void (*set_var)(const char *name, const char *value);
    const char *(*get_var)(const char *name); // null when there is none
    // Array element; null when there is none.
    const char *(*get_element)(const char *array, const char *element);
    void (*update_linked)(const char *name); // traces fire after a change from the program
    // Texts that are linked as string variables; the toolkit frees and replaces them itself.
    char *(*alloc_text)(const char *text);
    void (*free_text)(char *text);

    // ---- dialogue ----
    void (*message_box)(const char *title, const char *text); // modal; batch: standard error
    void (*console_write)(const char *text);
    // Round every command, and during long work: only that shows it.
    void (*busy_cursor)(int on);

    // ---- view ----
    void (*post_redisplay)(int view);
    void (*draw_now)(int view);
    void (*make_current)(int view);
    void (*swap_buffers)(int view);
    bool (*texture_upload)(struct VESKImage *image); // (again) after a load; all windows share it
    void (*texture_release)(struct VESKImage *image);
    // Size of a widget, by its path; false when there is none.
    bool (*widget_size)(const char *widget, int out_wh[2]);
    // Fills the picture of that name (made when it is new) with rows of RGB from the top.
    bool (*photo_put)(const char *photo, int width, int height, const unsigned char *rgb);
    void (*set_cursor)(int view, const char *tk_cursor); // null: the view's default cursor
    bool (*window_geometry)(int view, int out_xywh[4]);  // false when there is no window
    // Draws a view and fetches its pixels: rows of RGB from the top.
    bool (*read_pixels)(int view, int out_wh[2], std::vector<unsigned char> *rgb);

    // ---- time ----
    void (*pump_events)();   // until none is pending
    void (*update)();        // pending events and redraws now
    double (*now_seconds)(); // monotonic
    // The one function that workers may call: has `what` called on the main thread when it next
    // takes events.
    void (*wake)(void (*what)());

    // ---- desktop ----
    // Runs it in the user's shell and goes on; `ended` gets the exit status, or minus the signal.
    bool (*start_program)(const char *command_line, void (*ended)(const char *line, int status));
    bool (*open_address)(const char *url);
    // Offers a text to other programs: it is asked for when one of them wants it.
    bool (*clipboard_offer)(std::string_view (*text)());
    // Offers a picture: the bytes of a PNG file, which are copied.
    bool (*clipboard_offer_picture)(std::string_view png);
    // The text another program offers; null for none, and while our own offer stands.
    const char *(*clipboard_get)();
};

// The port that does nothing: every implementation begins with it, so that no function is ever null.
ui_port_t ui_port_silent();

const ui_port_t &ui_port();
void ui_port_install(const ui_port_t &port);

#endif
