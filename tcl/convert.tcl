# convert.tcl --
#   vesk -convert [options] IN OUT
#   vesk -convert [options] -to SUFFIX FILE ...
#   Reads and writes models by their suffixes; needs no display. Options:
#     -from SUFFIX   format of the input when IN is "-", standard input
#     -to SUFFIX     format of the output when OUT is "-", standard output; without "-" every FILE
#                    is converted to a file of that suffix beside it
#     -into FOLDER   ... in that folder
#     -do SCRIPT     evaluated with the model loaded; may stand several times
#     -report FILE   a report in JSON: contents, textures, warnings, losses
#   Exit status: 0 done, 1 failed, 2 done with losses or warnings.

namespace eval ::vesk::convert {
    variable usage "usage: vesk -convert ?-from S? ?-to S? ?-do SCRIPT? ?-report FILE? IN OUT
       vesk -convert -to SUFFIX ?-into FOLDER? ?-do SCRIPT? ?-report FILE? FILE ..."
    variable options
    array set options {-from "" -to "" -into "" -report "" -do {}}
    variable reports {}
    variable folder ""
}

# parse --
#   Reads the options, which may stand anywhere before "--"; returns the remaining words.
proc ::vesk::convert::parse {words} {
    variable options
    variable usage
    set files {}
    while {[llength $words] > 0} {
        set words [lassign $words word]
        if {$word eq "--"} {
            lappend files {*}$words
            break
        }
        if {![string match -?* $word]} {
            lappend files $word
            continue
        }
        if {![info exists options($word)] || [llength $words] == 0} {
            error $usage
        }
        set words [lassign $words value]
        if {$word eq "-do"} {
            lappend options(-do) $value
        } else {
            set options($word) $value
        }
    }
    foreach option {-from -to} {
        if {$options($option) ne "" && ![string match .* $options($option)]} {
            set options($option) .$options($option)
        }
    }
    return $files
}

# pairs --
#   Returns the files to read and to write, in turns.
proc ::vesk::convert::pairs {words} {
    variable options
    variable usage
    if {"-" in $words || $options(-to) eq ""} {
        lassign $words in out
        if {[llength $words] != 2 || ($in eq "-" && $options(-from) eq "")
            || ($out eq "-" && $options(-to) eq "")} {
            error $usage
        }
        return $words
    }
    if {[llength $words] == 0} {
        error $usage
    }
    set pairs {}
    foreach file $words {
        set to [expr {$options(-into) ne "" ? $options(-into) : [file dirname $file]}]
        set out [file join $to [file rootname [file tail $file]]$options(-to)]
        if {[info exists taken($out)]} {
            error "convert - $taken($out) and $file would both become $out"
        }
        set taken($out) $file
        lappend pairs $file $out
    }
    return $pairs
}

# temporary --
#   A name in a temporary folder, which is deleted at the end.
proc ::vesk::convert::temporary {name} {
    variable folder
    if {$folder eq ""} {
        close [file tempfile folder]
        file delete $folder
        file mkdir $folder
    }
    return [file join $folder $name]
}

proc ::vesk::convert::copy_channel {from to} {
    foreach channel [list $from $to] {
        fconfigure $channel -translation binary
    }
    fcopy $from $to
    flush $to
}

# convert --
#   Converts one file; returns the exit status.
proc ::vesk::convert::convert {in out} {
    variable options
    vesk clear_all
    set read $in
    if {$in eq "-"} {
        set read [temporary input$options(-from)]
        set file [open $read wb]
        copy_channel stdin $file
        close $file
    }
    set write $out
    if {$out eq "-"} {
        file mkdir [temporary out]
        set write [temporary out/output$options(-to)]
    } elseif {[file exists $out] && [file normalize $in] eq [file normalize $out]} {
        puts stderr "convert - $in would be replaced by itself"
        return 1
    }
    vesk keep_material_names 1
    vesk set_images_folder [expr {$out eq "-" ? [pwd] : [file dirname [file normalize $out]]}]
    set status 0
    if {[vesk file_load $read] ne "1"} {
        puts stderr "convert - can't read $in"
        return 1
    }
    foreach script $options(-do) {
        uplevel #0 $script
    }
    if {[vesk export_model $write] ne "1"} {
        puts stderr "convert - can't write $out"
        return 1
    }
    array set report [vesk import_report]
    if {$report(losses) ne "" || $report(warnings_in_all) > 0} {
        set status 2
    }
    foreach warning $report(warnings) {
        lassign $warning line text
        puts stderr "$in:[expr {$line > 0 ? "$line:" : ""}] $text"
    }
    if {$out eq "-"} {
        set status [expr {max($status, [send $write])}]
    }
    return $status
}

# send --
#   Writes a file to standard output; returns 2 when it refers to other files.
proc ::vesk::convert::send {name} {
    set file [open $name rb]
    copy_channel $file stdout
    close $file
    set others [glob -nocomplain -tails -directory [file dirname $name] *]
    if {[llength $others] <= 1} {
        return 0
    }
    puts stderr "convert - only [file tail $name] of [lsort $others] goes to standard output"
    return 2
}

# report --
#   The report of the last conversion, with "-" for standard input and output.
proc ::vesk::convert::report {} {
    variable options
    variable folder
    set names {}
    foreach name [list input$options(-from) out/output$options(-to)] {
        lappend names "\"[file join $folder $name]\"" {"-"}
    }
    return [string map $names [string trim [vesk report_json]]]
}

proc ::vesk::convert::write_reports {} {
    variable options
    variable reports
    if {$options(-report) eq ""} {
        return
    }
    set text "[lindex $reports 0]\n"
    if {[llength $reports] != 1} {
        set text "\[\n[join $reports ",\n"]]\n"
    }
    set file [open $options(-report) w]
    fconfigure $file -encoding utf-8
    puts -nonewline $file $text
    close $file
}

# run --
#   Converts all files; returns the exit status.
proc ::vesk::convert::run {words} {
    variable reports
    variable folder
    set status 0
    foreach {in out} [pairs [parse $words]] {
        if {[catch {convert $in $out} result]} {
            puts stderr "convert - $in: $result"
            set result 1
        }
        lappend reports [report]
        if {$result == 1 || ($result == 2 && $status == 0)} {
            set status $result
        }
    }
    write_reports
    if {$folder ne ""} {
        file delete -force $folder
    }
    return $status
}

if {[catch {::vesk::convert::run $argv} result]} {
    puts stderr $result
    exit 1
}
exit $result
