# status.tcl --
#   The status line: message or hint, coordinates, size, counts, next undo, badges, progress.
#   In a narrow window the size is left out first, then the name of the undo step.

namespace eval ::vesk::status {
    variable path ""
    variable message ""         ;# the text at the left
    variable history {}         ;# older messages, newest first
    variable progress 0
    variable busy_since 0       ;# milliseconds; 0 while nothing runs
    variable idle_timer ""
    variable behind ""          ;# the message that the help of a menu entry covers
    variable previews 0         ;# the help of a menu entry is shown
}

proc ::vesk::status::build {line} {
    variable path $line
    ttk::frame $line -padding [::vesk::theme::pad 12 4 8 4] -height [::vesk::theme::px 32]
    pack propagate $line 0
    ttk::label $line.message -textvariable ::vesk::status::message -anchor w
    build_badges $line
    build_undo $line
    build_counts $line
    build_triple $line.size {w dim h dim d dim}
    build_triple $line.coors {x axis y axis z axis}
    build_progress $line.progress
    foreach part {console locked hidden} {pack $line.$part -side right -padx [::vesk::theme::pad 8 0]}
    foreach part {undo counts size coors} {pack $line.$part $line.line$part -side right}
    pack $line.message -side left -fill x -expand 1
    trace add variable ::coors write ::vesk::status::show_coors
    trace add variable ::size write ::vesk::status::show_size
    bind $line <Configure> ::vesk::status::fit
    ::vesk::tooltips::attach $line.message "Messages" "" ::vesk::status::older
    ::vesk::ops::listen any ::vesk::status::refresh
    ::vesk::ops::listen selection ::vesk::status::forget_box
    show_coors
    show_size
    return $line
}

# build_triple --
#   Three letters with numbers, or one text when the variable holds something else.
#   letters  letter and style of it: axis (in the axis colour) or dim
proc ::vesk::status::build_triple {path letters} {
    ttk::frame $path
    ::vesk::parts::hairline [winfo parent $path].line[winfo name $path]
    foreach {letter kind} $letters {
        set style [expr {$kind eq "axis" ? "${letter}Axis.TLabel" : "Dim.TLabel"}]
        ttk::label $path.l$letter -text [string toupper $letter] -style $style
        ttk::label $path.$letter -style Status.TLabel -anchor e -width 6
    }
    ttk::label $path.text -style Status.TLabel
    pack_triple $path [dict keys $letters]
}
proc ::vesk::status::pack_triple {path letters} {
    pack forget $path.text
    foreach letter $letters {
        pack $path.l$letter $path.$letter -side left
        pack configure $path.$letter -padx [::vesk::theme::pad 2 10]
    }
}

proc ::vesk::status::build_counts {line} {
    ::vesk::parts::hairline $line.linecounts
    set path $line.counts
    ttk::frame $path
    foreach {name label} {obj Obj surf Surf vert Vert} {
        ttk::label $path.l$name -text $label -style Dim.TLabel
        ttk::label $path.$name -style Status.TLabel
        pack $path.l$name $path.$name -side left
        pack configure $path.$name -padx [::vesk::theme::pad 4 8]
    }
}

proc ::vesk::status::build_undo {line} {
    ::vesk::parts::hairline $line.lineundo
    ttk::button $line.undo -style Icon.Toolbutton -compound left -takefocus 0 \
        -image [::vesk::icons::or_disabled undo dim] -command {::vesk::ops::run step_back}
    ::vesk::tooltips::attach $line.undo Undo Ctrl+Z "Takes the last change back."
}

# build_badges --
#   Small buttons at the right; all but that of the console are shown only when they are needed.
proc ::vesk::status::build_badges {line} {
    foreach {name icon variant command label key help} {
        hidden eye-off dim {::vesk::ops::run unhide} "Hidden objects" "" "Click to show all."
        locked lock dim {::vesk::ops::run unlock} "Locked objects" "" "Click to unlock all."
        symmetry u-fliph dim ::vesk::reach::toggle_symmetry "Symmetry" Ctrl+Shift+Y
            "What is done on one side is done on the other. Click to switch it off."
        socket socket normal {::vesk::preferences::open Advanced} "Commands from a socket" ""
            "Other programs of this computer may send commands."
        console console dim ::vesk::console::toggle Console F12 "Commands by name."
    } {
        ttk::button $line.$name -style Icon.Toolbutton -takefocus 0 -command $command \
            -image [::vesk::icons::get $icon $variant] \
            -compound [expr {$name eq "console" ? "image" : "left"}]
        ::vesk::tooltips::attach $line.$name $label $key $help
    }
}

# show_badge --
#   Shows a badge with a text, or takes it away.
proc ::vesk::status::show_badge {name on text} {
    variable path
    if {!$on} {
        pack forget $path.$name
    } else {
        $path.$name configure -text $text
        if {[winfo manager $path.$name] eq ""} {
            pack $path.$name -side right -padx [::vesk::theme::pad 8 0] -after $path.console
        }
    }
    fit_later
}

proc ::vesk::status::build_progress {path} {
    ttk::frame $path
    ttk::progressbar $path.bar -maximum 100 -length [::vesk::theme::px 150] \
        -variable ::vesk::status::progress
    ttk::button $path.cancel -style Icon.Toolbutton -image [::vesk::icons::get close dim] \
        -compound left -text "Cancel  Esc" -command {vesk cancel}
    pack $path.bar $path.cancel -side left -padx [::vesk::theme::pad 0 8]
}

# ---- messages ----

# show --
#   Shows a message and keeps it for the list of older ones.
proc ::vesk::status::show {text} {
    variable message
    variable history
    variable idle_timer
    variable previews 0
    set text [one_of $text]
    set message [string map {\n " "} $text]
    # What is done in the editor of texture coordinates is told there, too.
    if {[winfo exists .uv] && [string match .uv* [focus]]} {::vesk::uvedit::message $message}
    if {$text ne ""} {
        set history [lrange [linsert $history 0 [clock format [clock seconds] -format %H:%M:%S]\ $text] 0 19]
        ::vesk::console::say $text note
    }
    after cancel $idle_timer
    set idle_timer [after 8000 ::vesk::status::hint]
}

# one_of --
#   A message with the singular where it counts one thing; the texts of the executable are the same
#   for any number.
proc ::vesk::status::one_of {text} {
    regsub -all {(^|[^\d.,])1 (vertic)es\M} $text {\11 vertex} text
    regsub -all {(^|[^\d.,])1 (cop)ies\M} $text {\11 copy} text
    regsub -all {(^|[^\d.,])1 (object|surface|edge|ring|loop|line|point|polygon|problem|material|texture|file|piece|light|hole|group|island|cluster|node)s\M} \
        $text {\11 \2} text
    return $text
}

# preview --
#   Shows the help of a menu entry in place of the message; "" brings the message back.
proc ::vesk::status::preview {text} {
    variable message
    variable behind
    variable previews
    if {!$previews} {set behind $message}
    if {$previews || $text ne ""} {set message [expr {$text eq "" ? $behind : $text}]}
    set previews [expr {$text ne ""}]
}

# older --
#   The last messages, for the tooltip.
proc ::vesk::status::older {} {
    variable history
    if {[llength $history] == 0} {return "No messages yet."}
    return [join [lrange $history 0 9] \n]
}

# hint --
#   Shows the hint of the current tool in place of an old message.
proc ::vesk::status::hint {} {
    variable message
    variable idle_timer
    variable path
    if {$path eq ""} {return}
    variable behind
    variable previews
    after cancel $idle_timer
    set [expr {$previews ? "behind" : "message"}] \
        [dict get [::vesk::tools::row $::vesk::tools::current] hint]
}

# ---- numbers ----

proc ::vesk::status::show_coors {args} {
    variable path
    show_triple $path.coors {x y z} $::coors {^X(\S+)\s+Y(\S+)\s+Z(\S+)\s*$}
}
proc ::vesk::status::show_size {args} {
    variable path
    show_triple $path.size {w h d} $::size {^W\s*(\S+)\s+H\s*(\S+)\s+D\s*(\S+)\s*$}
}

# show_triple --
#   Splits a text of the executable into its three numbers; other texts are shown as they are.
proc ::vesk::status::show_triple {path letters text pattern} {
    if {![winfo exists $path]} {return}
    set text [string trim $text]
    if {$text eq "" || [regexp $pattern $text -> a b c]} {
        if {$text eq ""} {lassign {\u2013 \u2013 \u2013} a b c}
        foreach letter $letters value [list $a $b $c] {$path.$letter configure -text $value}
        if {[winfo manager $path.text] ne ""} {pack_triple $path $letters}
        return
    }
    $path.text configure -text $text
    if {[winfo manager $path.text] eq ""} {
        foreach letter $letters {pack forget $path.l$letter $path.$letter}
        pack $path.text -side left
    }
}

# refresh --
#   Shows the present counts and the name of the undo step.
proc ::vesk::status::refresh {} {
    variable path
    lassign [vesk get_counts] obj all_obj surf all_surf vert all_vert
    foreach {name some all} [list obj $obj $all_obj surf $surf $all_surf vert $vert $all_vert] {
        set text [::vesk::arith::grouped $some]/[::vesk::arith::grouped $all]
        if {[$path.counts.$name cget -text] ne $text} {
            $path.counts.$name configure -text $text
        }
    }
    show_undo
    fit_later
}

# forget_box --
#   After a change of the selection: where nothing is selected, the numbers of the last box go.
proc ::vesk::status::forget_box {} {
    variable path
    lassign [vesk get_counts] obj all_obj surf all_surf vert
    if {$obj + $surf + $vert > 0} {return}
    show_triple $path.coors {x y z} "" {}
    show_triple $path.size {w h d} "" {}
}

# show_badges --
#   Shows the numbers of hidden and locked objects, which the objects panel counts.
proc ::vesk::status::show_badges {hidden locked} {
    show_badge hidden [expr {$hidden > 0}] "$hidden hidden"
    show_badge locked [expr {$locked > 0}] "$locked locked"
}

proc ::vesk::status::show_undo {} {
    variable path
    set name [vesk undo_name]
    set possible [expr {$name ne ""}]
    set text [expr {$possible ? "Undo: $name" : "Nothing to undo"}]
    $path.undo configure -text $text
    $path.undo state [expr {$possible ? "!disabled" : "disabled"}]
}

# fit_later --
#   Fits once the changed texts have their sizes.
proc ::vesk::status::fit_later {} {
    after cancel ::vesk::status::fit
    after 20 ::vesk::status::fit
}

# fit --
#   Leaves out the parts that do not fit: the size first, then the undo name; beside a progress bar
#   the coordinates too.
proc ::vesk::status::fit {} {
    variable path
    if {![winfo exists $path] || [winfo width $path] < 50} {return}
    set room [expr {[winfo width $path] - [::vesk::theme::px 20]}]
    foreach part {console socket symmetry locked hidden} {
        if {[winfo manager $path.$part] ne ""} {
            incr room -[expr {[winfo reqwidth $path.$part] + [::vesk::theme::px 8]}]
        }
    }
    set wanted [::vesk::theme::px 170]
    set working [expr {[winfo manager $path.progress] ne ""}]
    if {$working} {set wanted [expr {[winfo reqwidth $path.progress] + [::vesk::theme::px 20]}]}
    # The parts that always stay are counted first; the undo button keeps at least its picture.
    incr room -[part_width counts]
    if {!$working} {incr room -[part_width coors]}
    $path.undo configure -compound left
    if {$room - [part_width undo] < $wanted} {$path.undo configure -compound image}
    incr room -[part_width undo]
    foreach part {coors size} {
        set fits [expr {$room - [part_width $part] >= $wanted}]
        if {$part eq "coors" && !$working} {set fits 1} elseif {$fits} {
            incr room -[part_width $part]
        }
        if {!$fits} {
            pack forget $path.$part $path.line$part
        } elseif {[winfo manager $path.$part] eq ""} {
            # From right to left: undo, counts, size, coordinates.
            set before [expr {$part eq "size" && [winfo manager $path.coors] ne ""
                ? "$path.coors" : [lindex [pack slaves $path] end]}]
            pack $path.$part $path.line$part -side right -before $before
        }
    }
}

proc ::vesk::status::part_width {part} {
    variable path
    return [expr {[winfo reqwidth $path.$part] + [winfo reqwidth $path.line$part]}]
}

# ---- progress ----

# set_progress --
#   Moves the bar; it appears when the work takes longer than 0.1 seconds and goes at 100 or 0.
proc ::vesk::status::set_progress {percent} {
    variable path
    variable progress
    variable busy_since
    set progress $percent
    if {$percent <= 0 || $percent >= 100} {
        set busy_since 0
        if {[winfo manager $path.progress] ne ""} {
            pack forget $path.progress
            pack $path.message -side left -fill x -expand 1
            fit
        }
        return
    }
    set now [clock milliseconds]
    if {$busy_since == 0} {set busy_since $now}
    if {$now - $busy_since >= 100 && [winfo manager $path.progress] eq ""} {
        pack forget $path.message
        pack $path.progress -side left
        fit
    }
}

proc display_message {text} {::vesk::status::show $text}
proc set_undo_string {text} {::vesk::ops::request}
proc set_progress_bar {percent} {::vesk::status::set_progress $percent}
