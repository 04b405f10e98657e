#include "plugin/menus.h"

#include "base/messages.h"

void vesk_add_menu_item(const char *menu, const char *label, const char *command)
{
    tcl_command("%s add command -label \"%s\" -command \"%s\"", menu,
                quote_for_script(label).c_str(), command);
}

void vesk_add_export_menu_item(const char *label, const char *command)
{
    tcl_command("add_export_menu_item \"%s\" \"%s\"", quote_for_script(label).c_str(), command);
}

void vesk_add_tools_menu_item(const char *label, const char *command, const char *help)
{
    tcl_command("add_tools_menu_item \"%s\" \"%s\" \"%s\"", quote_for_script(label).c_str(),
                command, quote_for_script(help).c_str());
}

void vesk_add_surface_menu_item(const char *label, const char *command, const char *help)
{
    tcl_command("add_surface_menu_item \"%s\" \"%s\" \"%s\"", quote_for_script(label).c_str(),
                command, quote_for_script(help).c_str());
}

void vesk_add_import_menu_item(const char *, const char *)
{
    windows_message_dialog(
        "vesk_add_import_menu_item has been called from a plugin\n\nthis function is no longer "
        "used and you should get a newer version of the plugin.\nif you are the author of the "
        "plugin then please use vesk_register_file_importer(); e.g.:\n    "
        "vesk_register_file_importer(\".pf\", \"Point field files\", do_point_load, \"plugin, "
        "version 1.1 by <name>\");\n\n");
}
