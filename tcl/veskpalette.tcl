# veskpalette.tcl --
#   The Palette and the Material tab.

::vesk::need panels palette material
