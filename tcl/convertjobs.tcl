# convertjobs.tcl --
#   Conversion in several processes: each reads the next pair of names from its standard input,
#   converts, and answers with a line. One that crashes or takes too long costs the file it was at,
#   and another takes its place. Lines are base64, so that names may hold anything; an answer begins
#   with a character that no script prints by chance.

namespace eval ::vesk::convert {
    variable mark "\u0001"
    variable files {}              ;# in and out of each
    variable next 0                ;# the place of the first one that nobody has begun
    variable running 0             ;# processes
    variable at                    ;# by a process's channel: the place that it is at
    array set at {}
    variable timers
    array set timers {}
    variable late                  ;# channels whose process was ended
    array set late {}
}

proc ::vesk::convert::packed {words} {
    return [binary encode base64 [encoding convertto utf-8 $words]]
}
proc ::vesk::convert::unpacked {line} {
    return [encoding convertfrom utf-8 [binary decode base64 $line]]
}

# ---- a process that converts ----

proc ::vesk::convert::work {} {
    variable mark
    while {[gets stdin line] >= 0} {
        set answer [packed [one {*}[unpacked $line]]]
        puts "$mark$answer"
        flush stdout
    }
}

# ---- the one that hands out the files ----

proc ::vesk::convert::run_jobs {pairs} {
    variable options
    variable running
    variable files {}
    foreach {in out} $pairs {
        lappend files [list $in $out]
    }
    set jobs [expr {$options(-jobs) eq "" ? 1 : $options(-jobs)}]
    if {$jobs == 0} {
        set jobs [exec nproc]
    }
    for {set i 0} {$i < min($jobs, [llength $files])} {incr i} {
        begin
    }
    while {$running > 0} {
        vwait ::vesk::convert::running
    }
}

# begin --
#   Starts a process and gives it its first file.
proc ::vesk::convert::begin {} {
    variable options
    variable running
    set words [list [info nameofexecutable] -convert -worker]
    foreach script $options(-do) {
        lappend words -do $script
    }
    if {$options(-limit-memory) ne ""} {
        set words [list sh -c "ulimit -v [expr {1024 * $options(-limit-memory)}]; exec \"\$@\"" sh \
            {*}$words]
    }
    set channel [open |[concat $words [list 2>@stderr]] r+]
    fconfigure $channel -blocking 0 -buffering line
    incr running
    fileevent $channel readable [list ::vesk::convert::answer $channel]
    hand_out $channel
}

# hand_out --
#   Gives a process its next file; ends it when there is none.
proc ::vesk::convert::hand_out {channel} {
    variable options
    variable files
    variable next
    variable at
    variable timers
    if {$next == [llength $files]} {
        finish $channel
        return
    }
    set at($channel) $next
    puts $channel [packed [lindex $files $next]]
    incr next
    if {$options(-limit-time) ne ""} {
        set timers($channel) [after [expr {1000 * $options(-limit-time)}] \
            [list ::vesk::convert::too_late $channel]]
    }
}

proc ::vesk::convert::too_late {channel} {
    variable late
    set late($channel) 1
    catch {exec kill -9 [lindex [pid $channel] 0]}
}

# answer --
#   A line of a process, or its end.
proc ::vesk::convert::answer {channel} {
    variable at
    variable mark
    if {[gets $channel line] >= 0} {
        if {[string index $line 0] ne $mark} {
            puts $line
            return
        }
        stop_timer $channel
        done $at($channel) {*}[unpacked [string range $line 1 end]]
        hand_out $channel
    } elseif {[eof $channel]} {
        ended $channel
    }
}

# ended --
#   A process went away over a file.
proc ::vesk::convert::ended {channel} {
    variable options
    variable at
    variable late
    variable files
    variable next
    set place $at($channel)
    set in [lindex $files $place 0]
    set reason [finish $channel]
    if {[info exists late($channel)]} {
        set reason "it took more than $options(-limit-time) seconds"
        unset late($channel)
    }
    puts stderr "convert - $in: $reason"
    done $place 1 [failure $in $reason]
    if {$next < [llength $files]} {
        begin
    }
}

proc ::vesk::convert::stop_timer {channel} {
    variable timers
    if {[info exists timers($channel)]} {
        after cancel $timers($channel)
        unset timers($channel)
    }
}

# finish --
#   Ends a process; returns how it went.
proc ::vesk::convert::finish {channel} {
    variable options
    variable running
    stop_timer $channel
    fconfigure $channel -blocking 1
    set reason "the program ended"
    if {[catch {close $channel} message result]} {
        set code [dict get $result -errorcode]
        if {[lindex $code 0] eq "CHILDKILLED"} {
            set reason "the program crashed ([lindex $code 2])"
            if {$options(-limit-memory) ne ""} {
                append reason ", perhaps for want of memory"
            }
        }
    }
    incr running -1
    return $reason
}
