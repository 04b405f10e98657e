#ifndef VESK_PROGRAM_OBJECT_ROWS_H
#define VESK_PROGRAM_OBJECT_ROWS_H

// Command "object_rows": the rows of the objects panel, which is told what differs from the last time:
// of a hundred thousand objects one was renamed.
void command_object_rows(int since);

#endif
