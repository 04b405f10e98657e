#ifndef VESK_VIEW_CAMERA_INTERNAL_H
#define VESK_VIEW_CAMERA_INTERNAL_H

#include "view/camera.h"

// Factor between the world and the viewer's units in spin mode: chosen when the view is fitted, so
// that models of any size fill it at zoom 1; 1 after a reset and in walk mode.
void camera_set_fit(double factor);
double camera_fit();

bool camera_is_perspective();

// The integer that shows the scripts whether walk mode is on.
int *camera_walk_indicator();

void camera_reset_for_test();

#endif
