#include "app/cli/Commands.h"
#include "app/cli/Parser.h"

namespace korvo {

void addApertureCommands(Parser& parser)
{
    command<PlistArguments>(
        parser, &parser.app, "plist", "a binary property list as JSON",
        [](CLI::App& sub, PlistArguments& arguments) {
            sub.add_option("FILE", arguments.file, "the property list")->required();
            sub.add_flag("--unarchive", arguments.unarchive,
                "the root object of the keyed archive in it, as plain values; null when there is none");
        },
        plistCommand);
    command<ApertureArguments>(
        parser, &parser.app, "import-aperture", "import an Aperture library, which is not changed",
        [](CLI::App& sub, ApertureArguments& arguments) {
            sub.add_option("BUNDLE", arguments.bundle, "the Aperture library")->required();
            sub.add_option("--into", arguments.into,
                "the library folder, new or not; without it a new one beside the bundle");
            sub.add_flag("--match-renders", arguments.matchRenders,
                "fit a tone curve to each photo that brings it close to Aperture's own render");
            sub.add_option("--volume", arguments.volumes,
                   "NAME=DIR: where the volume of that name is, on which referenced files lie")
                ->allow_extra_args(false);
        },
        importApertureCommand);
}

} // namespace korvo
