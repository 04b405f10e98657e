#ifndef VESK_FILEIO_EXPORT_COMMANDS_H
#define VESK_FILEIO_EXPORT_COMMANDS_H

// Commands of the same names: each writes the scene in a text format. Elements that the format has
// no place for are left out and counted in one line. Returns 1, or 0 after a message when the file
// could not be written or the user cancelled; a former file is then as it was.
int write_vrml(const char *filename);       // VRML 1.0
int write_vrml2_tree(const char *filename); // VRML 2.0 with the tree, as Import reads it
int write_inventor(const char *filename);   // Open Inventor 2.1, ASCII
int write_POV(const char *filename);  // scene of the POV renderer, as the pov_ preferences say
int write_rib(const char *filename);  // RenderMan interface bytestream, as the rib_ ones say
int write_dxf(const char *filename);  // DXF: faces, lines and points, a layer for each group
int write_tri(const char *filename);  // triangles with colours, which Import reads
int write_dive(const char *filename); // the plain scene text that the manual describes ...
int write_dvs(const char *filename);  // ... under the name of its program
int write_massive(const char *filename);

#endif
