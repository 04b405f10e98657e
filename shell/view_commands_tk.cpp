#include "shell/view_commands_tk.h"

#include "base/command_result.h"
#include "base/command_row.h"
#include "base/messages.h"
#include "base/redraw.h"
#include "base/ui_port.h"
#include "draw/draw_buffers_gl.h"
#include "draw/draw_device_gl.h"
#include "draw/draw_view_gl.h"
#include "draw/material_ball.h"
#include "shell/interp_tk.h"
#include "shell/views_tk.h"
#include "view/camera.h"
#include "view/interaction.h"
#include "view/views_internal.h"

#include <tk.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr int most_frames = 1000;
constexpr int largest_ball = 2048;

// One step of a slow motion: the model turns, or a flat view is panned to and fro.
void step_motion(int view, int frame)
{
    if (view == VIEW_XYZ)
        person_add_spin_rotation(0, 1);
    else
        view_pan_by(view, frame % 2 == 0 ? 1.0f : -1.0f, 0);
}

int ball_error(Tcl_Interp *interp, const char *expected)
{
    Tcl_SetObjResult(interp, Tcl_ObjPrintf("material_ball: expected %s", expected));
    return TCL_ERROR;
}

// material_ball PHOTO SIZE {14 numbers}: the picture of a material, put into a photo image.
int ball_command(ClientData, Tcl_Interp *interp, int argc, Tcl_Obj *const argv[])
{
    int size = 0;
    int count = 0;
    Tcl_Obj **numbers = nullptr;
    double values[ball_num_values];
    Tk_PhotoHandle photo = argc == 4 ? Tk_FindPhoto(interp, Tcl_GetString(argv[1])) : nullptr;
    if (photo == nullptr)
        return ball_error(interp, "a photo image, a size and a list");
    if (Tcl_GetIntFromObj(interp, argv[2], &size) != TCL_OK ||
        Tcl_ListObjGetElements(interp, argv[3], &count, &numbers) != TCL_OK)
        return TCL_ERROR;
    if (size < 1 || size > largest_ball || count != ball_num_values)
        return ball_error(interp, "a size up to 2048 and 14 numbers");
    for (int i = 0; i < count; ++i)
        if (Tcl_GetDoubleFromObj(interp, numbers[i], &values[i]) != TCL_OK)
            return TCL_ERROR;
    std::vector<std::uint8_t> pixels = material_ball(size, values);
    Tk_PhotoImageBlock block = {pixels.data(), size, size, size * 3, 3, {0, 1, 2, 3}};
    return Tk_PhotoPutBlock(interp, photo, &block, 0, 0, size, size, TK_PHOTO_COMPOSITE_SET);
}

} // namespace

// Draws `frames` pictures of a view, moving (as in a drag) or at rest. Result: milliseconds a
// picture, and the layers of the last one.
static void view_benchmark(int view, const char *how, int frames)
{
    if (view < 0 || view >= num_views)
        return;
    const bool moving = std::strcmp(how, "moving") == 0;
    const int count = std::clamp(frames, 1, most_frames);
    views_tk_draw_in_full(view); // uploads, and measures the cost of each layer
    const double started = ui_port().now_seconds();
    for (int frame = 0; frame < count; ++frame) {
        step_motion(view, frame);
        if (moving)
            view_note_motion(view, ui_port().now_seconds());
        views_tk_draw_in_full(view);
        glFinish();
    }
    command_result_appendf("%.2f {%s}", (ui_port().now_seconds() - started) * 1000.0 / count,
                           drawn_view_layers(view).c_str());
}

// Milliseconds of each layer of the view's last picture at rest.
static void view_costs(int view)
{
    if (view < 0 || view >= num_views)
        return;
    for (const layer_cost_t &cost : drawn_view_costs(view))
        command_result_appendf("%s %.2f ", cost.layer.c_str(), cost.seconds * 1000.0);
}

// What the last picture of a view shows, as words; "unfinished" when a better one follows.
static void view_layers(int view)
{
    if (view < 0 || view >= num_views)
        return;
    command_result_appendf("%s%s", drawn_view_layers(view).c_str(),
                           drawn_view_is_partial(view) ? " unfinished" : "");
}

static void view_save_picture(int view, const char *file)
{
    if (!views_tk_save_picture(view, file))
        display_message("can't write the picture %s", file);
}

// The features that the drawing may use: "all", "fixed" (no programs, no several samples a pixel) or "oldest" (no
// buffers either).
static void view_limit_device(const char *limit)
{
    const bool all = std::strcmp(limit, "all") == 0;
    const bool oldest = std::strcmp(limit, "oldest") == 0;
    device_limit(all, !oldest, all);
    redraw_all();
}

static void view_uploaded_bytes()
{
    command_result_appendf("%llu", static_cast<unsigned long long>(buffers_uploaded_bytes()));
}

void register_view_commands()
{
    Tcl_CreateObjCommand(interp_tk(), "::vesk::material_ball", ball_command, nullptr, nullptr);
    command_add_own(command_row("view_benchmark", view_benchmark, command_kind::view,
                                "<view> <moving|rest> <frames>",
                                "milliseconds a picture, and its layers"));
    command_add_own(command_row("view_costs", view_costs, command_kind::query, "<view>",
                                "milliseconds of each layer of a view"));
    command_add_own(command_row("view_layers", view_layers, command_kind::query, "<view>",
                                "what the last picture of a view shows"));
    command_add_own(command_row("view_save_picture", view_save_picture, command_kind::query,
                                "<view> <file.ppm>", "save what a view shows"));
    command_add_own(command_row("view_limit_device", view_limit_device, command_kind::view,
                                "<all|fixed|oldest>",
                                "draw with fewer means of the graphics device"));
    command_add_own(command_row("view_uploaded_bytes", view_uploaded_bytes, command_kind::query,
                                nullptr, "bytes that were handed to the graphics device so far"));
}
