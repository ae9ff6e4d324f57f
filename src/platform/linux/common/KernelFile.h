#pragma once

// Reading the kernel's text files (procfs, sysfs).

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quelmo::linux_platform {

// The whole of a small file, at most `limit` bytes; nothing when it cannot be opened or read or
// is larger. A process can vanish between two reads, and a fixture tree may hold any bytes.
std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit = 1 << 16);

// The first whitespace-delimited integer of a file such as sysfs "temp" or "*_count".
std::optional<std::int64_t> readIntegerFile(const std::string& path);

// A file kept open and read again from offset 0 on every look. procfs and sysfs produce fresh
// contents for a read at offset 0, so a per-tick reading costs one system call and no
// allocation once the buffer has grown to fit.
class KernelFile {
public:
    KernelFile() = default;
    explicit KernelFile(const std::string& path);
    KernelFile(KernelFile&& other) noexcept;
    KernelFile& operator=(KernelFile&& other) noexcept;
    KernelFile(const KernelFile&) = delete;
    KernelFile& operator=(const KernelFile&) = delete;
    ~KernelFile();

    bool isOpen() const { return fd_ >= 0; }
    // The current contents, valid until the next call; nothing when the read fails.
    std::optional<std::string_view> read();

private:
    int fd_ = -1;
    std::vector<char> buffer_;
};

} // namespace quelmo::linux_platform
