#ifndef VESK_MODEL_ALLOC_H
#define VESK_MODEL_ALLOC_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* A new uninitialised block of `size` bytes, 16-byte aligned, or null (reported on the console).
   Every record of the scene comes from here. */
VESK_API void *myalloc(uint32_t size);

/* Frees a block of myalloc; null is ignored. Returns 1, or 0 when the guarded mode (-debug, or the
   preference memory_checks at the last start) finds a double free or a damaged block; it is then
   left alone and reported on the console. */
VESK_API int myfree(void *block);

VESK_END_DECLS

#endif
