# batch.tcl --
#   Procedures and variables that the executable expects, for runs without a window (-batch,
#   -convert, -thumbnail): messages go to standard error, so that standard output belongs to the
#   scripts; procedures that would show or ask something return the empty text.

namespace eval ::vesk {
    # The last text of set_undo_string, for scripts.
    variable undo_label ""
    # Menu items of plug-ins: {menu label command help} rows, so that scripts can list them.
    variable plugin_items {}
}

namespace eval ::vesk::batch {
    # Procedures without an effect here; the executable ignores their results.
    variable silent {
        sync_ui set_progress_bar popup_3d_menu popup_view_menu show_number_field
        hide_number_field boolean_live_ended model_check_ended echo_command echo_note set_view_tool_ui set_tool_option_ui update_savefile_name show_tip show_import_report
        add_palette_button edit_colour_ui set_select_mode_ui set_draw_mode_ui .mbar.object.menu.texture
    }
    # Questions, which nobody can answer here: an empty name means cancelled.
    variable unanswered {
        get_opentexturename get_loadfilename get_importfilename get_savefilename
        get_exportfilename get_exportfolder
    }
}

# define --
#   Defines the procedures of the two lists and sets the variables that the executable reads.
proc ::vesk::batch::define {} {
    variable silent
    variable unanswered
    foreach name [concat $silent $unanswered] {
        proc ::$name {args} {return ""}
    }
    foreach {name value} {::coors "" ::size "" ::fsBox(currentfilter) 0} {
        set $name $value
    }
    foreach view {xy zy xz xyz} {
        set ::ToglWinName($view) ""
    }
    if {![info exists ::viewsetting] || $::viewsetting eq ""} {
        set ::viewsetting all
    }
}

# add_item --
#   Notes a menu item that a plug-in offers.
#   menu   "export", "tools" or "surface"
#   words  label, command and, where there is one, the help text
proc ::vesk::batch::add_item {menu words} {
    lassign $words label command help
    lappend ::vesk::plugin_items [list $menu $label $command $help]
    return ""
}

# ask_import_images --
#   Pictures inside a model's file are written beside it, or into the state folder where its folder
#   is read-only. Returns 1, the path of the state folder, or "" when neither can be written.
proc ask_import_images {count folder} {
    if {[file writable $folder]} {
        return 1
    }
    set state [file join ~ .local state]
    if {[info exists ::env(XDG_STATE_HOME)] && $::env(XDG_STATE_HOME) ne ""} {
        set state $::env(XDG_STATE_HOME)
    }
    set pictures [file join $state vesk pictures]
    if {[catch {file mkdir $pictures}]} {
        return ""
    }
    return [file normalize $pictures]
}

proc display_message {text} {puts stderr $text}
proc message_box {text} {puts stderr $text}
proc set_undo_string {text} {set ::vesk::undo_label $text}
proc plugin_faulted {name} {
    puts stderr "the fault was in the plug-in $name; the option -noplugins starts without plug-ins"
}
proc add_export_menu_item {args} {::vesk::batch::add_item export $args}
proc add_tools_menu_item {args} {::vesk::batch::add_item tools $args}
proc add_surface_menu_item {args} {::vesk::batch::add_item surface $args}
::vesk::batch::define
