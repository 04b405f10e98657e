#ifndef VESK_VIEW_VIEW_PICTURE_H
#define VESK_VIEW_VIEW_PICTURE_H

// Command "copy_3d_win_to_clipboard": the 3D view as a PNG picture on the clipboard, and in a new
// file beside the model file (without one in the user's home folder), which the status line names.
void command_copy_3d_win_to_clipboard();

#endif
