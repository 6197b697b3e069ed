#pragma once

#include <string>
#include <vector>

namespace korvo {

/// What a file says about itself in words; empty where it says nothing. All text is UTF-8.
struct DescriptiveFields {
    std::string altText, title, caption;
    std::vector<std::string> keywords; ///< each without blanks at its ends, none empty
    std::string creator, copyright;

    friend bool operator==(const DescriptiveFields&, const DescriptiveFields&) = default;
};

} // namespace korvo
