# What every script test shares: tcltest, and where the scripts lie.
package require tcltest 2
namespace import -force ::tcltest::*
::tcltest::configure {*}$::argv
set ::tcl_dir [file normalize [file join [file dirname [info script]] .. .. tcl]]
# ctest reads the exit status: a failed case must not end with 0.
proc ::tcltest::cleanupTestsHook {} {
    if {$::tcltest::numTests(Failed) > 0} {set ::exit_status 1}
}
rename cleanupTests {}
proc cleanupTests {} {
    ::tcltest::cleanupTests
    exit [info exists ::exit_status]
}
