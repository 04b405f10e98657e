# menus_table_view.tcl --
#   The menus that do not edit: views, textures, tools, windows, help, and the context menus.

::vesk::menus::define view "&View" {
    {radio "&All views" {::viewsetting all} "" "" "Shows the four views."}
    {radio "&Front" {::viewsetting xy} "" "" "Shows the front view alone."}
    {radio "&Side" {::viewsetting zy} "" "" "Shows the side view alone."}
    {radio "&Plan" {::viewsetting xz} "" "" "Shows the plan view alone."}
    {radio "&3D" {::viewsetting xyz} "" "" "Shows the 3D view alone."}
    {call "&Maximise or restore" {::vesk::view::toggle_focused} Ctrl+Space ""
        "Shows the focused view alone, or all again."}
    {call "Window of its own, or bac&k" {::vesk::view::detach_or_back_focused} Ctrl+Shift+Space ""
        "Takes the focused view out of the main window, or brings it back."}
    {call "Equal si&zes" {::vesk::view::equal} "" "" "Gives the four views the same size."}
    {line}
    {run "Fi&t all" {fit_all} Ctrl+Shift+F model "Shows the whole model."}
    {run "Fit se&lection" {fit_selected_all} Shift+F some "Shows the selection as large as it fits."}
    {run "&Go to selection" {goto_selected_all} Shift+G some "Centres the views on the selection."}
    {run "Zoom &in" {zoom_in} Ctrl++ "" "Zooms into the flat views."}
    {run "Zoom &out" {zoom_out} Ctrl+- "" "Zooms out of the flat views."}
    {run "&Reset" {reset_views} Space "" "Puts the views back to where they start."}
    {line}
    {menu "S&how" show "" "" "What the views draw."}
    {menu "3D vi&ew" view3d "" "" "Camera and drawing of the 3D view."}
    {menu "&Background image" background "" "" "Pictures behind the flat views."}
    {menu "Redra&w" redraw "" "" "Draws the views again."}
}
::vesk::menus::define redraw "Redraw" {
    {run "&All views" {redraw_all} "" "" "Draws every view again."}
    {run "&Flat views" {redraw_orth} "" "" "Draws the flat views again."}
    {run "&3D view" {redraw_3d} "" "" "Draws the 3D view again."}
}
::vesk::menus::define show "Show" {
    {check "Fill the &flat views" {prefs_filled_orth redraw_orth} W "" "Fills surfaces in the flat views."}
    {check "&Textures in the flat views" {prefs_orth_textures redraw_orth} T "" "Draws textures in the flat views."}
    {check "&Lighting in the flat views" {prefs_orth_headlight redraw_orth} L "" "Lights the flat views."}
    {check "&Vertices" {prefs_show_vertices redraw_orth} "" "" "Draws vertices."}
    {check "&Selected vertices" {prefs_show_selected_vertices redraw_orth} "" "" "Draws selected vertices."}
    {check "&Edges" {prefs_show_surfaces redraw_orth} "" "" "Draws the edges of surfaces."}
    {check "&Grid" {prefs_show_drawgrid redraw_orth} "" "" "Draws the grid."}
    {check "Object &centres" {prefs_show_objectcentres redraw_all} "" "" "Marks the objects' centres."}
    {check "&Normals" {prefs_show_normals_orth redraw_orth} N "" "Draws the surfaces' normals."}
    {check "View la&bels" {prefs_show_window_labels redraw_all} "" "" "Names the views."}
    {check "Zoom views &apart" {prefs_independent_scaling} "" "" "Each flat view keeps its own scale."}
}
::vesk::menus::define view3d "3D view" {
    {radio "&Filled" {::prefs_view3dmode 0 redraw_3d} "" "" "Fills the surfaces."}
    {radio "&Wireframe" {::prefs_view3dmode 1 redraw_3d} "" "" "Draws edges only."}
    {line}
    {check "&Textures" {prefs_view3dtextures redraw_3d} "" "" "Draws textures."}
    {check "&Headlight" {prefs_headlight redraw_3d} "" "" "A light at the viewer."}
    {check "&Ground grid" {prefs_grid3d_show redraw_3d} "" "" "Draws the ground."}
    {check "A&xes" {prefs_show_axis redraw_3d} "" "" "Draws the axes."}
    {check "&Edges" {prefs_show_surfaces_3d redraw_3d} "" "" "Draws the edges of surfaces."}
    {check "&Vertices" {prefs_show_vertices_3d redraw_3d} "" "" "Draws vertices."}
    {check "&Normals" {prefs_show_3d_normals redraw_3d} "" "" "Draws the normals."}
    {check "Hi&dden objects" {prefs_show_hidden_3d redraw_3d} "" "" "Hidden objects as a faint wireframe."}
    {check "&Locked objects" {prefs_show_locked_3d redraw_3d} "" "" "Draws locked objects."}
    {line}
    {radio "&Perspective" {::vesk::view::projection 1 do_perspective 1} "" "" "Perspective projection."}
    {radio "Pa&rallel" {::vesk::view::projection 0 do_perspective 0} "" "" "Parallel projection."}
    {line}
    {radio "&Spin" {::vesk::view::walks 0 set_spin_viewer} "" "" "The mouse turns the model."}
    {radio "Wal&k" {::vesk::view::walks 1 set_walk_viewer} "" "" "The mouse walks through the scene."}
    {run "From above, a &quarter round" {view_3d_from_corner} "" ""
        "Resets the viewpoint to three quarters above, where a box shows three sides."}
    {run "Level" {person_level} "" "" "Sets the viewpoint level."}
    {ask "Fl&y to..." {viewer_flyto {Steps int 20} {X number 0} {Y number 0} {Z number 5}
        {"Look X" number 0} {"Look Y" number 0} {"Look Z" number -1}} "" "" "Flies the viewer to a place."}
    {line}
    {run "Turn about the sele&ction" {set_view_3d_selection} "" some "Centres the 3D view about the selection."}
    {run "Turn about the c&ursor" {set_view_3d_cursor} "" "" "Centres the 3D view about the depth point."}
    {run "Turn about the &origin" {set_view_3d_origin} "" "" "Centres the 3D view about the origin."}
}
::vesk::menus::define background "Background image" {
    {run "&Front: choose..." {file_select_background_image 0} "" "" "A picture behind the front view."}
    {run "&Side: choose..." {file_select_background_image 1} "" "" "A picture behind the side view."}
    {run "&Plan: choose..." {file_select_background_image 2} "" "" "A picture behind the plan view."}
    {line}
    {run "F&ront: clear" {clear_background_image 0} "" "" "Takes the picture away."}
    {run "S&ide: clear" {clear_background_image 1} "" "" "Takes the picture away."}
    {run "P&lan: clear" {clear_background_image 2} "" "" "Takes the picture away."}
}
::vesk::menus::define texture "&Texture" {
    {run "&Choose..." {file_select_texture} "" some "Puts a picture on the selected objects."}
    {run "&None" {set_no_texture} "" some "Takes the texture off."}
    {ask "&Repeats..." {set_texture_repeats {U number 1} {V number 1}} "" some
        "How often the picture repeats."}
    {ask "&Offsets..." {set_texture_offsets {U number 0} {V number 0}} "" some
        "Where the picture starts."}
    {line}
    {run "&Unit coordinates" {inituv} "" some "Spreads the picture over each surface."}
    {menu "&Map planar" planar "" "" "Projects the picture along an axis."}
    {call "&Edit coordinates" {::vesk::uvedit::open} F8 ""
        "Unwraps, arranges and checks texture coordinates in a window of their own."}
    {check "&Keep pictures in place" {::vesk::uvedit::keep ::vesk::uvedit::keep_changed} "" ""
        "Texture coordinates slide while vertices move."}
    {ask "&Load a texture..." {add_new_texture {File open_file {.gif .rgb .rgba .bmp .png .jpg .jpeg .tga}}} "" ""
        "Reads a picture into the list of textures."}
}
::vesk::menus::define planar "Map planar" {
    {run "As seen in the &front view" {remap_textures 0} "" some "Projects along Z."}
    {run "As seen in the &side view" {remap_textures 1} "" some "Projects along X."}
    {run "As seen in the &plan view" {remap_textures 2} "" some "Projects along Y."}
}
::vesk::menus::define tools "T&ools" {
    {call "&Search for a command" {::vesk::search::open} F3 "" "Finds commands by name, menu or help."}
    {call "&Render" {::vesk::ops::render} "" model "Runs the render command of the preferences."}
    {call "Check the &model" {::vesk::issues::open} F7 model
        "Lists open edges, doubled elements and other problems."}
    {ask "&Fix problems..." {check_fix_all {Kind choice {"Duplicate vertices" duplicate_vertex
        "Duplicate surfaces" duplicate_surface "Vertices on edges" t_vertex
        "Surfaces without area" zero_area "Bent surfaces" non_planar
        "Flipped surfaces" flipped "Unused vertices" unused_vertex "Open edges" open_edge
        "Crowded edges" crowded_edge "Missing textures" missing_texture}}} "" model
        "Mends all problems of one kind."}
    {call "Operation se&ttings" {::vesk::operations::open} Ctrl+E ""
        "Numbers that the operations use."}
    {line}
    {run "M&easure the selection" {measure} "" some
        "Distance, angle, area, volume of the selection."}
    {call "R&uler" {::vesk::tools::choose measure} "" "" "Measures between points of the views."}
    {menu "M&y tools" mytools "" "" "Lines of the console that were saved as tools."}
    {line}
    {show "Model &information" {get_info "Model information"} "" "" "Counts, textures, materials, memory."}
    {ask "Run a &program..." {execute {"Command line" text {}}} "" "" "Starts a program."}
}
::vesk::menus::define plugins "&Plug-ins" {
    {ask "&Load..." {plugin_load {File open_file .p}} "" "" "Loads a plug-in."}
    {call "&Manage..." {::vesk::preferences::open Plug-ins} "" ""
        "What each plug-in added, and which are loaded at the start."}
    {show "&Importers" {get_importer_info Importers} "" "" "Which files can be read, and by what."}
}
::vesk::menus::define window "&Window" {
    {check "&Right panel" {::vesk::panel_shown ::vesk::main::show_panel} F4 "" "Objects and properties."}
    {check "&Console" {::vesk::console_shown ::vesk::console::show} F12 "" "Commands by name."}
    {call "&Next region" {::vesk::main::next_region 1} F6 "" "Moves the focus on."}
    {call "&Previous region" {::vesk::main::next_region -1} Shift+F6 "" "Moves the focus back."}
    {line}
    {menu "&Theme" theme "" "" "Colours of the interface."}
}
::vesk::menus::define theme "Theme" {
    {radio "&Dark" {::vesk::theme_name dark ::vesk::main::set_theme} "" "" "Light text on dark grey."}
    {radio "&Light" {::vesk::theme_name light ::vesk::main::set_theme} "" "" "Dark text on light grey."}
    {radio "&High contrast" {::vesk::theme_name contrast ::vesk::main::set_theme} "" ""
        "White and yellow on black, views included."}
    {radio "&Colour-blind safe" {::vesk::theme_name safe ::vesk::main::set_theme} "" ""
        "Orange and blue in place of red and green, views included."}
}
::vesk::menus::define help "&Help" {
    {call "&Manual" {::vesk::help::page manual} "" "" "By task, in the browser."}
    {call "Tou&r" {::vesk::help::page tour} "" "" "A table lamp from nothing, step by step."}
    {call "Second lesson" {::vesk::help::page tour-mug} "" "" "A mug by edges, loops and cuts, step by step."}
    {call "&Scripting" {::vesk::help::page scripting} "" "" "Every command, with examples."}
    {call "Plug-&in guide" {::vesk::help::page plugins} "" "" "How to write plug-ins."}
    {call "&File formats" {::vesk::help::page file-format} "" "" "Models, settings, and what is exchanged with others."}
    {call "&Batch recipes" {::vesk::help::page batch} "" "" "Work without a window."}
    {call "&Performance" {::vesk::help::page performance} "" "" "What was measured, and how to keep big models quick."}
    {line}
    {call "&Keys" {::vesk::help::keys} F1 "" "Every key, view by view."}
    {call "&Tips" {::vesk::tips::open} "" "" "Short advice."}
    {call "&Commands" {::vesk::help::commands} "" "" "Every command with its arguments."}
    {line}
    {call "Report a pr&oblem..." {::vesk::report::open} "" "" "Copies the version and the last lines of the console."}
    {call "&About VESK" {::vesk::help::about} "" "" "Version and build."}
}
# Context menus of the views: rows of the menus above, by their first word.
namespace eval ::vesk::menus {
    variable context {
        object {{edit step_back} - {edit clipboard_cut} {edit clipboard_copy} {edit clipboard_paste}
            {edit duplicate} {edit delete} - {object group} {object ungroup} {object hide_selected}
            {object lock_selected} - {copies array} {copies array_round} {copies mirror_copy}
            {copies symmetrize} {align align} {align {drop below}} {align {::vesk::tools::choose place}} - {object boolean} {surface slice}
            {surface catmull_clark} - {view fit_selected_all} {view3d set_view_3d_selection}
            {surface ::vesk::palette::apply_current}}
        surface {{edit step_back} - {surface surface_flip_normals} {surface orient_outwards}
            {surface surface_triangulate} {surface quads_from_triangles}
            {surface surface_subdivide} {surface catmull_clark} {surface hole_select}
            {surface bevel_select} {surface inset} {surface extrude_normal} {surface extrude_each}
            {surface extrude_normals} {surface shell} {surface slice} -
            {shading {surface_set_shaded 1}} {shading {surface_set_shaded 0}}
            {surface ::vesk::palette::apply_current} - {select select_grow} {select select_shrink}
            {select select_linked} {select select_similar} - {copies array} {copies mirror_copy}
            {copies pick_axis} {create surfaces_separate}
            {surface removesurface} {edit delete}}
        edge {{edit step_back} - {select select_loop} {select select_ring} {select select_path}
            {select select_grow} {select select_shrink} {select select_linked} -
            {edge loop_cut} {edge connect} {edge edge_bevel} {edge extrude_edges} {edge slide} -
            {surface catmull_clark} {edge bridge} {edge fill_hole} {edge dissolve} {edge collapse}
            {edge split_edges} - {copies pick_axis}
            {edit delete}}
        light {{edit step_back} - {edit clipboard_cut} {edit clipboard_copy} {edit clipboard_paste}
            {edit delete} - {object hide_selected} {object lock_selected} -
            {view fit_selected_all}}
        vertex {{edit step_back} - {fromvertices {createsurface 0}} {vertex insert_vertex} -
            {vertex snaptogrid} {vertex weld} {vertex unshare_vertices} -
            {arrange flatten} {arrange circularize} {arrange straighten} {arrange space_evenly}
            {arrange smooth_vertices} {align align} {copies pick_axis}
            {soft ::vesk::reach::toggle_soft} {symmetry ::vesk::reach::toggle_symmetry} -
            {select select_part_selected_surfaces} {select select_grow} {select select_shrink}
            {select select_linked} {edit delete}}
    }
}
