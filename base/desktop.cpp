#include "base/desktop.h"

#include "base/messages.h"
#include "base/ui_port.h"
#include "base/version.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace {

void tell_end(const char *command_line, int status)
{
    if (status < 0)
        display_message("%s - ended by signal %d", command_line, -status);
    else
        display_message("%s - exit status %d", command_line, status);
}

bool begins_with(std::string_view text, std::string_view start)
{
    return text.size() > start.size() &&
           std::equal(start.begin(), start.end(), text.begin(), [](char a, char b) {
               return a == std::tolower(static_cast<unsigned char>(b));
           });
}

} // namespace

void system_execute(const char *command_line)
{
    if (ui_port().start_program(command_line, tell_end))
        display_message("%s - started", command_line);
    else
        display_message("%s - cannot be started", command_line);
}

void start_web_browser(const char *url)
{
    constexpr std::string_view schemes[] = {"http://", "https://", "file://"};
    const bool known =
        std::any_of(std::begin(schemes), std::end(schemes),
                    [&](std::string_view scheme) { return begins_with(url, scheme); });
    if (!known)
        display_message("web browser - only http, https and file addresses: %s", url);
    else if (ui_port().open_address(url))
        display_message("web browser - %s", url);
    else
        display_message("web browser - cannot be started");
}

void command_menu_about()
{
    windows_message_dialog("%s\n\nAn interactive polygon modeller for real-time 3D content.\n\n"
                           "Key table and command list: Help menu.",
                           vesk_get_version_string());
}
