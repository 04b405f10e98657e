# veskprefs.tcl --
#   Preferences, settings and keys; their window is read when it opens.

::vesk::need lib prefs
::vesk::later lib keys use restore pressed
::vesk::later lib cmdsocket follow
::vesk::later windows preferences open
::vesk::later windows keyspage build
::vesk::later windows plugmanager build leave_out
