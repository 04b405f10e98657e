# transform.tcl --
#   The Object tab: position, size and rotation of the selection as 3 x 3 number fields, mirroring,
#   name, type, url, data, flags and counts. With "to" the numbers are absolute, with "by" relative;
#   the letter in a field drags its number. A dash stands where objects differ. Each change is one
#   undo record.

namespace eval ::vesk::transform {
    variable path ""
    variable mode to
    variable keep 0             ;# keep proportions
    variable value              ;# (what,axis) -> text shown
    variable shown_ids {}       ;# objects whose texts the tab shows
    variable text               ;# name, url, data
    variable shown_text         ;# the same texts before the typing
    variable shown_for          ;# the objects of these texts
    variable flag               ;# visible, locked
    variable drag ""            ;# {what axis root-x started} while a letter is dragged
    array set value {}
    array set text {name "" url "" data ""}
    array set shown_text {name "" url "" data ""}
    array set shown_for {name {} url {} data {}}
}

proc ::vesk::transform::build {tab} {
    variable path $tab
    ttk::frame $tab -style Panel.TFrame -padding [::vesk::theme::px 12]
    add_text_row $tab 0 name Name
    ttk::frame $tab.gap0 -style Panel.TFrame -height [::vesk::theme::px 4]
    grid $tab.gap0 -row 1
    add_numbers $tab 2
    # In the order of the Tab key.
    add_switches $tab 6
    add_mirror $tab 5
    ttk::frame $tab.line -style Line.TFrame -height [::vesk::theme::px 1]
    grid $tab.line -row 7 -columnspan 4 -sticky we -pady [::vesk::theme::px 4]
    add_text_row $tab 8 data Data
    add_text_row $tab 9 url URL
    set row [::vesk::textures::add_rows $tab 9]
    add_flags $tab [incr row]
    ttk::label $tab.counts -style Panel.Dim.TLabel -anchor w -justify left \
        -wraplength [::vesk::theme::px 280]
    grid $tab.counts -row [incr row] -columnspan 4 -sticky we -pady [::vesk::theme::pad 6 0]
    grid columnconfigure $tab 0 -minsize [::vesk::theme::px 68]
    grid columnconfigure $tab {1 2 3} -weight 1 -uniform axis
    foreach aspect {selection model tree} {::vesk::ops::listen $aspect ::vesk::transform::refresh}
    return $tab
}

# add_numbers --
#   Three rows of three fields.
proc ::vesk::transform::add_numbers {tab row} {
    foreach {what label} {position Position size Size rotate Rotate} {
        set entries [::vesk::fields::axis_row $tab $row $what $label {x y z} \
            ::vesk::transform::value]
        foreach axis {x y z} entry $entries {
            ::vesk::fields::number_keys $entry ::vesk::transform::value($what,$axis) \
                [list ::vesk::transform::typed $what $axis]
            bind_letter $tab.$what$axis.letter $what $axis
        }
        incr row
    }
}

proc ::vesk::transform::add_mirror {tab row} {
    ttk::label $tab.lmirror -text Mirror -style Panel.Dim.TLabel
    grid $tab.lmirror -row $row -column 0 -sticky w
    foreach {axis place column} {x 0 1 y 1 2 z 2 3} {
        ttk::button $tab.mirror$axis -text [string toupper $axis] -style Panel.TButton \
            -command [list ::vesk::tools::mirror $place]
        ::vesk::tooltips::attach $tab.mirror$axis "Mirror [string toupper $axis]" "" \
            "Mirrors the selection at the pivot."
        grid $tab.mirror$axis -row $row -column $column -sticky we \
            -padx [::vesk::theme::pad 4 0] -pady [::vesk::theme::px 2]
    }
}

# add_switches --
#   The switches for the meaning of the numbers.
proc ::vesk::transform::add_switches {tab row} {
    variable keep [::vesk::settings::get keep_proportions]
    ttk::checkbutton $tab.keep -style Panel.TCheckbutton -text "Keep proportions" \
        -variable ::vesk::transform::keep \
        -command {::vesk::settings::set_value keep_proportions $::vesk::transform::keep}
    ::vesk::parts::segments $tab.mode Panel. ::vesk::transform::mode ::vesk::transform::use_mode {
        to "" to "" "Numbers say where things go." by "" by "" "Numbers say how far things go."
    }
    grid $tab.keep -row $row -column 1 -columnspan 2 -sticky w -padx [::vesk::theme::pad 4 0] \
        -pady [::vesk::theme::pad 3 2]
    grid $tab.mode -row $row -column 3 -sticky e -pady [::vesk::theme::pad 3 2]
}

# add_flags --
#   Visible, locked and the type.
proc ::vesk::transform::add_flags {tab row} {
    ttk::frame $tab.flags -style Panel.TFrame
    foreach {key label help} {visible Visible "Whether the objects are shown."
            locked Locked "Locked objects cannot be picked."} {
        set ::vesk::transform::flag($key) 0
        ttk::checkbutton $tab.flags.$key -text $label -style Panel.TCheckbutton \
            -variable ::vesk::transform::flag($key) -command [list ::vesk::transform::flag_set $key]
        ::vesk::tooltips::attach $tab.flags.$key $label "" $help
        pack $tab.flags.$key -side left -padx [::vesk::theme::pad 0 14]
    }
    ttk::combobox $tab.flags.type -style Panel.TCombobox -width 7 -state readonly \
        -values {poly group}
    bind $tab.flags.type <<ComboboxSelected>> ::vesk::transform::type_chosen
    ::vesk::tooltips::attach $tab.flags.type Type "" \
        "A group has no geometry of its own; lights stay lights."
    pack $tab.flags.type -side right
    grid $tab.flags -row $row -column 1 -columnspan 3 -sticky we \
        -padx [::vesk::theme::pad 4 0] -pady [::vesk::theme::pad 4 0]
}

# add_text_row --
#   Name, url or data of the selected objects.
proc ::vesk::transform::add_text_row {tab row key label} {
    ttk::label $tab.l$key -text $label -style Panel.Dim.TLabel
    ttk::entry $tab.$key -style Panel.TEntry -textvariable ::vesk::transform::text($key)
    grid $tab.l$key -row $row -column 0 -sticky w
    grid $tab.$key -row $row -column 1 -columnspan 3 -sticky we -padx [::vesk::theme::pad 4 0] \
        -pady [::vesk::theme::px 2]
    ::vesk::fields::text_keys $tab.$key [list ::vesk::transform::text_typed $key] \
        {::vesk::transform::refresh 1; break}
}

# ---- showing ----

# refresh --
#   Shows the numbers of the selection and the texts of the objects. A field with unapplied text
#   stays as it is.
#   force  1 replaces that text too
proc ::vesk::transform::refresh {{force 0}} {
    variable path
    variable drag
    if {$drag ne "" || $path eq "" || (![winfo ismapped $path] && !$force)} {return}
    lassign [vesk get_counts] objects all_objects surfaces all_surfaces vertices all_vertices
    set any [expr {$objects > 0 || $surfaces > 0 || $vertices > 0}]
    set state [expr {$any ? "!disabled" : "disabled"}]
    foreach what {position size rotate} {
        foreach axis {x y z} number [numbers $what $any] {
            set field $path.$what$axis
            ::vesk::fields::show_number $field.value ::vesk::transform::value($what,$axis) \
                $number [expr {$force || !$any}]
            set entry_state [expr {$any ? "normal" : "disabled"}]
            if {[$field.value cget -state] ne $entry_state} {
                $field.value configure -state $entry_state
                foreach part [list $field $field.letter] {$part state $state}
            }
        }
    }
    foreach part {keep mirrorx mirrory mirrorz} {$path.$part state $state}
    show_texts $force
}

# use_mode --
#   Switches between "to" and "by".
proc ::vesk::transform::use_mode {name} {
    variable mode $name
    refresh
}

# numbers --
#   The numbers of a row.
proc ::vesk::transform::numbers {what any} {
    variable mode
    if {!$any} {return {"" "" ""}}
    if {$what eq "rotate"} {return [expr {$mode eq "to" ? [angles] : {0 0 0}}]}
    if {$mode eq "by"} {return [lrepeat 3 [expr {$what eq "size" ? "1.000" : "0.000"}]]}
    set size [vesk get_selection_size]
    # A coordinate far below the size of the selection is a rounding error.
    set nothing [expr {1e-6 * [tcl::mathfunc::max 0 {*}$size]}]
    return [lmap n [expr {$what eq "size" ? $size : [vesk get_selection_centre]}] {
        ::vesk::arith::shown [expr {abs($n) < $nothing ? 0.0 : $n}]
    }]
}

# angles, frame --
#   The angles of the selected objects as shown, a dash where they differ; those of the first one.
#   Surfaces and vertices have no frame: theirs count from where they are.
proc ::vesk::transform::angles {} {
    set frames {}
    foreach id [vesk selected_objects_part 0 100] {
        lappend frames [lmap angle [dict get [vesk object_info $id] angles] {
            ::vesk::arith::shown [expr {abs($angle) < 5e-4 ? 0.0 : $angle}]
        }]
    }
    if {[llength $frames] == 0} {return {0 0 0}}
    set shown {}
    foreach place {0 1 2} {
        lappend shown [common [lsort -unique [lmap frame $frames {lindex $frame $place}]]]
    }
    return $shown
}
proc ::vesk::transform::frame {} {
    set id [vesk selected_objects_part 0 1]
    return [expr {$id eq "" ? "" : [dict get [vesk object_info $id] angles]}]
}

# show_texts --
#   Name, url, data and the counts line of the selected objects.
proc ::vesk::transform::show_texts {force} {
    variable path
    variable text
    variable shown_text
    variable shown_for
    variable shown_ids [::vesk::objects::meant]
    set ids $shown_ids
    set infos [lmap id [lrange $ids 0 99] {vesk object_info $id}]
    foreach key {name url data} {
        # A text that is being typed belongs to the objects that were selected at its beginning.
        if {!$force && [focus] eq "$path.$key" && $text($key) ne $shown_text($key)} {continue}
        set text($key) [common [distinct $infos $key]]
        set shown_text($key) $text($key)
        set shown_for($key) $ids
        $path.$key state [expr {[llength $ids] > 0 ? "!disabled" : "disabled"}]
    }
    # Textures belong to the objects with surfaces.
    ::vesk::textures::refresh [lmap id [vesk selected_objects_part 0 100] {
        vesk object_info $id
    }] $force
    $path.counts configure -text [count_line $ids $infos]
    show_flags $ids $infos
}

# distinct, common --
#   The different values of a key; the one that all have, or a dash.
proc ::vesk::transform::distinct {infos key} {
    set values {}
    foreach info $infos {
        if {[dict exists $info $key]} {lappend values [dict get $info $key]}
    }
    return [lsort -unique $values]
}
proc ::vesk::transform::common {values} {
    # Not by expr, which would write a number anew.
    if {[llength $values] > 1} {return "\u2013"}
    return [lindex $values 0]
}

# show_flags --
#   Type and flags; a check box is half set where objects differ.
proc ::vesk::transform::show_flags {ids infos} {
    variable path
    variable flag
    $path.flags.type set [common [distinct $infos type]]
    set can 0
    foreach info $infos {
        set geometry [expr {[dict get $info surfaces] + [dict get $info vertices]}]
        set type [dict get $info type]
        if {($type in {poly cube sphere} && $geometry == 0) || $type in {group cube sphere}} {set can 1}
    }
    $path.flags.type state [expr {$can ? "!disabled" : "disabled"}]
    foreach key {visible locked} {
        set values [distinct $infos $key]
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
    ::vesk::ops::soon ::vesk::transform::refresh
}

proc ::vesk::transform::flag_set {key} {
    variable flag
    variable shown_ids
    ::vesk::ops::run objects_set $shown_ids $key $flag($key)
}

proc ::vesk::transform::count_line {ids infos} {
    lassign [vesk get_counts] objects all_objects surfaces all_surfaces vertices
    if {[llength $ids] == 0 && $surfaces + $vertices == 0} {return "Nothing selected"}
    # Always one line, so that the rows above do not move.
    if {[llength $ids] > 1} {
        return "[::vesk::arith::counted [llength $ids] object],\
            [::vesk::arith::grouped $surfaces] surf, [::vesk::arith::grouped $vertices] vert"
    }
    set line "[::vesk::arith::counted $surfaces surface],\
        [::vesk::arith::counted $vertices vertex vertices]"
    set children 0
    foreach info $infos {
        if {[dict exists $info children]} {incr children [dict get $info children]}
    }
    if {$children > 0} {append line ", " [::vesk::arith::counted $children child children]}
    return $line
}

# ---- typing ----

# typed --
#   A number was typed into a field.
proc ::vesk::transform::typed {what axis number} {
    variable mode
    set place [lsearch -exact {x y z} $axis]
    switch -- $what,$mode {
        position,to {
            ::vesk::ops::run move_to {*}[lreplace [vesk get_selection_centre] $place $place $number]
        }
        position,by {::vesk::ops::run move_with_undo {*}[lreplace {0 0 0} $place $place $number]}
        size,to - size,by {size_typed $place $number}
        default {
            set from {0 0 0}
            set command rotate_about_with_undo
            if {$mode eq "to" && [frame] ne ""} {
                set from [frame]
                set command rotate_to_with_undo
            }
            ::vesk::ops::run $command {*}[lreplace $from $place $place $number] \
                {*}[::vesk::tools::pivot_point]
        }
    }
    vesk redraw_all
    ::vesk::ops::soon ::vesk::transform::refresh
}

proc ::vesk::transform::size_typed {place number} {
    variable mode
    variable keep
    set size [vesk get_selection_size]
    if {$mode eq "to" && !$keep} {
        ::vesk::ops::run size_to {*}[lreplace $size $place $place $number]
        return
    }
    if {$mode eq "to"} {
        set old [lindex $size $place]
        if {$old == 0} {
            display_message "the selection has no extent on this axis"
            return
        }
        set number [expr {$number / double($old)}]
    }
    ::vesk::ops::run scale {*}[factors $place $number]
}

# factors --
#   A factor for one axis, or for all where proportions are kept.
proc ::vesk::transform::factors {place factor} {
    variable keep
    return [expr {$keep ? [list $factor $factor $factor]
        : [lreplace {1 1 1} $place $place $factor]}]
}

# text_typed --
#   Gives every object the typed name, url or data, if it was changed.
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
            vesk transform_to {*}[factors $place $factor]
        }
    }
    set shown [list $amount $amount $amount]
    if {$mode eq "to" && $what eq "position"} {set shown [vesk get_selection_centre]}
    if {$mode eq "to" && $what eq "rotate" && [frame] ne ""} {set shown [frame]}
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
    ::vesk::ops::soon ::vesk::transform::refresh
}

proc ::vesk::transform::drag_cancel {} {
    variable drag
    if {$drag eq ""} {return}
    set started [lindex $drag 4]
    set drag ""
    if {$started} {::vesk::ops::run transform_cancel}
    ::vesk::ops::soon ::vesk::transform::refresh
}
