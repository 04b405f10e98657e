#ifndef VESK_PROGRAM_OBJECT_ROWS_H
#define VESK_PROGRAM_OBJECT_ROWS_H

// Command "object_rows": the rows of the objects panel, which is told what differs from the last time:
// of a hundred thousand objects one was renamed.
void command_object_rows(int since);
// Commands "object_rows_begin" and "object_rows_part": the same in pieces. The first one's answer has how
// many rows there are instead of the rows; the second gives some of these, nothing after another answer.
void command_object_rows_begin(int since);
void command_object_rows_part(int number, int from, int count);

#endif
