#pragma once

#include <QString>

#include <filesystem>
#include <string>
#include <string_view>

namespace korvo {

/// UTF-8 of ours as Qt's text.
inline QString qt(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Qt's text as UTF-8.
inline std::string utf8(const QString& text)
{
    return text.toStdString();
}

/// A path that the user chose. Its bytes are those of the file system.
inline std::filesystem::path pathOf(const QString& text)
{
    return text.toStdString();
}

} // namespace korvo
