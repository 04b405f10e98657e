// Archives (zip) within memory.
#ifndef INTERCHANGE_ARCHIVE_H
#define INTERCHANGE_ARCHIVE_H

#include <cstdint>
#include <map>
#include <string>

// Places of the files in an archive, by name.
struct archive_entry {
    std::size_t offset, packed, size;
    int method; // 0 as they are, 8 deflated
};

// Empty when the bytes are no archive.
std::map<std::string, archive_entry> archive_entries(const std::string &bytes);

// False when the entry is damaged, or larger than `most` bytes.
bool archive_extract(const std::string &bytes, const archive_entry &entry, std::size_t most,
                     std::string *out);

// An archive whose files are stored as they are.
class archive_writer {
public:
    // False when the archive would become too large.
    bool add(const std::string &name, const std::string &content);
    std::string finish();

private:
    std::string bytes_, directory_;
    std::uint16_t count_ = 0;
};

#endif
