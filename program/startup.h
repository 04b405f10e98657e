#ifndef VESK_PROGRAM_STARTUP_H
#define VESK_PROGRAM_STARTUP_H

// The start-up sequence. Services of the toolkit come in as a record of functions, so that the
// sequence itself stays in the core.

#include "base/types.h"

#include <string>
#include <vector>

// The command line. Everything after "-batch FILE" or another option that ends in a script belongs
// to the script.
struct command_line_t {
    std::string program;
    std::vector<std::string> files;
    bool debug = false;
    bool help = false;
    bool version = false;
    bool incomplete = false; // a file is missing behind an option
    bool plugins = true;
    bool batch = false;
    std::string script;      // of -batch, or of -script
    bool own_script = false; // it lies in the home directory
    std::vector<std::string> script_arguments;
};

// Prints the messages about options as they are met.
command_line_t parse_command_line(int argc, char **argv);

struct startup_toolkit_t {
    void (*install_port)(bool batch);             // before anything is printed
    bool (*init_tcl)(const command_line_t &line); // interpreter, links, scripts
    void (*create_windows)();                     // the four views; not called in batch mode
    bool (*run_script)(const char *file);
    void (*loop)();           // does not return while a window is left
    void (*quit)(int status); // ends the process
};

// Starts the program, runs it, and returns its exit status when the toolkit's functions do.
int vesk_run(int argc, char **argv, const startup_toolkit_t &toolkit);

// Directory that was current at the start; "" when it could not be read.
const std::string &start_directory();

// `name` joined to the start directory when it is not absolute.
std::string absolute_from_start(const std::string &name);

// The directory of an executable: its path cut at the last separator, whole when it has none.
std::string directory_of_executable(const std::string &path);

VESK_BEGIN_DECLS

/* Puts the viewer of the 3D view at its initial place. */
VESK_API void init_view3d(void);

VESK_END_DECLS

#endif
