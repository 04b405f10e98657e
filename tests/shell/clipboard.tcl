# clipboard.tcl --
#   The clipboard between this program and others: wish stands for them.

source [file join [file dirname [info script]] support.tcl]

# other --
#   Runs a script in a program of its own and waits for its end, events going on here. Returns what
#   it printed.
proc ::test::other {script} {
    set file [file join $::env(VESK_TEST_WORK) other.tcl]
    set stream [open $file w]
    puts $stream "wm withdraw .\n$script"
    close $stream
    set ::test::printed ""
    set pipe [open "|wish $file" r]
    fconfigure $pipe -blocking 0 -translation binary
    fileevent $pipe readable [list ::test::more $pipe]
    vwait ::test::ended
    return $::test::printed
}
proc ::test::more {pipe} {
    append ::test::printed [read $pipe]
    if {[eof $pipe]} {
        close $pipe
        set ::test::ended 1
    }
}

::test::run {
    vesk clear_all
    vesk create box 0 0 0 0 1 1 1
    vesk clipboard_copy
    set text [::test::other {puts -nonewline [clipboard get -type UTF8_STRING]; exit}]
    ::test::check "another program gets the text of a model file" {
        [string match "VESKb*name \"cube\"*numvert 8*" $text]
    }

    # Longer than one piece of a transfer.
    vesk clear_all
    vesk create sphere 0 0 0 0 1 1 1
    vesk clipboard_copy
    set text [::test::other {puts -nonewline [clipboard get]; exit}]
    ::test::check "a long text comes whole" {
        [string length $text] > 8000 && [string match "*kids 0\n*" [string range $text end-40 end]]
    }

    vesk clear_all
    set file [file join $::env(VESK_TEST_WORK) model.txt]
    set stream [open $file w]
    puts $stream "VESKb\nOBJECT poly\nname \"\[exit 3\]\"\nnumvert 1\n0 0 0\nkids 0"
    close $stream
    set pipe [open "|wish" w]
    puts $pipe "wm withdraw .; set f \[open {$file}\]; clipboard clear; clipboard append \[read \$f\]"
    flush $pipe
    ::test::pause 1500
    vesk clipboard_paste
    set objects [vesk object_get_children [vesk get_world]]
    ::test::check "a model text of another program is pasted, nothing in it evaluated" {
        [llength $objects] == 1 && [vesk object_get_name [lindex $objects 0]] eq {[exit 3]}
    }
    puts $pipe "clipboard clear; clipboard append {exit 3}"
    flush $pipe
    ::test::pause 800
    vesk clipboard_paste
    ::test::check "other text leaves the own copy" {
        [llength [vesk object_get_children [vesk get_world]]] == 2
    }
    puts $pipe exit
    catch {close $pipe}

    set ::env(HOME) $::env(VESK_TEST_WORK)
    vesk copy_3d_win_to_clipboard
    set files [glob -nocomplain -directory $::env(VESK_TEST_WORK) vesk-3d-*.png]
    ::test::check "a picture of the 3D view is written" {[llength $files] == 1}
    set stream [open [lindex $files 0] rb]
    set written [read $stream]
    close $stream
    set taken [::test::other {
        fconfigure stdout -translation binary
        puts -nonewline [selection get -selection CLIPBOARD -type image/png]
        exit
    }]
    ::test::check "it is a picture, and on the clipboard byte for byte" {
        [string range $written 1 3] eq "PNG" && $taken eq $written
    }

    set ::env(SHELL) /bin/sh
    set started [clock milliseconds]
    vesk execute "sleep 0.5; exit 7"
    ::test::check "a program does not stop the interface" {[clock milliseconds] - $started < 400}
    ::test::pause 1200
    ::test::check "its end is told" {[string match "*exit status 7*" $::vesk::status::message]}
}
