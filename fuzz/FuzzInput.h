#pragma once

// The bytes libFuzzer hands a target, in the shapes the parsers take.

#include <QByteArray>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quelmo::fuzz {

inline std::string_view text(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

inline QByteArray bytes(const std::uint8_t* data, std::size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
}

} // namespace quelmo::fuzz
