# prefs_table.tcl --
#   The preferences window as data: pages, groups and rows. Every preference that is a choice has one
#   row; what the program notes for itself has none. Rows with "ui" edit the scripts' own settings. Read when the window or the command search first needs it.

namespace eval ::vesk::prefs {
    # Pages in order: name, then {group row ...}. A row is {key label help widget}; without a widget
    # the kind of the preference decides:
    #   slider LOW HIGH          a number with a slider
    #   choice {label value ...}
    #   folder, file             a text with a dialog
    #   lines                    a long text
    #   font                     family and size
    #   ui int LOW HIGH, ui choice {label value ...}, ui bool   one of the scripts' own settings
    variable pages {}
    variable helps {}           ;# key -> {label help page}
    # Preferences that are records, not choices.
    variable records {^(\w+win_(x|y|width|height)|recentfiles\d|current_tip|last_update_id|sgi_anim_frames)$}
    # Words that people look for, and the program's own.
    variable words {
        color colour  colors colour  gray grey  shortcut keys  shortcuts keys  hotkey keys
        hotkeys keys  keyboard keys  keymap keys  skin theme  dark theme  light theme  mode theme
        dpi size  scaling size  letters font  text font  language interface  backup previous
        extension plug-in  addon plug-in  plugin plug-in  plugins plug-ins  hints tips
        camera 3d  perspective 3d  antialiasing smooth  fps frames  folder folder  directory folder
        history undo  steps undo  magnet snap  dots vertices  points vertices  edges lines
    }
}

# page --
#   Adds a page; `groups` is title, rows, title, rows ...
proc ::vesk::prefs::page {name groups} {
    variable pages
    variable helps
    dict set pages $name $groups
    foreach {title rows} $groups {
        foreach row $rows {
            lassign $row key label help
            dict set helps $key [list $label $help $name]
        }
    }
}

::vesk::prefs::page Interface {
    Appearance {
        {theme "Theme" "Colours of the windows; the preset at the top changes the views too." {ui choice {Dark dark Light light "High contrast" contrast "Colour-blind safe" safe}}}
        {interface_scale "Size of everything, percent" "Text, icons, lines and handles, besides what the screen tells. Takes effect at the next start." {ui int 75 300}}
        {font_main "Text font" "Family and size of the letters of labels, fields and lists." font}
        {font_menu "Menu font" "Family and size of the letters of the menus." font}
        {tk_strictmotif "Strict menus and buttons" "No highlight when the pointer passes over classic widgets."}
    }
    Help {
        {balloon_help "Show tooltips" "A small window with name, key and help of what the pointer rests on."}
        {show_startup_tips "Show a tip at the start" "One of the tips, each time another."}
    }
    "At the end" {
        {save_settings_on_exit "Save the settings at the end" "Writes every preference when the program ends."}
        {windows_show_console "Keep the terminal" "Goes on writing to the terminal the program was started from; at the next start."}
    }
}
::vesk::prefs::page Views {
    Drawing {
        {filled_orth "Fill surfaces in the flat views" "Filled surfaces instead of edges only."}
        {orth_textures "Textures in the flat views" "Draws textures on filled surfaces."}
        {orth_headlight "Light in the flat views" "Shades filled surfaces."}
        {use_rgb_for_orth "Edges in the surface's colour" "In flat views that are not filled."}
        {show_surfaces "Edges in the flat views" "Draws the edges of surfaces."}
        {surface_line_width "Width of edges" "Pixels." {slider 0.5 5}}
        {show_vertices "Show vertices" "In the flat views."}
        {show_selected_vertices "Show selected vertices" "In the flat views, also while vertices are not shown."}
        {vert_size "Vertex size" "Pixels."}
        {show_objectcentres "Show object centres" "A small cross at each object's centre."}
        {object_centre_size "Size of object centres" "Pixels."}
        {show_normals_orth "Normals in the flat views" "A line on each surface."}
        {size_show_normals "Length of normals" "In units of the model."}
        {handle_size "Handle size" "Pixels."}
        {handles_hollow "Hollow handles" "Handles as outlines."}
        {bb_line_width "Width of the selection box" "Pixels." {slider 0.5 5}}
        {gl_concave "Fill concave surfaces rightly" "Divides surfaces that are not convex before they are filled."}
        {doublebuffer_orth "Double buffered flat views" "The flat views draw without flicker; the 3D view always does. At the next start."}
        {share_opengl_contexts "Views share what is uploaded" "The views upload textures and buffers once for all of them, which needs sharing: it stays on whatever stands here."}
        {independent_scaling "Flat views zoom apart" "Each flat view keeps its own scale."}
        {show_window_labels "View labels" "Names the views."}
        {window_label_xy "Name of the front view" "The label in the view."}
        {window_label_zy "Name of the side view" "The label in the view."}
        {window_label_xz "Name of the plan view" "The label in the view."}
        {window_label_xyz "Name of the 3D view" "The label in the view."}
    }
    Grid {
        {show_drawgrid "Show grid" "The grids of the flat views."}
        {drawgrid "Main spacing" "Distance of the strong lines."}
    }
    "3D view" {
        {view3dmode "Surfaces" "Filled, or edges only." {choice {Filled 0 Wireframe 1}}}
        {view3dtextures "Textures" "Draws textures in the 3D view."}
        {headlight "Headlight" "A light at the viewer."}
        {show_surfaces_3d "Edges" "Draws the edges of surfaces in the 3D view."}
        {polygon_offset "Keep edges in front" "Lifts edges over the surfaces they lie on."}
        {show_vertices_3d "Vertices" "Draws vertices in the 3D view."}
        {show_selected_vertices_3d "Selected vertices" "Draws selected vertices in the 3D view."}
        {show_mode_elements_3d "What the mode selects" "Edges in surface and edge mode and vertices in vertex mode, whatever stands above."}
        {show_3d_normals "Normals" "A line on each surface."}
        {show_hidden_3d "Hidden objects" "As a faint wireframe."}
        {show_locked_3d "Locked objects" "Draws locked objects, dimmed."}
        {show_axis "Axes" "Three lines at the origin."}
        {axis_size "Length of the axes" "In units of the model."}
        {grid3d_show "Ground grid" "Lines on the ground."}
        {grid3d_square "Ground grid spacing" "In units of the model."}
        {grid3d_size "Ground grid size" "Width of the grid, in units of the model."}
        {grid_3d_line_width "Ground grid line width" "Pixels." {slider 0.5 5}}
        {fov "Field of view" "Degrees, of the perspective projection." {slider 10 120}}
        {init3d_x "First viewpoint, X" "Where the viewer stands at the start and after a reset."}
        {init3d_y "First viewpoint, Y" "Where the viewer stands at the start and after a reset."}
        {init3d_z "First viewpoint, Z" "Where the viewer stands at the start and after a reset."}
        {lightx "Default light, X" "Direction of the light while the scene has none."}
        {lighty "Default light, Y" "Direction of the light while the scene has none."}
        {lightz "Default light, Z" "Direction of the light while the scene has none."}
        {lightw "Default light, W" "0: the numbers are a direction, 1: a place."}
    }
    Moving {
        {wireframe_move "Wireframe while moving" "In the 3D view what is dragged is drawn as edges."}
        {move_wireframe_orth "Wireframe while moving, flat views" "What is dragged is drawn as edges."}
        {draw_moving_vertices "Vertices while moving" "Draws the vertices of what is dragged."}
        {fit_view_after_load "Fit after loading" "Shows the whole model when a file was read."}
        {fit_view_factor "How much of a view a fit fills" "1 reaches from edge to edge." {slider 0.2 1}}
        {zoom_factor_2d "Zoom step, flat views" "Of the wheel and the right button." {slider 1.01 2}}
        {zoom_factor_3d "Zoom step, 3D view" "Of the wheel and the right button." {slider 1.01 2}}
        {background_image_zoom_factor "Zoom step of background images" "Of Alt+Shift and the arrow keys."}
        {use_textures_for_background_images "Background images as textures" "Smoother and faster where the graphics allow it."}
        {orth_xcursor "Pointer in the flat views" "Number of an X cursor; -1 is the usual arrow."}
    }
    "Layout of the four views" {
        {window_3d_width_percent "Width of the right views, percent" "Of the area of all views." {slider 10 90}}
        {window_3d_height_percent "Height of the lower views, percent" "Of the area of all views." {slider 10 90}}
    }
}
::vesk::prefs::page Colours {
    "Flat views" {
        {col_background "Background" "Behind everything in the flat views."}
        {col_foreground "Marks" "Labels, centres, previews of new shapes."}
        {col_line "Lines" "Edges of what is not selected."}
        {col_selline "Selected lines" "Edges of what is selected."}
        {col_vert "Vertices" "What is not selected."}
        {col_selvert "Selected vertices" "What is selected."}
        {col_box "Selection box" "The box with the handles."}
        {col_grid "Grid" "Lines of the grids."}
        {col_axis "Axes" "Lines through the origin."}
    }
    "3D view" {
        {col_3dbackground "Background" "Behind everything in the 3D view."}
        {col_3dgrid "Ground grid" "Lines on the ground."}
    }
    "Texture coordinates" {
        {uveditor_edgecol "Outlines" "Surfaces in the editor of texture coordinates."}
        {uveditor_selectedcol "Selected" "What is selected there."}
        {uveditor_bgcol "Background" "Around the picture."}
        {uveditor_antialias "Smooth lines" "Draws the outlines without steps."}
    }
    Editing {
        {realtimecolour "Colours follow while dragging" "The model shows a colour while its slider is dragged."}
    }
}
::vesk::prefs::page Editing {
    Operations {
        {hole_percent "Hole, percent" "Size of the hole in a surface." {slider 0 150}}
        {bevel_size "Bevel size" "Width of a bevel, in units of the model."}
        {spike_factor "Spike factor" "Height of a spike, by the surface's size."}
        {spline_steps "Spline steps" "Points of a curve for each piece of the line."}
        {extrude_num "Extrude steps" "Pieces of an extrusion."}
        {extrude_cap_end "Extrusions are closed" "A surface at the far end."}
        {extrude_delete_original "Extrusions take the original" "Deletes the surface that is swept."}
        {extrude_flip_cap "Extrusions turn the walls" "The walls face outwards."}
        {revolve_degs "Revolve, degrees" "How far an outline goes round." {slider 0 360}}
        {revolve_segments "Revolve, segments" "Steps of the way round."}
        {reduce_keep_original "Reduce keeps the original" "Leaves the source beside the result."}
        {reduce_percent "Reduce, percent" "Vertices to lose." {ui int 1 99}}
        {loop_smoothing "Loop smoothing" "Of Subdivide: 0 leaves the middles, 1 is fully smooth." {ui number 0 1}}
        {convexhull_precision "Convex hull precision" "Distance below which points count as one plane."}
        {triangulate_quads "Triangulate takes quads too" "Else four-sided surfaces stay."}
        {recalc_normals "Keep normals up to date" "Computes them anew after each operation."}
        {shift_duplicated "Duplicates are shifted" "By one grid step, so that they can be seen."}
        {rotate_about_object_centre "Turn about own centres" "Each object about its own centre."}
        {undo_levels "Undo levels" "Changes that Undo remembers."}
    }
    "Soft selection and symmetry" {
        {soft_selection "Soft selection" "What lies near the selection moves along, less with the distance."}
        {soft_radius "Radius" "How far that reaches."}
        {soft_curve "Falls off" "How it grows less." {choice {S-shaped 0 Round 1 Linear 2 Sharp 3 Even 4}}}
        {soft_along_surface "Along the surface" "The distance is measured along the edges."}
        {symmetry_axis "Symmetry" "What is moved on one side moves on the other." {choice {Off 0 X 1 Y 2 Z 3}}}
        {symmetry_at_centre "Symmetry at the object's centre" "Else at the origin."}
    }
    Mouse {
        {highlight_pick "Show what a click would take" "Lights the object, surface, edge or vertex under the pointer."}
        {select_through "Select through" "Clicks and rubber bands find what is hidden behind surfaces, too."}
        {pick_pixel_range "Picking range" "Pixels round the pointer in which things are picked." {slider 1 20}}
        {middle_button_drags_view "Middle button pans" "Else it does nothing."}
        {right_button_zooms_view "Right button zooms" "Else only the menu."}
        {allow_3d_spin "A flick keeps the model turning" "Until the next press."}
        {mouse_rotate_degs "Turning by mouse, degrees" "For each step of the pointer."}
        {key_rotate_degs_3d "Turning by key, degrees" "For each press of an arrow key."}
        {walk_move_speed "Walking speed" "In walk mode."}
        {walk_turn_speed "Turning speed" "In walk mode."}
        {ui_timer_msecs "Walk timer" "Milliseconds between two steps."}
    }
}
::vesk::prefs::page Snapping {
    Grid {
        {gridsnap "Snap to the grid" "Points go to multiples of the spacing."}
        {grid "Spacing" "Distance of the snap points, and of the fine grid."}
    }
    "Near points" {
        {snap_near "Snap to near vertices" "Points go to vertices close to the pointer."}
        {snap_near_pixels "How near" "Pixels." {slider 1 40}}
        {snap_together_distance "Snap together within" "Vertices this close are joined by Snap together."}
    }
}
::vesk::prefs::page Creating {
    Shapes {
        {num_surface_div "Sphere, segments" "Round a sphere."}
        {sphere_triangles "Spheres of triangles" "Else of quads."}
        {cylinder_segments "Cylinder and cone, segments" "Round the side."}
        {cylinder_has_ends "Cylinders have ends" "A surface at both ends."}
        {ellipse_segments "Circle, segments" "Corners of a circle."}
        {disk_segments "Disk, segments" "Triangles of a disk."}
        {meshx "Mesh, columns" "Surfaces along the first axis."}
        {meshy "Mesh, rows" "Surfaces along the second axis."}
        {mesh_triangles "Meshes of triangles" "Else of quads."}
        {grid_object_x "Grid, columns" "Lines along the first axis."}
        {grid_object_y "Grid, rows" "Lines along the second axis."}
    }
    Text {
        {fontpath "Font model" "File with the letters that Text uses." file}
        {font_char_offset "Letter distance" "Added between two letters."}
    }
}
::vesk::prefs::page "Import and export" {
    Folders {
        {default_dir "First folder" "Where file dialogs begin; empty: the home folder." folder}
        {load_file_path "Opened last" "Folder of the last file opened." folder}
        {save_file_path "Saved last" "Folder of the last file saved." folder}
        {import_file_path "Imported last" "Folder of the last file imported." folder}
        {export_file_path "Exported last" "Folder of the last file exported." folder}
        {texture_file_path "Textures" "Folder of the last texture, and where textures are looked for." folder}
    }
    "3DS and others" {
        {swap_3ds_yz "Y and Z are exchanged" "3DS files have Z upwards." {choice {No 0 Yes 1}}}
    }
    VRML {
        {vrml_output_normals "Write normals" "Else the reader computes them."}
        {vrml_output_textures "Write textures" "Names of pictures, and coordinates."}
    }
    POV {
        {pov_file_header "File header" "Text at the start of each file." lines}
        {pov_object_data "Write object data" "The data texts of objects."}
        {pov_use_object_data "Data in place of material" "An object's data text is its material."}
        {pov_active_pointer "Camera at the pointer" "Looks from where the 3D view looks."}
        {pov_up_aspect "Height of the picture" "Factor of the camera's up vector."}
        {pov_right_aspect "Width of the picture" "Factor of the camera's right vector."}
    }
    RIB {
        {output_rib_header "Write a header" "Picture size, camera and lights."}
        {rib_textures "Write textures" "Names of pictures, and coordinates."}
        {rib_use_object_data "Data in place of material" "An object's data text is its shader."}
    }
    "Rendering and animation" {
        {render_command "Render command" "The script that Tools > Render runs." lines}
    }
}
::vesk::prefs::page Keys {}
::vesk::prefs::page Autosave {
    Autosave {
        {autosave_seconds "Copy unsaved work every" "Seconds; the copy lies beside the program's own state, never over a file of yours." {ui int 15 3600}}
    }
    Backups {
        {backup_versions "Previous versions to keep" "Saving keeps so many older files (model.vesk.bak1, ...)." {ui int 0 99}}
    }
}
::vesk::prefs::page Plug-ins {
    Folder {
        {plugin_dir "Plug-in folder" "Where the dialog that loads a plug-in begins. At the start the program loads the plug-ins of its home folder, wherever this points." folder}
    }
}
::vesk::prefs::page Advanced {
    "Command socket" {
        {allow_socket_commands "Take commands from a socket" "From this computer only; a badge in the status line tells it."}
        {tcl_socket_port "Port" "Of that socket."}
    }
    Program {
        {memory_checks "Check memory" "Slower; finds faults of plug-ins. At the next start."}
    }
}
