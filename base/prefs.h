#ifndef VESK_BASE_PREFS_H
#define VESK_BASE_PREFS_H

#include "base/types.h"

VESK_BEGIN_DECLS

enum { PREF_INT, PREF_DOUBLE, PREF_HEX, PREF_STRING, PREF_KEY, PREF_BOOLEAN };

/* One row of the preference table. `address` is that of an int (kinds int, hex, boolean), a
   double, a char * (string) or an unsigned char (key). */
typedef struct vesk_pref {
    const char *key;
    int kind;
    void *address;
} vesk_pref_t;

/* The row of a key, compared without regard to case; null when there is none. */
VESK_API const vesk_pref_t *vesk_prefs_get_spec(const char *key);

/* The value of a setting. An unknown key or another kind is told on standard error and gives -1
   (-1.0, null). Texts are not copies: read them where they are used, a script may replace them. */
VESK_API int vesk_prefs_get_int(const char *key);
VESK_API int vesk_prefs_get_boolean(const char *key);
VESK_API double vesk_prefs_get_double(const char *key);
VESK_API int vesk_prefs_get_hex(const char *key);
VESK_API const char *vesk_prefs_get_string(const char *key);
/* The name of a key's code: "Up", "Space", or the character. */
VESK_API const char *vesk_prefs_get_key(const char *key);

/* Prints one line for each setting: its key and its kind. */
VESK_API void vesk_prefs_list(void);

/* Sets every setting to its default. Command "prefs_set_defaults". */
VESK_API void prefs_set_defaults(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL

#include <span>

// The settings as the program reads them, one field a key ("3dwin_x" is win3d_x).
struct prefs_t {
#define PREF_TYPE_int int
#define PREF_TYPE_double double
#define PREF_TYPE_hex int
#define PREF_TYPE_string char *
#define PREF_TYPE_boolean int
#define PREF(key, field, kind, value) PREF_TYPE_##kind field;
#define PREF_AGAIN(key, field, kind)
#include "base/prefs_rows.inc"
#undef PREF
#undef PREF_AGAIN
};

extern prefs_t prefs;

// All rows, in the order of the settings file.
std::span<const vesk_pref_t> prefs_table();

// Key settings as they stand in the file: "Up", "Down", "Left", "Right", "Space" or the character
// itself; an unknown name is 0. The name is valid until the next call.
const char *prefs_key_name(unsigned char code);
unsigned char prefs_key_code(const char *name);

// Replaces a text setting.
void prefs_set_string(char **setting, const char *text);

#endif

#endif
