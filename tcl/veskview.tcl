# veskview.tcl --
#   The four views.

::vesk::need widgets hovername numberfield
::vesk::need panels view view_windows reach
