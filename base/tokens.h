#ifndef VESK_BASE_TOKENS_H
#define VESK_BASE_TOKENS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* The most tokens that vesk_get_tokens stores. */
enum { VESK_MAX_TOKENS = 32 };

/* Splits a line in place at blanks, tabs and line ends; a token in double quotes may hold blanks,
   and a backslash in it takes the next character literally.
   line    changed: separators become terminators; the tokens point into it.
   count   null, or where the number of tokens is stored.
   tokens  room for VESK_MAX_TOKENS; further tokens are counted but not stored.
   Returns the number of tokens. */
VESK_API int vesk_get_tokens(char *line, int *count, char **tokens);

VESK_END_DECLS

#endif
