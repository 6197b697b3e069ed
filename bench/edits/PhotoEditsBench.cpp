// Edits to JSON text and back, in bytes of text per second, with the parser's bare pass over the same text
// beside the decoding: what lies between the two is the price of turning text into records.
#include "base/Json.h"
#include "bench/support/Compare.h"
#include "edits/PhotoEdits.h"

#include <fmt/format.h>

#include <random>
#include <simdjson.h>

namespace korvo {

namespace {

/// Sets every field of every record it meets, with as many spots and strokes as a worked-over portrait has.
class Painter {
public:
    void paint(double& value) { value = std::uniform_real_distribution<double>()(random_); }
    void paint(std::int64_t& value) { value = 90; }
    void paint(bool& value) { value = true; }
    void paint(std::string& text) { text = "masks/7A61.png"; }
    void paint(Uuid&) { }

    template <typename T>
    void paint(std::optional<T>& optional)
    {
        paint(optional.emplace());
    }

    template <typename T>
    void paint(std::vector<T>& values)
    {
        values.resize(8);
        for (auto& value : values)
            paint(value);
    }

    void paint(std::vector<BrushLayer>& layers)
    {
        layers.resize(2);
        for (auto& layer : layers) {
            layer.strokes.resize(100);
            for (auto& stroke : layer.strokes)
                paint(stroke);
            paint(layer.edits.exposure);
            paint(layer.edits.definition);
        }
    }

    template <Record T>
    void paint(T& record)
    {
        forEachField<T>([&](const auto& field) { paint(record.*field.member); });
    }

private:
    std::mt19937_64 random_{1};
};

PhotoEdits rich()
{
    PhotoEdits edits;
    Painter().paint(edits);
    return edits;
}

/// What most edited photos have: a few sliders and a crop.
PhotoEdits usual()
{
    PhotoEdits edits;
    edits.exposure = 0.35;
    edits.vibrance = 0.2;
    edits.crop = CropRect{0.0625, 0.041666, 0.875, 0.91};
    edits.highlights = -0.4;
    edits.straighten = 1.37;
    return edits;
}

void measure(const char* name, const PhotoEdits& edits)
{
    constexpr int times = 1000;
    const auto text = toJson(edits);
    const simdjson::padded_string padded(text);
    simdjson::dom::parser parser;
    std::size_t done = 0; // so that nothing is optimised away
    const auto repeat = [](auto work) {
        return [work] {
            for (int i = 0; i < times; ++i)
                work();
        };
    };
    const auto seconds = bench::compare(fmt::format("A {} edit record, {} times", name, times),
        {{"encode", repeat([&] { done += toJson(edits).size(); })},
            {"decode", repeat([&] { done += fromJson<PhotoEdits>(text).exposure > 0 ? 1U : 0U; })},
            {"parse alone", repeat([&] { done += parser.parse(padded).error() ? 0U : 1U; })}});
    const auto rate = [&](double taken) { return times * static_cast<double>(text.size()) / taken / 1e6; };
    fmt::print("  {}: {} bytes of text, encode {:.0f} MB/s, decode {:.0f} MB/s, {} done\n", name, text.size(),
        rate(seconds[0]), rate(seconds[1]), done);
}

} // namespace

} // namespace korvo

int main()
{
    korvo::measure("rich", korvo::rich());
    korvo::measure("usual", korvo::usual());
}
