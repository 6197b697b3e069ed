// Edits to JSON text and back, in bytes of text per second, with the parser's bare pass over the same text
// beside the decoding: what lies between the two is the price of turning text into records.
#include "base/Json.h"
#include "edits/PhotoEdits.h"

#include <benchmark/benchmark.h>
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

void countBytes(benchmark::State& state, const std::string& text)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
    state.counters["bytes"] = static_cast<double>(text.size());
}

void encode(benchmark::State& state, const PhotoEdits& edits)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(toJson(edits));
    countBytes(state, toJson(edits));
}

void decode(benchmark::State& state, const PhotoEdits& edits)
{
    const auto text = toJson(edits);
    for (auto _ : state)
        benchmark::DoNotOptimize(fromJson<PhotoEdits>(text));
    countBytes(state, text);
}

void parseOnly(benchmark::State& state, const PhotoEdits& edits)
{
    const simdjson::padded_string text(toJson(edits));
    simdjson::dom::parser parser;
    for (auto _ : state)
        benchmark::DoNotOptimize(parser.parse(text).error());
    countBytes(state, toJson(edits));
}

void copy(benchmark::State& state, const PhotoEdits& edits)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(PhotoEdits(edits));
    state.counters["sizeof"] = sizeof(PhotoEdits);
}

BENCHMARK_CAPTURE(encode, rich, rich());
BENCHMARK_CAPTURE(decode, rich, rich());
BENCHMARK_CAPTURE(parseOnly, rich, rich());
BENCHMARK_CAPTURE(encode, usual, usual());
BENCHMARK_CAPTURE(decode, usual, usual());
BENCHMARK_CAPTURE(parseOnly, usual, usual());
BENCHMARK_CAPTURE(copy, rich, rich());
BENCHMARK_CAPTURE(copy, usual, usual());

} // namespace

} // namespace korvo

BENCHMARK_MAIN();
