#pragma once

/// Values to JSON text and back:
///     std::string text = toJson(edits);
///     auto edits = fromJson<PhotoEdits>(text);
/// Goes through bool, integers, double, text of any type, types with `parse` and `text`, enumerations listed
/// with KORVO_ENUM, records listed with KORVO_RECORD, std::vector of these, and std::optional fields of
/// records. A further type is added by a `writeJson` and a `readJson` of its own.
#include "base/JsonDecoding.h"
#include "base/JsonEncoding.h"
