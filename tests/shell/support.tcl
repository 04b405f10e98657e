# support.tcl --
#   What the scripts of the window tests share: checks, waiting, mouse and keys, scenes, pictures.

namespace eval ::test {
    variable failures 0
    variable errors {}          ;# messages of the interface's scripts that failed
    variable limit 15000        ;# milliseconds within which a condition must come true
    variable tolerance 0.021    ;# of `near`: two pixels of the flat views
    variable pressed {0 0 0}    ;# time and place of the last press of a button
    namespace export *
}

# What the interface does about an error of its own, and noted here.
trace add execution ::vesk::ops::failed enter {apply {{words operation} {
    lappend ::test::errors [lindex $words 1]
}}}

# run --
#   Evaluates the tests once the window stands, then ends the program with their result.
proc ::test::run {body} {
    wait_until {[winfo viewable .main]}
    settle
    set limit [expr {[info exists ::env(VESK_TEST_LIMIT)] ? $::env(VESK_TEST_LIMIT) : 240}]
    after [expr {1000 * ($limit - 10)}] ::test::hangs
    if {[catch {uplevel #0 $body}]} {
        puts "FAIL $::errorInfo"
        exit 1
    }
    check "no script failed" {$::test::errors eq {}}
    exit [expr {$::test::failures != 0}]
}

# hangs --
#   A dialog that waits for an answer stops the tests: tells which one, while there is time.
proc ::test::hangs {} {
    catch {shot hangs}
    puts "FAIL a window waits: [winfo children .], focus [focus], message \"[status]\""
    exit 1
}

# check --
#   Counts a failure and says what was expected when a condition (an expression) does not come true.
proc ::test::check {what condition} {
    if {[uplevel 1 [list ::test::comes_true $condition]]} {
        puts "ok   $what"
    } else {
        variable failures
        incr failures
        catch {uplevel 1 [list expr $condition]} result
        puts "FAIL $what: $condition ($result)"
    }
}

# ---- waiting ----

# wait_until --
#   Lets events in until a condition holds, which a test takes for granted.
proc ::test::wait_until {condition} {
    if {![uplevel 1 [list ::test::comes_true $condition]]} {
        variable failures
        incr failures
        puts "FAIL waited in vain for $condition"
    }
}

# comes_true --
#   Lets events in until a condition holds; returns 0 when it does not within the limit. An error, as
#   of a window that is not there yet, counts as no.
proc ::test::comes_true {condition} {
    variable limit
    set end [expr {[clock milliseconds] + $limit}]
    while {[catch {uplevel 1 [list expr $condition]} holds] || !$holds} {
        if {[clock milliseconds] > $end} {return 0}
        pause 20
    }
    return 1
}

# when --
#   Evaluates a script once a condition holds, from a timer: a dialog that waits for its answer
#   stops whatever opened it.
proc ::test::when {condition script} {
    if {[catch {uplevel #0 [list expr $condition]} holds] || !$holds} {
        after 30 [list ::test::when $condition $script]
    } else {
        uplevel #0 $script
    }
}

# settle --
#   Lets the program do what the mouse and the keys asked for: the server's answer comes behind
#   their events, and what they draw and map behind the next answer. Timers may still run.
proc ::test::settle {} {
    foreach time {1 2} {
        winfo pointerxy .
        update
    }
}

# pause --
#   Lets events in for a while: only where time itself is tested.
proc ::test::pause {msecs} {
    set ::test::done 0
    after $msecs {set ::test::done 1}
    vwait ::test::done
}

# shown, front --
#   Whether a window can be seen; whether it has the keyboard, too.
proc ::test::shown {w} {return [expr {[winfo exists $w] && [winfo viewable $w]}]}
proc ::test::front {w} {return [expr {[shown $w] && [string match $w* [focus]]}]}

# ---- mouse and keys ----

# xdo --
#   Moves, presses and types as xdotool is told.
proc ::test::xdo {args} {
    exec xdotool {*}$args
    settle
}

# point_at --
#   Moves the pointer to a place of a widget, to its middle when none is given; after it where the
#   widget still moves.
proc ::test::point_at {w {x ""} {y ""}} {
    if {$x eq ""} {set x [expr {[winfo width $w] / 2}]}
    if {$y eq ""} {set y [expr {[winfo height $w] / 2}]}
    set there ""
    while {$there ne [list [winfo rootx $w] [winfo rooty $w]]} {
        set there [list [winfo rootx $w] [winfo rooty $w]]
        xdo mousemove [expr {[winfo rootx $w] + $x}] [expr {[winfo rooty $w] + $y}]
    }
}

# press --
#   Clicks into a widget.
proc ::test::press {w {x ""} {y ""} {button 1} {count 1} {modifier ""}} {
    point_at $w $x $y
    no_double_click
    with_key $modifier {xdo click --repeat $count --delay 60 $button}
}

# no_double_click --
#   Waits where a press would make a double click together with the one before.
proc ::test::no_double_click {} {
    variable pressed
    lassign $pressed time last_x last_y
    lassign [winfo pointerxy .] x y
    set rest [expr {$time + 550 - [clock milliseconds]}]
    if {$rest > 0 && hypot($x - $last_x, $y - $last_y) < 12} {pause $rest}
    set pressed [list [clock milliseconds] $x $y]
}

# press_row --
#   Clicks on a row of a list.
proc ::test::press_row {list row {button 1}} {
    $list see $row
    update
    lassign [$list bbox $row #0] x y width height
    press $list [expr {$x + 60}] [expr {$y + $height / 2}] $button
}

# hold, release --
#   Presses a button at a place of a widget and drags to another one in steps; ends that.
proc ::test::hold {w x0 y0 x1 y1 {button 1} {modifier ""}} {
    point_at $w $x0 $y0
    if {$modifier ne ""} {xdo keydown $modifier}
    no_double_click
    xdo mousedown $button
    for {set i 1} {$i <= 4} {incr i} {
        point_at $w [expr {round($x0 + ($x1 - $x0) * $i / 4.0)}] \
            [expr {round($y0 + ($y1 - $y0) * $i / 4.0)}]
    }
}
proc ::test::release {{button 1} {modifier ""}} {
    # Without a rest the end of a drag is a flick.
    pause 120
    xdo mouseup $button
    if {$modifier ne ""} {xdo keyup $modifier}
}

# with_key --
#   Evaluates a script while a key is down; "" none.
proc ::test::with_key {key script} {
    if {$key ne ""} {xdo keydown $key}
    uplevel 1 $script
    if {$key ne ""} {xdo keyup $key}
}

# key, type --
#   Keys go to the window below the pointer.
proc ::test::key {args} {xdo key --delay 30 {*}$args}
proc ::test::type {text} {xdo type --delay 12 $text}

# enter --
#   Types a text into a field in place of what is there.
proc ::test::enter {field text} {
    press $field
    key ctrl+a
    type $text
    key Return
}

# ---- views ----

proc ::test::widget {view} {return $::ToglWinName($view)}

# at, drag, click --
#   The pointer in a view, in its own pixels.
proc ::test::at {view x y} {point_at [widget $view] $x $y}
proc ::test::drag {view button x y dx dy} {
    hold [widget $view] $x $y [expr {$x + $dx}] [expr {$y + $dy}] $button
    release $button
}
proc ::test::click {view button x y} {press [widget $view] $x $y $button}

# ---- scenes ----

# fresh --
#   An empty scene with what a script makes in it, selected: its object is ::cube.
proc ::test::fresh {{script {vesk new_cube}}} {
    vesk clear_all
    vesk set_draw_mode move
    vesk set_select_mode object
    vesk reset_views
    uplevel #0 $script
    vesk select_all
    set ::cube [vesk get_selected_objects]
    set ::test::records $::undo_count
    settle
}

# made --
#   How many records of undo were made since `fresh`.
proc ::test::made {} {return [expr {$::undo_count - $::test::records}]}

proc ::test::mode {} {return [lindex [vesk get_app_mode] 0]}
proc ::test::count {what} {return [vesk selection_get_num_$what]}
proc ::test::centre {} {return [vesk get_selection_centre]}
proc ::test::size {} {return [vesk get_selection_size]}
proc ::test::top_objects {} {return [vesk object_get_children [vesk get_world]]}
proc ::test::info_of {id key} {return [dict get [vesk object_info $id] $key]}

# near --
#   Whether numbers are as wanted, but for a tolerance.
proc ::test::near {list wanted {tolerance ""}} {
    if {$tolerance eq ""} {set tolerance $::test::tolerance}
    foreach a $list b $wanted {
        if {abs($a - $b) > $tolerance} {return 0}
    }
    return [expr {[llength $list] == [llength $wanted]}]
}

# ---- the interface ----

# entry_of --
#   Menu and place of an entry of the bar, by the words of its target.
proc ::test::entry_of {menu words} {
    set path [dict get $::vesk::menus::paths $menu]
    set rows [::vesk::menus::rows $menu]
    ::vesk::menus::refresh $menu $path
    return [list $path [lsearch -exact $rows [::vesk::menus::find $menu $words]]]
}

# menu_labels --
#   The labels of a menu, without its lines.
proc ::test::menu_labels {path} {
    set labels {}
    for {set i 0} {$i <= [$path index end]} {incr i} {
        if {[$path type $i] ne "separator"} {
            lappend labels [string trim [$path entrycget $i -label]]
        }
    }
    return $labels
}

# open_options --
#   Opens the options of an operation by the row of its menu. Returns their panel.
proc ::test::open_options {menu words} {
    ::vesk::menus::invoke [::vesk::menus::find $menu $words]
    set options [::vesk::view::area].options
    wait_until {[front $options]}
    return $options
}

# pick --
#   Chooses an entry of the menu that was just opened, by the arrow keys.
proc ::test::pick {entry {menu .popup}} {
    wait_until {[winfo ismapped $menu]}
    key {*}[lrepeat $entry Down] Return
}

# search --
#   Runs a command by the search.
#   label  of what is found first
proc ::test::search {text label} {
    key F3
    wait_until {[front .search]}
    type $text
    wait_until {
        [lindex $::vesk::search::entries [lindex $::vesk::search::hits 0] 0] eq $label
        && $::vesk::search::text eq $text
    }
    key Return
}

# answer_file --
#   Types a name into the file dialog once it opens.
proc ::test::answer_file {name} {
    when {[front .filebox]} "key ctrl+a; [list type $name]; key Return"
}

# open_tab, resize --
#   Shows a tab of the right panel; gives the main window a size.
proc ::test::open_tab {name} {
    .main.right.tabs select .main.right.tabs.$name
    settle
}
proc ::test::resize {size} {
    wm geometry . $size
    wait_until {"[winfo width .]x[winfo height .]" eq [regsub {[+-].*} $size ""]}
    settle
}

proc ::test::use_theme {name} {
    set ::vesk::theme_name $name
    ::vesk::main::set_theme
    settle
}
proc ::test::show_console {on} {
    set ::vesk::console_shown $on
    ::vesk::console::show
    settle
}
proc ::test::status {} {return $::vesk::status::message}

# ---- files ----

# work --
#   A file of the test's own folder.
proc ::test::work {name} {return [file join $::env(VESK_TEST_WORK) $name]}

proc ::test::contents {file {mode r}} {
    set stream [open $file $mode]
    set text [read $stream]
    close $stream
    return $text
}
proc ::test::write {file text {mode w}} {
    set stream [open $file $mode]
    puts -nonewline $stream $text
    close $stream
    return $file
}

# write_bmp --
#   An uncompressed picture of three bytes a pixel, for which no plug-in is needed.
proc ::test::write_bmp {file width height pixels} {
    set size [string length $pixels]
    return [write $file [binary format a2issiiiissiiiiii BM [expr {54 + $size}] 0 0 54 40 \
        $width $height 1 24 0 $size 2835 2835 0 0]$pixels wb]
}

# ---- pictures ----

# picture --
#   What a view shows, as a dictionary: width, height, pixels (three bytes each).
proc ::test::picture {view} {
    vesk view_save_picture [dict get {xy 0 zy 1 xz 2 xyz 3} $view] [work view.ppm]
    return [read_ppm [work view.ppm]]
}
proc ::test::read_ppm {file} {
    set stream [open $file rb]
    gets $stream
    lassign [gets $stream] width height
    gets $stream
    set pixels [read $stream]
    close $stream
    return [dict create width $width height $height pixels $pixels]
}
# pixel --
#   "r g b" of one pixel.
proc ::test::pixel {picture x y} {
    set place [expr {3 * ($y * [dict get $picture width] + $x)}]
    binary scan [dict get $picture pixels] "@${place}cu3" rgb
    return $rgb
}

# share --
#   Share of the pixels (every third in both directions) of a colour, within a tolerance.
proc ::test::share {picture rgb {tolerance 12}} {
    lassign $rgb r g b
    set found 0
    set all 0
    for {set y 0} {$y < [dict get $picture height]} {incr y 3} {
        for {set x 0} {$x < [dict get $picture width]} {incr x 3} {
            lassign [pixel $picture $x $y] pr pg pb
            incr all
            if {abs($pr - $r) <= $tolerance && abs($pg - $g) <= $tolerance
                && abs($pb - $b) <= $tolerance} {
                incr found
            }
        }
    }
    return [expr {double($found) / $all}]
}

# difference --
#   Share of the looked-at pixels in which two pictures of one size differ clearly.
proc ::test::difference {a b} {
    if {[dict get $a width] != [dict get $b width] || [dict get $a height] != [dict get $b height]} {
        return 1.0
    }
    set differing 0
    set all 0
    for {set y 0} {$y < [dict get $a height]} {incr y 3} {
        for {set x 0} {$x < [dict get $a width]} {incr x 3} {
            incr all
            foreach p [pixel $a $x $y] q [pixel $b $x $y] {
                if {abs($p - $q) > 24} {
                    incr differing
                    break
                }
            }
        }
    }
    return [expr {double($differing) / $all}]
}

# shot --
#   Keeps a picture of the whole screen among the artefacts.
proc ::test::shot {name} {
    exec import -window root [file join $::env(VESK_TEST_ARTEFACTS) $name.png]
}

# on_screen --
#   What the screen shows of a window, by default after the pointer left it.
proc ::test::on_screen {w {away 1}} {
    if {$away} {xdo mousemove 5 [expr {[winfo screenheight .] - 1}]}
    exec import -window root -crop \
        [winfo width $w]x[winfo height $w]+[winfo rootx $w]+[winfo rooty $w] \
        +repage -depth 8 [work screen.ppm]
    return [read_ppm [work screen.ppm]]
}

# pixels_that_differ --
#   The number of rows of two pictures of a view that differ at all, below its button and left of its cross.
proc ::test::pixels_that_differ {a b} {
    set width [dict get $a width]
    set count 0
    for {set y 90} {$y < [dict get $a height] - 4} {incr y} {
        set from [expr {3 * ($y * $width + 4)}]
        set to [expr {3 * ($y * $width + $width - 4) - 1}]
        set row_a [string range [dict get $a pixels] $from $to]
        set row_b [string range [dict get $b pixels] $from $to]
        if {$row_a ne $row_b} {incr count}
    }
    return $count
}

# page_picture --
#   A picture for the pages of docs/, of the main window, when VESK_TOUR_PICTURES names a folder.
#   away  1: the pointer is not to be seen at work
proc ::test::page_picture {name {away 1}} {
    if {![info exists ::env(VESK_TOUR_PICTURES)]} {return}
    if {$away} {xdo mousemove 5 [expr {[winfo screenheight .] - 1}]}
    pause 900
    set window [winfo width .]x[winfo height .]+[winfo rootx .]+[winfo rooty .]
    exec import -window root -crop $window +repage -depth 8 -colors 200 \
        PNG8:[file join $::env(VESK_TOUR_PICTURES) $name.png]
}

namespace import ::test::*
