#ifndef VESK_PLUGIN_FORMAT_TABLE_H
#define VESK_PLUGIN_FORMAT_TABLE_H

// The tables of importers and exporters: lists of records that begin with the texts suffix,
// description and info, and end with a function.

#include "model/alloc_internal.h"
#include "model/each.h"
#include "model/list.h"

#include <string>

// Appends a record with copies of the texts, "-" for a null one; null when there is no memory.
template <class Record, class Function>
Record *format_table_add(listitem **table, const char *suffix, const char *description,
                         const char *info, Function function)
{
    auto *record = static_cast<Record *>(myalloc(sizeof(Record)));
    if (record == nullptr)
        return nullptr;
    *record = {text_copy(suffix), text_copy(description == nullptr ? "-" : description),
               text_copy(info == nullptr ? "-" : info), function};
    list_add_item(table, record);
    return record;
}

// "I can import these files:" and a line for each record.
template <class Record>
std::string format_table_text(const listitem *table, const char *verb)
{
    std::string text = std::string("I can ") + verb + " these files:\n";
    for (const Record *record : each<Record>(table))
        text += std::string(record->suffix) + " (" + record->description + ")\n";
    return text;
}

template <class Record>
void format_table_free(listitem **table)
{
    for (Record *record : each<Record>(*table)) {
        myfree(record->suffix);
        myfree(record->description);
        myfree(record->info);
        myfree(record);
    }
    list_free(table);
}

#endif
