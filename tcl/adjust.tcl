# adjust.tcl --
#   Edit > Adjust the last: the options of the last operation once more, with its result taken back
#   and made anew while the numbers change.

namespace eval ::vesk::adjust {}

# open --
#   Works as long as nothing was changed since.
proc ::vesk::adjust::open {} {
    set last $::vesk::dialogs::last
    if {$last eq "" || [::vesk::dialogs::history_place] != [dict get $last now]} {
        display_message "there is no last operation whose options could be changed"
        return
    }
    ::vesk::dialogs::ask [dict get $last title] [dict get $last target] [dict get $last help] $last
}
