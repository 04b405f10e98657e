# veskplugins.tcl --
#   Menu items of plug-ins, and what is told about plug-ins. A plug-in's command text is a script
#   of that plug-in and runs as it stands; its label and help are only shown.

namespace eval ::vesk::plugins {
    variable parted {}          ;# menus that already have the line above the plug-ins' items
}

# add_item --
#   Appends an item to a menu.
#   menu  name of a menu of the table
proc ::vesk::plugins::add_item {menu label command help} {
    variable parted
    set path [dict get $::vesk::menus::paths $menu]
    if {$menu ni $parted && $menu ne "export"} {
        lappend parted $menu
        $path add separator
    }
    set run [list ::vesk::plugins::run $command]
    if {$menu eq "export"} {set run [list ::vesk::issues::exporting $run]}
    $path add command -label "  $label" -image [::vesk::theme::menu_row_image] -compound left \
        -accelerator "   " -command $run
    ::vesk::menus::forget_known
    return ""
}

proc ::vesk::plugins::run {command} {
    ::vesk::console::say $command command
    if {[catch {uplevel #0 $command} message]} {
        ::vesk::console::say $::errorInfo error
        display_message [lindex [split $message \n] 0]
    }
    ::vesk::ops::request
}

# about --
#   Path, info and about text of every loaded plug-in.
proc ::vesk::plugins::about {} {
    set text ""
    set paths [vesk get_plugin_list]
    if {[catch {llength $paths}]} {set paths {}}
    foreach path $paths {
        append text "$path\n"
        foreach command {get_plugin_info get_plugin_about} {
            set answer [string trim [vesk $command $path]]
            if {$answer ne ""} {append text "    [string map {\n "\n    "} $answer]\n"}
        }
        append text \n
    }
    if {$text eq ""} {set text "No plug-ins are loaded."}
    ::vesk::dialogs::show_text "Plug-ins" $text
}

proc add_export_menu_item {label command {help ""}} {
    ::vesk::plugins::add_item export $label $command $help
}
proc add_tools_menu_item {label command {help ""}} {
    ::vesk::plugins::add_item tools $label $command $help
}
proc add_surface_menu_item {label command {help ""}} {
    ::vesk::plugins::add_item surface $label $command $help
}
