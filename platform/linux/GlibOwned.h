#pragma once

#include <gio/gio.h>

#include <memory>

namespace korvo {

struct GlibFree {
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
    void operator()(GDBusConnection* connection) const { g_object_unref(connection); }
    void operator()(char* text) const { g_free(text); }
};

/// An owner of what GLib hands over.
template <typename T>
using GlibOwned = std::unique_ptr<T, GlibFree>;

} // namespace korvo
