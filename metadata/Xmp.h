#pragma once

#include "base/Bytes.h"
#include "metadata/Coordinate.h"
#include "metadata/DescriptiveFields.h"

#include <optional>

namespace korvo {

/// The descriptive fields of an XMP packet (ISO 16684-1): title, description, subject, creator and rights of
/// Dublin Core and the alternative text of IPTC Core. Of texts in several languages the default one counts,
/// else the first. Of a damaged packet what stands before the damage is read.
DescriptiveFields readXmp(Bytes packet);

/// Where an XMP packet says that the photo was taken (GPSLatitude and GPSLongitude of its EXIF schema).
std::optional<Coordinate> readXmpPosition(Bytes packet);
/// Whether a packet has anything of the kind.
bool mentionsPosition(Bytes packet);

/// Whether a packet ends before its elements do, or is otherwise no XML.
bool isDamagedXmp(Bytes packet);

} // namespace korvo
