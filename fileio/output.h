#ifndef VESK_FILEIO_OUTPUT_H
#define VESK_FILEIO_OUTPUT_H

#include "base/types.h"

#include <stddef.h>

VESK_BEGIN_DECLS

/* Files as the program itself writes them: the bytes go to a temporary file beside the target and
   take its place only when they are complete and on the disk, so that every failure leaves the
   former file. Links are followed, access rights kept. */
typedef struct vesk_output vesk_output_t;

/* Begins a file; never null. Each is ended by vesk_output_close. */
VESK_API vesk_output_t *vesk_output_open(const char *filename);

/* Appends `count` bytes. Returns 1, or 0 after a failure; then nothing more is written. */
VESK_API int vesk_output_write(vesk_output_t *output, const void *bytes, size_t count);

/* Ends the file and frees the record: with `keep` the new bytes replace the former file, else they
   are thrown away. Returns 1 when the new file is there. When it could not be written, and `keep` is
   set, the status line has its name and the system's reason. */
VESK_API int vesk_output_close(vesk_output_t *output, int keep);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <string>

// On the status line: "can't open file ... for writing", then why.
void tell_cannot_write(const char *name);

// The system's reason alone, after the message or box that names the file.
void tell_write_reason(const char *name);

// The message at the end of an export: cancelled, not written, or the file with its losses. Returns
// 1 when the file was written, else 0.
int export_end(const std::string &filename, const char *format, bool cancelled, bool written);
#endif

#endif
