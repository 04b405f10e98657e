# tour.tcl --
#   The tour of docs/tour.md with mouse and keys: a table lamp from nothing. The saved model is
#   looked at; with VESK_TOUR_PICTURES=FOLDER the tour's pictures are made on the way.

source [file join [file dirname [info script]] support.tcl]

# spot --
#   A place of a flat view, in pixels, from units. At the start 100 pixels are one unit.
proc spot {view across up} {
    set w [::test::widget $view]
    return [list [expr {round([winfo width $w] / 2 + 100 * $across)}] \
        [expr {round([winfo height $w] / 2 - 100 * $up)}]]
}
proc drag {view x0 y0 x1 y1} {
    lassign [spot $view $x0 $y0] px py
    lassign [spot $view $x1 $y1] qx qy
    ::test::drag $view 1 $px $py [expr {$qx - $px}] [expr {$qy - $py}]
}
proc tool {name} {::test::press .main.tools.$name}
proc field {path text} {
    ::test::press $path
    ::test::key ctrl+a
    ::test::type $text
    ::test::key Return
}
proc picture {name} {
    if {![info exists ::env(VESK_TOUR_PICTURES)]} {return}
    exec xdotool mousemove 5 [expr {[winfo screenheight .] - 1}]
    ::test::pause 900
    set window [winfo width .]x[winfo height .]+[winfo rootx .]+[winfo rooty .]
    exec import -window root -crop $window +repage -depth 8 -colors 200 \
        PNG8:[file join $::env(VESK_TOUR_PICTURES) tour-$name.png]
}

# row_of --
#   The row of the objects panel with this name.
proc row_of {name} {
    foreach {id parent type title surfaces visible locked} [vesk object_tree] {
        if {$title eq $name} {return $id}
    }
}

# part --
#   Draws a cylinder in the plan view and gives it height, place and name in the Object tab.
proc part {name radius height middle} {
    set tab .main.right.tabs.object
    tool cylinder
    drag xz -$radius $radius $radius -$radius
    field $tab.sizey.value $height
    field $tab.positiony.value $middle
    field $tab.name $name
}

# extent --
#   Middle and size of an object, rounded.
proc extent {name} {
    vesk clear_selection
    vesk select_by_name $name
    return [lmap n [concat [vesk get_selection_centre] [vesk get_selection_size]] {
        format %.2f $n
    }]
}

# look_at_the_saved_file --
proc look_at_the_saved_file {} {
    set file [file join $::env(VESK_TEST_WORK) lamp.vesk]
    ::test::check "the file is there, and nothing is unsaved" {
        [file exists $file] && !$::unsaved_changes
    }
    vesk clear_all
    vesk file_load $file
    set names {}
    foreach {id parent type name surfaces visible locked} [vesk object_tree] {
        lappend names $name
        if {$name eq "table lamp"} {set lamp $id}
        if {$parent ne "" && $name in {base stem shade}} {lappend parents $parent}
    }
    ::test::check "it holds the lamp and its parts" {
        [lsort $names] eq [lsort {{table lamp} base stem shade light}] && [lsort -unique $parents] eq $lamp
    }
    vesk set_select_mode object
    foreach {name wanted} {
        base {0.00 0.05 0.00 1.00 0.10 1.00}
        stem {0.00 0.70 0.00 0.20 1.20 0.20}
        shade {0.00 1.35 0.00 0.80 0.50 0.80}
    } {
        ::test::check "$name stands where the tour says" {[extent $name] eq $wanted}
    }
    set stream [open $file]
    set text [read $stream]
    close $stream
    ::test::check "two materials are in use, those that were chosen" {
        [regexp -all {(?n)^MATERIAL} $text] == 2 &&
        [regexp {rgb 0.627451 0.752941 0.878431.*rgb 1 0.8745 0.6275} $text]
    }
}

::test::run {
    vesk reset_views
    # 1. A base.
    ::test::press .opt.snap.on 8 8
    tool cylinder
    ::test::press .opt.tool.f2 8 8
    part base 0.5 0.1 0.05
    picture base
    # 2. A stem.
    part stem 0.1 1.2 0.7
    # 3. A shade without ends, narrower at the top.
    tool cylinder
    ::test::press .opt.tool.f2 8 8
    part shade 0.4 0.5 1.35
    tool move
    ::test::press .opt.modes.vertex
    ::test::key Escape
    drag xy -0.6 1.68 0.6 1.5
    ::test::check "the rubber band takes the ring" {[vesk selection_get_num_vertices] == 12}
    tool scale
    ::test::press .opt.tool.x.value
    ::test::key ctrl+a
    ::test::type 0.5
    ::test::press .opt.tool.z.value
    ::test::key ctrl+a
    ::test::type 0.5
    ::test::key Return
    picture narrow
    # 4. Materials: a new one for the shade, one of the palette for the rest.
    ::test::press .opt.modes.object
    ::test::press_row $::vesk::objects::tree [row_of shade]
    ::test::key F3
    ::test::type two-sided
    ::test::key Return
    set tab .main.right.tabs.material
    .main.right.tabs select $tab
    ::test::pause 300
    ::test::press $tab.top.icons.add
    field $tab.rows.ediffuse "#FFDFA0"
    field $tab.rows.eemissive "#806030"
    ::test::press $tab.top.apply
    picture material
    ::test::press_row $::vesk::objects::tree [row_of base]
    exec xdotool keydown ctrl
    ::test::press_row $::vesk::objects::tree [row_of stem]
    exec xdotool keyup ctrl
    ::test::check "a click with Control adds" {[llength [vesk get_selected_objects]] == 2}
    .main.right.tabs select .main.right.tabs.palette
    ::test::pause 300
    lassign [.main.right.tabs.palette.grid coords e8] x y x1
    ::test::check "the colours can be hit" {$x1 - $x > 20}
    ::test::press .main.right.tabs.palette.grid [expr {int($x) + 8}] [expr {int($y) + 8}]
    # 5. A light, and everything in one group.
    ::test::press .opt.modes.tree
    tool light
    ::test::click xy 1 {*}[spot xy 0 1.3]
    tool move
    ::test::at xy {*}[spot xy 1.5 -1]
    ::test::key ctrl+a
    ::test::key ctrl+g
    .main.right.tabs select .main.right.tabs.object
    ::test::pause 300
    field .main.right.tabs.object.name "table lamp"
    # 6. Look at it, and save.
    ::test::at xy {*}[spot xy 1.5 -1]
    ::test::key shift+f
    ::test::drag xyz 1 40 200 60 30
    ::test::key Escape
    picture done
    ::test::at xy {*}[spot xy 1.5 -1]
    after 800 {
        exec xdotool key ctrl+a
        exec xdotool type --delay 12 [file join $::env(VESK_TEST_WORK) lamp.vesk]
        exec xdotool key Return
    }
    ::test::key ctrl+s
    ::test::pause 500
    look_at_the_saved_file
}
