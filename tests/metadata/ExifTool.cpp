#include "tests/metadata/ExifTool.h"

#include "base/Text.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <simdjson.h>

namespace korvo {

namespace {

std::string text(simdjson::ondemand::value value)
{
    if (value.type() == simdjson::ondemand::json_type::string)
        return repairedUtf8(std::string_view(value.get_string()));
    return std::string(trimmed(value.raw_json_token()));
}

std::vector<std::string> values(simdjson::ondemand::value value)
{
    if (value.type() != simdjson::ondemand::json_type::array)
        return {text(value)};
    std::vector<std::string> texts;
    for (simdjson::ondemand::value entry : value.get_array())
        texts.push_back(text(entry));
    return texts;
}

} // namespace

bool hasExifTool()
{
    return std::system("exiftool -ver >/dev/null 2>&1") == 0;
}

std::map<std::filesystem::path, ExifToolAnswer> askExifTool(const std::vector<std::filesystem::path>& files,
    const std::string& groups, const std::vector<std::string>& tags)
{
    std::string arguments = "-j\n-q\n-m\n-n\n" + groups + "\n";
    for (const auto& tag : tags)
        arguments += "-" + tag + "\n";
    for (const auto& file : files)
        arguments += file.string() + "\n";
    const TemporaryFolder folder;
    const auto list = folder.write("arguments", arguments), output = folder / "answers.json";
    // Its exit status only says that some file gave it pause.
    (void)std::system(("exiftool -@ '" + list.string() + "' >'" + output.string() + "' 2>/dev/null").c_str());

    std::map<std::filesystem::path, ExifToolAnswer> answers;
    const auto json = simdjson::padded_string(readFile(output));
    simdjson::ondemand::parser parser;
    auto document = parser.iterate(json);
    for (simdjson::ondemand::object object : document.get_array()) {
        ExifToolAnswer answer;
        for (auto field : object)
            answer.emplace(std::string_view(field.unescaped_key()), values(field.value()));
        answers.emplace(answer["SourceFile"].front(), std::move(answer));
    }
    return answers;
}

} // namespace korvo
