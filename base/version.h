#ifndef VESK_BASE_VERSION_H
#define VESK_BASE_VERSION_H

#include "base/types.h"

VESK_BEGIN_DECLS

VESK_API double vesk_get_version_number(void);
VESK_API const char *vesk_get_version_string(void);
VESK_API const char *vesk_get_platform(void);

VESK_END_DECLS

#endif
