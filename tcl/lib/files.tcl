# files.tcl --
#   Opening, saving and the question about unsaved changes. The executable counts changes of the
#   model; the scripts remember the count of the last save.

namespace eval ::vesk::files {
    variable target ""          ;# the file that Save writes, a .vesk name, or ""
    variable title ""           ;# the name shown in the title bar
    variable saved_count -1     ;# change_count at the last save or load into an empty world
    variable saved_at 0         ;# time of that, seconds
    variable stamp ""           ;# what the target's file was like then, "" not known
    variable starting 1         ;# files of the command line are still being read
    variable geometry {"Geometry files" {*.vesk *.3ds *.dxf *.lwo *.lws *.md2 *.bsp *.wrl *.tri
        *.vec *.r2v *.obj *.ply *.stl *.gltf *.glb *.dae *.fbx *.3mf}}
    variable loaded_before 0    ;# the world was not empty before the last load
}

# ---- unsaved changes ----

# mark_saved --
#   Notes that the file holds the model as it is now.
proc ::vesk::files::mark_saved {} {
    variable saved_count
    variable saved_at
    variable stamp
    variable target
    set saved_count [::vesk::ops::change_count]
    set saved_at [clock seconds]
    set stamp [stamp_of $target]
    note_changes
}

# stamp_of --
#   What changes when another program writes a file; "" for none.
proc ::vesk::files::stamp_of {name} {
    if {$name eq "" || [catch {file stat $name now}]} {return ""}
    return [list $now(mtime) $now(size) $now(ino)]
}

# note_changes --
#   Compares the counts; keeps `unsaved_changes` and the title in step.
proc ::vesk::files::note_changes {} {
    variable saved_count
    set changed [expr {[::vesk::ops::change_count] != $saved_count}]
    if {$::unsaved_changes != $changed} {set ::unsaved_changes $changed}
    show_title
}

proc ::vesk::files::show_title {} {
    variable title
    set name untitled
    if {$title ne ""} {set name [file tail $title]}
    set mark [expr {$::unsaved_changes ? "*" : ""}]
    set text "$name$mark - VESK"
    if {[wm title .] ne $text} {wm title . $text}
}

# confirmed --
#   Asks about unsaved changes; returns 1 when the caller may go on.
proc ::vesk::files::confirmed {} {
    variable saved_at
    variable title
    note_changes
    if {!$::unsaved_changes} {return 1}
    variable target
    set text "It was edited since [since $saved_at]."
    if {$title eq "" && $target eq ""} {set text "It was never saved."}
    set name "the untitled scene"
    if {$title ne ""} {set name [file tail $title]}
    switch -- [::vesk::dialogs::question "Save changes to $name?" $text \
            {discard "Don't save" cancel Cancel save Save} save cancel] {
        save    {return [save]}
        discard {return 1}
    }
    return 0
}

proc ::vesk::files::since {time} {
    if {$time == 0} {return "the start"}
    set minutes [expr {([clock seconds] - $time) / 60}]
    if {$minutes < 1} {return "the last save, less than a minute ago"}
    return "the last save, $minutes minute[expr {$minutes == 1 ? "" : "s"}] ago"
}

# ---- names from the executable ----

# told_name --
#   A file was read or written. Only a .vesk file that was read into an empty world becomes the
#   target of Save; any other name is only the title.
proc ::vesk::files::told_name {name} {
    variable target
    variable title
    variable starting
    variable loaded_before
    set title $name
    set native [string equal -nocase [file extension $name] .vesk]
    set many [expr {$starting && [start_files] > 1}]
    set target [expr {$native && !$loaded_before && !$many ? $name : ""}]
    if {$starting} {
        add_recent $name
        if {!$many} {mark_saved}
        # Nothing of a model is selected after opening: a user first looks at it.
        vesk clear_selection
    }
    show_title
}

# start_files --
#   How many files the command line named.
proc ::vesk::files::start_files {} {
    if {![info exists ::argv]} {return 1}
    return [llength [lsearch -all -inline -not -glob $::argv -*]]
}

# started --
#   Ends the start-up: an empty scene without a file counts as saved.
proc ::vesk::files::started {} {
    variable starting
    variable saved_count
    if {!$starting} {return}
    set starting 0
    if {$saved_count < 0 && [lindex [vesk get_counts] 1] == 0} {mark_saved}
    show_title
    ::vesk::recovery::start
}

# ---- commands of the menu ----

proc ::vesk::files::new {} {
    if {![confirmed]} {return}
    empty
    vesk view_3d_from_corner
    mark_saved
    display_message "new scene"
}

# empty --
#   Deletes everything; the palette stays.
proc ::vesk::files::empty {} {
    variable target
    variable title
    set target ""
    set title ""
    ::vesk::ops::run clear_all
}

proc ::vesk::files::open_ask {} {
    if {![confirmed]} {return}
    variable geometry
    set name [::vesk::filebox::ask open "Open" $::prefs_load_file_path \
        [list {"VESK models" *.vesk} $geometry {"All files" *}]]
    if {$name eq ""} {return}
    set ::prefs_load_file_path [file dirname $name]
    open_file $name
}

# open_file --
#   Replaces the scene by that of a file. An unreadable file is refused before the scene is cleared.
proc ::vesk::files::open_file {name} {
    variable loaded_before
    variable title
    variable target
    if {[set reason [unreadable $name]] ne ""} {
        display_message $reason
        return 0
    }
    empty
    set loaded_before 0
    if {![load $name]} {
        mark_saved
        return 0
    }
    vesk clear_selection
    set title $name
    set target [expr {[string equal -nocase [file extension $name] .vesk] ? $name : ""}]
    mark_saved
    add_recent $name
    return 1
}

# unreadable --
#   Why a file cannot be opened, or "". A model file is known by its first bytes.
proc ::vesk::files::unreadable {name} {
    if {[file isdirectory $name]} {return "$name is a folder"}
    if {[catch {::open $name rb} channel]} {return "can't read $name"}
    set head [read $channel 256]
    close $channel
    if {[string equal -nocase [file extension $name] .vesk]
            && ![string match VESK* [string trimleft $head]]} {
        return "$name is no VESK model"
    }
    return ""
}

proc ::vesk::files::load {name} {
    ::vesk::ops::echo vesk file_load $name
    set result [vesk file_load $name]
    ::vesk::ops::request
    return [expr {$result eq "1"}]
}

proc ::vesk::files::import_ask {} {
    variable geometry
    set name [::vesk::filebox::ask open "Import" $::prefs_import_file_path \
        [list $geometry {"All files" *}]]
    if {$name eq ""} {return}
    set ::prefs_import_file_path [file dirname $name]
    variable loaded_before 1
    load $name
}

proc ::vesk::files::save {} {
    variable target
    variable stamp
    if {$target eq ""} {return [save_as]}
    set now [stamp_of $target]
    if {$stamp ne "" && $now ne "" && $now ne $stamp} {
        set text "Another program wrote to the file since it was opened or saved here."
        switch -- [::vesk::dialogs::question "Save over the changes in [file tail $target]?" $text \
                {over "Save over them" cancel Cancel other "Save as..."} other cancel] {
            other  {return [save_as]}
            cancel {return 0}
        }
    }
    return [write $target]
}

proc ::vesk::files::save_as {} {
    variable title
    set start $::prefs_save_file_path
    set suggestion [expr {$title eq "" ? "untitled.vesk" : "[file rootname [file tail $title]].vesk"}]
    set name [::vesk::filebox::ask save "Save as" $start {{"VESK models" *.vesk}} $suggestion]
    if {$name eq ""} {return 0}
    if {![string equal -nocase [file extension $name] .vesk]} {append name .vesk}
    set ::prefs_save_file_path [file dirname $name]
    return [write $name]
}

# write --
#   Saves to a file, which becomes the target if that worked.
proc ::vesk::files::write {name} {
    variable target
    variable title
    ::vesk::ops::echo vesk file_save $name
    if {[vesk file_save $name] ne "1"} {return 0}
    set target $name
    set title $name
    mark_saved
    add_recent $name
    return 1
}

proc ::vesk::files::quit {} {
    if {![confirmed]} {return}
    ::vesk::main::remember
    if {$::prefs_save_settings_on_exit} {vesk save_settings}
    exit 0
}

# ---- recent files ----

# add_recent --
#   Puts a name first among the four recent ones.
proc ::vesk::files::add_recent {name} {
    set names [list $name]
    foreach old [recent] {
        if {$old ne $name} {lappend names $old}
    }
    foreach place {0 1 2 3} {
        set ::prefs_recentfiles$place [lindex $names $place]
    }
}

proc ::vesk::files::recent {} {
    set names {}
    foreach place {0 1 2 3} {
        if {[set ::prefs_recentfiles$place] ne ""} {lappend names [set ::prefs_recentfiles$place]}
    }
    return $names
}

proc ::vesk::files::fill_recent {path} {
    $path delete 0 end
    set number 0
    foreach name [recent] {
        incr number
        ::vesk::menus::add_command $path "$number  [shortened $name 60]" \
            [list ::vesk::files::open_recent $name] -underline 2
    }
    if {$number == 0} {$path add command -label "  no files yet   " -state disabled}
}

proc ::vesk::files::open_recent {name} {
    if {[confirmed]} {open_file $name}
}

# shortened --
#   A long path with its middle left out.
proc ::vesk::files::shortened {name limit} {
    set length [string length $name]
    if {$length <= $limit} {return $name}
    set tail [file tail $name]
    set room [expr {$limit - [string length $tail] - 5}]
    if {$room < 1} {return ...[string range $tail end-[expr {$limit - 4}] end]}
    return [string range $name 0 $room-1]/.../$tail
}

# ---- what the executable calls ----

# The name arrives as the words of one line; names with blanks are several words.
proc update_savefile_name {args} {::vesk::files::told_name [join $args]}

# pick --
#   Opens one of the file dialogs of the executable; returns the chosen name or "".
#   key  preference that keeps the folder of this kind
proc ::vesk::files::pick {how title filter key} {
    set name [::vesk::filebox::ask $how $title [set ::prefs_$key] $filter]
    if {$name ne ""} {
        set ::prefs_$key [expr {$how eq "folder" ? $name : [file dirname $name]}]
    }
    return $name
}
proc get_opentexturename {title filter} {::vesk::files::pick open $title $filter texture_file_path}
proc get_loadfilename {title filter} {::vesk::files::pick open $title $filter load_file_path}
proc get_importfilename {title filter} {::vesk::files::pick open $title $filter import_file_path}
proc get_savefilename {title filter} {::vesk::files::pick save $title $filter save_file_path}
proc get_exportfilename {title filter} {::vesk::files::pick save $title $filter export_file_path}
proc get_exportfolder {title} {::vesk::files::pick folder $title {} export_file_path}
array set fsBox {currentfilter 0}
