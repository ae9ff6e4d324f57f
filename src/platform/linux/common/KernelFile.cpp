#include "platform/linux/common/KernelFile.h"

#include "platform/linux/common/KernelText.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace quelmo::linux_platform {

namespace {

constexpr std::size_t initialBufferSize = 4096;
constexpr std::size_t largestKernelFile = 4 << 20; // far beyond any file these readers use

ssize_t preadRetrying(int fd, char* data, std::size_t size) {
    ssize_t n = 0;
    do {
        n = ::pread(fd, data, size, 0);
    } while (n < 0 && errno == EINTR);
    return n;
}

} // namespace

std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit) {
    KernelFile file(path);
    if (!file.isOpen())
        return std::nullopt;
    const auto contents = file.read();
    if (!contents || contents->size() > limit)
        return std::nullopt;
    return std::string(*contents);
}

std::optional<std::int64_t> readIntegerFile(const std::string& path) {
    const auto text = readSmallFile(path, 4096);
    if (!text)
        return std::nullopt;
    std::size_t linePos = 0;
    const auto line = nextLine(trimmed(*text), linePos);
    std::size_t wordPos = 0;
    const auto word = line ? nextWord(trimmed(*line), wordPos) : std::nullopt;
    return word ? parseSigned(*word) : std::nullopt;
}

KernelFile::KernelFile(const std::string& path) {
    do {
        fd_ = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    } while (fd_ < 0 && errno == EINTR);
}

KernelFile::KernelFile(KernelFile&& other) noexcept
    : fd_(std::exchange(other.fd_, -1)), buffer_(std::move(other.buffer_)) {}

KernelFile& KernelFile::operator=(KernelFile&& other) noexcept {
    if (this != &other) {
        if (fd_ >= 0)
            ::close(fd_);
        fd_ = std::exchange(other.fd_, -1);
        buffer_ = std::move(other.buffer_);
    }
    return *this;
}

KernelFile::~KernelFile() {
    if (fd_ >= 0)
        ::close(fd_);
}

std::optional<std::string_view> KernelFile::read() {
    if (fd_ < 0)
        return std::nullopt;
    if (buffer_.empty())
        buffer_.resize(initialBufferSize);
    for (;;) {
        const ssize_t n = preadRetrying(fd_, buffer_.data(), buffer_.size());
        if (n < 0)
            return std::nullopt;
        const auto size = static_cast<std::size_t>(n);
        // A full buffer may mean there is more: grow and read the whole file again, so the
        // contents always come from a single read and are consistent.
        if (size < buffer_.size())
            return std::string_view(buffer_.data(), size);
        if (buffer_.size() >= largestKernelFile)
            return std::nullopt;
        buffer_.resize(buffer_.size() * 2);
    }
}

} // namespace quelmo::linux_platform
