#pragma once

// NVIDIA's management library, loaded at run time when it is installed (it ships with the
// proprietary driver; Quelmo never links against it).

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quelmo::linux_platform {

class NvmlLibrary {
public:
    // The library with its devices, or nothing when it, a needed function or the driver is
    // missing. `library` is a dlopen name; the default is the driver's own soname.
    static std::shared_ptr<NvmlLibrary> load(const char* library = "libnvidia-ml.so.1");

    NvmlLibrary(const NvmlLibrary&) = delete;
    NvmlLibrary& operator=(const NvmlLibrary&) = delete;
    ~NvmlLibrary(); // the library stays loaded: unloading a driver library is never safe

    std::size_t deviceCount() const { return devices_.size(); }
    // Percent of time the device was busy over the driver's last sample period.
    std::optional<std::int64_t> utilizationPercent(std::size_t device) const;
    // Energy used since the driver was loaded, in millijoules (devices from Volta on).
    std::optional<std::uint64_t> totalEnergyMillijoules(std::size_t device) const;

private:
    struct Api;
    NvmlLibrary(std::unique_ptr<Api> api, std::vector<void*> devices);

    std::unique_ptr<Api> api_;
    std::vector<void*> devices_; // nvmlDevice_t handles
};

} // namespace quelmo::linux_platform
