#ifndef VESK_BASE_TYPES_H
#define VESK_BASE_TYPES_H

/* Shared by every header, also those that plug-ins see: C99 and C++. */

#include <stdint.h>

#ifdef __cplusplus
#define VESK_BEGIN_DECLS extern "C" {
#define VESK_END_DECLS }
#else
#define VESK_BEGIN_DECLS
#define VESK_END_DECLS
#endif

/* Functions that plug-ins may call; everything else stays hidden. */
#define VESK_API __attribute__((visibility("default")))

/* A printf-like function: `fmt` and `args` are the 1-based places of the format and of the first
   argument (0 when they come as a va_list). */
#define VESK_PRINTF(fmt, args) __attribute__((format(printf, fmt, args)))

/* A position, direction, normal or size. */
typedef struct point3 {
    float x, y, z;
} point3_t;

/* View ids: the three orthographic views, the 3D view, the main window, none. */
enum { VIEW_XY = 0, VIEW_ZY = 1, VIEW_XZ = 2, VIEW_XYZ = 3, VIEW_MAIN = 4, VIEW_NONE = -1 };

#ifdef VESK_INTERNAL
// The window of texture coordinates: for redraws, cursors and the number field, else no view.
constexpr int texture_coords_view = 5;
inline bool is_orthographic(int view) { return view >= VIEW_XY && view <= VIEW_XZ; }
#endif

#endif
