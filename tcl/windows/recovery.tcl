# recovery.tcl --
#   Recovery of unsaved work: a copy every two minutes, and the offer to open a copy that an earlier
#   session left. The copies lie in the state folder, never over a file of the user's; the
#   executable writes them in a thread of its own.

namespace eval ::vesk::recovery {
    variable interval 120000    ;# milliseconds between copies
    variable retry 5000         ;# while the last one is still being written
}

# start --
#   Begins to write copies; called once after the start-up.
proc ::vesk::recovery::start {} {
    variable interval
    if {![::vesk::menus::known autosave]} {return}
    after $interval ::vesk::recovery::tick
    after idle {after 200 ::vesk::recovery::offer}
}

# tick --
#   Writes a copy of unsaved work and plans the next one.
proc ::vesk::recovery::tick {} {
    variable interval
    variable retry
    set wait $interval
    if {$::unsaved_changes && [vesk autosave ""] ni {0 1}} {set wait $retry}
    after $wait ::vesk::recovery::tick
}

# described --
#   A copy in words: the name of its model and the time of writing.
proc ::vesk::recovery::described {copy} {
    lassign $copy file written original kind newer
    set name [expr {$original eq "" ? "a model without a name" : [file tail $original]}]
    set time [clock format $written -format "%e %B %Y, %H:%M"]
    set text "$name, [string trim $time]"
    if {$newer eq "1"} {append text "\n(the file itself was changed later)"}
    return $text
}

# offer --
#   Asks about the newest copy that an earlier session left; the older ones follow, one by one, when
#   it was opened or discarded.
proc ::vesk::recovery::offer {} {
    # On a slow machine events are handled during the start-up; its own copy does not exist yet.
    if {![info exists ::start_is_over]} {after 100 ::vesk::recovery::offer; return}
    if {[grab current .] ne ""} {after 1000 ::vesk::recovery::offer; return}
    set copies [vesk recovery_list]
    if {$copies eq ""} return
    set copy [lindex $copies 0]
    set file [lindex $copy 0]
    set more [expr {[llength $copies] - 1}]
    set text "VESK did not end as it should, but a copy of the work was kept:\n[described $copy]."
    if {$more > 0} {append text "\n$more older [expr {$more == 1 ? "copy is" : "copies are"}] kept too."}
    switch -- [::vesk::dialogs::question "Recover unsaved work?" $text \
            {discard "Discard" later "Keep for later" open "Open the copy"} open later $file] {
        open {open $file}
        discard {
            vesk recovery_drop $file
            offer
        }
    }
}

# open --
#   Opens a copy as unsaved work without a name of its own; Save asks for one. The copy goes only
#   when this session's own is whole.
proc ::vesk::recovery::open {file} {
    if {![::vesk::files::confirmed]} return
    ::vesk::files::empty
    if {![::vesk::files::load $file]} return
    vesk clear_selection
    set ::vesk::files::saved_count -1
    ::vesk::files::note_changes
    display_message "recovered - save it under a name"
    if {[vesk autosave ""] eq "1"} {drop_when_kept $file}
}

proc ::vesk::recovery::drop_when_kept {file} {
    switch -- [vesk autosave_result] {
        "" {after 200 [list ::vesk::recovery::drop_when_kept $file]}
        1 {vesk recovery_drop $file}
        0 {display_message "no copy of this work could be written: the opened one stays"}
    }
}
