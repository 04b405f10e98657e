#ifndef VESK_FILEIO_BACKUP_H
#define VESK_FILEIO_BACKUP_H

#include <string>

// Previous versions of saved files: "model.vesk.bak1" is the newest, higher numbers are older.

// How many are kept; 0 keeps none. At most 99.
void set_backup_versions(int versions);

// Round a save: begin keeps the present version of the file aside, end makes it the newest backup
// when the save succeeded, else forgets it. A file that is not there has no previous version.
std::string backup_begin(const char *file);
void backup_end(const char *file, const std::string &aside, bool saved);

#endif
