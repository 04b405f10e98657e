// Files that are not what their name or their head says, and those that would never end.

#include "base/file_report.h"
#include "model/bounds.h"
#include "tests/plugin/interchange_fixture.h"

#include <climits>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <zlib.h>

namespace {

std::string number(unsigned value, int bytes)
{
    std::string out;
    for (int i = 0; i < bytes; ++i)
        out += static_cast<char>(value >> 8 * i);
    return out;
}

std::string packed(const std::string &text)
{
    z_stream stream = {};
    deflateInit2(&stream, 6, Z_DEFLATED, -MAX_WBITS, 9, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef *>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

// An archive with one packed file.
std::string zip_of(const std::string &name, const std::string &text)
{
    const std::string bytes = packed(text);
    const auto crc = static_cast<unsigned>(
        crc32(0, reinterpret_cast<const Bytef *>(text.data()), static_cast<uInt>(text.size())));
    const std::string about = number(20, 2) + number(0, 2) + number(8, 2) + number(0, 2) +
                              number(33, 2) + number(crc, 4) +
                              number(static_cast<unsigned>(bytes.size()), 4) +
                              number(static_cast<unsigned>(text.size()), 4) +
                              number(static_cast<unsigned>(name.size()), 2) + number(0, 2);
    const std::string file = "PK\x03\x04" + about + name + bytes;
    const std::string entry = "PK\x01\x02" + number(20, 2) + about + number(0, 2) + number(0, 2) +
                              number(0, 2) + number(0, 4) + number(0, 4) + name;
    return file + entry + "PK\x05\x06" + number(0, 4) + number(1, 2) + number(1, 2) +
           number(static_cast<unsigned>(entry.size()), 4) +
           number(static_cast<unsigned>(file.size()), 4) + number(0, 2);
}

class OddFiles : public Interchange {};

// Neither the first word nor the number that stands where a binary file has its count decides.
TEST_F(OddFiles, StlTextsAndBinariesAreToldBySizeAndWords)
{
    const std::string facet = "facet normal 0 0 1\nouter loop\nvertex 0 0 0\nvertex 2 0 0\n"
                              "vertex 2 1 0\nendloop\nendfacet\n";
    std::string binary = std::string("solid binary").append(68, ' ') + number(1, 4);
    for (const float value : {0.f, 0.f, 1.f, 0.f, 0.f, 0.f, 2.f, 0.f, 0.f, 2.f, 1.f, 0.f}) {
        unsigned bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        binary += number(bits, 4);
    }
    binary += number(0, 2);
    std::string capitals = "SOLID a\n" + facet + "ENDSOLID\n";
    for (char &c : capitals)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (const std::string &bytes :
         {"\xEF\xBB\xBFsolid a\n" + facet + facet + "endsolid\n",
          "; made by hand, with a line before its head and another, so that it is long enough\n"
          "\nsolid a\n" +
              facet + facet + "endsolid\n",
          facet, capitals, binary, binary + "trailing",
          std::string(80, '\xFF') + binary.substr(80)}) {
        run("clear_all");
        ASSERT_EQ(load("a.stl", bytes), "1") << bytes.substr(0, 20);
        EXPECT_EQ(find_object_size(vesk_get_world()).x, 2) << bytes.substr(0, 20);
        EXPECT_EQ(find_object_size(vesk_get_world()).y, 1);
    }
}

TEST_F(OddFiles, PipesDevicesAndFoldersAreNoModels)
{
    const std::string pipe = temporary_file("pipe.obj");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_directory(temporary_file("folder.stl"));
    std::filesystem::create_symlink("/dev/zero", temporary_file("zero.wrl"));
    const struct {
        std::string file, reason;
    } rows[] = {{pipe, "it is a pipe or a device, no file"},
                {temporary_file("zero.wrl"), "it is a pipe or a device, no file"},
                {temporary_file("folder.stl"), "it is a folder"}};
    for (const auto &row : rows) {
        EXPECT_EQ(run("file_load", row.file), "0");
        EXPECT_EQ(recording().boxes.back(), "can't read " + row.file + "\n" + row.reason);
    }
    // A picture that is a pipe is no picture.
    const std::string picture = temporary_file("pipe.png");
    ASSERT_EQ(mkfifo(picture.c_str(), 0600), 0);
    load("a.wrl", "#VRML V2.0 utf8\nShape { appearance Appearance { texture ImageTexture { url "
                  "\"pipe.png\" } } geometry Box { } }");
}

// A quarter of a megabyte that unpacks to a quarter of a gigabyte.
TEST_F(OddFiles, APackedFloodIsRefused)
{
    std::string text = "<?xml version=\"1.0\"?><model><resources><object id=\"1\"><mesh><vertices>";
    text.append(std::size_t{270} << 20, ' ');
    const std::string bytes = zip_of("3D/3dmodel.model", text);
    text = {};
    EXPECT_LT(bytes.size(), 1 << 20);
    EXPECT_EQ(load("flood.3mf", bytes), "0");
    EXPECT_TRUE(recording().boxes.back().ends_with("unpacks to more than can be held"))
        << recording().boxes.back();
}

TEST_F(OddFiles, NamesAsLongAsTheSystemAllowsAreWrittenAndRead)
{
    add_square(1);
    for (const char *suffix : {".vesk", ".obj", ".wrl", ".stl", ".3ds"}) {
        const std::string name = std::string(NAME_MAX - std::strlen(suffix), 'a') + suffix;
        const std::string file = temporary_file(name.c_str());
        EXPECT_EQ(run("export_model", file), "1") << suffix << last_message();
        EXPECT_EQ(run("file_load", file), "1") << suffix;
        std::filesystem::remove(file);
        const std::string odd =
            temporary_file((std::string("caf\xE9") + suffix).c_str()); // Latin-1
        EXPECT_EQ(run("export_model", odd), "1") << suffix << last_message();
        EXPECT_EQ(run("file_load", odd), "1") << suffix;
        // As the interpreter hands such a name on.
        EXPECT_EQ(run("file_load", temporary_file((std::string("caf\xC3\xA9") + suffix).c_str())),
                  "1");
    }
}

} // namespace
