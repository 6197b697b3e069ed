// Decoding binary property lists beside libplist, on the same buffers, each decoder in turn.
//
//     bench_aperture [FILE...]      without files: lists of the shapes that Aperture's databases hold
#include "aperture/BinaryPlist.h"
#include "bench/support/Compare.h"
#include "platform/PosixFile.h"
#include "tests/support/PlistWriter.h"

#include <fmt/format.h>
#include <plist/plist.h>

namespace korvo {

namespace {

using Value = PlistDraft;
using Buffers = std::vector<std::string>;

/// The archive of one adjustment: a dictionary of parameters inside another.
std::string adjustment(int number)
{
    std::vector<std::pair<std::string, Value>> parameters;
    for (int i = 0; i < 24; ++i)
        parameters.emplace_back(fmt::format("inputParameter{}", i), Value(0.01 * i * number));
    return archiveBytes(plistDict({{"DGOperationIdentifier", Value("RKExposureOperation")},
        {"DGOperationVersionNumber", Value(std::int64_t(0))}, {"enabled", Value(true)},
        {"inputKeys", plistDict(std::move(parameters))}}));
}

std::string rowsOfText()
{
    Value::Array rows;
    for (int i = 0; i < 5000; ++i)
        rows.push_back(plistDict({{"name", Value(fmt::format("IMG_{:05}.JPG", i))},
            {"rating", Value(std::int64_t(i % 6))}, {"date", Value(Value::Date{4e8 + i})},
            {"caption", Value("A walk along the river on a clear morning in early spring")}}));
    return plistBytes(Value(std::move(rows)));
}

std::string numbers()
{
    Value::Array values;
    for (int i = 0; i < 60000; ++i)
        values.push_back(i % 2 ? Value(std::int64_t(i)) : Value(0.5 * i));
    return plistBytes(Value(std::move(values)));
}

double megabytes(const Buffers& buffers)
{
    std::size_t bytes = 0;
    for (const auto& buffer : buffers)
        bytes += buffer.size();
    return static_cast<double>(bytes) / 1e6;
}

void compareOn(const std::string& title, const Buffers& buffers)
{
    const auto repeats = static_cast<int>(20 / megabytes(buffers)) + 1;
    const auto eachTime = [&](auto decode) {
        return [&buffers, repeats, decode] {
            for (int i = 0; i < repeats; ++i)
                for (const auto& buffer : buffers)
                    decode(buffer);
        };
    };
    const auto seconds = bench::compare(title,
        {{"BinaryPlist::parse",
             eachTime([](const std::string& buffer) { BinaryPlist::parse(Bytes(buffer)); })},
            {"BinaryPlist::unarchive",
                eachTime([](const std::string& buffer) { BinaryPlist::unarchive(Bytes(buffer)); })},
            {"libplist", eachTime([](const std::string& buffer) {
                 plist_t list = nullptr;
                 plist_from_bin(buffer.data(), static_cast<std::uint32_t>(buffer.size()), &list);
                 plist_free(list);
             })}});
    const double size = megabytes(buffers) * repeats;
    fmt::print("  parse {:.0f} MB/s, unarchive {:.0f} MB/s, libplist {:.0f} MB/s\n", size / seconds[0],
        size / seconds[1], size / seconds[2]);
}

} // namespace

} // namespace korvo

int main(int argc, char** argv)
{
    using namespace korvo;
    if (argc > 1) {
        Buffers files;
        for (int i = 1; i < argc; ++i)
            files.push_back(readWholeFile(argv[i]));
        compareOn(fmt::format("{} files", files.size()), files);
        return 0;
    }
    Buffers adjustments;
    for (int i = 0; i < 1000; ++i)
        adjustments.push_back(adjustment(i));
    compareOn("1,000 archives of one adjustment", adjustments);
    compareOn("5,000 rows of text", {rowsOfText()});
    compareOn("60,000 numbers", {numbers()});
    return 0;
}
