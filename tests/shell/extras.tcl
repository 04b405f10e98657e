# extras.tcl --
#   What stands round the modelling: the UV tab, materials and who uses them, types, changing the
#   last operation, tools made of console lines, the command socket, pictures in the file dialog,
#   the pages of Help.

source [file join [file dirname [info script]] support.tcl]

set tabs .main.right.tabs
set box {vesk create box 2 0 0 0 1 1 1}

run {
    at xy 200 200
    # The UV tab.
    fresh $box
    open_tab uv
    set canvas $tabs.uv.picture
    check "the UV tab draws the outlines of the selection" {
        [llength [lsearch -all -inline [lmap i [$canvas find all] {$canvas type $i}] polygon]] == 6
        && [string match "* islands, 6 surfaces" [$tabs.uv.foot.count cget -text]]
    }
    vesk clear_selection
    check "and follows it" {[$tabs.uv.foot.count cget -text] eq "Nothing selected"}

    # Materials.
    fresh $box
    vesk set_col 4
    vesk clear_selection
    open_tab palette
    ::vesk::palette::select 4
    check "a material tells who uses it" {
        [string match "*on 6 surfaces" [$tabs.palette.line cget -text]]
    }
    press $tabs.palette.row.select
    check "and selects them" {[vesk selection_get_num_surfaces] == 6}
    press $tabs.palette.row.unused
    check "the next unused one" {$::vesk::palette::current == 5}
    shot extras-palette
    open_tab material
    press $tabs.material.top.pick 40
    key ctrl+a
    type "wing ochre"
    key Return
    check "a typed name names the material" {[lindex [vesk get_material 5] 0] eq "wing ochre"}

    # The tabs follow the selection.
    fresh $box
    vesk set_col 3
    vesk clear_selection
    vesk create box 2 3 0 0 4 1 1
    vesk select_all
    vesk objects_select [lindex [top_objects] 1]
    vesk set_col 5
    settle
    vesk objects_select [lindex [top_objects] 0]
    check "the material of what is selected is shown, with its surfaces" {
        $::vesk::palette::current == 3
        && [string match "Material 4 of *, on 6 surfaces" [$tabs.material.top.line cget -text]]
    }
    vesk objects_select [lindex [top_objects] 1]
    check "and follows" {$::vesk::palette::current == 5}
    press $tabs.material.top.icons.add
    check "\"+\" makes a name of its own" {
        [lindex [vesk get_material $::vesk::palette::current] 0] eq "wing ochre 2"
    }
    vesk objects_select [lindex [top_objects] 0]
    wait_until {$::vesk::palette::current == 3}
    set states [llength [vesk history_list]]
    set before [vesk get_material 3]
    set bar $tabs.material.rows.bspecular
    hold $bar 8 8 60 8
    pause 1200
    point_at $bar 70 8
    pause 1200
    point_at $bar 75 8
    check "the model follows a slider" {[vesk get_material 3] ne $before}
    release
    check "and its drag is one step" {[llength [vesk history_list]] == $states + 1}
    key ctrl+z
    check "which undo takes back" {[vesk get_material 3] eq $before}
    shot extras-material
    open_tab palette
    set grid $tabs.palette.grid
    set step [::vesk::palette::swatch_step]
    press $grid [expr {$step * 6 + $step / 2}] [expr {$step / 2}] 1 2
    pause 400
    check "a double click on a swatch edits and applies nothing" {
        [shown $tabs.material] && $::vesk::palette::current == 6
        && [vesk selection_materials] eq "3"
    }
    open_tab palette
    press $grid [expr {$step * 7 + $step / 2}] [expr {$step / 2}]
    check "a click applies" {[vesk selection_materials] eq "7"}
    open_tab object

    # Types.
    fresh $box
    vesk group
    open_tab object
    set group [vesk get_selected_objects]
    set type $tabs.object.flags.type
    check "a group can be another type" {[$type get] eq "group" && ![$type instate disabled]}
    press $type
    key Up Return
    check "and becomes it" {[info_of $group type] eq "poly"}
    vesk undo
    check "which undo takes back" {[info_of $group type] eq "group"}

    # Measuring by the tool column.
    fresh $box
    press .main.tools.measure
    check "the measure tool tells area and volume" {
        $::vesk::tools::measured eq "1 object  area 6  volume 1"
    }
    press .main.tools.move

    # The options of the last operation once more.
    # hole --
    #   Makes holes in all surfaces, by the options.
    proc hole {} {
        fresh $::box
        vesk set_select_mode surface
        vesk select_all
        set ::test::records $::undo_count
        open_options surface hole_select
        key Return
    }
    set ::prefs_hole_percent 50
    at xy 150 150
    hole
    vesk new_cube
    key ctrl+shift+r
    set options $::vesk::view::area_path.options
    check "other steps since: nothing to adjust" {
        ![winfo exists $options] && [string match "*no last operation*" [status]]
    }
    hole
    set faces [lindex [vesk get_counts] 3]
    key ctrl+shift+r
    check "the options are there again, with the result" {
        [front $options] && [lindex [vesk get_counts] 3] == $faces
    }
    key ctrl+a
    type 20
    check "another number makes another result in its place" {
        $::prefs_hole_percent == 20 && [lindex [vesk get_counts] 3] == $faces
        && [made] == 1
    }
    key Escape
    check "Escape brings the kept one back" {
        $::prefs_hole_percent == 50 && [lindex [vesk get_counts] 3] == $faces
        && ![winfo exists $options]
    }

    # Lines of the console as a tool.
    vesk clear_all
    at xy 150 150
    key F12
    ::vesk::console::empty
    type "vesk new_cube"
    key Return
    type "vesk move 1 0 0"
    key Return
    set text .main.console.text
    $text tag add sel 1.0 end
    press $text 100 10 3
    pick 2
    check "the right button asks for the tool's name" {[front .savetool]}
    type "shifted cube"
    shot extras-savetool
    key Return
    check "the commands among the lines are kept" {
        [dict get [::vesk::settings::get saved_tools] "shifted cube"]
            eq "vesk new_cube; vesk move 1 0 0"
    }
    set path [dict get $::vesk::menus::paths tools]
    ::vesk::menus::refresh tools $path
    check "the menu lists it" {[$path.mytools entrycget 0 -label] eq "  shifted cube"}
    set count [llength [vesk object_tree]]
    $path.mytools invoke 0
    check "and runs it" {[llength [vesk object_tree]] == $count + 7}
    key F12

    # Tab reaches the console after the panels.
    set order {}
    show_console 1
    set w .opt.modes.object
    for {set i 0} {$i < 150} {incr i} {
        set w [tk_focusNext $w]
        foreach region {.main.tools .main.centre .main.right.objects .main.right.tabs .main.console .opt} {
            if {[string match $region* $w] && $region ne [lindex $order end]} {lappend order $region}
        }
        if {$w eq ".opt.modes.object"} {break}
    }
    check "Tab goes through the regions in their order" {
        [string match "*.main.tools .main.centre .main.right.objects .main.right.tabs .main.console*" $order]
    }
    show_console 0

    # The command socket.
    check "the socket is shut at first" {[catch {socket 127.0.0.1 $::prefs_tcl_socket_port}]}
    set ::prefs_tcl_socket_port 16550
    set ::prefs_allow_socket_commands 1
    check "a badge tells that it is open" {[winfo ismapped .status.socket]}
    set secret [::vesk::cmdsocket::secret_file]
    check "its secret is the user's own" {[file attributes $secret -permissions] == 0o600}
    foreach first {"vesk new_cube" "POST / HTTP/1.1" ""} {
        set before [vesk get_counts]
        set channel [socket 127.0.0.1 16550]
        fconfigure $channel -buffering line -blocking 0
        puts $channel $first
        catch {puts $channel "vesk new_cube"}
        check "who does not know it is hung up on" {[catch {read $channel}] || [eof $channel]}
        check "and changes nothing" {[vesk get_counts] eq $before}
        catch {close $channel}
    }
    set channel [socket 127.0.0.1 16550]
    fconfigure $channel -buffering line -blocking 0
    puts $channel [string trim [contents $secret]]
    wait_until {[gets $channel] eq "ok"}
    puts $channel "vesk get_version_string"
    puts $channel "nonsense command"
    set told {}
    wait_until {[llength [lappend told {*}[expr {[gets $channel line] > 0 ? [list $line] : ""}]]] == 2}
    check "it answers" {[string match "ok VESK*" [lindex $told 0]]}
    check "also what failed" {[string match "error invalid command*" [lindex $told 1]]}
    set ::prefs_allow_socket_commands 0
    check "off, the badge goes" {![winfo ismapped .status.socket]}
    check "and it is shut" {[catch {socket 127.0.0.1 16550}] && ![file exists $secret]}
    close $channel

    # A picture in the file dialog.
    set folder [work pictures]
    file mkdir $folder
    write_bmp $folder/tile.bmp 64 32 [string repeat [binary format ccc 0 0 255] [expr {64 * 32}]]
    write $folder/notes.txt ""
    vesk clear_all
    vesk create sphere 2 -1 -1 -1 1 1 1
    vesk file_save $folder/ball.vesk
    set preview .filebox.preview
    when {[front .filebox]} {
        set list .filebox.list
        set rows [$list children {}]
        press_row $list [lindex $rows 0]
        check "a chosen model is drawn" {
            [winfo ismapped $preview] && [image width [$preview.picture cget -image]] == 180
        }
        shot extras-filebox-model
        press_row $list [lindex $rows 2]
        check "a chosen picture is shown" {
            [winfo ismapped $preview] && [string match "64 * 32, colour" [$preview.size cget -text]]
        }
        shot extras-filebox
        press_row $list [lindex $rows 1]
        check "another file is not" {![winfo ismapped $preview]}
        key Escape
    }
    ::vesk::filebox::ask open Open $folder {{"All files" *}}

    # Help.
    ::vesk::report::open
    settle
    check "a report has version, system and console" {
        [string match "VESK v3.6*Tcl/Tk*settings:*Last lines of the console:*" \
            [.report.in.lines get 1.0 end]]
    }
    press .report.in.row.copy
    check "and is copied" {[string match "VESK v3.6*" [clipboard get]]}
    shot extras-report
    key Escape
    check "Escape closes it" {![winfo exists .report]}
    foreach page {manual tour scripting plugins file-format batch performance} {
        ::vesk::help::page $page
        # In a browser, or as text where there is none.
        set text .text[string map {- ""} $page]
        check "Help has a page for $page" {
            [string match "web browser - *" [status]] || [string length [$text.text get 1.0 end]] > 2000
        }
        destroy $text
        focus -force .
    }
    ::vesk::need windows tips
    check "thirty tips, each another" {
        [llength $::vesk::tips::list] >= 30
        && [llength [lsort -unique $::vesk::tips::list]] == [llength $::vesk::tips::list]
    }
    ::vesk::tips::at_start
    wait_until {[shown .tips]}
    shot extras-tip
    check "the tip of the start does not cover the views" {
        [winfo rootx .tips] >= [winfo rootx .main.right] - 4
    }
    destroy .tips
}
