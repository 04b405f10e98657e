#include "plugin/loader.h"

#include "base/crash_guard.h"
#include "base/filename.h"
#include "base/foreign.h"
#include "base/home.h"
#include "base/messages.h"
#include "base/ui_port.h"

#include <algorithm>
#include <cstring>
#include <dirent.h>
#include <dlfcn.h>
#include <string>
#include <vector>

namespace {

struct plugin_t {
    void *library;
    int (*init)();
    void (*exit)();
    const char *(*about)();
    const char *(*info)();
    std::string path;
};

std::vector<plugin_t> plugins;    // in load order
std::vector<std::string> skipped; // file names that are not loaded at the start

void tell_error(const char *path, const std::string &text)
{
    console_printf("plugin error '%s' \n - %s\n", path, text.c_str());
    windows_message_dialog("Error loading plugin - %s\n%s", path, text.c_str());
}

template <class F>
bool find_entry(const plugin_t &plugin, const char *name, F *function)
{
    *function = reinterpret_cast<F>(dlsym(plugin.library, name));
    return *function != nullptr;
}

// A call into a plug-in.
template <class F>
bool call_guarded(const plugin_t &plugin, const char *what, F &&function)
{
    fault_t fault;
    const bool whole = guarded_with_recovery(
        [&] {
            const foreign_scope scope(code_of_function(plugin.init));
            function();
        },
        &fault);
    if (!whole) {
        tell_error(plugin.path.c_str(),
                   std::string("fault in ") + what + ": " +
                       (fault.kind == fault_t::CODE ? vesk_exception_get_message(fault.code)
                                                    : fault.what));
    }
    return whole;
}

std::string text_of(const plugin_t &plugin, const char *(*entry)(), const char *what)
{
    const char *text = nullptr;
    if (entry != nullptr)
        call_guarded(plugin, what, [&] { text = entry(); });
    return text == nullptr ? "" : text;
}

const plugin_t *find_plugin(const char *path)
{
    const auto found =
        std::find_if(plugins.begin(), plugins.end(), [&](const auto &p) { return p.path == path; });
    return found == plugins.end() ? nullptr : &*found;
}

bool find_entries(plugin_t *plugin, const char *path)
{
    if (!find_entry(*plugin, "VESKPluginInit", &plugin->init)) {
        tell_error(path, std::string("VESKPluginInit not found in plugin file ") + path + "\n");
        return false;
    }
    if (!find_entry(*plugin, "VESKPluginExit", &plugin->exit)) {
        tell_error(path, std::string("VESKPluginExit not found in plugin file ") + path + "\n");
        return false;
    }
    find_entry(*plugin, "VESKPluginAbout", &plugin->about);
    find_entry(*plugin, "VESKPluginInfo", &plugin->info);
    return true;
}

// False also when it faulted: then it stays mapped, because it may have registered something.
bool initialise(const plugin_t &plugin)
{
    int result = 0;
    // By this variable the scripts note the menu items of a plug-in.
    ui_port().set_var("plugin_loading", plugin.path.c_str());
    const bool whole = call_guarded(plugin, "VESKPluginInit", [&] { result = plugin.init(); });
    ui_port().set_var("plugin_loading", "");
    if (!whole)
        return false;
    if (result == 0)
        tell_error(plugin.path.c_str(), "Initialisation of plugin " + plugin.path + " failed\n");
    return result != 0;
}

} // namespace

void load_all_plugins(void)
{
    const std::string folder = vesk_filename_concat_path_file(vesk_get_vesk_homedir(), "plugins");
    debugf("Loading plugins from: %s\n", folder.c_str());
    std::vector<std::string> names;
    if (DIR *directory = opendir(folder.c_str())) {
        while (const dirent *entry = readdir(directory)) {
            const std::string name = entry->d_name;
            if (name.size() > 2 && name.ends_with(".p"))
                names.push_back(name);
        }
        closedir(directory);
    }
    if (names.empty()) {
        debugf("can't open any plugins %s\n", folder.c_str());
        return;
    }
    std::sort(names.begin(), names.end()); // the listing's own order is random
    for (const std::string &name : names) {
        if (std::find(skipped.begin(), skipped.end(), name) != skipped.end() ||
            std::find(skipped.begin(), skipped.end(), "*") != skipped.end())
            continue;
        plugin_load(vesk_filename_concat_path_file(folder.c_str(), name.c_str()));
    }
}

void plugins_skip(int count, const char *const *names) { skipped.assign(names, names + count); }

int plugin_load(const char *path)
{
    plugin_t plugin = {};
    plugin.path = path; // the caller's text may be replaced meanwhile
    debugf("attempting to load plugin '%s'\n", plugin.path.c_str());
    // A name without a slash would be searched in the library path, not in this folder.
    const std::string name =
        plugin.path.find('/') == std::string::npos ? "./" + plugin.path : plugin.path;
    plugin.library = dlopen(name.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (plugin.library == nullptr) {
        const char *reason = dlerror();
        tell_error(plugin.path.c_str(), reason == nullptr ? "" : reason);
        return 0;
    }
    const std::string given = plugin.path;
    vesk_unbackslash_string(plugin.path.data());
    if (!find_entries(&plugin, given.c_str())) {
        dlclose(plugin.library);
        return 0;
    }
    if (!initialise(plugin))
        return 0;
    if (plugin.info != nullptr)
        console_printf("%s\n", text_of(plugin, plugin.info, "VESKPluginInfo").c_str());
    plugins.push_back(plugin);
    debugf("plugin %s OK!\n", plugin.path.c_str());
    return 1;
}

const char *vesk_get_plugin_list(void)
{
    static std::string text;
    text.clear();
    for (const plugin_t &plugin : plugins)
        text += "\"" + plugin.path + "\" ";
    text += "\n";
    return text.c_str();
}

const char *vesk_get_plugin_info(const char *path)
{
    static std::string text;
    const plugin_t *plugin = find_plugin(path);
    text = plugin == nullptr ? "" : text_of(*plugin, plugin->info, "VESKPluginInfo");
    return text.c_str();
}

const char *vesk_get_plugin_about(const char *path)
{
    static std::string text;
    const plugin_t *plugin = find_plugin(path);
    text = plugin == nullptr ? "" : text_of(*plugin, plugin->about, "VESKPluginAbout");
    return text.c_str();
}

const char *vesk_get_plugin_info_all(void)
{
    static std::string text;
    text.clear();
    for (const plugin_t &plugin : plugins)
        text += plugin.path + ": " + text_of(plugin, plugin.info, "VESKPluginInfo") + "\n";
    return text.c_str();
}

void plugin_tell_fault(const void *code)
{
    Dl_info library;
    if (is_foreign_code(code) && dladdr(code, &library) != 0)
        tcl_command("plugin_faulted %s",
                    script_word(vesk_filename_get_file(library.dli_fname)).c_str());
}

void plugins_exit()
{
    while (!plugins.empty()) {
        const plugin_t plugin = plugins.back();
        plugins.pop_back();
        call_guarded(plugin, "VESKPluginExit", plugin.exit);
    }
}
