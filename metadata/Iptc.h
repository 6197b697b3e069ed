#pragma once

#include "base/Bytes.h"
#include "metadata/DescriptiveFields.h"

namespace korvo {

/// The descriptive fields among IPTC data sets (IPTC-NAA Information Interchange Model 4.2): object name,
/// caption, keywords, by-line and copyright notice. Text is Windows' Latin-1 unless the data say that it is
/// UTF-8.
DescriptiveFields readIptc(Bytes dataSets);

} // namespace korvo
