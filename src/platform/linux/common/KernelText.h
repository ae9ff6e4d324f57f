#pragma once

// Small, allocation-free helpers for the kernel's text formats. Every one of them gives nothing
// for text that does not have the expected shape, whatever bytes it holds.

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace quelmo::linux_platform {

std::string_view trimmed(std::string_view text);

// Decimal digits only, no sign, no spaces; nothing on overflow.
std::optional<std::uint64_t> parseUnsigned(std::string_view text);

// A signed decimal integer ("-12", "37"); nothing on anything else.
std::optional<std::int64_t> parseSigned(std::string_view text);

// The next line of `text` starting at `pos` (without its '\n'); advances `pos` past it.
// Nothing once the text is used up.
std::optional<std::string_view> nextLine(std::string_view text, std::size_t& pos);

// The next run of characters other than spaces and tabs, starting at `pos`; advances `pos`.
std::optional<std::string_view> nextWord(std::string_view text, std::size_t& pos);

// The value of a "Key:   value" line in /proc/meminfo or /proc/cpuinfo style text: the part after
// the first ':' of the first line whose key (trimmed) is `key`, trimmed.
std::optional<std::string_view> keyedValue(std::string_view text, std::string_view key);

// The CPU numbers of a kernel CPU list such as "0-3,8,10-11"; nothing when malformed.
std::optional<std::vector<unsigned>> cpuList(std::string_view list);

} // namespace quelmo::linux_platform
