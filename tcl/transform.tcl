# transform.tcl --
#   The Object tab: position, size and rotation of the selection as 3 x 3 number fields, mirroring,
#   name, type, url, data, flags and counts. "to" types where things go, "by" how far; the letter in
#   a field drags its number. A dash stands where objects differ. Each change is one undo record.

namespace eval ::vesk::transform {
    variable path ""
    variable mode to
    variable keep 0             ;# keep proportions
    variable value              ;# (what,axis) -> text shown
    variable shown_ids {}       ;# objects whose texts the tab shows
    variable text               ;# name, url, data
    variable shown_text         ;# the same, before anything was typed
    variable shown_for          ;# and the objects that they are of
    variable flag               ;# visible, locked
    variable drag ""            ;# {what axis root-x started} while a letter is dragged
    array set value {}
    array set text {name "" url "" data ""}
    array set shown_text {name "" url "" data ""}
    array set shown_for {name {} url {} data {}}
}

proc ::vesk::transform::build {tab} {
    variable path $tab
    variable keep [::vesk::settings::get keep_proportions]
    ttk::frame $tab -style Panel.TFrame -padding [::vesk::theme::px 12]
    add_text_row $tab 0 name Name
    ttk::frame $tab.gap0 -style Panel.TFrame -height [::vesk::theme::px 4]
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
            bind_letter $tab.$what$axis.letter $what $axis
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
    ttk::label $tab.lmirror -text Mirror -style Panel.Dim.TLabel
    grid $tab.lmirror -row [incr row] -column 0 -sticky w
    foreach {axis place column} {x 0 1 y 1 2 z 2 3} {
        ttk::button $tab.mirror$axis -text [string toupper $axis] -style Panel.TButton \
            -command [list ::vesk::ops::run mirror_with_undo $place]
        ::vesk::tips::attach $tab.mirror$axis "Mirror [string toupper $axis]" "" \
            "Mirrors the selection at its middle."
        grid $tab.mirror$axis -row $row -column $column -sticky we \
            -padx [::vesk::theme::pad 4 0] -pady [::vesk::theme::px 2]
    }
    grid $tab.keep -row [incr row] -column 1 -columnspan 2 -sticky w -padx [::vesk::theme::pad 4 0] \
        -pady [::vesk::theme::pad 3 2]
    grid $tab.mode -row $row -column 3 -sticky e -pady [::vesk::theme::pad 3 2]
    ttk::frame $tab.line -style Line.TFrame -height [::vesk::theme::px 1]
    grid $tab.line -row [incr row] -columnspan 4 -sticky we -pady [::vesk::theme::px 4]
    add_text_row $tab [incr row] data Data
    add_text_row $tab [incr row] url URL
    set row [::vesk::textures::add_rows $tab $row]
    ttk::frame $tab.flags -style Panel.TFrame
    foreach {key label help} {visible Visible "Whether the objects are shown."
            locked Locked "Locked objects cannot be picked."} {
        set ::vesk::transform::flag($key) 0
        ttk::checkbutton $tab.flags.$key -text $label -style Panel.TCheckbutton \
            -variable ::vesk::transform::flag($key) -command [list ::vesk::transform::flag_set $key]
        ::vesk::tips::attach $tab.flags.$key $label "" $help
        pack $tab.flags.$key -side left -padx [::vesk::theme::pad 0 14]
    }
    ttk::combobox $tab.flags.type -style Panel.TCombobox -width 7 -state readonly \
        -values {poly group}
    bind $tab.flags.type <<ComboboxSelected>> ::vesk::transform::type_chosen
    ::vesk::tips::attach $tab.flags.type Type "" \
        "A group has no geometry of its own; lights stay lights."
    pack $tab.flags.type -side right
    grid $tab.flags -row [incr row] -column 1 -columnspan 3 -sticky we \
        -padx [::vesk::theme::pad 4 0] -pady [::vesk::theme::pad 4 0]
    ttk::label $tab.counts -style Panel.Dim.TLabel -anchor w -justify left \
        -wraplength [::vesk::theme::px 280]
    grid $tab.counts -row [incr row] -columnspan 4 -sticky we -pady [::vesk::theme::pad 6 0]
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
    foreach event {Return KP_Enter} {
        bind $tab.$key <$event> "[list ::vesk::transform::text_typed $key]; ::vesk::view::done_in %W"
    }
    bind $tab.$key <Button-1> {+set ::vesk::view::done ""}
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
    variable drag
    if {$drag ne ""} {return}
    if {$path eq "" || ![winfo ismapped $path] && !$force} {return}
    lassign [vesk get_counts] objects all_objects surfaces all_surfaces vertices all_vertices
    set any [expr {[llength [vesk get_selected_objects]] > 0 || $surfaces > 0 || $vertices > 0}]
    set neutral {position 0.000 size 1.000 rotate 0}
    set typing [focus]
    # What is nothing beside the selection's size comes from rounding.
    set nothing [expr {1e-6 * [tcl::mathfunc::max 0 {*}[vesk get_selection_size]]}]
    foreach {what command} {position get_selection_centre size get_selection_size rotate ""} {
        set numbers {{} {} {}}
        if {$any} {
            set start [dict get $neutral $what]
            set numbers [list $start $start $start]
            if {$mode eq "to" && $command ne ""} {
                set numbers [lmap n [vesk $command] {
                    ::vesk::arith::shown [expr {abs($n) < $nothing ? 0.0 : $n}]
                }]
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
    set state [expr {$any ? "!disabled" : "disabled"}]
    $path.keep state $state
    foreach axis {x y z} {$path.mirror$axis state $state}
    show_texts $force
}

# show_texts --
#   Name, url, data and the counts line of the selected objects.
proc ::vesk::transform::show_texts {force} {
    variable path
    variable text
    variable shown_text
    variable shown_for
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
        # What is being typed belongs to the objects that it was begun for.
        if {!$force && [focus] eq "$path.$key" && $text($key) ne $shown_text($key)} {continue}
        set text($key) [expr {[llength $texts] > 1 ? "\u2013" : ""}]
        if {[llength $texts] == 1} {set text($key) [lindex $texts 0]}
        set shown_text($key) $text($key)
        set shown_for($key) $ids
        $path.$key state [expr {[llength $ids] > 0 ? "!disabled" : "disabled"}]
    }
    ::vesk::textures::refresh $infos $force
    $path.counts configure -text [count_line $ids $infos]
    show_flags $ids $infos
}

# show_flags --
#   Type and flags; a check box is half set where objects differ.
proc ::vesk::transform::show_flags {ids infos} {
    variable path
    variable flag
    set types [lsort -unique [lmap info $infos {dict get $info type}]]
    $path.flags.type set [expr {[llength $types] > 1 ? "\u2013" : [lindex $types 0]}]
    set can 0
    foreach info $infos {
        set geometry [expr {[dict get $info surfaces] + [dict get $info vertices]}]
        set type [dict get $info type]
        if {($type in {poly cube sphere} && $geometry == 0) || $type in {group cube sphere}} {set can 1}
    }
    $path.flags.type state [expr {$can ? "!disabled" : "disabled"}]
    foreach key {visible locked} {
        set values [lsort -unique [lmap info $infos {dict get $info $key}]]
        set flag($key) [expr {[llength $values] == 1 ? [lindex $values 0] : 0}]
        $path.flags.$key state [expr {[llength $ids] > 0 ? "!disabled" : "disabled"}]
        $path.flags.$key state [expr {[llength $values] > 1 ? "alternate" : "!alternate"}]
    }
}

# type_chosen --
#   Another type for the selected objects; those that cannot have it stay as they are.
proc ::vesk::transform::type_chosen {} {
    variable path
    variable shown_ids
    $path.flags.type selection clear
    ::vesk::ops::run objects_set $shown_ids type [$path.flags.type get]
    refresh 1
}

proc ::vesk::transform::flag_set {key} {
    variable flag
    variable shown_ids
    ::vesk::ops::run objects_set $shown_ids $key $flag($key)
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
    # In one line, also when there are many: what stands above must not move.
    if {[llength $ids] > 1} {
        return "[counted [llength $ids] object], [::vesk::arith::grouped $surfaces] surf,\
            [::vesk::arith::grouped $vertices] vert"
    }
    set line ""
    append line [counted $surfaces surface] ", " [counted $vertices vertex vertices]
    if {$children > 0} {append line ", " [counted $children child children]}
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
                ::vesk::ops::run move_with_undo {*}[lreplace {0 0 0} $place $place $number]
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
            ::vesk::ops::run rotate_about_with_undo {*}$turn {*}[::vesk::tools::pivot_point]
        }
    }
    vesk redraw_all
    refresh 1
}

# text_typed --
#   Name, url or data: applies to every selected object, when it was changed.
proc ::vesk::transform::text_typed {key} {
    variable text
    variable shown_text
    variable shown_for
    if {$text($key) eq $shown_text($key)} {return}
    set shown_text($key) $text($key)
    set ids [lmap id $shown_for($key) {
        if {[llength [vesk object_info $id]] == 0} continue
        set id
    }]
    if {[llength $ids] > 0} {::vesk::ops::run objects_set $ids $key $text($key)}
}

# ---- dragging a number by its letter ----

# bind_letter --
#   A press and a drag to the side change the field's number, with Shift ten times and with Control
#   a tenth as fast; a click types into the field. Escape and the right button take it back.
proc ::vesk::transform::bind_letter {letter what axis} {
    $letter configure -cursor sb_h_double_arrow -takefocus 0
    bind $letter <Button-1> [list ::vesk::transform::drag_press $what $axis %X]
    bind $letter <B1-Motion> [list ::vesk::transform::drag_motion %X %s]
    bind $letter <ButtonRelease-1> ::vesk::transform::drag_release
    bind $letter <Button-3> ::vesk::transform::drag_cancel
    bind $letter <Escape> {::vesk::transform::drag_cancel; break}
}

proc ::vesk::transform::drag_press {what axis x} {
    variable path
    variable drag ""
    if {[$path.$what$axis instate disabled]} {return -code break}
    set drag [list $what $axis $x 0 0]
    return -code break
}

proc ::vesk::transform::drag_motion {x state} {
    variable path
    variable drag
    variable drag_from
    if {$drag eq ""} {return}
    lassign $drag what axis last amount started
    if {!$started} {
        if {abs($x - $last) < 4} {return}
        focus $path.$what$axis.letter
        set drag_from [vesk get_selection_size]
        vesk transform_begin [dict get {position move size scale rotate rotate} $what]
        if {$what eq "rotate"} {vesk transform_about {*}[::vesk::tools::pivot_point]}
    }
    set step [expr {$what eq "rotate" ? 0.5 : max(abs($::prefs_grid), 1e-6) * 0.1}]
    set factor [expr {$state & 1 ? 10 : $state & 4 ? 0.1 : 1}]
    set amount [expr {$amount + ($x - $last) * $step * $factor}]
    set drag [list $what $axis $x $amount 1]
    drag_apply $what $axis $amount
}

# drag_apply --
#   The model and the fields follow the amount dragged so far.
proc ::vesk::transform::drag_apply {what axis amount} {
    variable mode
    variable keep
    variable value
    variable drag_from
    set place [lsearch -exact {x y z} $axis]
    switch -- $what {
        position {vesk transform_to {*}[lreplace {0 0 0} $place $place $amount]}
        rotate   {vesk transform_to {*}[lreplace {0 0 0} $place $place $amount]}
        size {
            set from [lindex $drag_from $place]
            if {$from <= 0} {return}
            set factor [expr {max(0.0, $from + $amount) / $from}]
            vesk transform_to {*}[expr {$keep ? [list $factor $factor $factor]
                : [lreplace {1 1 1} $place $place $factor]}]
        }
    }
    set shown [list $amount $amount $amount]
    if {$mode eq "to" && $what eq "position"} {set shown [vesk get_selection_centre]}
    if {$what eq "size"} {
        set shown [vesk get_selection_size]
        if {$mode eq "by"} {
            set shown [lmap now $shown old $drag_from {expr {$old > 0 ? $now / $old : 1.0}}]
        }
    }
    set value($what,$axis) [::vesk::arith::shown [lindex $shown $place]]
}

proc ::vesk::transform::drag_release {} {
    variable path
    variable drag
    if {$drag eq ""} {return}
    lassign $drag what axis last amount started
    set drag ""
    if {!$started} {
        focus $path.$what$axis.value
        return
    }
    ::vesk::ops::run transform_end
    ::vesk::view::focus_last
    refresh 1
}

proc ::vesk::transform::drag_cancel {} {
    variable drag
    if {$drag eq ""} {return}
    set started [lindex $drag 4]
    set drag ""
    if {$started} {::vesk::ops::run transform_cancel}
    refresh 1
}
