#ifndef VESK_FILEIO_WRITE_REPORT_H
#define VESK_FILEIO_WRITE_REPORT_H

// What the user reads when a file could not be written.

// "can't open file ... for writing", then why.
void tell_cannot_write(const char *name);

// On the status area, after the message or dialog that names the file: the system's reason.
void tell_write_reason(const char *name);

#endif
