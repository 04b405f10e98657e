#ifndef VESK_SHELL_ICON_IMAGE_TK_H
#define VESK_SHELL_ICON_IMAGE_TK_H

#include <tk.h>

// The image type "vesk_icon": a part of a PNG sheet, kept on the X server with its transparency and
// laid over whatever is below by the server. A photo image would fetch the ground, blend it here and
// send it back, hundreds of times at a start.
//   image create vesk_icon NAME
//   NAME crop FILE x y width height   shows that part of the sheet
//   NAME blank width height           transparent
// Not there when the X server has no RENDER extension.
void icon_image_install(Tcl_Interp *interp);

#endif
