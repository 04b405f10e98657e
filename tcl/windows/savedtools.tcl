# savedtools.tcl --
#   Tools from lines of the console: selected there, saved under a name, listed in the Tools menu
#   and kept in the settings. A tool is a script of the user and runs as it stands.

namespace eval ::vesk::savedtools {
    variable name ""
}

# context --
#   The menu of the right button in the console.
proc ::vesk::savedtools::context {x y} {
    set text $::vesk::console::path.text
    set chosen [expr {[$text tag ranges sel] eq "" ? "disabled" : "normal"}]
    set menu [::vesk::menus::new_popup]
    ::vesk::menus::add_command $menu Copy [list event generate $text <<Copy>>] -state $chosen
    ::vesk::menus::add_command $menu "Save the selected lines as a tool..." \
        ::vesk::savedtools::save_ask -state $chosen
    ::vesk::menus::add_command $menu "Save everything as a tool..." \
        "$text tag add sel 1.0 end; ::vesk::savedtools::save_ask"
    $menu add separator
    ::vesk::menus::add_command $menu Empty ::vesk::console::empty
    tk_popup $menu $x $y
}

# script_of --
#   The commands among the selected lines, which have a prompt.
proc ::vesk::savedtools::script_of {} {
    set text $::vesk::console::path.text
    if {[$text tag ranges sel] eq ""} {return ""}
    set first [$text index "sel.first linestart"]
    set last [$text index sel.last]
    if {[string match *.0 $last]} {set last [$text index "$last - 1 char"]}
    set script {}
    foreach {from to} [$text tag ranges command] {
        if {[$text compare $from >= $first] && [$text compare $from <= $last]} {
            lappend script [string trimright [$text get $from $to] \n]
        }
    }
    return [join $script \n]
}

# save_ask --
#   Asks for the name of a new tool.
proc ::vesk::savedtools::save_ask {} {
    variable name ""
    set script [script_of]
    if {$script eq ""} {
        display_message "none of these lines is a command"
        return
    }
    set w .savetool
    ::vesk::dialogs::window $w "Save a tool - VESK" 20
    ttk::label $w.in.title -style Panel.Bold.TLabel -text "Save as a tool"
    ttk::label $w.in.lname -style Panel.Dim.TLabel -text Name
    ttk::entry $w.in.name -style Panel.TEntry -width 30 -textvariable ::vesk::savedtools::name
    text $w.in.script -width 50 -height 6 -font VeskMono -wrap none -padx [::vesk::theme::px 8] \
        -pady [::vesk::theme::px 6]
    ::vesk::theme::recolour $w.in.script
    $w.in.script insert end $script
    ttk::frame $w.in.row -style Panel.TFrame
    ttk::button $w.in.row.save -style Panel.Default.TButton -text Save \
        -command ::vesk::savedtools::save
    ttk::button $w.in.row.cancel -style Panel.TButton -text Cancel -command [list destroy $w]
    pack $w.in.row.save $w.in.row.cancel -side right -padx [::vesk::theme::pad 8 0]
    grid $w.in.title - -sticky w -pady [::vesk::theme::pad 0 10]
    grid $w.in.lname $w.in.name -sticky w
    grid configure $w.in.lname -padx [::vesk::theme::pad 0 10]
    grid $w.in.script - -sticky nswe -pady [::vesk::theme::pad 10 10]
    grid $w.in.row - -sticky we
    ::vesk::fields::on_keys $w.in.name {Return ::vesk::savedtools::save}
    ::vesk::dialogs::show $w $w.in.name
}

proc ::vesk::savedtools::save {} {
    variable name
    set wanted [string trim $name]
    if {$wanted eq ""} {
        .savetool.in.name state invalid
        display_message "the tool needs a name"
        return
    }
    set tools [::vesk::settings::get saved_tools]
    dict set tools $wanted [.savetool.in.script get 1.0 end-1c]
    keep $tools
    destroy .savetool
    display_message "Tools > My tools > $wanted"
}

# keep --
#   Keeps the tools in the settings, whose file has one line a setting: lines of a script are joined
#   by semicolons.
proc ::vesk::savedtools::keep {tools} {
    dict for {name script} $tools {
        dict set tools $name [join [lmap line [split $script \n] {
            if {[string trim $line] eq ""} continue
            string trim $line
        }] "; "]
    }
    ::vesk::settings::set_value saved_tools $tools
    set message [::vesk::settings::save]
    if {$message ne ""} {display_message "settings not saved: $message"}
}

# fill_menu --
#   Fills Tools > My tools each time it opens.
proc ::vesk::savedtools::fill_menu {path} {
    $path delete 0 end
    set tools [::vesk::settings::get saved_tools]
    if {[catch {dict size $tools} count]} {lassign {{} 0} tools count}
    if {$count == 0} {
        $path add command -label "  none yet: select lines in the console, right button   " \
            -state disabled
        return
    }
    dict for {name script} $tools {
        ::vesk::menus::add_command $path $name [list ::vesk::savedtools::run $name]
    }
    $path add separator
    destroy $path.remove
    menu $path.remove -tearoff 0
    ::vesk::theme::recolour $path.remove
    foreach name [dict keys $tools] {
        ::vesk::menus::add_command $path.remove $name [list ::vesk::savedtools::remove $name]
    }
    ::vesk::menus::add_entry $path cascade Remove -menu $path.remove
}

proc ::vesk::savedtools::run {name} {
    ::vesk::plugins::run [dict get [::vesk::settings::get saved_tools] $name]
    vesk redraw_all
}

proc ::vesk::savedtools::remove {name} {
    keep [dict remove [::vesk::settings::get saved_tools] $name]
    display_message "tool \"$name\" removed"
}
