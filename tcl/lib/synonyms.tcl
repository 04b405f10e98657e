# synonyms.tcl --
#   The words that modellers use for the rows of the menus: command or procedure with its first
#   arguments -> words. The command search finds a row by them as by its own label.

namespace eval ::vesk::menus {
    variable synonyms {
        ::vesk::files::open_ask      {load}
        ::vesk::files::import_ask    {add append merge file obj stl gltf fbx}
        step_back                    {back revert}
        ::vesk::history::open        {undo list steps}
        repeat_last                  {again}
        ::vesk::options::again       {redo parameters tweak}
        duplicate                    {clone copy instance}
        clone_selection              {copy instance}
        delete                       {erase remove}
        ::vesk::preferences::open    {settings options configuration setup}
        move_with_undo               {translate grab shift}
        move_to                      {position place align}
        scale                        {resize size grow shrink}
        size_to                      {dimensions resize}
        rotate_with_undo             {turn spin}
        {::vesk::tools::mirror 0}    {flip reflect symmetry symmetrize}
        select_all                   {everything}
        clear_selection              {deselect unselect nothing}
        select_by_name               {find search}
        {::vesk::select_mode surface} {face polygon faces}
        {::vesk::select_mode edge}    {edges side sides}
        select_loop                  {"loop select" "edge loops"}
        select_ring                  {"ring select" "edge rings" "parallel edges"}
        select_path                  {route way "pick shortest"}
        select_behind                {through hidden occluded}
        select_inside                {interior enclosed contained}
        loop_cut                     {"edge loop" insert divide "swift loop"}
        {::vesk::tools::choose loopcut} {"edge loop" insert divide "swift loop"}
        connect                      {split cut join}
        edge_bevel                   {chamfer round fillet "round edges"}
        {::vesk::tools::choose edgebevel} {chamfer round fillet}
        {::vesk::tools::choose knife}     {cut split scalpel "multi cut" draw}
        {::vesk::tools::choose slice}     {cut plane bisect section split}
        {::vesk::tools::choose slide}     {"edge slide" "vertex slide"}
        {::vesk::tools::choose inset}     {frame window panel}
        {::vesk::tools::choose extrude}   {pull push sweep}
        {::vesk::tools::choose thickness} {solidify thicken shell wall hollow}
        {::vesk::tools::choose extrudeeach} {"individual faces" pull}
        {::vesk::tools::choose extrudenormals} {thicken offset inflate}
        {::vesk::tools::choose extrudeedges} {pull border}
        {::vesk::tools::choose move}      {translate grab}
        {::vesk::tools::choose rotate}    {turn spin}
        {::vesk::tools::choose scale}     {resize size}
        slice                        {cut plane bisect section split crop}
        extrude_edges                {pull border fin}
        weld                         {merge join stitch}
        weld_distance                {merge "remove doubles" threshold stitch}
        boolean                      {union unite difference subtract intersection intersect carve csg drill
            combine cookie}
        rotate_about_axis            {turn spin}
        scale_along                  {stretch squash flip}
        vertex_bevel                 {chamfer corner}
        fill_hole                    {cap close patch hole}
        bridge                       {join loops tunnel}
        dissolve                     {remove merge unsubdivide}
        collapse                     {merge weld}
        split_edges                  {rip detach unweld}
        slide                        {"edge slide"}
        select_sharp                 {crease hard angle}
        select_boundary              {border boundary naked}
        {::vesk::select_mode vertex} {point points vertices}
        revolve                      {lathe spin turn}
        {::vesk::tools::choose polygon}  {pen draw face}
        {::vesk::tools::choose polyline} {curve path pen draw}
        {::vesk::tools::choose rect}     {plane quad square}
        {::vesk::tools::choose mesh}     {plane grid terrain}
        {::vesk::tools::choose box}      {cube}
        {::vesk::tools::choose sphere}   {ball}
        {::vesk::tools::choose insert}   {knife cut slice "add vertex" "split edge"}
        {::vesk::tools::choose measure}  {distance angle measure dimension}
        {::vesk::tools::choose light}    {lamp}
        {create box}                 {cube}
        {createsurface 0}            {face fill "make face" bridge cap}
        {createsurface 2}            {edge connect}
        surfaces_separate            {separate detach extract split}
        surface_create_object        {extract}
        group                        {parent}
        ungroup                      {unparent}
        hide_selected                {invisible}
        hide_unselected              {isolate solo}
        unhide                       {reveal unhide visible}
        lock_selected                {freeze}
        unlock                       {unfreeze}
        object_recentre              {pivot origin centre center}
        object_mincentre             {pivot origin}
        bend                         {arc curve deform}
        taper                        {cone deform narrow}
        twist                        {screw turn deform}
        inflate                      {sphere ball swell spherify deform}
        noise                        {random jitter displace deform}
        push_normals                 {fatten shrink offset deform inflate}
        ::vesk::reach::toggle_symmetry {"both sides" symmetric}
        ::vesk::reach::toggle_soft   {proportional falloff magnet influence}
        soft_selection               {proportional falloff influence}
        array                        {copies repeat row grid duplicate}
        array_round                  {radial circular polar copies gear}
        array_path                   {follow curve copies}
        mirror_copy                  {reflect symmetry flip half}
        symmetrize                   {symmetry half}
        dimension_add                {measure distance length ruler annotate}
        pick_axis                    {"custom axis" direction normal}
        pick_pivot                   {origin centre center}
        align                        {"line up" level justify}
        distribute                   {space evenly equal}
        {::vesk::tools::choose place} {snap align surface stick put}
        drop                         {gravity ground floor land rest}
        {drop below}                 {gravity ground land rest stack}
        object_merge                 {join combine attach}
        object_fragment              {split separate detach pieces islands "loose parts"}
        object_explode               {shatter facets}
        convexhull                   {wrap}
        surface_loop_subdivision     {loop smooth subdivision}
        surface_doosabin             {smooth subdivision}
        catmull_clark                {smooth subdivision quads subdivide subsurf "subdivision surface"}
        inset                        {frame window panel}
        extrude_each                 {"individual faces" pull push}
        extrude_normals              {pull push thicken offset inflate}
        shell                        {solidify thicken thickness wall hollow offset}
        quads_from_triangles         {"tris to quads" join retopology}
        orient_outwards              {normals consistent unify recalculate inside}
        flatten                      {planar level align}
        circularize                  {circle round}
        straighten                   {line align}
        space_evenly                 {distribute equalize relax}
        smooth_vertices              {relax laplacian average}
        select_grow                  {more expand}
        select_shrink                {less contract}
        select_linked                {connected island element}
        select_invert                {inverse complement}
        select_similar               {like same}
        select_random                {chance scatter}
        reduce                       {decimate simplify optimise lod polycount}
        optimize                     {weld merge "merge vertices" clean cleanup "remove doubles"}
        optimize_surfaces            {clean cleanup doubles}
        object_snap_together_by_vertices {align dock}
        extrude                      {pull push sweep}
        extrude_normal               {pull push inset}
        extrude_select               {pull push sweep}
        extrude_along_path           {sweep loft pipe follow}
        define_extrude_path          {sweep curve}
        surface_make_hole            {inset window}
        hole_select                  {inset window}
        surface_bevel                {chamfer round edges}
        bevel_select                 {chamfer round edges}
        surface_spike                {pyramid poke cone}
        surface_subdivide            {divide tessellate refine split}
        surface_spline               {curve smooth}
        surface_triangulate          {triangles tessellate}
        surface_flip_normals         {reverse invert normals "turn over"}
        {surface_set_shaded 1}       {smooth shading phong gouraud}
        {surface_set_shaded 0}       {flat shading facets hard}
        {surface_set_twosided 1}     {backface culling "double sided"}
        {surface_set_twosided 0}     {backface culling "single sided"}
        ::vesk::palette::apply_current {material paint color assign shader}
        recalc_normals_all           {normals}
        removesurface                {dissolve}
        insert_vertex                {cut "add vertex" "split edge"}
        snaptogrid                   {align quantise round}
        snaptogether                 {weld merge collapse "merge vertices"}
        snaptogetherdistance         {weld merge "merge vertices" "remove doubles" threshold}
        unshare_vertices             {rip tear unweld detach "split vertices"}
        ::vesk::view::toggle_focused {fullscreen}
        fit_all                      {frame zoom home}
        fit_selected_all             {frame focus zoom}
        goto_selected_all            {focus centre center}
        {::prefs_view3dmode 1}       {wire}
        {::prefs_view3dmode 0}       {solid shaded}
        {::vesk::view::projection 0}           {orthographic isometric}
        {::vesk::view::walks 1}              {fly camera fps}
        {::vesk::view::walks 0}              {orbit turntable camera}
        {file_select_background_image 0} {reference blueprint}
        file_select_texture          {image picture map assign bitmap}
        ::vesk::uvedit::open         {unwrap uv mapping islands pack}
        remap_textures               {uv unwrap project mapping}
        inituv                       {uv reset}
        ::vesk::ops::render          {raytrace image}
        ::vesk::issues::open         {check clean errors problems manifold doubles holes}
        check_fix_all                {clean cleanup repair doubles}
        measure                      {distance area volume dimension}
        ::vesk::operations::open     {parameters numbers}
        get_info                     {statistics count polycount}
        plugin_load                  {extension addon}
        ::vesk::console_shown        {script terminal command line python}
        ::vesk::panel_shown          {sidebar outliner properties}
        ::vesk::theme_name           {dark mode colours skin}
        ::vesk::help::page           {documentation help}
        ::vesk::help::keys           {shortcuts hotkeys keyboard keymap}
        ::vesk::tips::open           {hints}
    }
}

# synonyms_of --
#   The other words for a row, in lower case.
proc ::vesk::menus::synonyms_of {row} {
    variable synonyms
    set target [lindex $row 2]
    if {[lindex $row 0] in {line menu}} {return {}}
    set words {}
    foreach key [lsort -unique [list [lrange $target 0 1] [lindex $target 0]]] {
        if {[dict exists $synonyms $key]} {lappend words {*}[dict get $synonyms $key]}
    }
    return $words
}
