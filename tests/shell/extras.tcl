# extras.tcl --
#   What stands round the modelling: the UV tab, materials and who uses them, types, changing the
#   last operation, tools made of console lines, the command socket, pictures in the file dialog,
#   the pages of Help.

source [file join [file dirname [info script]] support.tcl]

set tabs .main.right.tabs
proc fresh {} {
    vesk clear_all
    vesk set_select_mode object
    vesk create box 2 0 0 0 1 1 1
    ::test::pause 200
}

::test::run {
    ::test::at xy 200 200
    # The UV tab.
    fresh
    $tabs select $tabs.uv
    ::test::pause 400
    set canvas $tabs.uv.picture
    ::test::check "the UV tab draws the outlines of the selection" {
        [llength [lsearch -all -inline [lmap i [$canvas find all] {$canvas type $i}] polygon]] == 6
        && [string match "* islands, 6 surfaces" [$tabs.uv.foot.count cget -text]]
    }
    vesk clear_selection
    ::test::wait_until {[$tabs.uv.foot.count cget -text] eq "Nothing selected"}
    ::test::check "and follows it" {[$tabs.uv.foot.count cget -text] eq "Nothing selected"}

    # Materials.
    fresh
    vesk set_col 4
    vesk clear_selection
    $tabs select $tabs.palette
    ::test::pause 300
    ::vesk::palette::select 4
    ::test::wait_until {[string match "*on 6 surfaces" [$tabs.palette.line cget -text]]}
    ::test::check "a material tells who uses it" {
        [string match "*on 6 surfaces" [$tabs.palette.line cget -text]]
    }
    ::test::press $tabs.palette.row.select
    ::test::check "and selects them" {[vesk selection_get_num_surfaces] == 6}
    ::test::press $tabs.palette.row.unused
    ::test::check "the next unused one" {$::vesk::palette::current == 5}
    ::test::shot extras-palette
    $tabs select $tabs.material
    ::test::pause 200
    ::test::press $tabs.material.top.pick 40
    ::test::key ctrl+a
    ::test::type "wing ochre"
    ::test::key Return
    ::test::check "a typed name names the material" {[lindex [vesk get_material 5] 0] eq "wing ochre"}

    # Types.
    fresh
    vesk group
    $tabs select $tabs.object
    ::test::pause 300
    set group [vesk get_selected_objects]
    set box $tabs.object.flags.type
    ::test::check "a group can be another type" {[$box get] eq "group" && ![$box instate disabled]}
    ::test::press $box
    ::test::key Up Return
    ::test::check "and becomes it" {[dict get [vesk object_info $group] type] eq "poly"}
    vesk undo
    ::test::check "which undo takes back" {[dict get [vesk object_info $group] type] eq "group"}

    # Measuring by the tool column.
    fresh
    ::test::press .main.tools.measure
    ::test::check "the measure tool tells area and volume" {
        $::vesk::tools::measured eq "1 object  area 6  volume 1"
    }
    ::test::press .main.tools.move

    # The options of the last operation once more.
    fresh
    vesk set_select_mode surface
    vesk select_all
    set ::prefs_hole_percent 50
    set before $::undo_count
    ::test::at xy 150 150
    ::vesk::menus::invoke [::vesk::menus::find surface surface_make_hole]
    ::test::pause 500
    ::test::key Return
    set area1 [vesk get_counts]
    proc corner {} {
        # Where the hole's edge lies tells its percentage.
        vesk set_select_mode vertex
        vesk select_all
        set text [vesk measure]
        vesk set_select_mode surface
        return $text
    }
    set small [corner]
    vesk clear_selection
    ::test::key ctrl+shift+r
    ::test::check "other steps since: nothing to adjust" {
        ![winfo exists $::vesk::view::area_path.options]
    }
    fresh
    vesk set_select_mode surface
    vesk select_all
    set before $::undo_count
    ::vesk::menus::invoke [::vesk::menus::find surface surface_make_hole]
    ::test::pause 500
    ::test::key Return
    set faces [lindex [vesk get_counts] 3]
    ::test::key ctrl+shift+r
    set options $::vesk::view::area_path.options
    ::test::check "the options are there again, with the result" {
        [winfo exists $options] && [lindex [vesk get_counts] 3] == $faces
    }
    ::test::key ctrl+a
    ::test::type 20
    ::test::pause 400
    ::test::check "another number makes another result in its place" {
        $::prefs_hole_percent == 20 && [lindex [vesk get_counts] 3] == $faces
        && $::undo_count == $before + 1
    }
    ::test::key Escape
    ::test::check "Escape brings the kept one back" {
        $::prefs_hole_percent == 50 && [lindex [vesk get_counts] 3] == $faces
        && ![winfo exists $options]
    }

    # Lines of the console as a tool.
    vesk clear_all
    ::test::at xy 150 150
    ::test::key F12
    ::vesk::console::empty
    ::test::type "vesk new_cube"
    ::test::key Return
    ::test::type "vesk move 1 0 0"
    ::test::key Return
    set text .main.console.text
    $text tag add sel 1.0 end
    ::test::press $text 100 10 3
    ::test::key Down Down Return
    ::test::check "the right button asks for the tool's name" {[winfo exists .savetool]}
    ::test::type "shifted cube"
    ::test::shot extras-savetool
    ::test::key Return
    ::test::check "the commands among the lines are kept" {
        [dict get [::vesk::settings::get saved_tools] "shifted cube"]
            eq "vesk new_cube; vesk move 1 0 0"
    }
    set path [dict get $::vesk::menus::paths tools]
    ::vesk::menus::refresh tools $path
    ::test::check "the menu lists it" {[$path.mytools entrycget 0 -label] eq "  shifted cube"}
    set count [llength [vesk object_tree]]
    $path.mytools invoke 0
    ::test::check "and runs it" {[llength [vesk object_tree]] == $count + 7}
    ::test::key F12

    # Tab reaches the console after the panels.
    set order {}
    set ::vesk::console_shown 1
    ::vesk::console::show
    ::test::pause 300
    set w .opt.modes.object
    for {set i 0} {$i < 150} {incr i} {
        set w [tk_focusNext $w]
        foreach region {.main.tools .main.centre .main.right.objects .main.right.tabs .main.console .opt} {
            if {[string match $region* $w] && $region ne [lindex $order end]} {lappend order $region}
        }
        if {$w eq ".opt.modes.object"} {break}
    }
    ::test::check "Tab goes through the regions in their order" {
        [string match "*.main.tools .main.centre .main.right.objects .main.right.tabs .main.console*" $order]
    }
    set ::vesk::console_shown 0
    ::vesk::console::show

    # The command socket.
    ::test::check "the socket is shut at first" {[catch {socket 127.0.0.1 $::prefs_tcl_socket_port}]}
    set ::prefs_tcl_socket_port 16550
    set ::prefs_allow_socket_commands 1
    ::test::wait_until {[winfo ismapped .status.socket]}
    ::test::check "a badge tells that it is open" {[winfo ismapped .status.socket]}
    set channel [socket 127.0.0.1 16550]
    fconfigure $channel -buffering line -blocking 0
    puts $channel "vesk get_version_string"
    puts $channel "nonsense command"
    ::test::pause 400
    ::test::check "it answers" {[string match "ok VESK*" [gets $channel]]}
    ::test::check "also what failed" {[string match "error invalid command*" [gets $channel]]}
    set ::prefs_allow_socket_commands 0
    ::test::wait_until {![winfo ismapped .status.socket]}
    ::test::check "off, it is shut" {[catch {socket 127.0.0.1 16550}] && ![winfo ismapped .status.socket]}
    close $channel

    # A picture in the file dialog.
    set folder $::env(VESK_TEST_WORK)/pictures
    file mkdir $folder
    image create photo tile -width 64 -height 32
    tile put red -to 0 0 64 32
    # An uncompressed BMP, for which no plug-in is needed.
    set stream [open $folder/tile.bmp wb]
    puts -nonewline $stream [binary format a2iiiiiissiiiiii BM [expr {54 + 64 * 32 * 3}] 0 54 40 64 32 \
        1 24 0 [expr {64 * 32 * 3}] 0 0 0 0]
    puts -nonewline $stream [string repeat [binary format ccc 0 0 255] [expr {64 * 32}]]
    close $stream
    close [open $folder/notes.txt w]
    vesk clear_all
    vesk create sphere 2 -1 -1 -1 1 1 1
    vesk file_save $folder/ball.vesk
    after 700 {
        set list .filebox.list
        ::test::press_row $list [lindex [$list children {}] 0]
        ::test::wait_until {[.filebox.preview.picture cget -image] ne ""}
        set ::previewed_model [expr {[winfo ismapped .filebox.preview]
            && [image width [.filebox.preview.picture cget -image]] == 180}]
        ::test::shot extras-filebox-model
        set list .filebox.list
        ::test::press_row $list [lindex [$list children {}] 2]
        ::test::pause 300
        set ::previewed [expr {[winfo ismapped .filebox.preview]
            && [string match "64 * 32, colour" [.filebox.preview.size cget -text]]}]
        ::test::shot extras-filebox
        ::test::press_row $list [lindex [$list children {}] 1]
        ::test::pause 300
        set ::previewed_text [winfo ismapped .filebox.preview]
        ::test::key Escape
    }
    ::vesk::filebox::ask open Open $folder {{"All files" *}}
    ::test::check "a chosen model is drawn" {$::previewed_model}
    ::test::check "a chosen picture is shown" {$::previewed}
    ::test::check "another file is not" {!$::previewed_text}

    # Help.
    ::vesk::report::open
    ::test::pause 300
    ::test::check "a report has version, system and console" {
        [string match "VESK v3.6*Tcl/Tk*settings:*Last lines of the console:*" \
            [.report.in.lines get 1.0 end]]
    }
    ::test::press .report.in.row.copy
    ::test::check "and is copied" {[string match "VESK v3.6*" [clipboard get]]}
    ::test::shot extras-report
    ::test::key Escape
    ::test::check "Escape closes it" {![winfo exists .report]}
    foreach page {manual tour scripting plugins file-format batch performance} {
        ::vesk::help::page $page
        ::test::check "Help has a page for $page" {[string match "web browser - *" $::vesk::status::message]}
    }
    ::vesk::need windows tips
    ::test::check "thirty tips, each another" {
        [llength $::vesk::tips::list] >= 30
        && [llength [lsort -unique $::vesk::tips::list]] == [llength $::vesk::tips::list]
    }
    ::test::check "no script failed" {$::test::errors eq {}}
}
