#pragma once

#include "aperture/BinaryPlist.h"
#include "base/JsonWriter.h"

namespace korvo {

/// A property list as JSON: data as {"data":base64}, dates as {"date":seconds since 2001}, UIDs as {"uid":n},
/// dictionaries with keys that are not text or appear twice as {"pairs":[[key,value],…]}, and the reals that
/// JSON has no numbers for as {"real":"nan"}, "inf" and "-inf".
void writeJson(JsonWriter& writer, const BinaryPlist::Value& value);

} // namespace korvo
