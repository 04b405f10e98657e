# at_rest.tcl --
#   For scripts that measure the views: waiting, and processor time.

proc rest {msecs} {
    after $msecs {set ::rested 1}
    vwait ::rested
}

# processor_time --
#   Milliseconds so far of the whole process, or of one of its threads ("/task/NUMBER").
proc processor_time {{thread ""}} {
    set file [open /proc/[pid]$thread/stat]
    set words [split [regsub {.*\)} [read $file] {}]]
    close $file
    return [expr {10 * ([lindex $words 12] + [lindex $words 13])}]
}

# at_rest --
#   Lets events in until the views are drawn and the workers have done what they were asked for.
proc at_rest {} {
    set quiet 0
    while {$quiet < 3} {
        set before [processor_time]
        rest 400
        set quiet [expr {[processor_time] - $before <= 20 ? $quiet + 1 : 0}]
    }
}
