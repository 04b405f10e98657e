#ifndef VESK_FILEIO_VESK_MESSAGES_H
#define VESK_FILEIO_VESK_MESSAGES_H

// Messages of the readers of model files.

#include "model/object.h"

// The box about a file of a later revision.
void tell_newer_version(const char *filename);
// The box about a file of another kind.
void tell_not_valid(const char *filename);

// Complaints about faulty lines of the load that is running: the debug output gets them all, the
// status line their number and the first one.
void complaints_clear();
void complain(const char *format, ...) VESK_PRINTF(1, 2);
// Puts the numbers of a tree right that are none, with a complaint.
void complain_of_numbers(object_t *top);
// The end of a load: "Done." and, when there were complaints, their number.
void tell_load_done();

#endif
