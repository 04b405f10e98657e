# veskpalette.tcl --
#   The palette, and the material that is chosen of it.

::vesk::need panels palette material
