#include "app/cli/Commands.h"
#include "app/cli/Parser.h"

namespace korvo {

void addRenderCommands(Parser& parser)
{
    command<RenderArguments>(
        parser, &parser.app, "render", "a photo with its edits, as a file of its own",
        [](CLI::App& sub, RenderArguments& render) {
            sub.add_option("PHOTO", render.photo, "a photo's id, or a file")->required();
            sub.add_option("--out", render.out, "where to: .jpg, .png, .webp or .tif")->required();
            sub.add_option("--edits", render.edits, "other edits than the photo's: JSON, or @FILE");
            sub.add_option("--size", render.size, "the most pixels of the longer side")
                ->check(CLI::Range(1, 1'000'000));
            sub.add_option("--quality", render.quality, "of JPEG and WebP, 1 to 100; 90 unless given")
                ->check(CLI::Range(1, 100));
        },
        renderCommand);
    command<HistogramArguments>(
        parser, &parser.app, "histogram", "the tones of a photo with its edits",
        [](CLI::App& sub, HistogramArguments& histogram) {
            sub.add_option("PHOTO", histogram.photo, "a photo's id, or a file")->required();
            sub.add_option("--edits", histogram.edits, "other edits than the photo's: JSON, or @FILE");
        },
        histogramCommand);
    command<EnhanceArguments>(
        parser, &parser.app, "enhance", "what auto enhance proposes for a photo",
        [](CLI::App& sub, EnhanceArguments& enhance) {
            sub.add_option("PHOTO", enhance.photo, "a photo's id, or a file")->required();
            sub.add_flag("--apply", enhance.apply, "store the values in the photo's edits");
        },
        enhanceCommand);
}

} // namespace korvo
