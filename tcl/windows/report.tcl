# report.tcl --
#   Help > Report a problem: the facts that help to find a cause, ready to be copied.

namespace eval ::vesk::report {}

# gathered --
#   Version, system, size of the model, settings that differ, the last lines of the console.
proc ::vesk::report::gathered {} {
    lassign [vesk get_counts] objects all_objects surfaces all_surfaces vertices all_vertices
    set lines [list $::vesk_version_string]
    lappend lines "Tcl/Tk [info patchlevel], $::tcl_platform(os) $::tcl_platform(osVersion)\
        $::tcl_platform(machine)"
    lappend lines "screen [winfo screenwidth .] x [winfo screenheight .], scale $::vesk::theme::S,\
        theme $::vesk::theme::current"
    lappend lines "model: $all_objects objects, $all_surfaces surfaces, $all_vertices vertices"
    set plugins [vesk get_plugin_list]
    if {![catch {llength $plugins}]} {
        lappend lines "plug-ins: [join [lmap path $plugins {file tail $path}] {, }]"
    }
    set differing {}
    foreach {key kind value} [vesk prefs_rows] {
        # Texts may name files of the user.
        if {$kind eq "string" || [regexp {win_|current_tip|last_update} $key]} {continue}
        set now [set ::prefs_$key]
        if {$now ne $value && !([string is double -strict $value] && $now == $value)} {
            lappend differing "$key $now"
        }
    }
    lappend lines "settings: [expr {[llength $differing] ? [join $differing {, }] : "as at first"}]" ""
    lappend lines "Last lines of the console:"
    lappend lines {*}[::vesk::console::last 40]
    return [join $lines \n]
}

proc ::vesk::report::open {} {
    set w .report
    ::vesk::dialogs::window $w "Report a problem - VESK" 20
    ttk::label $w.in.title -style Panel.Bold.TLabel -text "Report a problem"
    ttk::label $w.in.text -style Panel.Dim.TLabel -justify left \
        -wraplength [::vesk::theme::px 520] -text "Write what you did, what you expected and what\
            came instead, and add the lines below. Look through them first: the console may name\
            files of yours."
    text $w.in.lines -width 76 -height 16 -font VeskMono -wrap word \
        -padx [::vesk::theme::px 10] -pady [::vesk::theme::px 8]
    ::vesk::theme::recolour $w.in.lines
    ::vesk::parts::scrollbar $w.in.bar $w.in.lines
    ttk::frame $w.in.row -style Panel.TFrame
    ttk::button $w.in.row.copy -style Panel.Default.TButton -text Copy -command ::vesk::report::copy
    ttk::button $w.in.row.close -style Panel.TButton -text Close -command [list destroy $w]
    pack $w.in.row.copy $w.in.row.close -side right -padx [::vesk::theme::pad 8 0]
    grid $w.in.title - -sticky w -pady [::vesk::theme::pad 0 6]
    grid $w.in.text - -sticky w -pady [::vesk::theme::pad 0 10]
    grid $w.in.lines $w.in.bar -sticky nswe
    grid $w.in.row - -sticky we -pady [::vesk::theme::pad 12 0]
    grid columnconfigure $w.in 0 -weight 1
    grid rowconfigure $w.in 2 -weight 1
    $w.in.lines insert end [gathered]
    $w.in.lines configure -state disabled
    bind $w <Return> ::vesk::report::copy
    ::vesk::dialogs::show $w $w.in.row.copy
}

proc ::vesk::report::copy {} {
    clipboard clear
    clipboard append [.report.in.lines get 1.0 end-1c]
    display_message "the report is on the clipboard"
}
