# veskplugins.tcl --
#   Menu items of plug-ins.

::vesk::need lib plugins
