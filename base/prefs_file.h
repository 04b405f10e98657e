#ifndef VESK_BASE_PREFS_FILE_H
#define VESK_BASE_PREFS_FILE_H

#include "base/prefs.h"

// Key settings as they stand in the file: "Up", "Down", "Left", "Right", "Space" or the character
// itself; an unknown name is 0. The name is valid until the next call.
const char *prefs_key_name(unsigned char code);
unsigned char prefs_key_code(const char *name);

#endif
