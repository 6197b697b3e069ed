#include "aperture/ApertureTranslator.h"

#include "aperture/AdjustmentOperation.h"
#include "aperture/BrushOperation.h"
#include "base/Text.h"

namespace korvo {

namespace {

using Report = ApertureTranslator::Report;
using enum TranslationOutcome;

template <typename Operation>
const Operation* named(std::span<const Operation> operations, std::string_view name)
{
    for (const auto& operation : operations)
        if (operation.name == name)
            return &operation;
    return nullptr;
}

class Translation {
public:
    Translation(const ApertureTranslator::Photo& photo, Report& report) : photo_(photo), report_(report) { }

    void add(const ApertureAdjustment& adjustment, const std::optional<std::filesystem::path>& mask)
    {
        const AdjustmentParameters parameters(adjustment.parameters.root());
        const auto outcome
            = mask ? brushed(adjustment.name, parameters, *mask) : global(adjustment.name, parameters);
        if (outcome != translated)
            ++(outcome == unsupported ? report_.unsupported : report_.approximated)[adjustment.name];
    }

    PhotoEdits take() { return std::move(edits_); }

private:
    TranslationOutcome global(const std::string& name, const AdjustmentParameters& parameters)
    {
        if (const auto* const operation = named(adjustmentOperations(), name))
            return operation->apply(parameters, photo_, edits_);
        const auto* const brush = named(brushOperations(), name);
        if (!brush)
            return unsupported;
        if (const auto effect = brushEffect(*brush, parameters))
            merge(edits_, *effect);
        return approximated;
    }

    TranslationOutcome brushed(
        const std::string& name, const AdjustmentParameters& parameters, const std::filesystem::path& mask)
    {
        if (!isUtf8(mask.native()))
            return unsupported; // an edit can only name files in UTF-8
        if (const auto* const brush = named(brushOperations(), name)) {
            if (auto effect = brushEffect(*brush, parameters))
                append(brushLayer(*brush, *std::move(effect)), mask);
            return translated;
        }
        const auto* const operation = named(adjustmentOperations(), name);
        if (!operation || !operation->brick)
            return unsupported;
        BrushLayer layer;
        layer.brick = nameOf(*operation->brick);
        const auto outcome = operation->apply(parameters, photo_, layer.edits);
        if (!isIdentity(layer.edits))
            append(std::move(layer), mask);
        return outcome;
    }

    void append(BrushLayer layer, const std::filesystem::path& mask)
    {
        layer.maskPath = mask.native();
        if (!edits_.brushes)
            edits_.brushes.emplace();
        edits_.brushes->push_back(std::move(layer));
    }

    const ApertureTranslator::Photo& photo_;
    Report& report_;
    PhotoEdits edits_;
};

void addCounts(std::map<std::string, std::int64_t>& to, const std::map<std::string, std::int64_t>& from)
{
    for (const auto& [name, count] : from)
        to[name] += count;
}

} // namespace

void ApertureTranslator::Report::add(const Report& other)
{
    addCounts(unsupported, other.unsupported);
    addCounts(approximated, other.approximated);
}

PhotoEdits ApertureTranslator::translate(std::span<const ApertureAdjustment> adjustments, const Photo& photo,
    const MaskFile& maskFile, Report& report)
{
    Translation translation(photo, report);
    for (const auto& adjustment : adjustments)
        if (adjustment.isEnabled)
            translation.add(adjustment, adjustment.maskUuid ? maskFile(*adjustment.maskUuid) : std::nullopt);
    return translation.take();
}

ApertureTranslator::WhiteBalance ApertureTranslator::asShot(std::span<const ApertureAdjustment> adjustments)
{
    for (const auto& adjustment : adjustments) {
        if (adjustment.name != "RKWhiteBalanceOperation")
            continue;
        const AdjustmentParameters parameters(adjustment.parameters.root());
        if (parameters.isTrue("inputIsDefaults") && parameters("inputTemperature") > 0)
            return {parameters.number("inputTemperature"), parameters.number("inputTint")};
    }
    return {};
}

} // namespace korvo
