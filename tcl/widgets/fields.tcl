# fields.tcl --
#   Fields for numbers, texts and colours: their look, their keys, and the mark of a wrong entry.

namespace eval ::vesk::fields {
    variable before             ;# number field -> its text before the typing
    variable done ""            ;# the field that ended with Return, and its text then
    array set before {}
}

# ---- look ----

# bare_entry --
#   An entry without a frame of its own; `lit` lends it the one that it stands in.
proc ::vesk::fields::bare_entry {path variable args} {
    entry $path -textvariable $variable -borderwidth 0 -highlightthickness 0 {*}$args
    ::vesk::theme::recolour $path
    return $path
}

# lit --
#   Lights a frame while the widget in it has the focus.
proc ::vesk::fields::lit {frame w} {
    bind $w <FocusIn> +[list $frame state focus]
    bind $w <FocusOut> +[list $frame state !focus]
}

# axis_field --
#   A field with a bold letter and a right-aligned number. Returns its entry.
#   letter    x, y, z, u or v; the colour follows from it
#   variable  the global name of the variable that the entry shows
#   prefix    the surface that it lies on: "", Panel.
proc ::vesk::fields::axis_field {path letter variable {prefix ""} {width 8}} {
    set axis [dict get {x x y y z z u x v y} $letter]
    ttk::frame $path -style ${prefix}Axis.TFrame -padding [::vesk::theme::pad 6 3 4 3]
    ttk::label $path.letter -text [string toupper $letter] -style ${axis}Field.TLabel
    bare_entry $path.value $variable -justify right -width $width -font VeskNumber
    pack $path.letter -side left
    pack $path.value -side left -fill x -expand 1 -padx [::vesk::theme::pad 4 0]
    lit $path $path.value
    foreach part [list $path $path.letter] {bind $part <Button-1> [list focus $path.value]}
    bind $path <Enter> [list $path state active]
    bind $path <Leave> [list $path state !active]
    return $path.value
}

# axis_row --
#   A label and its axis fields in one row of a panel's grid. Returns the entries.
#   what      name of the row: a field is <tab>.<what><letter>
#   variable  the global name of the array with the texts: <what>,<letter>
proc ::vesk::fields::axis_row {tab row what label letters variable} {
    ttk::label $tab.l$what -text $label -style Panel.Dim.TLabel
    grid $tab.l$what -row $row -column 0 -sticky w
    set column 0
    foreach letter $letters {
        set field $tab.$what$letter
        lappend entries [axis_field $field $letter ${variable}($what,$letter) Panel. 6]
        grid $field -row $row -column [incr column] -sticky we -padx [::vesk::theme::pad 4 0] \
            -pady [::vesk::theme::px 2]
    }
    return $entries
}

# filter_field --
#   A field with a picture that filters a list; a hint stands in it while it is empty. Escape
#   empties it first.
#   variable  the global name of its text
#   list      the list, to which Down moves the focus
proc ::vesk::fields::filter_field {path icon hint variable list width pad} {
    ttk::frame $path -style Axis.TFrame -padding [::vesk::theme::pad 6 $pad 6 $pad]
    ttk::label $path.icon -style Field.TLabel -image [::vesk::icons::get $icon dim]
    bare_entry $path.value $variable -width $width
    ttk::label $path.hint -style Field.Dim.TLabel -text $hint
    pack $path.icon -side left
    pack $path.value -side left -fill x -expand 1 -padx [::vesk::theme::pad 5 0]
    lit $path $path.value
    bind $path.hint <Button-1> [list focus $path.value]
    bind $path.value <Escape> [list ::vesk::fields::filter_escape $variable]
    on_keys $path.value [list Down [list focus $list]]
    set follow [list ::vesk::fields::show_hint $path $variable]
    trace add variable $variable write $follow
    bind $path <Destroy> [list trace remove variable $variable write $follow]
    {*}$follow
    return $path
}
proc ::vesk::fields::filter_escape {variable} {
    if {[set $variable] eq ""} {return}
    set $variable ""
    return -code break
}
proc ::vesk::fields::show_hint {path variable args} {
    if {[set $variable] eq ""} {
        place $path.hint -in $path.value -x [::vesk::theme::px 3] -relheight 1
    } else {
        place forget $path.hint
    }
}

# has_words --
#   Whether a text in lower case holds every word of a filter.
proc ::vesk::fields::has_words {text typed} {
    foreach word [regexp -all -inline {\S+} [string tolower $typed]] {
        if {[string first $word $text] < 0} {return 0}
    }
    return 1
}

# ---- colours ----

# swatch --
#   A coloured square; a click, the space bar and Return run `command`.
proc ::vesk::fields::swatch {path width height command} {
    ::vesk::theme::on [frame $path -width [::vesk::theme::px $width] \
        -height [::vesk::theme::px $height] -takefocus 1 -highlightthickness 1] -
    foreach event {<Button-1> <Key-space> <Key-Return>} {bind $path $event $command}
    return $path
}
proc ::vesk::fields::show_swatch {path colour} {
    $path configure -background $colour -highlightbackground [::vesk::theme::colour edge] \
        -highlightcolor [::vesk::theme::colour ring]
}

# hex --
#   A typed colour as "#RRGGBB", or "" when the text is no colour.
proc ::vesk::fields::hex {text} {
    if {![regexp {^#?([0-9A-Fa-f]{6})$} $text -> digits]} {return ""}
    return "#[string toupper $digits]"
}

# typed_colour --
#   The same for the text of a field; a wrong text is marked and reported in the status line.
proc ::vesk::fields::typed_colour {entry} {
    set hex [hex [$entry get]]
    mark_invalid $entry [expr {$hex eq ""}]
    if {$hex eq ""} {display_message "a colour is written #RRGGBB, not \"[$entry get]\""}
    return $hex
}

# ---- keys ----

# own_keys --
#   Leaves the fields only the editing keys that everyone knows: the toolkit's others (Control with
#   d, e, h, k, o, t ...) would change the text beside what the window does on the same key.
proc ::vesk::fields::own_keys {} {
    set letter {^<(Control-|Lock-)*(Control|Meta)-(Lock-)?Key-([A-Za-z])>$}
    foreach class {Entry TEntry TCombobox Spinbox Text} {
        foreach event [bind $class] {
            if {[regexp $letter $event]} {bind $class $event {}}
        }
    }
    foreach name [event info] {
        foreach event [event info $name] {
            if {[regexp $letter $event -> a b c key] && [string tolower $key] ni {x c v z}} {
                event delete $name $event
            }
        }
    }
    event add <<SelectAll>> <Control-Key-a>
    foreach class {Entry TEntry TCombobox} {bind $class <FocusIn> {+::vesk::fields::note_text %W}}
}

# note_text, take_back --
#   Undo in a field: its text at the beginning comes back. Returns 0 when it is there already.
proc ::vesk::fields::note_text {w} {
    variable before
    set before($w) [$w get]
}
proc ::vesk::fields::take_back {w} {
    variable before
    if {![info exists before($w)] || [$w get] eq $before($w)} {return 0}
    $w delete 0 end
    $w insert 0 $before($w)
    mark_invalid $w 0
    return 1
}

# on_keys --
#   Binds keys of a widget; no other binding of the key runs after them.
#   keys  key, script, key, script ...; Return includes the one of the keypad
proc ::vesk::fields::on_keys {w keys} {
    foreach {key script} $keys {
        foreach one [expr {$key eq "Return" ? {Return KP_Enter} : [list $key]}] {
            bind $w <$one> "$script; break"
        }
    }
}

# text_keys --
#   Makes an entry a text field: Return and leaving it run `apply`, Escape runs `restore`.
proc ::vesk::fields::text_keys {entry apply restore} {
    foreach event {Return KP_Enter} {
        bind $entry <$event> "$apply; ::vesk::fields::done_in %W"
    }
    bind $entry <Button-1> {+set ::vesk::fields::done ""}
    bind $entry <FocusOut> +$apply
    bind $entry <Escape> $restore
}

# number_keys --
#   Makes an entry a number field: Return and leaving apply, Escape restores, Up and Down step
#   (Shift x 10, Control x 0.1), sums are computed.
#   variable  the entry's variable
#   apply     words; the new number is appended
#   unit      a step; "" the grid's spacing
proc ::vesk::fields::number_keys {entry variable apply {unit ""}} {
    text_keys $entry [list ::vesk::fields::number_done $entry $variable $apply] \
        [list ::vesk::fields::number_escape $entry $variable]
    bind $entry <FocusIn> +[list ::vesk::fields::number_begin $entry $variable]
    foreach {key step} {Up 1 Down -1} {
        foreach {modifier factor} {{} 1 Shift- 10 Control- 0.1} {
            bind $entry <${modifier}Key-$key> [list ::vesk::fields::number_step $entry \
                $variable $apply [expr {$step * $factor}] $unit]
        }
    }
}

# number_begin --
#   Remembers the text of the field, for Escape and for `being_typed`.
proc ::vesk::fields::number_begin {w variable} {
    variable before
    set before($w) [set $variable]
    if {[winfo class $w] in {Entry TEntry}} {$w selection range 0 end}
}

# being_typed --
#   Whether a field holds a text that was not applied yet.
proc ::vesk::fields::being_typed {w} {
    variable before
    return [expr {![info exists before($w)] || [$w get] ne $before($w)}]
}

# show_number --
#   Shows a number of the model in a field, unless another text is being typed there.
#   force  1 replaces that text too
proc ::vesk::fields::show_number {w variable number force} {
    variable before
    set typing [expr {[focus] eq $w}]
    if {[set $variable] eq $number || (!$force && $typing && [being_typed $w])} {return}
    set $variable $number
    mark_invalid $w 0
    if {$typing} {
        set before($w) $number
        $w selection range 0 end
    }
}

proc ::vesk::fields::number_done {w variable apply} {
    variable before
    set text [set $variable]
    if {[info exists before($w)] && $before($w) eq $text} {return}
    if {[string match *disabled* [$w cget -state]]} {return}
    if {[string trim $text] eq "" && [info exists before($w)]} {
        # An emptied field gets its number back.
        set $variable $before($w)
        mark_invalid $w 0
        return
    }
    set current [expr {[info exists before($w)] ? $before($w) : ""}]
    if {![string is double -strict $current]} {set current ""}
    if {[catch {::vesk::arith::value $text $current} number]} {
        mark_invalid $w 1
        display_message $number
        return
    }
    mark_invalid $w 0
    {*}$apply $number
    set before($w) [set $variable]
}

# number_escape --
#   Escape restores the number; a second one goes back to the views.
proc ::vesk::fields::number_escape {w variable} {
    variable before
    if {[info exists before($w)] && $before($w) ne [set $variable]} {
        set $variable $before($w)
        mark_invalid $w 0
        $w selection range 0 end
        return -code break
    }
}

proc ::vesk::fields::number_step {w variable apply step unit} {
    if {[catch {::vesk::arith::value [set $variable]} number]} {return}
    if {$unit eq ""} {set unit [expr {$::prefs_grid > 0 ? $::prefs_grid : 0.1}]}
    set step [expr {$step * $unit}]
    # Whole numbers have no tenth of a step.
    if {$unit == 1 && abs($step) < 1} {set step [expr {$step < 0 ? -1 : 1}]}
    set number [expr {$number + $step}]
    set $variable [::vesk::arith::shown $number]
    {*}$apply $number
    number_begin $w $variable
    return -code break
}

# mark_invalid --
#   Shows or clears the error outline of a field of any kind.
proc ::vesk::fields::mark_invalid {w invalid} {
    if {[winfo class $w] eq "Entry"} {set w [winfo parent $w]}
    $w state [expr {$invalid ? "invalid" : "!invalid"}]
}

# done_in, is_done --
#   After Return a field counts as left until a key or a click changes it: a view that the pointer
#   enters then takes the focus.
proc ::vesk::fields::done_in {entry} {
    after idle [list ::vesk::fields::note_done $entry]
}
proc ::vesk::fields::note_done {entry} {
    variable done
    if {![winfo exists $entry]} {return}
    set done [list $entry [$entry get]]
    # A text that was refused is not what the field holds.
    set frame [expr {[winfo class $entry] eq "Entry" ? [winfo parent $entry] : $entry}]
    if {[winfo class $frame] eq "Frame" || ![$frame instate invalid]} {note_text $entry}
}
proc ::vesk::fields::is_done {entry} {
    variable done
    return [expr {[winfo class $entry] ne "Text" && $done eq [list $entry [$entry get]]}]
}

# ---- numbers of preferences ----

# follow_preference --
#   Ties an entry to a numeric preference, both ways.
#   variable  the text of the entry;  kind  number or int
proc ::vesk::fields::follow_preference {entry variable key kind} {
    set show [list ::vesk::fields::show_preference $variable $key $kind]
    {*}$show
    trace add variable ::prefs_$key write $show
    bind $entry <Destroy> [list trace remove variable ::prefs_$key write $show]
    number_keys $entry $variable \
        [list ::vesk::fields::set_preference $variable $key $kind] [expr {$kind eq "int" ? 1 : ""}]
}
proc ::vesk::fields::show_preference {variable key kind args} {
    set value [set ::prefs_$key]
    if {$kind eq "number"} {set value [format %g $value]}
    set $variable $value
}
proc ::vesk::fields::set_preference {variable key kind number} {
    if {$kind eq "int"} {set number [expr {int($number)}]}
    set ::prefs_$key $number
    ::vesk::ops::echo set ::prefs_$key $number
    show_preference $variable $key $kind
}
