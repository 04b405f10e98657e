#ifndef VESK_BASE_MESSAGES_INTERNAL_H
#define VESK_BASE_MESSAGES_INTERNAL_H

#include "base/messages.h"

#endif
