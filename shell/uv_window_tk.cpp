#include "shell/uv_window_tk.h"

#include "base/command_result.h"
#include "base/command_row.h"
#include "base/entry_guard.h"
#include "base/messages.h"
#include "base/ui_port.h"
#include "draw/draw_device_gl.h"
#include "draw/draw_uv_gl.h"
#include "draw/glx_windows_gl.h"
#include "edit/uv/uv_measured.h"
#include "shell/interp_tk.h"
#include "shell/views_tk.h"
#include "view/uv_drag.h"
#include "view/uv_view.h"
#include "view/views_internal.h"

#include <togl.h>

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace {

constexpr int settle_msecs = 160; // after the last change the picture is drawn in full
constexpr int worker_msecs = 20;  // to look again for a worker's result

enum class draw_how { quick, part };

struct window_t {
    Togl *togl = nullptr;
    bool drawing = false;
    bool waits = false; // for the worker that gathers: until then the last picture stays
    Tcl_TimerToken timer = nullptr;
    draw_how due = draw_how::quick;
};
window_t window;

// ---- drawing ----

void draw_due(ClientData);

void draw_later(draw_how how, int msecs)
{
    if (window.timer != nullptr)
        Tcl_DeleteTimerHandler(window.timer);
    window.due = how;
    window.timer = Tcl_CreateTimerHandler(msecs, draw_due, nullptr);
}

void draw_no_more()
{
    if (window.timer != nullptr)
        Tcl_DeleteTimerHandler(window.timer);
    window.timer = nullptr;
}

// Returns whether the whole picture stands, or nothing can be drawn.
bool draw_in_window(draw_how how)
{
    if (window.togl == nullptr || window.drawing || !Tk_IsMapped(Togl_TkWin(window.togl)))
        return true;
    window.drawing = true;
    bool whole = true;
    guarded_entry([&] {
        Togl_MakeCurrent(window.togl);
        const int width = Togl_Width(window.togl), height = Togl_Height(window.togl);
        const bool quick = how == draw_how::quick;
        whole = quick ? draw_uv_view(width, height, false) : draw_uv_slice(width, height);
        if (quick || whole)
            Togl_SwapBuffers(window.togl);
    });
    window.drawing = false;
    return whole;
}

bool is_ready()
{
    bool ready = true;
    guarded_entry([&] { ready = uv_editor_is_ready(); });
    return ready;
}

void draw(draw_how how)
{
    if (!is_ready()) {
        window.waits = true;
        draw_later(draw_how::quick, worker_msecs);
        return;
    }
    if (std::exchange(window.waits, false)) {
        if (!uv_view().placed)
            uv_view_fit(false);
        tcl_command("uvedit_gathered");
        how = draw_how::quick;
    }
    const bool measured_before = uv_measures();
    const bool whole = draw_in_window(how);
    views_tk_other_drew();
    if (!whole)
        draw_later(draw_how::part, how == draw_how::quick ? settle_msecs
                                   : uv_measures()        ? worker_msecs
                                                          : 1);
    if (measured_before && !uv_measures())
        tcl_command("uvedit_measured");
}

// Parts, and pictures after those of other views, come when events were taken.
void draw_due(ClientData)
{
    window.timer = nullptr;
    if (views_tk_other_may_draw())
        draw(window.due);
    else
        draw_later(window.due, 1);
}

void draw_soon()
{
    draw_no_more();
    if (views_tk_other_may_draw())
        draw(draw_how::quick);
    else
        draw_later(draw_how::quick, 1);
}

// ---- events ----

pointer_event_t pointer_of(int x, int y, unsigned button, unsigned state)
{
    return {texture_coords_view,    x, y, static_cast<int>(button), static_cast<int>(state),
            ui_port().now_seconds()};
}

void on_press(ClientData, XEvent *event)
{
    const XButtonEvent &b = event->xbutton;
    if (b.button == 4 || b.button == 5) {
        guarded_entry([&] {
            constexpr double notch = 1.2;
            uv_view_zoom(b.button == 4 ? notch : 1 / notch, b.x, b.y);
        });
    } else if (b.button < 4) {
        guarded_entry([&] { uv_drag_press(pointer_of(b.x, b.y, b.button, b.state)); });
    }
}

void on_release(ClientData, XEvent *event)
{
    const XButtonEvent &b = event->xbutton;
    if (b.button < 4)
        guarded_entry([&] { uv_drag_release(pointer_of(b.x, b.y, b.button, b.state)); });
}

void on_motion(ClientData, XEvent *event)
{
    const XMotionEvent &m = event->xmotion;
    guarded_entry([&] {
        uv_drag_motion(pointer_of(m.x, m.y, 0, m.state));
        const flat_uv at = uv_from_screen(m.x, m.y);
        const uv_pixels pixels = uv_picture_size();
        tcl_command("uvedit_pointer %.4f %.4f %.0f %.0f", static_cast<double>(at.u),
                    static_cast<double>(at.v), at.u * pixels.width, at.v * pixels.height);
    });
}

// ---- widget callbacks ----

int display_command(ClientData, Tcl_Interp *, int, Tcl_Obj *const[])
{
    draw_soon();
    return TCL_OK;
}

int reshape_command(ClientData, Tcl_Interp *, int, Tcl_Obj *const[])
{
    if (window.togl != nullptr)
        guarded_entry([] { uv_view_resize(Togl_Width(window.togl), Togl_Height(window.togl)); });
    return TCL_OK;
}

int destroy_command(ClientData, Tcl_Interp *, int, Tcl_Obj *const[])
{
    guarded_entry([] { uv_drag_cancel(); });
    draw_no_more();
    const Tk_Window tk = Togl_TkWin(window.togl);
    Togl_MakeCurrent(window.togl);
    draw_uv_forget();
    window.togl = nullptr;
    glx_window_forget(Tk_Display(tk), Tk_WindowId(tk));
    return TCL_OK;
}

int bind_command(ClientData, Tcl_Interp *interp, int argc, Tcl_Obj *const argv[])
{
    Togl *togl = nullptr;
    if (argc != 2 || Togl_GetToglFromObj(interp, argv[1], &togl) != TCL_OK) {
        Tcl_SetObjResult(interp, Tcl_NewStringObj("uv_bind: expected a togl widget", -1));
        return TCL_ERROR;
    }
    const char *const path = Tcl_GetString(argv[1]);
    window.togl = togl;
    const Tk_Window tk = Togl_TkWin(togl);
    Tk_CreateEventHandler(tk, ButtonPressMask, on_press, nullptr);
    Tk_CreateEventHandler(tk, ButtonReleaseMask, on_release, nullptr);
    Tk_CreateEventHandler(tk, PointerMotionMask, on_motion, nullptr);
    Tcl_CreateObjCommand(interp, "::vesk::uv_display", display_command, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "::vesk::uv_reshape", reshape_command, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, "::vesk::uv_destroy", destroy_command, nullptr, nullptr);
    tcl_command("%s configure -displaycommand ::vesk::uv_display -reshapecommand "
                "::vesk::uv_reshape -destroycommand ::vesk::uv_destroy",
                path);
    const VESKView *first = vesk_get_view(VIEW_XY);
    if (first != nullptr && first->togl != nullptr &&
        Togl_ContextTag(togl) != Togl_ContextTag(static_cast<Togl *>(first->togl)))
        console_printf("the OpenGL window %s does not share its objects with the views\n", path);
    guarded_entry([&] { uv_view_resize(Togl_Width(togl), Togl_Height(togl)); });
    return TCL_OK;
}

// ---- for tests and measuring ----

void save_picture(const char *name)
{
    if (window.togl == nullptr)
        return;
    const int width = Togl_Width(window.togl), height = Togl_Height(window.togl);
    const auto row = static_cast<std::size_t>(width) * 3;
    std::vector<unsigned char> rgb(row * static_cast<std::size_t>(height));
    Togl_MakeCurrent(window.togl);
    draw_uv_view(width, height, true);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, rgb.data());
    Togl_SwapBuffers(window.togl);
    std::FILE *file = std::fopen(name, "wb");
    if (file == nullptr) {
        display_message("can't write the picture %s", name);
        return;
    }
    std::fprintf(file, "P6\n%d %d\n255\n", width, height);
    for (int y = height - 1; y >= 0; --y)
        std::fwrite(rgb.data() + row * static_cast<std::size_t>(y), 1, row, file);
    std::fclose(file);
}

// What is not there yet: the arrays, the picture, or what its colours tell.
void tell_waits()
{
    command_result_set(!uv_editor_is_ready() ? "gathers"
                       : uv_measures()       ? "measures"
                       : window.timer        ? "draws"
                                             : "");
}

// Milliseconds a picture while the view moves.
void benchmark(int frames)
{
    if (window.togl == nullptr)
        return;
    const int count = std::clamp(frames, 1, 1000);
    draw(draw_how::quick);
    const double started = ui_port().now_seconds();
    for (int i = 0; i < count; ++i) {
        uv_view_pan(i % 2 == 0 ? 3 : -3, 0);
        draw(draw_how::quick);
        glFinish();
    }
    command_result_appendf("%.2f", (ui_port().now_seconds() - started) * 1000.0 / count);
}

} // namespace

void uv_window_post_redisplay()
{
    if (window.togl != nullptr)
        Togl_PostRedisplay(window.togl);
}

Tk_Window uv_window_tk() { return window.togl != nullptr ? Togl_TkWin(window.togl) : nullptr; }

void register_uv_window()
{
    Tcl_CreateObjCommand(interp_tk(), "::vesk::uv_bind", bind_command, nullptr, nullptr);
    command_add_own(command_row("uv_view_save_picture", save_picture, command_kind::query,
                                "<file.ppm>", "save what the window of texture coordinates shows"));
    command_add_own(command_row("uv_view_waits", tell_waits, command_kind::query, nullptr,
                                "returns what the window of texture coordinates has still to do: "
                                "gathers, measures, draws or nothing"));
    command_add_own(command_row("uv_view_benchmark", benchmark, command_kind::query, "<frames>",
                                "milliseconds a picture of the window of texture coordinates"));
}
