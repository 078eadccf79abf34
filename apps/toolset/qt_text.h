#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace toolset {

// Texts cross into Qt as they are: both sides hold UTF-16.
inline QString ToQt(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace toolset
