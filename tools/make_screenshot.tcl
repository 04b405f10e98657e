# The picture of the read-me: the desk in four views with its lamp selected, saved by "import".
#   vesk -script tools/make_screenshot.tcl examples/desk.vesk      (VESK_PICTURE=file.png)
# on an X server of 1280 x 800 at 96 dpi, with a settings file that holds
#   show_startup_tips FALSE, cpwin_width 1280, cpwin_height 800

proc picture {} {
    vesk set_select_mode object
    vesk clear_selection
    vesk select_by_name lamp
    vesk person_set_loc_dir "-1.75 2.1 3.55  0.41 -0.40 -0.84"
    foreach {id parent type name surfaces visible locked} [vesk object_tree] {
        if {$name eq "rod" && [vesk object_is_selected $id] == 1} {
            $::vesk::objects::tree see $id
        }
    }
    $::vesk::objects::tree yview scroll 2 units
    vesk redraw_all
    update
    after 1500 {exec import -window root $::env(VESK_PICTURE); exit}
}
after 1500 picture
