#pragma once

#include "base/Bytes.h"
#include "metadata/DescriptiveFields.h"

namespace korvo {

/// The descriptive fields of an XMP packet (ISO 16684-1): title, description, subject, creator and rights of
/// Dublin Core and the alternative text of IPTC Core. Of texts in several languages the default one counts,
/// else the first. Of a damaged packet what stands before the damage is read.
DescriptiveFields readXmp(Bytes packet);

/// Whether a packet ends before its elements do, or is otherwise no XML.
bool isDamagedXmp(Bytes packet);

} // namespace korvo
