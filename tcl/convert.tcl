# convert.tcl --
#   vesk -convert [options] IN OUT
#   vesk -convert [options] -to SUFFIX FILE ...
#   Reads and writes models by their suffixes; needs no display. Options:
#     -from SUFFIX   format of the input when IN is "-", standard input
#     -to SUFFIX     format of the output when OUT is "-", standard output; without "-" every FILE
#                    is converted to a file of that suffix beside it
#     -into FOLDER   ... in that folder
#     -do SCRIPT     evaluated with the model loaded; may stand several times
#     -report FILE   a report in JSON: contents, textures, warnings, losses; a line for each file
#                    where the name ends in .jsonl; "-" is standard output
#   For many files, with -to:
#     -list FILE     more names, one a line; a tab and the output's name may follow; "-" is standard
#                    input
#     -shard I/N     every Nth file from the Ith on: one task of an array of jobs
#     -skip-newer    what was written after its input changed is left
#     -jobs N        in N processes at once, 0 for one a core; a crash costs one file
#     -limit-time S, -limit-memory MB   for each file; they imply -jobs 1
#     -accept-losses status 2 counts as 0
#   Exit status: 0 done, 1 failed, 2 done with losses or warnings.

namespace eval ::vesk::convert {
    variable usage "usage: vesk -convert ?-from S? ?-to S? ?-do SCRIPT? ?-report FILE? IN OUT
       vesk -convert -to SUFFIX ?-into FOLDER? ?-do SCRIPT? ?-report FILE? ?-list FILE? ?-shard I/N?
            ?-skip-newer? ?-jobs N? ?-limit-time S? ?-limit-memory MB? ?-accept-losses? FILE ..."
    variable options
    array set options {-from "" -to "" -into "" -report "" -do {} -list "" -shard "" -jobs ""
        -limit-time "" -limit-memory "" -skip-newer 0 -accept-losses 0 -worker 0}
    variable flags {-skip-newer -accept-losses -worker}
    variable reports {}            ;# of each file, in their order
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
        variable flags
        if {$word in $flags} {
            set options($word) 1
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
    foreach option {-jobs -limit-time -limit-memory} {
        if {$options($option) ne "" && (![string is digit -strict $options($option)]
                || $options($option) > 1000000)} {
            error "convert - $option takes a whole number, not \"$options($option)\""
        }
    }
    return $files
}

# pairs --
#   Returns the files to read and to write, in turns.
proc ::vesk::convert::pairs {words} {
    variable options
    variable usage
    if {$options(-list) eq "" && ("-" in $words || $options(-to) eq "")} {
        lassign $words in out
        if {[llength $words] != 2 || ($in eq "-" && $options(-from) eq "")
            || ($out eq "-" && $options(-to) eq "")} {
            error $usage
        }
        if {$out eq "-" && $options(-report) eq "-"} {
            error "convert - standard output carries the model: name a file for -report"
        }
        return $words
    }
    if {[llength $words] == 0 && $options(-list) eq ""} {
        error $usage
    }
    set named [concat {*}[lmap word $words {list $word ""}] [listed]]
    set pairs {}
    foreach {file out} $named {
        if {$out eq ""} {
            if {$options(-to) eq ""} {error $usage}
            set to [expr {$options(-into) ne "" ? $options(-into) : [file dirname $file]}]
            set out [file join $to [file rootname [file tail $file]]$options(-to)]
        }
        if {[info exists taken($out)]} {
            error "convert - $taken($out) and $file would both become $out"
        }
        set taken($out) $file
        lappend pairs $file $out
    }
    return [chosen $pairs]
}

# listed --
#   Names of -list: each with the output's name, or "".
proc ::vesk::convert::listed {} {
    variable options
    if {$options(-list) eq ""} {
        return {}
    }
    set file [expr {$options(-list) eq "-" ? "stdin" : [open $options(-list)]}]
    fconfigure $file -encoding utf-8
    set names {}
    foreach line [split [read $file] \n] {
        if {[string trim $line] ne ""} {
            lassign [split [string trimright $line \r] \t] in out
            lappend names $in $out
        }
    }
    if {$file ne "stdin"} {
        close $file
    }
    return $names
}

# chosen --
#   Those of the files that this run is to convert.
proc ::vesk::convert::chosen {pairs} {
    variable options
    if {$options(-shard) ne "" && ([scan $options(-shard) "%d/%d%n" part parts end] != 3
            || $end != [string length $options(-shard)] || $part < 1 || $part > $parts)} {
        error "convert - -shard takes a part and the number of parts, as 2/8, not \"$options(-shard)\""
    }
    set result {}
    set place 0
    foreach {in out} $pairs {
        if {$options(-shard) ne "" && $place % $parts != $part - 1} {
            incr place
            continue
        }
        incr place
        # A file takes its place when it is whole: one that is there was written to its end.
        if {$options(-skip-newer) && [file exists $in] && [file exists $out]
                && [file mtime $out] > [file mtime $in]} {
            continue
        }
        lappend result $in $out
    }
    return $result
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

# failure --
#   The report of a file of which no program is left to tell.
proc ::vesk::convert::failure {in reason} {
    set text [string map {\\ \\\\ \" \\\" \n " " \t " "} $in]
    return "{\n  \"file\": \"$text\",\n  \"read\": false,\n  \"error\": \"$reason\"\n}"
}

proc ::vesk::convert::is_lines {} {
    variable options
    return [string match *.jsonl $options(-report)]
}

# done --
#   Notes how the file at a place ended; a report of lines is written as they come.
proc ::vesk::convert::done {place status report} {
    variable options
    variable reports
    variable status_of_all
    if {$status == 2 && $options(-accept-losses)} {
        set status 0
    }
    if {$status == 1 || ($status == 2 && $status_of_all == 0)} {
        set status_of_all $status
    }
    if {$options(-report) eq ""} {
        return
    }
    if {![is_lines]} {
        dict set reports $place $report
        return
    }
    # One write, so that several runs may add to one file.
    set line "\x7B\"status\": $status, [string range [regsub -all {\n\s*} $report " "] 2 end]\n"
    set file [open $options(-report) a]
    fconfigure $file -encoding utf-8 -buffersize 1000000
    puts -nonewline $file $line
    close $file
}

# write_reports --
#   One report, or an array of them in the order of the files.
proc ::vesk::convert::write_reports {} {
    variable options
    variable reports
    if {$options(-report) eq "" || [is_lines]} {
        return
    }
    set all [lmap place [lsort -integer [dict keys $reports]] {dict get $reports $place}]
    set text "[lindex $all 0]\n"
    if {[llength $all] != 1} {
        set text "\[\n[join $all ",\n"]]\n"
    }
    set file [expr {$options(-report) eq "-" ? "stdout" : [open $options(-report) w]}]
    fconfigure $file -encoding utf-8
    puts -nonewline $file $text
    if {$file ne "stdout"} {
        close $file
    }
}

# one --
#   Converts one file; returns its status and its report.
proc ::vesk::convert::one {in out} {
    if {[catch {convert $in $out} result]} {
        puts stderr "convert - $in: $result"
        set result 1
    }
    return [list $result [report]]
}

# run --
#   Converts all files; returns the exit status.
proc ::vesk::convert::run {words} {
    variable options
    variable status_of_all 0
    variable folder
    set files [parse $words]
    if {$options(-worker)} {
        source [file join [file dirname [info script]] convertjobs.tcl]
        work
        return 0
    }
    set pairs [pairs $files]
    if {[is_lines] && !$options(-skip-newer) && $options(-shard) eq ""} {
        close [open $options(-report) w]
    }
    if {$options(-jobs) ne "" || $options(-limit-time) ne "" || $options(-limit-memory) ne ""} {
        source [file join [file dirname [info script]] convertjobs.tcl]
        run_jobs $pairs
    } else {
        set place 0
        foreach {in out} $pairs {
            done $place {*}[one $in $out]
            incr place
        }
    }
    write_reports
    if {$folder ne ""} {
        file delete -force $folder
    }
    return $status_of_all
}

if {[catch {::vesk::convert::run $argv} result]} {
    puts stderr $result
    exit 1
}
exit $result
