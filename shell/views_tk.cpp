#include "shell/views_tk.h"

#include "base/command_registry.h"
#include "base/entry_guard.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/redraw.h"
#include "base/session_state.h"
#include "base/ui_port.h"
#include "draw/draw_device_gl.h"
#include "draw/draw_textures_gl.h"
#include "draw/draw_view_gl.h"
#include "draw/glx_windows_gl.h"
#include "draw/load_ahead_gl.h"
#include "shell/bridge_tk.h"
#include "shell/interp_tk.h"
#include "shell/pointer_tk.h"
#include "shell/uv_window_tk.h"
#include "shell/view_commands_tk.h"
#include "view/camera.h"
#include "view/draw_budget.h"
#include "view/interaction.h"
#include "view/views_internal.h"

#include <togl.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr double settle_seconds = 0.16; // a little more than the end of a motion takes to be known
constexpr double slow_seconds = 0.01;   // events come after a picture that took longer
constexpr double never = 1e300;

// When a view is drawn, and how.
struct due_t {
    double at = never;
    bool in_full = false;
};

struct widgets_t {
    Tcl_TimerToken timer = nullptr;
    due_t due[num_views];
    Tcl_TimerToken tick = nullptr;
    bool drawing[num_views] = {};
    bool busy = false;               // the watch is shown
    double drawn_at[num_views] = {}; // end of the last picture
    double cost[num_views] = {};     // seconds that it took
    double other_drawn_at = 0;       // end of a part of another window's picture
    double part_drawn_at = 0;        // and of one of a view's
    bool other_waits = false;        // for its turn
};
widgets_t widgets;

Togl *togl_of(int view)
{
    const VESKView *record = vesk_get_view(view);
    return record != nullptr ? static_cast<Togl *>(record->togl) : nullptr;
}

Tk_Window window_of(int view)
{
    const VESKView *record = vesk_get_view(view);
    return record != nullptr ? static_cast<Tk_Window>(record->tk_window) : nullptr;
}

// View id + 1 as the widget's client data: null means that it is not bound yet.
int view_of(const Togl *togl)
{
    return static_cast<int>(reinterpret_cast<intptr_t>(Togl_GetClientData(togl))) - 1;
}

// ---- drawing ----

void draw_due(ClientData);

void set_timer()
{
    double next = never;
    for (const due_t &due : widgets.due)
        next = std::min(next, due.at);
    if (widgets.timer != nullptr)
        Tcl_DeleteTimerHandler(widgets.timer);
    const double msecs = (next - ui_port().now_seconds()) * 1000;
    widgets.timer = next == never ? nullptr
                                  : Tcl_CreateTimerHandler(std::max(1, static_cast<int>(msecs) + 1),
                                                           draw_due, nullptr);
}

void draw_later(int view, double seconds, bool in_full)
{
    widgets.due[view] = {ui_port().now_seconds() + seconds, in_full};
    set_timer();
}

// Beside the view that a drag runs in, the others must not take its time: each gets a small share.
bool must_wait_for_drag(int view)
{
    constexpr double share = 0.1;
    const int dragged = interaction_drag_view();
    return dragged != VIEW_NONE && view != dragged &&
           widgets.cost[view] > frame_budget / num_views &&
           ui_port().now_seconds() - widgets.drawn_at[view] < widgets.cost[view] / share;
}

// Whether slow pictures of other views were drawn just now, and no event was taken since.
bool must_wait_for_events()
{
    constexpr double just_now = 0.002;
    const double now = ui_port().now_seconds();
    for (int view = 0; view < num_views; ++view)
        if (now - widgets.drawn_at[view] < just_now && widgets.cost[view] > slow_seconds)
            return true;
    return now - widgets.other_drawn_at < just_now;
}

// Whether `drawn_at` lies before the timers' present turn: else events come first.
bool was_another_turn(double drawn_at)
{
    constexpr double same_turn = 0.0005;
    return ui_port().now_seconds() - drawn_at > same_turn;
}

enum class draw_how { quick, full, slice };

// False: it is not finished.
bool draw_how_wanted(Togl *togl, int view, draw_how how)
{
    const int width = Togl_Width(togl);
    const int height = Togl_Height(togl);
    // Software drivers learn of a window's new size with the first picture in it.
    if (draw_view_blank(view, width, height))
        Togl_SwapBuffers(togl);
    const double now = ui_port().now_seconds();
    const bool finished = how == draw_how::slice
                              ? draw_view_slice(view, width, height, now)
                              : draw_view(view, width, height, now, how == draw_how::full);
    if (finished)
        Togl_SwapBuffers(togl);
    return finished;
}

void draw(int view, draw_how how)
{
    Togl *togl = togl_of(view);
    const double started = ui_port().now_seconds();
    // Whatever comes of it: a view that stayed due would keep the turn from the others.
    widgets.due[view].at = widgets.drawing[view] ? started + settle_seconds : never;
    if (togl == nullptr || widgets.drawing[view] || !Tk_IsMapped(Togl_TkWin(togl)))
        return;
    widgets.drawing[view] = true; // a box shown from inside lets events in
    Togl_MakeCurrent(togl);
    bool finished = true;
    fault_t fault;
    const bool drawn =
        guarded_with_recovery([&] { finished = draw_how_wanted(togl, view, how); }, &fault);
    widgets.drawing[view] = false;
    if (!drawn) {
        draw_view_distrust(view);
        tell_main_fault(fault);
    }
    widgets.part_drawn_at = ui_port().now_seconds();
    if (!finished) {
        draw_later(view, 0, how == draw_how::slice);
        return;
    }
    widgets.drawn_at[view] = ui_port().now_seconds();
    widgets.cost[view] = widgets.drawn_at[view] - started;
    // A view that left something out is drawn in full when nothing has happened to it for a while.
    if (drawn && drawn_view_is_partial(view))
        draw_later(view, settle_seconds, true);
}

// One view at a time, and a part of a slow picture: events come between them.
void draw_due(ClientData)
{
    widgets.timer = nullptr;
    const auto *first =
        std::min_element(widgets.due, widgets.due + num_views,
                         [](const due_t &a, const due_t &b) { return a.at < b.at; });
    const bool others_turn =
        std::exchange(widgets.other_waits, false) || !was_another_turn(widgets.other_drawn_at);
    if (first->at <= ui_port().now_seconds() && !others_turn)
        draw(static_cast<int>(first - widgets.due),
             first->in_full ? draw_how::slice : draw_how::quick);
    set_timer();
}

// The widget is to be drawn.
void draw_when_possible(int view)
{
    if (must_wait_for_drag(view))
        draw_later(view, settle_seconds, false);
    else if (must_wait_for_events())
        draw_later(view, 0, false);
    else
        draw(view, draw_how::quick);
}

// ---- continuous motion ----

void tick(ClientData);

void keep_ticking()
{
    const int msecs = interaction_tick_msecs();
    if (msecs > 0 && widgets.tick == nullptr)
        widgets.tick = Tcl_CreateTimerHandler(msecs, tick, nullptr);
}

void tick(ClientData)
{
    widgets.tick = nullptr;
    guarded_entry([] { interaction_tick(ui_port().now_seconds()); });
    keep_ticking();
}

// ---- events ----

int view_of_client(ClientData data) { return static_cast<int>(reinterpret_cast<intptr_t>(data)); }

pointer_event_t pointer_of(int view, const XButtonEvent &button)
{
    return {view,
            button.x,
            button.y,
            static_cast<int>(button.button),
            static_cast<int>(button.state),
            ui_port().now_seconds()};
}

void on_press(ClientData data, XEvent *event)
{
    const XButtonEvent &button = event->xbutton;
    const int view = view_of_client(data);
    if (button.button > 3) {
        // The scripts bind the wheel to "zoomview", which leaves the walking viewer alone.
        if (view == VIEW_XYZ && vesk_person_is_walk_vehicle() != 0 && button.button <= 5)
            guarded_entry([&] { interaction_wheel(view, button.button == 4 ? 1 : -1); });
        return;
    }
    guarded_entry([&] { interaction_press(pointer_of(view, button)); });
    keep_ticking();
}

void on_release(ClientData data, XEvent *event)
{
    const XButtonEvent &button = event->xbutton;
    if (button.button > 3)
        return;
    guarded_entry([&] { interaction_release(pointer_of(view_of_client(data), button)); });
    keep_ticking();
}

void on_motion(ClientData data, XEvent *event)
{
    const XMotionEvent &motion = event->xmotion;
    const pointer_event_t pointer = {
        view_of_client(data),   motion.x, motion.y, 0, static_cast<int>(motion.state),
        ui_port().now_seconds()};
    guarded_entry([&] { interaction_motion(pointer); });
}

void on_leave(ClientData data, XEvent *)
{
    guarded_entry([&] { interaction_leave(view_of_client(data)); });
}

// ---- widget callbacks ----

void take_size(Togl *togl, int view)
{
    int x = 0;
    int y = 0;
    Tk_GetRootCoords(Togl_TkWin(togl), &x, &y);
    view_set_position(view, x, y);
    handle_resize(view, Togl_Width(togl), Togl_Height(togl));
}

Togl *togl_argument(Tcl_Interp *interp, int argc, Tcl_Obj *const argv[])
{
    Togl *togl = nullptr;
    if (argc < 2 || Togl_GetToglFromObj(interp, argv[1], &togl) != TCL_OK)
        return nullptr;
    return togl;
}

int display_command(ClientData, Tcl_Interp *interp, int argc, Tcl_Obj *const argv[])
{
    Togl *togl = togl_argument(interp, argc, argv);
    if (togl != nullptr)
        redisplay(togl);
    return TCL_OK;
}

int reshape_command(ClientData, Tcl_Interp *interp, int argc, Tcl_Obj *const argv[])
{
    Togl *togl = togl_argument(interp, argc, argv);
    if (togl == nullptr) {
        debugf("togl is null!\n");
        return TCL_OK;
    }
    const int view = view_of(togl);
    if (view != VIEW_NONE)
        guarded_entry([&] { take_size(togl, view); });
    return TCL_OK;
}

// A destroyed widget is no longer drawn into.
int destroy_command(ClientData, Tcl_Interp *interp, int argc, Tcl_Obj *const argv[])
{
    Togl *togl = togl_argument(interp, argc, argv);
    const int view = togl != nullptr ? view_of(togl) : VIEW_NONE;
    if (view != VIEW_NONE) {
        VESKView *record = vesk_get_view(view);
        record->togl = nullptr;
        record->tk_window = nullptr;
        record->bound = 0;
        glx_window_forget(Tk_Display(Togl_TkWin(togl)), Tk_WindowId(Togl_TkWin(togl)));
    }
    return TCL_OK;
}

constexpr const char *display_name = "::vesk::togl_display";
constexpr const char *reshape_name = "::vesk::togl_reshape";
constexpr const char *destroy_name = "::vesk::togl_destroy";

void install_callbacks(const char *widget)
{
    Tcl_Interp *interp = interp_tk();
    tcl_command("namespace eval ::vesk {}");
    Tcl_CreateObjCommand(interp, display_name, display_command, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, reshape_name, reshape_command, nullptr, nullptr);
    Tcl_CreateObjCommand(interp, destroy_name, destroy_command, nullptr, nullptr);
    tcl_command("%s configure -displaycommand %s -reshapecommand %s -destroycommand %s", widget,
                display_name, reshape_name, destroy_name);
}

// Buffers and textures are made once: a widget that does not share would show nothing.
void check_sharing()
{
    for (int view = 1; view < num_views; ++view)
        if (Togl_ContextTag(togl_of(view)) != Togl_ContextTag(togl_of(0)))
            console_printf("the OpenGL window %s does not share its objects with %s\n",
                           vesk_get_view(view)->name, vesk_get_view(0)->name);
}

[[noreturn]] void fail(const char *format, const char *what)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    console_printf(format, what);
#pragma GCC diagnostic pop
    bridge_exit(1);
}

// The place of the main window's frame, which "wm geometry" sets; the window itself lies
// inside it, and would wander at every start.
bool place_of_frame(int out_xy[2])
{
    Tcl_Interp *interp = interp_tk();
    Tcl_InterpState state = Tcl_SaveInterpState(interp, TCL_OK);
    const bool found =
        Tcl_Eval(interp, "wm geometry .") == TCL_OK &&
        std::sscanf(Tcl_GetStringResult(interp), "%*dx%*d+%d+%d", &out_xy[0], &out_xy[1]) == 2;
    Tcl_RestoreInterpState(interp, state);
    return found;
}

// A watch over the whole window while long work runs, which only its Cancel button ends.
void show_busy(int on)
{
    if ((on != 0) == widgets.busy || (on != 0) != session().progress_shown)
        return;
    widgets.busy = on != 0;
    tcl_command(". configure -cursor %s", widgets.busy ? "watch" : "{}");
    for (int view = 0; view < num_views; ++view) {
        if (window_of(view) != nullptr)
            pointer_show_tk(window_of(view), widgets.busy ? "watch" : nullptr);
    }
    if (!widgets.busy)
        interaction_show_pointer();
}

} // namespace

void views_tk_fill_port(ui_port_t &port)
{
    port.busy_cursor = show_busy;
    port.post_redisplay = [](int view) {
        if (view == texture_coords_view)
            uv_window_post_redisplay();
        else if (togl_of(view) != nullptr)
            Togl_PostRedisplay(togl_of(view));
    };
    port.draw_now = [](int view) { draw(view, draw_how::quick); };
    port.make_current = platform_make_window_current;
    port.read_pixels = views_tk_read_pixels;
    port.swap_buffers = [](int view) {
        if (togl_of(view) != nullptr)
            Togl_SwapBuffers(togl_of(view));
    };
    port.texture_upload = [](VESKImage *image) {
        if (togl_of(VIEW_XYZ) == nullptr)
            return false;
        platform_make_window_current(VIEW_XYZ);
        return texture_upload_gl(image);
    };
    port.texture_release = [](VESKImage *image) {
        platform_make_window_current(VIEW_XYZ);
        if (togl_of(VIEW_XYZ) != nullptr)
            texture_release_gl(image);
    };
    port.set_cursor = [](int view, const char *cursor) {
        const Tk_Window window = view == texture_coords_view ? uv_window_tk() : window_of(view);
        if (window != nullptr)
            pointer_show_tk(window, widgets.busy ? "watch" : cursor);
    };
}

bool views_tk_other_may_draw()
{
    widgets.other_waits = !was_another_turn(widgets.part_drawn_at);
    return !widgets.other_waits;
}

void views_tk_other_drew() { widgets.other_drawn_at = ui_port().now_seconds(); }

void views_tk_draw_in_full(int view) { draw(view, draw_how::full); }

bool views_tk_geometry(int view, int out[4])
{
    const Tk_Window window = view == VIEW_MAIN ? Tk_MainWindow(interp_tk()) : window_of(view);
    if (window == nullptr)
        return false;
    if (view != VIEW_MAIN || !place_of_frame(out))
        Tk_GetRootCoords(window, &out[0], &out[1]);
    out[2] = Tk_Width(window);
    out[3] = Tk_Height(window);
    return true;
}

bool views_tk_read_pixels(int view, int out_wh[2], std::vector<unsigned char> *rgb)
{
    Togl *togl = togl_of(view);
    if (togl == nullptr)
        return false;
    const int width = out_wh[0] = Togl_Width(togl);
    const int height = out_wh[1] = Togl_Height(togl);
    Togl_MakeCurrent(togl);
    draw_view(view, width, height, ui_port().now_seconds(), true);
    const size_t row = static_cast<size_t>(width) * 3;
    rgb->resize(row * static_cast<size_t>(height));
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, rgb->data());
    Togl_SwapBuffers(togl);
    for (int y = 0; y < height / 2; ++y) { // the driver's rows begin below
        const auto top = rgb->begin() + static_cast<std::ptrdiff_t>(row) * y;
        const auto bottom = rgb->begin() + static_cast<std::ptrdiff_t>(row) * (height - 1 - y);
        std::swap_ranges(top, top + static_cast<std::ptrdiff_t>(row), bottom);
    }
    return true;
}

bool views_tk_save_picture(int view, const char *ppm_file)
{
    int size[2] = {};
    std::vector<unsigned char> pixels;
    if (!views_tk_read_pixels(view, size, &pixels))
        return false;
    std::FILE *file = std::fopen(ppm_file, "wb");
    if (file == nullptr)
        return false;
    std::fprintf(file, "P6\n%d %d\n255\n", size[0], size[1]);
    std::fwrite(pixels.data(), 1, pixels.size(), file);
    return std::fclose(file) == 0;
}

void make_tcl_window(int x, int y, int width, int height, const char *, int view)
{
    const char *element = view_short_name(view);
    const char *widget = ui_port().get_element("ToglWinName", element);
    if (widget == nullptr)
        fail("can't get value for TCL variable %s\n",
             (std::string("ToglWinName(") + element + ")").c_str());
    const std::string name = widget;
    const Tk_Window window = Tk_NameToWindow(interp_tk(), name.c_str(), Tk_MainWindow(interp_tk()));
    if (window == nullptr)
        fail("failed to get Tk windows ID for window named %s\n", name.c_str());
    Togl *togl = nullptr;
    if (Togl_GetToglFromName(interp_tk(), name.c_str(), &togl) != TCL_OK)
        fail("can't get togl id for window %s - it looks like the OpenGL window may have failed "
             "to open/initialize\n",
             name.c_str());
    view_bind(view, name.c_str(), togl, window);
    Togl_SetClientData(togl, reinterpret_cast<ClientData>(static_cast<intptr_t>(view) + 1));
    const auto client = reinterpret_cast<ClientData>(static_cast<intptr_t>(view));
    // One function each: a second handler with the same function would replace the first.
    Tk_CreateEventHandler(window, ButtonPressMask, on_press, client);
    Tk_CreateEventHandler(window, ButtonReleaseMask, on_release, client);
    Tk_CreateEventHandler(window, PointerMotionMask, on_motion, client);
    Tk_CreateEventHandler(window, LeaveWindowMask, on_leave, client);
    install_callbacks(name.c_str());
    // The widget was shaped before it was bound; files named on the command line are fitted soon.
    view_set_position(view, x, y);
    handle_resize(view, width, height);
    take_size(togl, view);
}

void create_ui(void)
{
    make_tcl_window(prefs.frontwin_x, prefs.frontwin_y, prefs.frontwin_width, prefs.frontwin_height,
                    prefs.window_label_xy, VIEW_XY);
    make_tcl_window(prefs.sidewin_x, prefs.sidewin_y, prefs.sidewin_width, prefs.sidewin_height,
                    prefs.window_label_zy, VIEW_ZY);
    make_tcl_window(prefs.planwin_x, prefs.planwin_y, prefs.planwin_width, prefs.planwin_height,
                    prefs.window_label_xz, VIEW_XZ);
    make_tcl_window(prefs.win3d_x, prefs.win3d_y, prefs.win3d_width, prefs.win3d_height,
                    prefs.window_label_xyz, VIEW_XYZ);
    register_view_commands();
    register_uv_window();
    check_sharing();
    load_ahead_end();
    constexpr double points_of_pixel = 72.0 / 96.0;
    const std::string scaling = tcl_command("tk scaling");
    view_set_interface_scale(
        std::max(0.75, std::strtod(scaling.c_str(), nullptr) * points_of_pixel));
}

void init_ui(int, char **) {}

void platform_make_window_current(int view)
{
    if (togl_of(view) != nullptr)
        Togl_MakeCurrent(togl_of(view));
}

void set_draw_win(int view)
{
    Togl *togl = togl_of(view);
    if (togl == nullptr)
        return;
    Togl_MakeCurrent(togl);
    glViewport(0, 0, Togl_Width(togl), Togl_Height(togl));
    use_pixel_projection(Togl_Width(togl), Togl_Height(togl));
}

void redisplay(void *togl)
{
    const int view = view_of(static_cast<Togl *>(togl));
    if (view != VIEW_NONE)
        draw_when_possible(view);
}

void expose(int view, void *x_event)
{
    if (static_cast<XEvent *>(x_event)->xexpose.count == 0)
        request_redisplay(view);
}
