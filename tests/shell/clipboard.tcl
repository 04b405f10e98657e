# clipboard.tcl --
#   The clipboard between this program and others: wish stands for them.

source [file join [file dirname [info script]] support.tcl]

# other --
#   Runs a script in a program of its own and waits for its end, events going on here. Returns what
#   it printed.
proc other {script} {
    set ::printed ""
    set pipe [open "|wish [write [work other.tcl] "wm withdraw .\n$script"]" r]
    fconfigure $pipe -blocking 0 -translation binary
    fileevent $pipe readable [list more $pipe]
    vwait ::ended
    return $::printed
}
proc more {pipe} {
    append ::printed [read $pipe]
    if {[eof $pipe]} {
        close $pipe
        set ::ended 1
    }
}

# tell --
#   Has a program that stays evaluate a script, and waits until it did.
proc tell {pipe script} {
    puts $pipe "$script; update; puts done; flush stdout"
    flush $pipe
    fileevent $pipe readable {set ::ended 1}
    vwait ::ended
    gets $pipe
    fileevent $pipe readable {}
    settle
}

run {
    vesk clear_all
    vesk create box 0 0 0 0 1 1 1
    vesk clipboard_copy
    set text [other {puts -nonewline [clipboard get -type UTF8_STRING]; exit}]
    check "another program gets the text of a model file" {
        [string match "VESKb*name \"cube\"*numvert 8*" $text]
    }

    # Longer than one piece of a transfer.
    vesk clear_all
    vesk create sphere 0 0 0 0 1 1 1
    vesk clipboard_copy
    set text [other {puts -nonewline [clipboard get]; exit}]
    check "a long text comes whole" {
        [string length $text] > 8000 && [string match "*kids 0\n*" [string range $text end-40 end]]
    }

    vesk clear_all
    set file [write [work model.txt] \
        "VESKb\nOBJECT poly\nname \"\[exit 3\]\"\nnumvert 1\n0 0 0\nkids 0\n"]
    set pipe [open "|wish" r+]
    tell $pipe "wm withdraw .; set f \[open {$file}\]; clipboard clear; clipboard append \[read \$f\]"
    vesk clipboard_paste
    check "a model text of another program is pasted, nothing in it evaluated" {
        [llength [top_objects]] == 1 && [vesk object_get_name [top_objects]] eq {[exit 3]}
    }
    tell $pipe "clipboard clear; clipboard append {exit 3}"
    vesk clipboard_paste
    check "other text leaves the own copy" {[llength [top_objects]] == 2}
    puts $pipe exit
    catch {close $pipe}

    set ::env(HOME) $::env(VESK_TEST_WORK)
    vesk copy_3d_win_to_clipboard
    set files [glob -nocomplain -directory $::env(VESK_TEST_WORK) vesk-3d-*.png]
    check "a picture of the 3D view is written" {[llength $files] == 1}
    set written [contents [lindex $files 0] rb]
    set taken [other {
        fconfigure stdout -translation binary
        puts -nonewline [selection get -selection CLIPBOARD -type image/png]
        exit
    }]
    check "it is a picture, and on the clipboard byte for byte" {
        [string range $written 1 3] eq "PNG" && $taken eq $written
    }

    set ::env(SHELL) /bin/sh
    # It waits for what is written only once the command is back.
    vesk execute "while \[ ! -e [work go] \]; do sleep 0.05; done; exit 7"
    write [work go] ""
    check "a program does not stop the interface: its end is told" {[string match "*exit status 7*" [status]]}
}
