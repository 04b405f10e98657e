# console.tcl --
#   The console (F12): commands with history and completion; every action of the interface is
#   echoed as the line that repeats it.

namespace eval ::vesk::console {
    variable path ""
    variable lines {}           ;# lines from before the widget existed
    variable history {}
    variable place 0
    variable typed ""
    variable limit 2000         ;# lines kept
}

proc ::vesk::console::build {frame} {
    variable path $frame
    variable lines
    ttk::frame $frame -style Field.TFrame
    text $frame.text -height 6 -font VeskMono -wrap word -state disabled -takefocus 0 \
        -padx [::vesk::theme::px 10] -pady [::vesk::theme::px 6]
    ::vesk::theme::recolour $frame.text
    ::vesk::parts::scrollbar $frame.bar $frame.text Field.
    ttk::frame $frame.line -style Line.TFrame -height [::vesk::theme::px 1]
    ttk::frame $frame.input -style Field.TFrame
    ttk::label $frame.input.prompt -style Field.TLabel -text ">" -font VeskMono
    ::vesk::fields::bare_entry $frame.input.value ::vesk::console::typed -font VeskMono
    pack $frame.input.prompt -side left -padx [::vesk::theme::pad 10 8]
    pack $frame.input.value -side left -fill both -expand 1
    grid $frame.text $frame.bar -sticky nswe
    grid $frame.line - -sticky we
    grid $frame.input - -sticky we -pady [::vesk::theme::px 4]
    grid columnconfigure $frame 0 -weight 1
    grid rowconfigure $frame 0 -weight 1
    ::vesk::fields::on_keys $frame.input.value {
        Return ::vesk::console::enter
        Up {::vesk::console::recall 1}
        Down {::vesk::console::recall -1}
        Tab ::vesk::console::complete
        Escape ::vesk::view::focus_last
    }
    bind $frame.text <Button-3> {::vesk::savedtools::context %X %Y; break}
    bind $frame.text <Button-1> {focus %W}
    colours
    ::vesk::theme::follow ::vesk::console::colours
    foreach line $lines {append_line {*}$line}
    set lines {}
    return $frame
}

proc ::vesk::console::colours {} {
    variable path
    foreach {tag name} {prompt accent command text note dim result dim error error} {
        $path.text tag configure $tag -foreground [::vesk::theme::colour $name]
    }
    $path.text tag raise sel
    $path.input.prompt configure -foreground [::vesk::theme::colour accent]
}

# say --
#   Adds a line.
#   kind  command (with a prompt), result, note or error
proc ::vesk::console::say {text kind} {
    variable path
    variable lines
    if {$path eq "" || ![winfo exists $path]} {
        lappend lines [list $text $kind]
        return
    }
    append_line $text $kind
}

proc ::vesk::console::append_line {text kind} {
    variable path
    variable limit
    set w $path.text
    # While the console is hidden it has no size to tell.
    set at_end [expr {![winfo ismapped $w] || [lindex [$w yview] 1] > 0.98}]
    $w configure -state normal
    if {[$w index end-1c] ne "1.0"} {$w insert end \n}
    if {$kind eq "command"} {$w insert end "> " prompt}
    if {$kind in {result note}} {set text "  [string map {\n "\n  "} $text]"}
    $w insert end $text $kind
    set extra [expr {int([$w index end-1c]) - $limit}]
    if {$extra > 0} {$w delete 1.0 [expr {$extra + 1}].0}
    $w configure -state disabled
    if {$at_end} {$w see end}
}

# last --
#   The last lines of the console.
proc ::vesk::console::last {count} {
    variable path
    return [split [string trimright [$path.text get "end - $count lines" end]] \n]
}

proc ::vesk::console::empty {} {
    variable path
    $path.text configure -state normal
    $path.text delete 1.0 end
    $path.text configure -state disabled
}

# show, toggle --
#   Shows or hides the console by ::vesk::console_shown, and gives it the focus.
proc ::vesk::console::show {} {
    ::vesk::main::place_console
    if {$::vesk::console_shown} {
        after idle {$::vesk::console::path.text see end}
        focus $::vesk::console::path.input.value
    } else {
        ::vesk::view::focus_last
    }
}
proc ::vesk::console::toggle {} {
    set ::vesk::console_shown [expr {!$::vesk::console_shown}]
    show
}

# enter --
#   Runs the typed line.
proc ::vesk::console::enter {} {
    variable typed
    variable history
    variable place
    set line [string trim $typed]
    set typed ""
    if {$line eq ""} {return}
    set history [lrange [linsert [lsearch -all -inline -not -exact $history $line] 0 $line] 0 199]
    set place 0
    say $line command
    # A bare sub-command may be typed without "vesk".
    if {![catch {lindex $line 0} word] && [info commands ::$word] eq ""
            && [llength [vesk command_info $word]] > 0} {
        set line "vesk $line"
    }
    if {[catch {uplevel #0 $line} result]} {
        say [expr {$::errorInfo eq "" ? $result : $::errorInfo}] error
    } elseif {$result ne ""} {
        say $result [expr {$result eq "command not found"
            || [string match "incorrect number of args*" $result] ? "error" : "result"}]
        if {$result eq "command not found"} {did_you_mean [lindex $line 1]}
    }
    ::vesk::ops::request
}

# did_you_mean --
#   Names commands like one that is not there: with the same words, or a letter or two apart.
proc ::vesk::console::did_you_mean {name} {
    set near {}
    foreach known [command_names] {
        set distance [letters_apart [string tolower $name] $known]
        if {[lsort [split [string tolower $name] _]] eq [lsort [split $known _]]} {set distance 0}
        if {$distance <= 2 && $distance < [string length $name] / 2} {
            lappend near [list $distance $known]
        }
    }
    set names [lmap pair [lrange [lsort -index 0 -integer $near] 0 3] {lindex $pair 1}]
    if {[llength $names] > 0} {say "Did you mean [join $names {, }]?" note}
}

# letters_apart --
#   How many letters must be changed, added or taken away to make one word of another.
proc ::vesk::console::letters_apart {a b} {
    if {abs([string length $a] - [string length $b]) > 2} {return 3}
    set row {}
    for {set i 0} {$i <= [string length $b]} {incr i} {lappend row $i}
    foreach x [split $a ""] {
        set above [lindex $row 0]
        set next [list [expr {$above + 1}]]
        foreach y [split $b ""] old [lrange $row 1 end] {
            set cost [expr {$x ne $y}]
            lappend next [expr {min([lindex $next end] + 1, $old + 1, $above + $cost)}]
            set above $old
        }
        set row $next
    }
    return [lindex $row end]
}

proc ::vesk::console::recall {step} {
    variable history
    variable place
    variable typed
    variable path
    set place [expr {min([llength $history], max(0, $place + $step))}]
    set typed [expr {$place == 0 ? "" : [lindex $history $place-1]}]
    $path.input.value icursor end
}

# complete --
#   Tab completes a command or preference, as far as all candidates agree, and lists them.
proc ::vesk::console::complete {} {
    variable typed
    variable path
    set word [lindex [split $typed " "] end]
    set names [concat [command_names] [lsort [info globals prefs_*]]]
    set fits [lsearch -all -inline -glob $names [string map {* \\* ? \\? \[ \\\[ \\ \\\\} $word]*]
    if {[llength $fits] == 0} {return}
    set common [common_start $fits]
    if {[llength $fits] == 1} {append common " "}
    set typed [string range $typed 0 end-[string length $word]]$common
    $path.input.value icursor end
    if {[llength $fits] > 1} {
        say [join [lrange $fits 0 39] "  "] note
    } else {
        set info [vesk command_info [string trim $common]]
        if {[llength $info] >= 4} {say "[string trim $common] [lindex $info 2]  [lindex $info 3]" note}
    }
}

proc ::vesk::console::common_start {words} {
    set first [lindex $words 0]
    for {set length [string length $first]} {$length > 0} {incr length -1} {
        set start [string range $first 0 $length-1]
        if {[llength [lsearch -all $words [string map {* \\* ? \\? \[ \\\[} $start]*]]
                == [llength $words]} {break}
    }
    return [string range $first 0 $length-1]
}

# command_names --
#   The names of all commands.
proc ::vesk::console::command_names {} {
    set names {}
    foreach line [split [vesk list] \n] {
        if {[regexp {^\S+} $line name]} {lappend names $name}
    }
    return [lsort -unique $names]
}
