#ifndef VESK_BASE_UTF8_H
#define VESK_BASE_UTF8_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* A text, for formats that want UTF-8: its UTF-8 letters as they are, every other byte as the
   Latin-1 letter of that number, control characters as blanks. Null is "". In one buffer that each
   call overwrites. */
VESK_API const char *vesk_utf8(const char *text);

/* The same in double quotes, as a text of JSON. In one buffer that each call overwrites. */
VESK_API const char *vesk_json_text(const char *text);

VESK_END_DECLS

#endif
