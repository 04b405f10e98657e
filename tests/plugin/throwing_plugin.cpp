// Throws while it initialises, in its information and in its command.

#include <plugin/vesk.h>
#include <stdexcept>

namespace {
bool initialised = false;
void sample_throw() { throw std::runtime_error("a command that throws"); }
} // namespace

int VESKPluginInit(void)
{
    // The second time it comes up.
    if (!initialised) {
        initialised = true;
        throw std::runtime_error("an initialisation that throws");
    }
    vesk_add_command("sample_throw", sample_throw);
    return 1;
}
void VESKPluginExit(void) { throw 42; }
const char *VESKPluginInfo(void) { throw std::runtime_error("an info that throws"); }
