# menus_table.tcl --
#   The menus that edit, as data (menus_table_view.tcl holds the others): the menu bar, the context
#   menus, the key table and the command search are all built from this table. A menu is {name
#   underlined-label {row ...}}; a row is
#     {kind label target key needs help}
#   kind    run     target: words after "vesk"
#           ask     target: command, then its fields (see options.tcl): an options box
#           call    target: a procedure of these scripts and its arguments
#           check   target: variable, then the words to call after a change
#           radio   target: variable, value, then the words to call
#           menu    target: name of another menu of this table
#           line    a separator
#           show    target: one command and a title: shows its answer
#   "&" stands before the underlined letter.
#   key     shown at the right; those with a modifier and function keys are bound in the window,
#           single letters belong to the views and the objects panel
#   needs   condition of the row: "" none, some a selection, object, surface, vertex a selection in
#           that mode, element a selection of edges or vertices, several objects, a group, undo, redo, repeat, again
#           and paste what their rows need, hidden, locked, model a model

namespace eval ::vesk::menus {
    # Menus of the bar, in order.
    variable bar {file edit select create object surface edge vertex view texture tools plugins window
        help}
    variable table {}
}

# define --
#   Adds one menu to the table.
proc ::vesk::menus::define {name label rows} {
    variable table
    dict set table $name [list $label $rows]
}

::vesk::menus::define file "&File" {
    {call "&New" {::vesk::files::new} Ctrl+N "" "Empties the scene."}
    {call "&Open..." {::vesk::files::open_ask} Ctrl+O "" "Replaces the scene by a file's."}
    {menu "Open &recent" recent "" "" "Files opened or saved lately."}
    {call "&Import..." {::vesk::files::import_ask} Ctrl+I "" "Adds a file to the scene."}
    {call "I&mport report..." {::vesk::importreport::show} "" "" "What the last import complained about."}
    {line}
    {call "&Save" {::vesk::files::save} Ctrl+S "" "Writes the scene to its file."}
    {call "Save &as..." {::vesk::files::save_as} Ctrl+Shift+S "" "Writes the scene to another file."}
    {ask "Save se&lection..." {save_selection_vesk {File save_file {}}} "" some
        "Writes what is selected to a file of its own."}
    {menu "&Export" export "" "" "Writes the scene in other formats."}
    {line}
    {run "Copy &3D view" {copy_3d_win_to_clipboard} "" "" "Puts a picture of the 3D view on the clipboard."}
    {run "Save se&ttings" {save_settings} "" "" "Writes the preferences now."}
    {line}
    {call "&Quit" {::vesk::files::quit} Ctrl+Q "" "Ends the program."}
}
::vesk::menus::define export "Export" {
    {ask "VRML &2.0..." {write_vrml2_tree {File save_file .wrl}} "" model "Writes a VRML 2.0 world."}
    {ask "VRML 2.0 &prototypes..." {write_vrml2_proto {File save_file .wrl}} "" model
        "Writes each object as a VRML 2.0 prototype."}
    {ask "VRML &1.0..." {write_vrml {File save_file .wrl}} "" model "Writes a VRML 1.0 world."}
    {ask "&Inventor..." {write_inventor {File save_file .iv}} "" model "Writes an Inventor scene."}
    {ask "P&OV..." {write_POV {File save_file .pov}} "" model "Writes a scene for the POV renderer."}
    {ask "&RIB..." {write_rib {File save_file .rib}} "" model "Writes a RIB archive."}
    {ask "&Dive..." {write_dive {File save_file .vr}} "" model "Writes a Dive world."}
    {ask "d&VS..." {write_dvs {File save_file .vdi}} "" model "Writes dVS geometry."}
    {ask "&MASSIVE..." {write_massive {File save_file .geo}} "" model "Writes MASSIVE geometry."}
    {ask "D&XF..." {write_dxf {File save_file .dxf}} "" model "Writes a drawing: faces, lines and points, a layer for each group."}
    {ask "&Triangles..." {write_tri {File save_file .tri}} "" model "Writes a list of triangles."}
    {ask "O&lder VESK..." {write_vesk_old {File save_file .vesk}} "" model
        "Writes a model file that older versions read."}
}
::vesk::menus::define edit "&Edit" {
    {run "&Undo" {step_back} Ctrl+Z undo "Takes the last change back."}
    {run "&Redo" {redo} Ctrl+Shift+Z redo "Makes the change again that was taken back."}
    {call "&History..." {::vesk::history::open} Ctrl+H "" "Lists the changes; a click goes back or forth."}
    {run "Repeat the la&st" {repeat_last} Ctrl+R repeat "Does the last operation again."}
    {call "Ad&just the last..." {::vesk::options::again} Ctrl+Shift+R again "The options of the last operation once more."}
    {line}
    {run "Cu&t" {clipboard_cut} Ctrl+X some "Copies the selection and deletes it."}
    {run "&Copy" {clipboard_copy} Ctrl+C some "Copies the selection to the clipboard."}
    {run "&Paste" {clipboard_paste} Ctrl+V paste "Adds what the clipboard holds."}
    {run "&Duplicate" {duplicate} Ctrl+D some "Copies the selection beside itself."}
    {run "C&lone" {clone_selection} "" some "Copies the selection in place."}
    {run "D&elete" {delete} Del some "Deletes the selection."}
    {line}
    {menu "Tr&ansform" transform "" "" "Moves, turns and sizes by numbers."}
    {menu "Deform" deform "" "" "Bends, twists and swells the selection."}
    {menu "Symmetry" symmetry "" "" "What is done on one side is done on the other."}
    {menu "Soft selection" soft "" "" "Moves take along what is near."}
    {line}
    {call "Pre&ferences..." {::vesk::preferences::open} Ctrl+, "" "Every setting, the keys and the plug-ins."}
}
::vesk::menus::define transform "Transform" {
    {ask "&Move..." {move_with_undo {X number 0} {Y number 0} {Z number 0}} "" some
        "Moves the selection by a distance."}
    {ask "Move &to..." {move_to {X centre 0} {Y centre 1} {Z centre 2}} "" some
        "Moves the middle of the selection to a point."}
    {ask "Move along an a&xis..." {move_along {Distance number 1} {Axis axis Z}} "" some
        "Moves the selection along any axis: the mean normal, the last or a picked one."}
    {ask "&Scale..." {scale {X number 1} {Y number 1} {Z number 1}} "" some "Multiplies the size of the selection."}
    {ask "Si&ze to..." {size_to {X size 0} {Y size 1} {Z size 2}} "" some
        "Gives the selection a size; an axis of no extent stays."}
    {ask "&Rotate..." {rotate_with_undo {X number 0} {Y number 0} {Z number 0}} "" some
        "Turns the selection about its middle, in degrees."}
    {ask "Rotate a&bout a point..." {rotate_about_with_undo {"Turn X" number 0} {"Turn Y" number 0}
        {"Turn Z" number 0} {"Point X" number 0} {"Point Y" number 0} {"Point Z" number 0}} "" some
        "Turns the selection about a point, in degrees."}
    {ask "Rotate about an &axis..." {rotate_about_axis {Degrees number 90} {Axis axis Z}
        {Pivot pivot Selection}} "" some "Turns the selection about one axis."}
    {ask "Scale a&long an axis..." {scale_along {Factor number 2} {Axis axis Z}
        {Pivot pivot Selection}} "" some "Scales the selection along one axis; -1 mirrors it."}
    {menu "M&irror" mirror "" "" "Mirrors the selection at the pivot."}
}
::vesk::menus::define deform "Deform" {
    {ask "&Bend..." {bend {Degrees number 90} {Axis axis Z} {Pivot pivot Selection}} "" some
        "Makes an arc of the selection, about an axis."}
    {ask "&Taper..." {taper {Factor number 0.5} {Axis axis Y} {Pivot pivot Selection}} "" some
        "Makes one end of the selection narrower or wider."}
    {ask "T&wist..." {twist {Degrees number 90} {Axis axis Y} {Pivot pivot Selection}} "" some
        "Turns the ends of the selection against each other."}
    {ask "&Inflate..." {inflate {Share number 1} {Pivot pivot Selection}} "" some
        "Brings the selection onto a sphere, or part of the way."}
    {ask "&Noise..." {noise {Amount number 0.1} {Seed int 1}} "" some
        "Moves each vertex a little, by chance."}
    {ask "&Push along the normals..." {push_normals {Distance number 0.1}} "" some
        "Makes the selection fatter or thinner."}
}
::vesk::menus::define symmetry "Symmetry" {
    {call "&On or off" {::vesk::reach::toggle_symmetry} Ctrl+Shift+Y ""
        "Switches symmetry on, as it was last, or off."}
    {line}
    {radio "O&ff" {::prefs_symmetry_axis 0 symmetry off} "" "" "Each side by itself."}
    {radio "Along &X" {::prefs_symmetry_axis 1 symmetry x} "" "" "Left and right."}
    {radio "Along &Y" {::prefs_symmetry_axis 2 symmetry y} "" "" "Above and below."}
    {radio "Along &Z" {::prefs_symmetry_axis 3 symmetry z} "" "" "Front and back."}
    {line}
    {radio "Plane through the o&rigin" {::prefs_symmetry_at_centre 0 redraw_all} "" ""
        "The plane of symmetry goes through the origin."}
    {radio "Plane through the object's &centre" {::prefs_symmetry_at_centre 1 redraw_all} "" ""
        "The plane of symmetry goes through the centre of each object."}
}
::vesk::menus::define soft "Soft selection" {
    {call "&On or off" {::vesk::reach::toggle_soft} Ctrl+Shift+O ""
        "Moves take along what is near. The wheel changes how far during a drag."}
    {ask "&Radius..." {soft_selection {Moves choice {Soft 1 Plain 0}} {Radius from soft_radius}} "" ""
        "How far what is near is taken along."}
    {line}
    {radio "&S-shaped" {::prefs_soft_curve 0 ::vesk::reach::set_soft} "" "" "Round above and below."}
    {radio "Roun&d" {::prefs_soft_curve 1 ::vesk::reach::set_soft} "" "" "Like a ball."}
    {radio "&Linear" {::prefs_soft_curve 2 ::vesk::reach::set_soft} "" "" "Like a cone."}
    {radio "S&harp" {::prefs_soft_curve 3 ::vesk::reach::set_soft} "" "" "Like a thorn."}
    {radio "&Even" {::prefs_soft_curve 4 ::vesk::reach::set_soft} "" "" "All within the radius alike."}
    {line}
    {radio "Through s&pace" {::prefs_soft_along_surface 0 ::vesk::reach::set_soft} "" ""
        "Measures straight."}
    {radio "&Along the surface" {::prefs_soft_along_surface 1 ::vesk::reach::set_soft} "" ""
        "Measures along the edges: what only lies near stays."}
}
::vesk::menus::define mirror "Mirror" {
    {call "Along &X" {::vesk::tools::mirror 0} "" some "Mirrors the selection at the pivot along X."}
    {call "Along &Y" {::vesk::tools::mirror 1} "" some "Mirrors the selection at the pivot along Y."}
    {call "Along &Z" {::vesk::tools::mirror 2} "" some "Mirrors the selection at the pivot along Z."}
    {ask "Along an &axis..." {mirror_along {Axis axis X} {Pivot pivot Selection}} "" some
        "Mirrors the selection along any axis: the mean normal, the last or a picked one."}
}
::vesk::menus::define select "&Select" {
    {radio "&Tree" {::vesk::select_mode tree set_select_mode tree} "" "" "Selects whole top-level objects."}
    {radio "&Object" {::vesk::select_mode object set_select_mode object} O "" "Selects single objects."}
    {radio "&Surface" {::vesk::select_mode surface set_select_mode surface} S "" "Selects surfaces."}
    {radio "E&dge" {::vesk::select_mode edge set_select_mode edge} D "" "Selects edges, the sides of surfaces."}
    {radio "&Vertex" {::vesk::select_mode vertex set_select_mode vertex} V "" "Selects vertices."}
    {radio "&Light" {::vesk::select_mode light set_select_mode light} "" "" "Selects lights."}
    {line}
    {run "&All" {select_all} Ctrl+A model "Selects everything of the current mode."}
    {run "&None" {clear_selection} Ctrl+Shift+A "" "Selects nothing."}
    {ask "&By name..." {select_by_name {Name text {}}} "" model "Adds the objects of a name to the selection."}
    {ask "Unselect by na&me..." {unselect_by_name {Name text {}}} "" some
        "Takes the objects of a name out of the selection."}
    {run "Rubber band" {set_view_tool band} B model
        "The next drag selects what it encloses, in the 3D view too, wherever it begins."}
    {check "Select through" {prefs_select_through} "" ""
        "Clicks and rubber bands find what is hidden behind surfaces, too."}
    {line}
    {run "Gro&w" {select_grow} "" some "Adds the neighbours of what is selected."}
    {run "S&hrink" {select_shrink} "" some "Takes out what touches something unselected."}
    {run "Inv&ert" {select_invert} "" model "Selects what is not selected."}
    {run "Lin&ked" {select_linked} "" some "Adds all that hangs together with the selection."}
    {ask "S&imilar..." {select_similar {Property choice {Material material Normal normal Area area
        Length length Corners corners Coplanar coplanar}} {Tolerance number 0.01}} "" some
        "Adds what is like the selection: degrees, shares, numbers or distances apart."}
    {ask "Random..." {select_random {Percent int 50} {Seed int 1}} "" model
        "Keeps a random part of the selection, or of everything."}
    {line}
    {run "Edge loo&p" {select_loop} "" element "Goes on from the selected edges, straight through the vertices."}
    {run "Edge rin&g" {select_ring} "" element "Goes on across the quads beside the selected edges."}
    {run "Open edges" {select_boundary} "" model "Selects the edges with a surface on one side only."}
    {ask "Sharp edges..." {select_sharp {Degrees number 30}} "" model
        "Selects the edges whose surfaces meet at a larger angle."}
    {run "Shortest path" {select_path} "" some "Selects the way from the first selected element to the last."}
    {line}
    {run "Behind" {select_behind} Q model
        "Selects the next element behind the selected one, under the pointer or where the last click was."}
    {run "What lies inside" {select_inside} "" some
        "Selects what lies inside the selected closed objects."}
    {run "Surfaces of the ve&rtices" {select_part_selected_surfaces} "" vertex
        "Selects every surface that has a selected vertex."}
    {line}
    {ask "Keep as a set..." {selection_set_save {Name text {}}} "" some
        "Keeps the selection under a name, in the file too."}
    {menu "Selection sets" selectionsets "" "" "Kept selections: selects them again, or forgets them."}
}
::vesk::menus::define create "&Create" {
    {call "&Polygon" {::vesk::tools::choose polygon} "" "" "Draws a polygon corner by corner."}
    {call "Poly&line" {::vesk::tools::choose polyline} "" "" "Draws a line of many points."}
    {call "L&ine" {::vesk::tools::choose line} "" "" "Draws lines of two points."}
    {call "&Circle" {::vesk::tools::choose circle} "" "" "Draws a circle or ellipse."}
    {call "&Disk" {::vesk::tools::choose disk} "" "" "Draws a disk of triangles."}
    {call "&Rectangle" {::vesk::tools::choose rect} "" "" "Draws a rectangle."}
    {call "&Grid" {::vesk::tools::choose grid} "" "" "Draws a grid of lines."}
    {call "&Mesh" {::vesk::tools::choose mesh} "" "" "Draws a mesh of surfaces."}
    {line}
    {call "&Box" {::vesk::tools::choose box} "" "" "Draws a box."}
    {call "C&ylinder" {::vesk::tools::choose cylinder} "" "" "Draws a cylinder."}
    {call "&Sphere" {::vesk::tools::choose sphere} "" "" "Draws a sphere."}
    {run "Cub&e" {create box 0 0 0 0 0 0 0} "" "" "Adds a regular cube at the origin."}
    {menu "&At the origin" atorigin "" "" "Adds a shape of unit size."}
    {call "Lig&ht" {::vesk::tools::choose light} "" "" "Sets a light."}
    {ask "&Text..." {create_text {Text text {}}} "" "" "Adds a text made of surfaces."}
    {line}
    {ask "Re&volve..." {revolve {Axis choice {X 0 Y 1 Z 2}} {Degrees pref revolve_degs int}
        {Segments pref revolve_segments int}} "" object "Sweeps the selection around an axis."}
    {menu "Surface &from vertices" fromvertices "" "" "Joins the selected vertices."}
    {run "&Object from surfaces" {surfaces_separate} "" surface
        "Moves the selected surfaces into an object of their own."}
    {run "Object from copied surfaces" {surface_create_object} "" surface
        "Copies the selected surfaces into an object of their own."}
}
::vesk::menus::define atorigin "At the origin" {
    {run "&Circle" {create circle 0 -0.5 -0.5 0 0.5 0.5 0} "" "" "Adds a circle."}
    {run "&Disk" {create disk 0 -0.5 -0.5 0 0.5 0.5 0} "" "" "Adds a disk."}
    {run "&Rectangle" {create rect 0 -0.5 -0.5 0 0.5 0.5 0} "" "" "Adds a rectangle."}
    {run "&Grid" {create grid 0 -0.5 -0.5 0 0.5 0.5 0} "" "" "Adds a grid of lines."}
    {run "&Mesh" {create mesh 0 -0.5 -0.5 0 0.5 0.5 0} "" "" "Adds a mesh of surfaces."}
    {run "&Box" {create box 2 -0.5 -0.5 -0.5 0.5 0.5 0.5} "" "" "Adds a box."}
    {run "C&ylinder" {create cylinder 2 -0.5 -0.5 -0.5 0.5 0.5 0.5} "" "" "Adds a cylinder."}
    {run "C&one" {create cone 2 -0.5 -0.5 -0.5 0.5 0.5 0.5} "" "" "Adds a cone."}
    {run "&Sphere" {create sphere 2 -0.5 -0.5 -0.5 0.5 0.5 0.5} "" "" "Adds a sphere."}
    {run "&Icosahedron" {create ico 2 -0.5 -0.5 -0.5 0.5 0.5 0.5} "" "" "Adds an icosahedron."}
}
::vesk::menus::define fromvertices "Surface from vertices" {
    {run "&Polygon" {createsurface 0} "" vertex "Joins the selected vertices to a polygon."}
    {run "&Closed line" {createsurface 1} "" vertex "Joins the selected vertices to a closed line."}
    {run "&Line" {createsurface 2} "" vertex "Joins the selected vertices to a line."}
}
::vesk::menus::define object "&Object" {
    {run "&Group" {group} Ctrl+G object "Puts the selected objects into a new group."}
    {run "&Ungroup" {ungroup} Ctrl+Shift+G group "Dissolves the selected groups."}
    {line}
    {run "&Hide" {hide_selected} H some "Hides the selected objects."}
    {run "Hide &others" {hide_unselected} "" some "Hides everything that is not selected."}
    {run "&Show all" {unhide} "" hidden "Shows everything again."}
    {run "&Lock" {lock_selected} "" some "Keeps the selected objects from being picked."}
    {run "Loc&k others" {lock_unselected} "" some "Locks everything that is not selected."}
    {run "U&nlock all" {unlock} "" locked "Unlocks everything."}
    {line}
    {menu "Copies" copies "" "" "Rows, rings and mirror images of the selection."}
    {menu "Align" align "" "" "Puts the selected things in line."}
    {menu "&Centre of object" centre "" "" "Where the object's centre lies."}
    {run "&Merge" {object_merge} "" several "Makes one object of the selected ones."}
    {ask "Boolean..." {boolean {Operation choice {Union union Difference difference
        Intersection intersection}} {"Keep the others, hidden" choice {No 0 Yes 1}}
        {"Live while moved" follow}} "" several
        "Makes one solid of the first selected object and the others."}
    {run "&Fragment" {object_fragment} "" object "Splits objects into their connected pieces."}
    {run "&Explode" {object_explode} "" object "Makes an object of every surface."}
    {call "To the front of the l&ist" {::vesk::objects::to_head} "" object
        "Moves the object before its brothers."}
    {menu "&Texture" texture_list "" "" "The picture on the selected objects."}
    {line}
    {run "Con&vex hull" {convexhull} "" some "Encloses the selected vertices."}
    {run "&Delaunay" {delaunay} "" some "Triangulates the selected vertices."}
    {ask "Su&bdivide..." {surface_loop_subdivision {Smoothing setting loop_smoothing number}} ""
        object "Divides and smooths the selected objects."}
    {ask "&Reduce..." {reduce {"Percent to lose" setting reduce_percent int}
        {"Keep the original" pref reduce_keep_original bool}} "" object
        "Takes vertices away and keeps the shape."}
    {run "O&ptimise" {optimize} "" object "Welds vertices that lie at the same place."}
    {run "Optimise surf&aces" {optimize_surfaces} "" object
        "Deletes double and empty surfaces and objects."}
    {run "Snap together b&y vertices" {object_snap_together_by_vertices} "" vertex
        "Moves objects so that two chosen vertices meet."}
}
::vesk::menus::define copies "Copies" {
    {ask "&Row..." {array {Copies int 3} {X number 1} {Y number 0} {Z number 0}
        {Steps choice {"As typed" 0 "In sizes of the selection" 1}}} "" some
        "Copies of the selection, each a step further."}
    {ask "R&ound..." {array_round {Copies int 5} {Axis axis Y} {Degrees number 360} {Pivot pivot Origin}}
        "" some "Copies of the selection round an axis; 360 degrees are shared evenly."}
    {ask "Along the &path..." {array_path {Copies int 5} {"Turn along" choice {Yes 1 No 0}}} "" some
        "Copies of the selection along the path that was defined."}
    {line}
    {ask "&Mirrored..." {mirror_copy {Axis axis X} {"Weld within" number 0} {Pivot pivot Origin}} "" some
        "The mirror image; welded, it becomes part of the object."}
    {ask "&Symmetrize..." {symmetrize {Axis axis X}
        {Keep choice {"The positive side" positive "The negative side" negative}} {Pivot pivot Origin}}
        "" some "Replaces one half by the mirror image of the other."}
    {line}
    {run "Pick the &axis" {pick_axis} "" some
        "Remembers the edge, the two vertices or the normal that is selected as an axis."}
    {run "Pick the pi&vot" {pick_pivot} "" some "Remembers the middle of the selection as a pivot."}
}
::vesk::menus::define align "Align" {
    {ask "&Align..." {align {Axis choice {X x Y y Z z}} {Ends choice {Lowest min Middle centre Highest max}}
        {To choice {"The selection's" selection "The first's" first "The origin" origin "The grid" grid}}}
        "" some "Brings ends or middles of the selected things to one place."}
    {ask "&Distribute..." {distribute {Axis choice {X x Y y Z z}} {Even choice {Gaps gaps Centres centres}}}
        "" some "Spaces the selected things evenly between the outer two."}
    {ask "D&rop..." {drop {"To the height" number 0}} "" some "Rests the selected things on a height."}
    {call "&Place on a surface" {::vesk::tools::choose place} "" some
        "The selection follows the pointer over other objects and stands on them."}
    {run "Drop on what lies &below" {drop below} "" some
        "Lets the selected things fall until they touch something."}
}
::vesk::menus::define centre "Centre of object" {
    {run "To the &middle" {object_recentre} "" object "The middle of the object's box."}
    {run "To the lowest &corner" {object_mincentre} "" object "The lowest corner of the object's box."}
}
# The executable and plug-ins add the loaded textures below these.
::vesk::menus::define texture_list "Texture" {
    {run "&None" {set_no_texture} "" some "Takes the texture off."}
    {run "&Choose..." {file_select_texture} "" some "Puts a picture on the selected objects."}
}
::vesk::menus::define surface "S&urface" {
    {ask "&Extrude..." {extrude_normal {Body choice {Automatic 1 "As set below" 0}}
        {Distance number 0.5} {Steps pref extrude_num int}
        {"Close the end" pref extrude_cap_end bool}
        {"Delete the original" pref extrude_delete_original bool}
        {"Turn the walls round" pref extrude_flip_cap bool}} "" surface
        "Sweeps the selected surfaces where they face."}
    {ask "E&xtrude by a vector..." {extrude_select {Body choice {Automatic 1 "As set below" 0}}
        {X number 0} {Y number 0} {Z number 0.5} {Steps pref extrude_num int}
        {"Close the end" pref extrude_cap_end bool}
        {"Delete the original" pref extrude_delete_original bool}
        {"Turn the walls round" pref extrude_flip_cap bool}} "" surface
        "Sweeps the selected surfaces along a vector."}
    {ask "Extrude e&ach..." {extrude_each {Distance number 0.1}} "" some
        "Moves every selected surface along its own normal, with walls."}
    {ask "Extrude along normals..." {extrude_normals {Distance number 0.1}} "" some
        "Moves connected surfaces evenly along their normals, with walls."}
    {ask "Thic&kness..." {shell {Thickness number 0.1} {Rim choice {Closed 1 Open 0}}} "" some
        "Gives the selected surfaces an inner side (shell)."}
    {run "&Define extrude path" {define_extrude_path} "" object "Takes the selection as the path."}
    {run "Extrude along &path" {extrude_along_path} "" surface
        "Carries the selected surfaces along the path."}
    {line}
    {ask "&Hole..." {hole_select {Percent pref hole_percent int}} "" some
        "Cuts a hole into each selected surface."}
    {ask "&Bevel..." {bevel_select {Size pref bevel_size number}} "" some
        "Bevels the edges of the selected surfaces."}
    {ask "&Inset..." {inset {Width number 0.1} {Depth number 0}
        {Of choice {Each each Region region}}} "" some
        "A smaller surface inside each selected one, or each connected region."}
    {ask "&Spike..." {surface_spike {Factor pref spike_factor number}} "" some
        "Raises a spike on each selected surface."}
    {run "S&ubdivide" {surface_subdivide} "" some "Divides each selected surface."}
    {run "Subdivide, r&ounded" {surface_doosabin} "" object
        "A face for each face, edge and vertex of the selected objects (Doo-Sabin)."}
    {ask "S&mooth subdivision..." {catmull_clark {Steps int 1}
        {Sharp choice {"Borders only" 180 "Above 30 degrees" 30 "Above 60 degrees" 60
            "Selected edges" selected}}} "" some
        "Makes smooth quads of the selection (Catmull-Clark)."}
    {ask "Sp&line..." {surface_spline {Steps pref spline_steps int}} "" some
        "Makes smooth curves of the selected lines."}
    {ask "Slice..." {slice {"Point x" middle 0} {"Point y" middle 1} {"Point z" middle 2}
        {"Normal x" number 0} {"Normal y" number 1} {"Normal z" number 0}
        {Keep choice {"Both sides" both "The front" front "The back" back}}
        {Caps choice {None 0 "Closed by polygons" 1}}} "" some
        "Cuts the selection by a plane; the front is where its normal points."}
    {run "&Triangulate" {surface_triangulate} "" some "Makes triangles of the selected surfaces."}
    {ask "&Quads from triangles..." {quads_from_triangles {"Largest angle" number 30}} "" some
        "Joins pairs of the selected triangles to four-sided surfaces."}
    {line}
    {run "Face out&wards" {orient_outwards} "" some
        "Turns selected surfaces over until they agree and face outwards."}
    {run "&Flip" {surface_flip_normals} "" some "Turns the selected surfaces over."}
    {run "Change &vertex order" {surface_change_vertex_order} "" some
        "Starts each selected surface at its next vertex."}
    {menu "Shadin&g" shading "" "" "How the surfaces are lit."}
    {menu "T&ype" surfacetype "" "" "What the surfaces are drawn as."}
    {call "Set &colour" {::vesk::palette::apply_current} "" some
        "Gives the selection the current material."}
    {run "Recalculate &normals" {recalc_normals_all} "" model "Computes every normal anew."}
    {line}
    {run "&Remove" {removesurface} "" some "Deletes the selected surfaces and keeps their vertices."}
}
::vesk::menus::define shading "Shading" {
    {run "&Smooth" {surface_set_shaded 1} "" some "Lights the surfaces as one curve."}
    {run "&Flat" {surface_set_shaded 0} "" some "Lights each surface as a plane."}
    {line}
    {run "&Two-sided" {surface_set_twosided 1} "" some "Shows both sides of the surfaces."}
    {run "&One-sided" {surface_set_twosided 0} "" some "Shows the front of the surfaces only."}
}
::vesk::menus::define edge "Ed&ge" {
    {ask "&Loop cut..." {loop_cut {Cuts int 1} {Slide number 0}} "" element
        "Cuts the rings of quads through the selected edges."}
    {run "&Connect" {connect} "" element
        "New edges between selected vertices, or the middles of selected edges."}
    {ask "&Bevel..." {edge_bevel {Width number 0.1} {Segments int 1} {Profile number 0.5}} "" element
        "Replaces the selected edges by strips, flat or round."}
    {ask "&Extrude..." {extrude_edges {X number 0} {Y number 0} {Z number 0.5}} "" element
        "A quad from every selected edge to its copy."}
    {ask "Sl&ide..." {slide {Share number 0.2}} "" element
        "Moves edges or vertices along the edges beside them."}
    {line}
    {ask "B&ridge..." {bridge {Segments int 1} {Twist int 0} {Smooth number 0}} "" some
        "Joins two borders, or two selected surfaces."}
    {ask "&Fill the hole..." {fill_hole {By choice {"One polygon" polygon "A grid of quads" grid "A fan" fan}}}
        "" element "Closes the holes that have a selected edge."}
    {line}
    {run "&Dissolve" {dissolve} "" some "Takes elements away and leaves polygons."}
    {run "C&ollapse" {collapse} "" some "Brings connected elements to one vertex each."}
    {run "&Split" {split_edges} "" element "Parts the surfaces along the selected edges."}
}
::vesk::menus::define surfacetype "Type" {
    {run "&Polygon" {set_surface_type 0} "" some "Filled polygons."}
    {run "&Closed line" {set_surface_type 1} "" some "Closed lines."}
    {run "&Line" {set_surface_type 2} "" some "Open lines."}
}
::vesk::menus::define vertex "&Vertex" {
    {run "&Insert" {insert_vertex} "" some "Divides the selected edges."}
    {call "Insert where &clicked" {::vesk::tools::choose insert} "" ""
        "A vertex where an edge is clicked in a view."}
    {line}
    {run "Snap to &grid" {snaptogrid} "" vertex "Moves the selected vertices to the grid."}
    {run "Snap &together" {weld} "" vertex "Moves the selected vertices to one point."}
    {ask "Snap together within..." {weld_distance {Distance from snap_together_distance}}
        "" vertex "Joins the selected vertices that lie close together."}
    {ask "&Bevel..." {vertex_bevel {Width number 0.1}} "" vertex "Cuts the selected vertices off."}
    {run "Add a di&mension" {dimension_add} "" element
        "The views keep showing the length of the selected edges, or between two vertices."}
    {run "Remove dimensions" {dimension_remove} "" some
        "Takes the dimension lines off the selected objects."}
    {menu "&Arrange" arrange "" "" "Flattens, rounds, straightens and smooths the selected vertices."}
    {run "&Unshare" {unshare_vertices} "" vertex "Gives each surface vertices of its own."}
}
::vesk::menus::define arrange "Arrange" {
    {run "&Flatten" {flatten} "" some "Moves each group of selected vertices onto its plane."}
    {run "To a &circle" {circularize} "" some "Moves each group of selected vertices onto a circle."}
    {run "&Straighten" {straighten} "" some "Moves chains of vertices onto the lines between their ends."}
    {run "Space &evenly" {space_evenly} "" some "Gives chains of vertices even distances."}
    {ask "S&mooth..." {smooth_vertices {Factor number 0.5} {Steps int 1}} "" some
        "Moves the selected vertices towards their neighbours."}
}
