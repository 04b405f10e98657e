#include "base/ui_calls.h"

#include "base/console.h"
#include "base/script_text.h"
#include "base/session_state.h"
#include "base/ui_port.h"

const char *script_evaluate(const std::string &script)
{
    debugf("sending command to TCL: %s\n", script.c_str());
    bool ok = true;
    const char *result = ui_port().eval(script.c_str(), &ok);
    if (!ok)
        tcl_trace_error(script.c_str());
    return result;
}

const char *script_call(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string script = format_for_script(format, arguments);
    va_end(arguments);
    return script_evaluate(script);
}

const char *tcl_command(const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string script = format_message(format, arguments);
    va_end(arguments);
    return script_evaluate(script);
}

const char *tcl_eval_file(const char *file)
{
    bool ok = true;
    const char *result = ui_port().eval_file(file, &ok);
    if (!ok)
        tcl_trace_error(file);
    return result;
}

void tcl_trace_error(const char *context)
{
    console_printf("TCL ERROR IN VESK in %s:\n%s\n", context, ui_port().result());
    const char *trace = ui_port().error_info();
    if (trace == nullptr) {
        console_printf("NO Stack Trace\n");
    } else {
        console_printf("Stack Trace:\n%s\n\n", trace);
    }
}

void display_status(void)
{
    tcl_command("sync_ui");
    debugf("done display status\n");
}

void set_undo_string(const char *label)
{
    script_call("set_undo_string \"%s\"", label == nullptr ? "" : label);
}

void set_progress_bar(int percent) { script_call("set_progress_bar %d", percent); }

void popup_3d_menu(int x, int y) { script_call("popup_3d_menu %d %d", x, y); }

void popup_view_menu(int view, int x, int y)
{
    script_call("popup_view_menu %d %d %d", view, x, y);
}

void show_number_field(int view, int x, int y, const char *label, int axis, const char *text)
{
    script_call("show_number_field %d %d %d \"%s\" %d \"%s\"", view, x, y, label, axis, text);
}

void hide_number_field(void) { script_call("hide_number_field"); }

void create_texture_menubutton(const char *label, int index)
{
    if (index == 0)
        tcl_command(".mbar.object.menu.texture add separator");
    script_call(".mbar.object.menu.texture add command -label \"%s\" -command \"vesk "
                "set_texture %d\"",
                label, index);
}

void tcl_set_string(const char *name, const char *value)
{
    ui_port().set_var(name, value == nullptr ? "" : value);
}

const char *tcl_get_string(const char *name) { return ui_port().get_var(name); }

void tcl_set_int(const char *name, int value)
{
    ui_port().set_var(name, std::to_string(value).c_str());
}

void tcl_update(void)
{
    pump_begin();
    ui_port().update();
    pump_end();
}

void handle_tcl_events(void)
{
    pump_begin();
    ui_port().pump_events();
    pump_end();
}
