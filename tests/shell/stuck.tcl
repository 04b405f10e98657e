# stuck.tcl --
#   What never ends is ended by Escape: a command of a plug-in, a script. Another process presses the
#   keys, as this one hears nothing.

source [file join [file dirname [info script]] support.tcl]

# press_escape --
#   Presses Escape, again and again, until `stop_pressing`. A person holds a key longer than xdotool.
proc press_escape {} {
    write [work pressing] ""
    exec sh -c {while [ -e "$0" ]; do xdotool keydown Escape; sleep 0.12; xdotool keyup Escape
        sleep 0.15; done} [work pressing] &
}
proc stop_pressing {} {file delete [work pressing]}

# close_box --
#   Presses Return until the box is gone: the last Escapes may still move the focus.
proc close_box {} {
    if {![winfo exists .__tk__messagebox]} {return}
    focus -force .__tk__messagebox.ok
    key Return
    after 100 close_box
}

run {
    point_at .
    vesk create box 0 0 0 0 1 1 1
    set object [top_objects]
    set before [info_of $object centre]

    vesk plugin_load [file join [file dirname [info nameofexecutable]] .. tests plugin_looping.p]
    set told ""
    when {[shown .__tk__messagebox]} {
        stop_pressing
        settle
        set told [.__tk__messagebox.msg cget -text]
        shot stuck
        close_box
    }
    set offered ""
    when {[front .question]} {
        set offered [.question.in.text cget -text]
        key Escape
    }
    press_escape
    vesk loop_forever
    check "a command of a plug-in is stopped" {[string match "*loop_forever was stopped*" $told]}
    check "the plug-in is named" {[string match "*plugin_looping.p*" $offered]}
    check "nothing is in the way" {![winfo exists .__tk__messagebox] && ![winfo exists .question]}
    vesk step_back
    check "what it did can be taken back" {[info_of $object centre] eq $before}
    vesk create box 0 2 0 0 3 1 1
    check "the program goes on" {[llength [top_objects]] == 2}

    set ::rounds 0
    set ::ended ""
    after 0 {while 1 {incr ::rounds; vesk get_world}}
    press_escape
    trace add variable ::vesk::status::message write {apply {args {
        if {[string match "*stopped by the user*" $::vesk::status::message]} {set ::ended yes}
    }}}
    check "a script that never ends is stopped" {$::ended eq "yes"}
    stop_pressing
    puts "rounds $::rounds, $::test::errors, [status]"
    point_at .
    vesk create box 0 4 0 0 5 1 1
    check "the program still goes on" {[llength [top_objects]] == 3}
    set ::test::errors {}
}
