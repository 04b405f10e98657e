# veskhier.tcl --
#   The objects panel.

::vesk::need panels objects objects_selection objects_fill objects_strip objects_drag
