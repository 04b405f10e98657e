# thumbnail.tcl --
#   vesk -thumbnail SIZE OUT.png FILE ...
#   Writes a square picture of the models; needs no display.

# thumbnail --
#   Returns the exit status.
proc ::vesk::batch::thumbnail {words} {
    set files [lassign $words pixels out]
    if {[llength $files] == 0 || ![string is integer -strict $pixels]} {
        puts stderr "usage: vesk -thumbnail SIZE OUT.png FILE ..."
        return 1
    }
    foreach file $files {
        if {[vesk file_load $file] ne "1"} {
            puts stderr "thumbnail - can't read $file"
            return 1
        }
    }
    return [expr {[vesk write_thumbnail $pixels $out] ne "1"}]
}

exit [::vesk::batch::thumbnail $argv]
