#pragma once

#include "base/Record.h"
#include "base/Uuid.h"
#include "platform/Defaults.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace korvo {

/// A naming pattern that the user keeps under a name.
struct NamingPreset {
    Uuid id;
    std::string name;
    std::string pattern;

    /// The presets as stored; the default ones when none are stored or what is stored cannot be read.
    static std::vector<NamingPreset> load(const Defaults& defaults);
    /// Throws std::system_error.
    static void save(const std::vector<NamingPreset>& presets, Defaults& defaults);
    /// The presets that there are at first, with fresh ids.
    static std::vector<NamingPreset> defaults();
    /// A preset with a fresh id.
    static NamingPreset make(std::string name, std::string pattern);
};

KORVO_RECORD(NamingPreset, id, name, pattern)

/// The texts of the sheet that edits the presets.
namespace namingPresetEditor {

inline constexpr std::string_view title = "File Naming Presets";
inline constexpr std::string_view pattern = "Pattern";
inline constexpr std::string_view newPreset = "New Preset"; // its name, until the user gives another
inline constexpr std::string_view restoreDefaults = "Restore Defaults";
inline constexpr std::string_view done = "Done";
inline constexpr std::string_view help
    = "Tokens:  {name} original filename · {seq} sequence number · {date} file date · {title} photo title";
inline constexpr std::array<std::string_view, 4> tokens = {"{name}", "{seq}", "{date}", "{title}"};
inline constexpr std::string_view example = "Example:"; // before the name of the first selected photo

} // namespace namingPresetEditor

} // namespace korvo
