# importreport.tcl --
#   The report of the last import: counts, missing files and complaints with line numbers. Shown
#   after an import with complaints, and by File > Import report.

namespace eval ::vesk::importreport {
    variable most_shown 500     ;# complaints; a damaged file has one a line
}

# lines --
#   The report as text. Takes what "vesk import_report" returns.
proc ::vesk::importreport::lines {report} {
    variable most_shown
    if {[dict get $report file] eq ""} {return "Nothing was imported yet.\n"}
    set text "[dict get $report file]\n[dict get $report format]\n\n"
    foreach key {objects vertices surfaces lights materials} {
        append text [format "%10d  %s\n" [dict get $report $key] $key]
    }
    foreach texture [dict get $report textures] {
        lassign $texture name found
        append text "\ntexture $name: [expr {$found eq "" ? "not found" : $found}]"
    }
    foreach image [dict get $report images] {append text "\nwritten: $image"}
    foreach pair [dict get $report merged_materials] {append text "\nsame material: $pair"}
    set warnings [dict get $report warnings]
    if {$warnings eq ""} {return "$text\n\nNo complaints.\n"}
    append text "\n"
    foreach warning [lrange $warnings 0 [expr {$most_shown - 1}]] {
        lassign $warning line what
        append text "\n[expr {$line > 0 ? "line $line: " : ""}]$what"
    }
    set more [expr {[dict get $report warnings_in_all] - min([llength $warnings], $most_shown)}]
    if {$more > 0} {append text "\n... and $more more"}
    return "$text\n"
}

# show --
#   Opens the window.
proc ::vesk::importreport::show {} {
    ::vesk::dialogs::show_text "Import report" [lines [vesk import_report]]
}

# ask_images --
#   Whether pictures within a model's file may be written; returns 1 or 0.
proc ::vesk::importreport::ask_images {count folder} {
    set what [expr {$count == 1 ? "a picture" : "$count pictures"}]
    set answer [::vesk::dialogs::question "Write the pictures to files?" \
        "The model has $what inside. Textures are read from files: [expr {$count == 1 ?
            "it goes" : "they go"}] to\n$folder" {skip "Leave out" write "Write"} write skip]
    return [expr {$answer eq "write"}]
}

proc show_import_report {} {after idle ::vesk::importreport::show}
proc ask_import_images {count folder} {::vesk::importreport::ask_images $count $folder}
