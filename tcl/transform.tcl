# transform.tcl --
#   The Object tab: position, size and rotation of the selection as 3 x 3 number fields, name, url,
#   data and counts. "to" types where things go, "by" how far. A dash stands where objects differ.

namespace eval ::vesk::transform {
    variable path ""
    variable mode to
    variable keep 0             ;# keep proportions
    variable value              ;# (what,axis) -> text shown
    variable shown_ids {}       ;# objects whose texts the tab shows
    variable text               ;# name, url, data
    variable loading 0
    array set value {}
    array set text {name "" url "" data ""}
}

proc ::vesk::transform::build {tab} {
    variable path $tab
    variable keep [::vesk::settings::get keep_proportions]
    ttk::frame $tab -style Panel.TFrame -padding [::vesk::theme::px 12]
    add_text_row $tab 0 name Name
    ttk::frame $tab.gap0 -style Panel.TFrame -height [::vesk::theme::px 10]
    grid $tab.gap0 -row 1
    set row 1
    foreach {what label} {position Position size Size rotate Rotate} {
        incr row
        ttk::label $tab.l$what -text $label -style Panel.Dim.TLabel
        grid $tab.l$what -row $row -column 0 -sticky w
        set column 0
        foreach axis {x y z} {
            set variable ::vesk::transform::value($what,$axis)
            set $variable ""
            set entry [::vesk::dialogs::axis_field $tab.$what$axis $axis $variable Panel. 6]
            ::vesk::dialogs::number_keys $entry $variable \
                [list ::vesk::transform::typed $what $axis]
            grid $tab.$what$axis -row $row -column [incr column] -sticky we \
                -padx [::vesk::theme::pad 4 0] -pady [::vesk::theme::px 2]
        }
    }
    ttk::checkbutton $tab.keep -style Panel.TCheckbutton -text "Keep proportions" \
        -variable ::vesk::transform::keep \
        -command {::vesk::settings::set_value keep_proportions $::vesk::transform::keep}
    ttk::frame $tab.mode -style Panel.Axis.TFrame -padding [::vesk::theme::px 2]
    foreach {name help} {to "Numbers say where things go." by "Numbers say how far things go."} {
        ttk::radiobutton $tab.mode.$name -style Segment.Toolbutton -text $name -value $name \
            -variable ::vesk::transform::mode -command ::vesk::transform::refresh
        pack $tab.mode.$name -side left
        ::vesk::tips::attach $tab.mode.$name $name "" $help
    }
    grid $tab.keep -row [incr row] -column 1 -columnspan 2 -sticky w -padx [::vesk::theme::pad 4 0] \
        -pady [::vesk::theme::pad 6 4]
    grid $tab.mode -row $row -column 3 -sticky e -pady [::vesk::theme::pad 6 4]
    ttk::frame $tab.line -style Line.TFrame -height [::vesk::theme::px 1]
    grid $tab.line -row [incr row] -columnspan 4 -sticky we -pady [::vesk::theme::px 8]
    add_text_row $tab [incr row] data Data
    add_text_row $tab [incr row] url URL
    set row [::vesk::textures::add_rows $tab $row]
    ttk::label $tab.counts -style Panel.Dim.TLabel -anchor w -justify left \
        -wraplength [::vesk::theme::px 280]
    grid $tab.counts -row [incr row] -columnspan 4 -sticky we -pady [::vesk::theme::pad 10 0]
    grid columnconfigure $tab 0 -minsize [::vesk::theme::px 68]
    grid columnconfigure $tab {1 2 3} -weight 1 -uniform axis
    ::vesk::ops::listen selection ::vesk::transform::refresh
    ::vesk::ops::listen model ::vesk::transform::refresh
    ::vesk::ops::listen tree ::vesk::transform::refresh
    return $tab
}

# add_text_row --
#   Name, url or data of the selected objects.
proc ::vesk::transform::add_text_row {tab row key label} {
    ttk::label $tab.l$key -text $label -style Panel.Dim.TLabel
    ttk::entry $tab.$key -style Panel.TEntry -textvariable ::vesk::transform::text($key)
    grid $tab.l$key -row $row -column 0 -sticky w
    grid $tab.$key -row $row -column 1 -columnspan 3 -sticky we -padx [::vesk::theme::pad 4 0] \
        -pady [::vesk::theme::px 2]
    bind $tab.$key <Return> [list ::vesk::transform::text_typed $key]
    bind $tab.$key <KP_Enter> [list ::vesk::transform::text_typed $key]
    bind $tab.$key <FocusOut> [list ::vesk::transform::text_typed $key]
    bind $tab.$key <Escape> {::vesk::transform::refresh 1; break}
}

# ---- showing ----

# refresh --
#   Shows the selection's numbers and the objects' texts. A field being typed into is left alone.
#   force  1 also replaces what is typed
proc ::vesk::transform::refresh {{force 0}} {
    variable path
    variable mode
    variable value
    if {$path eq "" || ![winfo ismapped $path] && !$force} {return}
    lassign [vesk get_counts] objects all_objects surfaces all_surfaces vertices all_vertices
    set any [expr {[llength [vesk get_selected_objects]] > 0 || $surfaces > 0 || $vertices > 0}]
    set neutral {position 0.000 size 1.000 rotate 0}
    set typing [focus]
    foreach {what command} {position get_selection_centre size get_selection_size rotate ""} {
        set numbers {{} {} {}}
        if {$any} {
            set start [dict get $neutral $what]
            set numbers [list $start $start $start]
            if {$mode eq "to" && $command ne ""} {
                set numbers [lmap n [vesk $command] {::vesk::arith::shown $n}]
            }
        }
        foreach axis {x y z} number $numbers {
            set entry $path.$what$axis.value
            if {!$force && $any && $typing eq $entry
                    && [::vesk::dialogs::being_typed $entry]} {continue}
            if {$value($what,$axis) ne $number} {
                set value($what,$axis) $number
                if {$typing eq $entry} {::vesk::dialogs::shown_again $entry}
            }
            set state [expr {$any ? "normal" : "disabled"}]
            if {[$entry cget -state] ne $state} {
                $entry configure -state $state
                foreach part [list $path.$what$axis $path.$what$axis.letter] {
                    $part state [expr {$any ? "!disabled" : "disabled"}]
                }
            }
        }
    }
    $path.keep state [expr {$any ? "!disabled" : "disabled"}]
    show_texts $force
}

# show_texts --
#   Name, url, data and the counts line of the selected objects.
proc ::vesk::transform::show_texts {force} {
    variable path
    variable text
    variable shown_ids
    set ids [vesk get_selected_objects]
    set shown_ids $ids
    set infos [lmap id [lrange $ids 0 99] {vesk object_info $id}]
    foreach key {name url data} {
        set texts {}
        foreach info $infos {
            if {[dict exists $info $key]} {lappend texts [dict get $info $key]}
        }
        set texts [lsort -unique $texts]
        if {!$force && [focus] eq "$path.$key"} {continue}
        set text($key) [expr {[llength $texts] > 1 ? "\u2013" : ""}]
        if {[llength $texts] == 1} {set text($key) [lindex $texts 0]}
        $path.$key state [expr {[llength $ids] > 0 ? "!disabled" : "disabled"}]
    }
    ::vesk::textures::refresh $infos $force
    $path.counts configure -text [count_line $ids $infos]
}

proc ::vesk::transform::count_line {ids infos} {
    lassign [vesk get_counts] objects all_objects surfaces all_surfaces vertices
    if {[llength $ids] == 0} {
        if {$surfaces + $vertices == 0} {return "Nothing selected"}
        return "[counted $surfaces surface], [counted $vertices vertex vertices]"
    }
    set children 0
    foreach info $infos {
        if {[dict exists $info children]} {incr children [dict get $info children]}
    }
    set line ""
    if {[llength $ids] > 1} {append line [counted [llength $ids] object] ", "}
    append line [counted $surfaces surface] ", " [counted $vertices vertex vertices]
    if {$children > 0 && [llength $ids] <= 100} {append line ", " [counted $children child children]}
    return $line
}

# counted --
#   "1 surface", "24 surfaces".
proc ::vesk::transform::counted {count one {many ""}} {
    if {$many eq ""} {set many ${one}s}
    if {$count == 1} {return "1 $one"}
    return "[::vesk::arith::grouped $count] $many"
}

# ---- typing ----

# typed --
#   A number was typed into a field.
proc ::vesk::transform::typed {what axis number} {
    variable mode
    variable keep
    variable value
    set place [lsearch -exact {x y z} $axis]
    switch -- $what {
        position {
            if {$mode eq "to"} {
                set numbers [lreplace [vesk get_selection_centre] $place $place $number]
                ::vesk::ops::run move_to {*}$numbers
            } else {
                ::vesk::ops::run move {*}[lreplace {0 0 0} $place $place $number]
            }
        }
        size {
            if {$mode eq "to" && !$keep} {
                set numbers [lreplace [vesk get_selection_size] $place $place $number]
                ::vesk::ops::run size_to {*}$numbers
            } else {
                set factor $number
                if {$mode eq "to"} {
                    set old [lindex [vesk get_selection_size] $place]
                    if {$old == 0} {
                        display_message "the selection has no extent on this axis"
                        refresh 1
                        return
                    }
                    set factor [expr {$number / double($old)}]
                }
                set factors [expr {$keep ? [list $factor $factor $factor]
                    : [lreplace {1 1 1} $place $place $factor]}]
                ::vesk::ops::run scale {*}$factors
            }
        }
        rotate {
            set turn [lreplace {0 0 0} $place $place $number]
            ::vesk::ops::run rotate_about {*}$turn {*}[vesk get_selection_centre]
        }
    }
    vesk redraw_all
    refresh 1
}

# text_typed --
#   Name, url or data: applies to every selected object, when it was changed.
proc ::vesk::transform::text_typed {key} {
    variable text
    variable shown_ids
    set new $text($key)
    if {[llength $shown_ids] > 1 && $new eq "\u2013"} {return}
    foreach id $shown_ids {
        set info [vesk object_info $id]
        if {[llength $info] == 0 || [dict get $info $key] eq $new} {continue}
        switch -- $key {
            name {::vesk::ops::run object_set_name $id $new}
            url  {::vesk::ops::run object_set_url $id $new}
            data {::vesk::ops::run object_set_data $id $new}
        }
    }
}
