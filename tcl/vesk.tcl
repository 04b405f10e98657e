# vesk.tcl --
#   The main window: its parts, and the windows that it opens.

::vesk::need panels tools optionbar status transform console
::vesk::need windows main recovery importreport
::vesk::later panels uvtab build
::vesk::later panels issues build model_changed open exporting
::vesk::later windows search open
::vesk::later windows help keys commands page show_result about
::vesk::later windows history open can_redo
::vesk::later windows operations open toggle close
::vesk::later windows report open
::vesk::later windows savedtools context fill_menu
::vesk::later windows selectionsets fill_menu
::vesk::later windows tips open at_start
