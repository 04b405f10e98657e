#ifndef VESK_BASE_UTF8_H
#define VESK_BASE_UTF8_H

#include "base/types.h"

#include <stddef.h>

VESK_BEGIN_DECLS

/* A text, for formats that want UTF-8: its UTF-8 letters as they are, every other byte as the
   Latin-1 letter of that number, control characters as blanks. Null is "". In one buffer that each
   call overwrites. */
VESK_API const char *vesk_utf8(const char *text);

/* The same in double quotes, as a text of JSON. In one buffer that each call overwrites. */
VESK_API const char *vesk_json_text(const char *text);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// Length of the letter that a text begins with, 0 when it begins with none.
size_t utf8_letter(const char *text);
// How many of the first `most` bytes are whole letters.
size_t utf8_whole(const char *text, size_t most);
#endif

#endif
