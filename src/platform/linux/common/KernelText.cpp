#include "platform/linux/common/KernelText.h"

#include <charconv>

namespace quelmo::linux_platform {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\0';
}

} // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::optional<std::uint64_t> parseUnsigned(std::string_view text) {
    if (text.empty() || text.front() < '0' || text.front() > '9')
        return std::nullopt;
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<std::int64_t> parseSigned(std::string_view text) {
    if (text.empty())
        return std::nullopt;
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::optional<std::string_view> nextLine(std::string_view text, std::size_t& pos) {
    if (pos >= text.size())
        return std::nullopt;
    const std::size_t end = text.find('\n', pos);
    const std::size_t stop = end == std::string_view::npos ? text.size() : end;
    const std::string_view line = text.substr(pos, stop - pos);
    pos = stop + 1;
    return line;
}

std::optional<std::string_view> nextWord(std::string_view text, std::size_t& pos) {
    while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t'))
        ++pos;
    if (pos >= text.size())
        return std::nullopt;
    const std::size_t start = pos;
    while (pos < text.size() && text[pos] != ' ' && text[pos] != '\t')
        ++pos;
    return text.substr(start, pos - start);
}

std::optional<std::string_view> keyedValue(std::string_view text, std::string_view key) {
    std::size_t pos = 0;
    while (const auto line = nextLine(text, pos)) {
        const std::size_t colon = line->find(':');
        if (colon == std::string_view::npos)
            continue;
        if (trimmed(line->substr(0, colon)) == key)
            return trimmed(line->substr(colon + 1));
    }
    return std::nullopt;
}

std::optional<std::vector<unsigned>> cpuList(std::string_view list) {
    constexpr std::uint64_t mostCpus = 1 << 16; // far beyond any machine; guards garbage
    list = trimmed(list);
    if (list.empty())
        return std::nullopt;
    std::vector<unsigned> cpus;
    std::size_t pos = 0;
    while (pos <= list.size()) {
        std::size_t comma = list.find(',', pos);
        if (comma == std::string_view::npos)
            comma = list.size();
        const std::string_view range = list.substr(pos, comma - pos);
        const std::size_t dash = range.find('-');
        const auto first = parseUnsigned(range.substr(0, dash));
        const auto last =
            dash == std::string_view::npos ? first : parseUnsigned(range.substr(dash + 1));
        if (!first || !last || *last < *first || *last >= mostCpus ||
            cpus.size() + (*last - *first) >= mostCpus)
            return std::nullopt;
        for (auto cpu = *first; cpu <= *last; ++cpu)
            cpus.push_back(static_cast<unsigned>(cpu));
        pos = comma + 1;
    }
    return cpus;
}

} // namespace quelmo::linux_platform
