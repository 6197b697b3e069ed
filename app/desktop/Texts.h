#pragma once

#include "base/Text.h"

#include <QString>
#include <QUrl>

#include <filesystem>
#include <string>
#include <string_view>

namespace korvo {

/// UTF-8 of ours as Qt's text.
inline QString qt(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// A count as people read it: "1,000".
inline QString number(std::size_t value)
{
    return qt(grouped(value));
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

/// The path of a local file's URL, byte for byte: names need not be UTF-8, which Qt's texts of them lose.
inline std::filesystem::path pathOf(const QUrl& url)
{
    return QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()).toStdString();
}

inline QUrl urlOf(const std::filesystem::path& path)
{
    return QUrl::fromEncoded("file://" + QByteArray::fromStdString(path.native()).toPercentEncoding("/"));
}

} // namespace korvo
