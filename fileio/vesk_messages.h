#ifndef VESK_FILEIO_VESK_MESSAGES_H
#define VESK_FILEIO_VESK_MESSAGES_H

// Messages of the readers of model files.

#include "base/types.h"

// The box about a file of a later revision.
void tell_newer_version(const char *filename);
// The box about a file of another kind.
void tell_not_valid(const char *filename);

// Complaints about faulty lines of the load that is running: the debug output gets them all, the
// status line their number and the first one.
void complaints_clear();
void complain(const char *format, ...) VESK_PRINTF(1, 2);
// The end of a load: "Done." and, when there were complaints, their number.
void tell_load_done();

#endif
