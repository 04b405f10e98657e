#include "archive.h"

#include <algorithm>

namespace {

constexpr std::size_t piece = 1 << 20;             // bytes that are unpacked at once
constexpr std::size_t most_packing = 1032;         // the best that the packing can do
constexpr zip_uint16_t first_of_1980 = 1 << 5 | 1; // the date of all files

} // namespace

archive_reader::archive_reader(const std::string &bytes) : size_(bytes.size())
{
    zip_source_t *source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr);
    archive_ = source == nullptr ? nullptr : zip_open_from_source(source, ZIP_RDONLY, nullptr);
    if (archive_ == nullptr)
        zip_source_free(source);
}

archive_reader::~archive_reader()
{
    if (archive_ != nullptr)
        zip_discard(archive_);
}

bool archive_reader::has(const std::string &name) const
{
    return archive_ != nullptr && zip_name_locate(archive_, name.c_str(), 0) >= 0;
}

bool archive_reader::extract(const std::string &name, std::size_t most, std::string *out) const
{
    out->clear();
    zip_stat_t about;
    if (archive_ == nullptr || zip_stat(archive_, name.c_str(), 0, &about) != 0 ||
        (about.comp_method != ZIP_CM_STORE && about.comp_method != ZIP_CM_DEFLATE))
        return false;
    zip_file_t *file = zip_fopen_index(archive_, about.index, 0);
    if (file == nullptr)
        return false;
    // The sizes are but claims: no more room is made than the archive's bytes can fill.
    out->reserve(std::min({std::size_t{about.size}, most, size_ * most_packing}) + piece);
    zip_int64_t count = 1;
    while (count > 0 && out->size() <= most) {
        const std::size_t before = out->size();
        out->resize(before + piece);
        count = zip_fread(file, out->data() + before, piece);
        out->resize(before + static_cast<std::size_t>(std::max(count, zip_int64_t{0})));
    }
    const bool whole = count == 0;
    return zip_fclose(file) == 0 && whole && out->size() <= most;
}

archive_writer::archive_writer() : bytes_(zip_source_buffer_create(nullptr, 0, 0, nullptr))
{
    if (bytes_ == nullptr)
        return;
    zip_source_keep(bytes_); // they outlive the archive
    archive_ = zip_open_from_source(bytes_, ZIP_TRUNCATE, nullptr);
    good_ = archive_ != nullptr;
}

archive_writer::~archive_writer()
{
    if (archive_ != nullptr)
        zip_discard(archive_);
    zip_source_free(bytes_);
}

void archive_writer::add(const std::string &name, std::string content)
{
    if (!good_)
        return;
    const std::string &kept = contents_.emplace_back(std::move(content));
    zip_source_t *source = zip_source_buffer(archive_, kept.data(), kept.size(), 0);
    const zip_int64_t place = zip_file_add(archive_, name.c_str(), source, ZIP_FL_ENC_UTF_8);
    if (place < 0)
        zip_source_free(source);
    const auto index = static_cast<zip_uint64_t>(place);
    good_ = place >= 0 && zip_set_file_compression(archive_, index, ZIP_CM_STORE, 0) == 0 &&
            zip_file_set_dostime(archive_, index, 0, first_of_1980, 0) == 0;
}

std::string archive_writer::finish()
{
    std::string out;
    if (!good_ || zip_close(archive_) != 0)
        return out;
    archive_ = nullptr;
    contents_.clear();
    zip_stat_t about;
    if (zip_source_stat(bytes_, &about) != 0 || zip_source_open(bytes_) != 0)
        return out;
    out.resize(about.size);
    const zip_int64_t count = zip_source_read(bytes_, out.data(), out.size());
    zip_source_close(bytes_);
    if (count < 0 || static_cast<std::size_t>(count) != out.size())
        out.clear();
    return out;
}
