// Archives (zip) within memory, by libzip, which knows their many forms and checks the unpacked
// bytes.
#ifndef INTERCHANGE_ARCHIVE_H
#define INTERCHANGE_ARCHIVE_H

#include <list>
#include <string>
#include <zip.h>

// Bytes that are no archive make one without files.
class archive_reader {
public:
    explicit archive_reader(const std::string &bytes); // which stay where they are
    ~archive_reader();
    archive_reader(const archive_reader &) = delete;
    archive_reader &operator=(const archive_reader &) = delete;

    [[nodiscard]] bool has(const std::string &name) const;
    // The content of a file. False when there is none of that name, or it is damaged, packed in a
    // way that such files do not use, or larger than `most` bytes.
    bool extract(const std::string &name, std::size_t most, std::string *out) const;

private:
    const std::size_t size_; // of the bytes
    zip_t *archive_ = nullptr;
};

// An archive whose files are stored as they are.
class archive_writer {
public:
    archive_writer();
    ~archive_writer();
    archive_writer(const archive_writer &) = delete;
    archive_writer &operator=(const archive_writer &) = delete;

    void add(const std::string &name, std::string content);
    // The archive's bytes, "" when there is no memory for them.
    std::string finish();

private:
    zip_source_t *bytes_ = nullptr;
    zip_t *archive_ = nullptr;
    std::list<std::string> contents_; // until they are in the archive
    bool good_ = false;
};

#endif
