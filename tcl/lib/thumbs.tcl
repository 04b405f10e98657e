# thumbs.tcl --
#   Pictures of model files, drawn by a process of its own while the dialog goes on: one at a time,
#   ended when another is wanted, kept for the session.

namespace eval ::vesk::thumbs {
    variable made {}            ;# {file mtime size} -> picture, "" for what cannot be drawn
    variable running ""         ;# {channel key output script}
    variable suffixes {.vesk .3ds .dxf .lwo .lws .md2 .bsp .wrl .tri .obj .ply .stl .gltf .glb .dae
        .fbx .3mf}
    variable largest 200e6      ;# bytes; larger files are not drawn
}

# can_draw --
#   Whether a file looks like a model.
proc ::vesk::thumbs::can_draw {file} {
    variable suffixes
    variable largest
    return [expr {[string tolower [file extension $file]] in $suffixes
        && [file isfile $file] && [file size $file] <= $largest}]
}

# request --
#   Calls `script` (words) with the picture of a file, or with "" when there is none; at once when
#   the picture is known.
#   size  pixels of its side
proc ::vesk::thumbs::request {file size script} {
    variable made
    variable running
    cancel
    if {![can_draw $file]} {
        {*}$script ""
        return
    }
    set key [list $file [file mtime $file] $size]
    if {[dict exists $made $key]} {
        {*}$script [dict get $made $key]
        return
    }
    # A file of our own, under a name that nobody can know beforehand.
    if {[catch {close [file tempfile output [file join [temporary] vesk.png]]}]} {
        {*}$script ""
        return
    }
    if {[catch {open |[list [info nameofexecutable] -thumbnail $size $output $file 2>@1] r} channel]} {
        file delete $output
        {*}$script ""
        return
    }
    set running [list $channel $key $output $script]
    fconfigure $channel -blocking 0 -translation binary
    fileevent $channel readable ::vesk::thumbs::readable
}

proc ::vesk::thumbs::temporary {} {
    if {[info exists ::env(TMPDIR)] && [file isdirectory $::env(TMPDIR)]} {return $::env(TMPDIR)}
    return /tmp
}

# readable --
#   Ignores the output of the process and fetches the picture at its end.
proc ::vesk::thumbs::readable {} {
    variable running
    variable made
    lassign $running channel key output script
    read $channel
    if {![eof $channel]} {return}
    set running ""
    catch {
        fconfigure $channel -blocking 1
        close $channel
    }
    set photo ""
    if {[file exists $output]} {
        catch {set photo [image create photo -file $output -format png]}
        file delete $output
    }
    dict set made $key $photo
    {*}$script $photo
}

# cancel --
#   Ends the process of a picture that nobody waits for any more.
proc ::vesk::thumbs::cancel {} {
    variable running
    if {$running eq ""} {return}
    lassign $running channel key output script
    set running ""
    fileevent $channel readable {}
    catch {exec kill {*}[pid $channel]}
    catch {close $channel}
    file delete $output
}
