# plugins.tcl --
#   Menu items of plug-ins, and the list of what each of them added. A plug-in's command text is a
#   script of that plug-in and runs as it stands; its label and help are only shown.

namespace eval ::vesk::plugins {
    variable parted {}          ;# menus that already have the line above the plug-ins' items
    variable loading ""         ;# path of the plug-in that registers itself now
    variable before {}          ;# heading -> names that were there before it
    variable gave {}            ;# path -> {heading items ...}
    variable faulted {}         ;# file names of those whose faults were told
}
set ::plugin_loading ""

# noted --
#   The executable sets the path of a plug-in before that registers itself, and the empty text
#   after: additions in between belong to the plug-in.
proc ::vesk::plugins::noted {args} {
    variable loading
    variable before
    variable gave
    if {$::plugin_loading ne ""} {
        set loading $::plugin_loading
        set before [registered]
        dict set gave $loading {Menus {}}
        return
    }
    if {$loading eq ""} {return}
    dict for {what names} [registered] {
        foreach name [dict get $before $what] {set known($what,$name) 1}
        dict set gave $loading $what \
            [lmap name $names {if {[info exists known($what,$name)]} continue; set name}]
    }
    set loading ""
}

# folder --
#   First folder of the dialog that loads a plug-in: that of the preference, else the home folder's.
proc ::vesk::plugins::folder {} {
    set folder [string map [list \$VESK_HOME $::VESK_HOME] $::prefs_plugin_dir]
    if {[file isdirectory $folder]} {return $folder}
    return [file join $::VESK_HOME plugins]
}

# registered --
#   Everything that plug-ins can add, as it is now: heading -> names.
proc ::vesk::plugins::registered {} {
    set described {{rows} {lmap row $rows {
        lassign $row suffixes text
        expr {$text in {"" -} ? $suffixes : "$suffixes ($text)"}
    }}}
    return [dict create Reads [split [string trim [vesk get_importer_info]] \n] \
        Writes [apply $described [vesk get_exporters]] \
        "Texture files" [apply $described [vesk get_texture_loaders]] \
        Commands [::vesk::console::command_names]]
}

# added --
#   The additions of a plug-in: heading, items, heading, items ...
proc ::vesk::plugins::added {path} {
    variable gave
    return [expr {[dict exists $gave $path] ? [dict get $gave $path] : {}}]
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
    variable loading
    variable gave
    if {$loading ne ""} {
        set items [dict get $gave $loading Menus]
        dict set gave $loading Menus \
            [lappend items "[::vesk::menus::label $menu] > [string trim $label]"]
    }
    set run [list ::vesk::plugins::run $command]
    if {$menu eq "export"} {set run [list ::vesk::issues::exporting $run]}
    ::vesk::menus::add_command $path $label $run
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

# faulted --
#   A plug-in had a fault: once for each, offers to leave it out from the next start on.
#   name  its file name
proc ::vesk::plugins::faulted {name} {
    variable faulted
    if {$name in $faulted || $name in [::vesk::settings::get plugins_off]} {return}
    lappend faulted $name
    after idle [list after 200 [list ::vesk::plugins::offer_switch_off $name]]
}
proc ::vesk::plugins::offer_switch_off {name} {
    if {![info exists ::start_is_over] || [grab current .] ne ""} {
        after 500 [list ::vesk::plugins::offer_switch_off $name]
        return
    }
    set text "There was a fault in the code of the plug-in $name. The model was checked and the work\
        can go on; the page Plug-ins of the preferences can switch it on again."
    set answers {keep "Keep it" off "Switch it off from the next start on"}
    if {[::vesk::dialogs::question "A fault in a plug-in" $text $answers off keep] eq "off"} {
        ::vesk::plugmanager::leave_out $name 1
    }
}

trace add variable ::plugin_loading write ::vesk::plugins::noted

proc plugin_faulted {name} {::vesk::plugins::faulted $name}
proc add_export_menu_item {label command {help ""}} {
    ::vesk::plugins::add_item export $label $command $help
}
proc add_tools_menu_item {label command {help ""}} {
    ::vesk::plugins::add_item tools $label $command $help
}
proc add_surface_menu_item {label command {help ""}} {
    ::vesk::plugins::add_item surface $label $command $help
}
