#include "base/prefs.h"

#include "base/messages.h"
#include "base/ui_port.h"

#include <cstdio>
#include <cstring>
#include <strings.h>

prefs_t prefs;

namespace {

constexpr int PREF_KIND_int = PREF_INT;
constexpr int PREF_KIND_double = PREF_DOUBLE;
constexpr int PREF_KIND_hex = PREF_HEX;
constexpr int PREF_KIND_string = PREF_STRING;
constexpr int PREF_KIND_boolean = PREF_BOOLEAN;

#define PREF(key, field, kind, value) {key, PREF_KIND_##kind, &prefs.field},
#define PREF_AGAIN(key, field, kind) {key, PREF_KIND_##kind, &prefs.field},
const vesk_pref_t table[] = {
#include "base/prefs_rows.inc"
};
#undef PREF
#undef PREF_AGAIN

void set_default(int &setting, int value) { setting = value; }
void set_default(double &setting, double value) { setting = value; }
void set_default(char *&setting, const char *value) { prefs_set_string(&setting, value); }

struct key_name_t {
    const char *name;
    unsigned char code;
};
const key_name_t key_names[] = {
    {"Up", 1}, {"Down", 2}, {"Left", 3}, {"Right", 4}, {"Space", 32},
};

const char *const kind_names[] = {"PREF_INT",    "PREF_DOUBLE", "PREF_HEX",
                                  "PREF_STRING", "PREF_KEY",    "PREF_BOOLEAN"};

// The row of `key` when it has the kind `kind`; else null, with a line on standard error.
const vesk_pref_t *row_of_kind(const char *key, int kind, const char *getter,
                               const char *unknown_getter, const char *kind_text,
                               const char *kind_words)
{
    const vesk_pref_t *row = vesk_prefs_get_spec(key);
    if (row == nullptr) {
        fprintf(stderr, "%s: %s not found in preferences\n", unknown_getter, key);
    } else if (row->kind != kind) {
        fprintf(stderr, "%s: pref %s is not type '%s' (%s %d)\n", getter, key, kind_text,
                kind_words, row->kind);
    } else {
        return row;
    }
    return nullptr;
}

} // namespace

std::span<const vesk_pref_t> prefs_table() { return table; }

const vesk_pref_t *vesk_prefs_get_spec(const char *key)
{
    for (const vesk_pref_t &row : table) {
        if (strcasecmp(row.key, key) == 0)
            return &row;
    }
    return nullptr;
}

int vesk_prefs_get_int(const char *key)
{
    const char *name = "vesk_prefs_get_int";
    const auto *row = row_of_kind(key, PREF_INT, name, name, "int", "actually type");
    return row == nullptr ? -1 : *static_cast<const int *>(row->address);
}

int vesk_prefs_get_boolean(const char *key)
{
    const char *name = "vesk_prefs_get_boolean";
    const auto *row = row_of_kind(key, PREF_BOOLEAN, name, name, "boolean", "is type number");
    return row == nullptr ? -1 : (*static_cast<const int *>(row->address) != 0 ? 1 : 0);
}

double vesk_prefs_get_double(const char *key)
{
    const char *name = "vesk_prefs_get_double";
    const auto *row = row_of_kind(key, PREF_DOUBLE, name, name, "double", "is type number");
    return row == nullptr ? -1.0 : *static_cast<const double *>(row->address);
}

int vesk_prefs_get_hex(const char *key)
{
    const char *name = "vesk_prefs_get_hex";
    const auto *row = row_of_kind(key, PREF_HEX, name, name, "hex", "actually type");
    return row == nullptr ? -1 : *static_cast<const int *>(row->address);
}

const char *vesk_prefs_get_string(const char *key)
{
    const char *name = "vesk_prefs_get_string";
    const auto *row = row_of_kind(key, PREF_STRING, name, name, "string", "actually type");
    return row == nullptr ? nullptr : *static_cast<char *const *>(row->address);
}

const char *vesk_prefs_get_key(const char *key)
{
    // Deliberate: an unknown key is reported under the string getter's name, as scripts know it.
    const auto *row = row_of_kind(key, PREF_KEY, "vesk_prefs_get_key", "vesk_prefs_get_string",
                                  "key", "actually type");
    return row == nullptr ? nullptr
                          : prefs_key_name(*static_cast<const unsigned char *>(row->address));
}

const char *prefs_key_name(unsigned char code)
{
    static char character[2];
    for (const key_name_t &key : key_names) {
        if (key.code == code)
            return key.name;
    }
    character[0] = static_cast<char>(code);
    return character;
}

unsigned char prefs_key_code(const char *name)
{
    if (std::strlen(name) == 1)
        return static_cast<unsigned char>(name[0]);
    for (const key_name_t &key : key_names) {
        if (std::strcmp(key.name, name) == 0)
            return key.code;
    }
    return 0;
}

void vesk_prefs_list(void)
{
    for (const vesk_pref_t &row : table)
        console_printf("%s \t %s\n", row.key, kind_names[row.kind]);
}

void prefs_set_string(char **setting, const char *text)
{
    char *copy = ui_port().alloc_text(text);
    if (*setting != nullptr)
        ui_port().free_text(*setting);
    *setting = copy;
}

void prefs_set_defaults(void)
{
#define PREF(key, field, kind, value) set_default(prefs.field, value);
#define PREF_AGAIN(key, field, kind)
#include "base/prefs_rows.inc"
#undef PREF
#undef PREF_AGAIN
}
