#include "platform/linux/metrics/NvmlLibrary.h"

#include <dlfcn.h>

namespace quelmo::linux_platform {

namespace {

// The few declarations of nvml.h that are used, with the library's own calling conventions.
using nvmlReturn_t = int;
constexpr nvmlReturn_t NVML_SUCCESS = 0;
using nvmlDevice_t = void*;
struct nvmlUtilization_t {
    unsigned int gpu;
    unsigned int memory;
};

template <typename Function> Function symbol(void* handle, const char* name) {
    return reinterpret_cast<Function>(::dlsym(handle, name));
}

} // namespace

struct NvmlLibrary::Api {
    nvmlReturn_t (*init)() = nullptr;
    nvmlReturn_t (*deviceCount)(unsigned int*) = nullptr;
    nvmlReturn_t (*handleByIndex)(unsigned int, nvmlDevice_t*) = nullptr;
    nvmlReturn_t (*utilizationRates)(nvmlDevice_t, nvmlUtilization_t*) = nullptr;
    nvmlReturn_t (*totalEnergy)(nvmlDevice_t, unsigned long long*) = nullptr; // may be absent
};

std::shared_ptr<NvmlLibrary> NvmlLibrary::load(const char* library) {
    void* handle = ::dlopen(library, RTLD_NOW | RTLD_LOCAL);
    if (!handle)
        return nullptr;
    auto api = std::make_unique<Api>();
    api->init = symbol<decltype(api->init)>(handle, "nvmlInit_v2");
    api->deviceCount = symbol<decltype(api->deviceCount)>(handle, "nvmlDeviceGetCount_v2");
    api->handleByIndex =
        symbol<decltype(api->handleByIndex)>(handle, "nvmlDeviceGetHandleByIndex_v2");
    api->utilizationRates =
        symbol<decltype(api->utilizationRates)>(handle, "nvmlDeviceGetUtilizationRates");
    api->totalEnergy =
        symbol<decltype(api->totalEnergy)>(handle, "nvmlDeviceGetTotalEnergyConsumption");
    unsigned int count = 0;
    if (!api->init || !api->deviceCount || !api->handleByIndex || !api->utilizationRates ||
        api->init() != NVML_SUCCESS || api->deviceCount(&count) != NVML_SUCCESS || count == 0) {
        // Initialised or not, the library is left loaded (see the destructor).
        return nullptr;
    }
    std::vector<void*> devices;
    for (unsigned int i = 0; i < count && i < 64; ++i) {
        nvmlDevice_t device = nullptr;
        if (api->handleByIndex(i, &device) == NVML_SUCCESS && device)
            devices.push_back(device);
    }
    if (devices.empty())
        return nullptr;
    return std::shared_ptr<NvmlLibrary>(new NvmlLibrary(std::move(api), std::move(devices)));
}

NvmlLibrary::NvmlLibrary(std::unique_ptr<Api> api, std::vector<void*> devices)
    : api_(std::move(api)), devices_(std::move(devices)) {}

NvmlLibrary::~NvmlLibrary() = default;

std::optional<std::int64_t> NvmlLibrary::utilizationPercent(std::size_t device) const {
    if (device >= devices_.size())
        return std::nullopt;
    nvmlUtilization_t utilization{};
    if (api_->utilizationRates(devices_[device], &utilization) != NVML_SUCCESS)
        return std::nullopt;
    return static_cast<std::int64_t>(utilization.gpu);
}

std::optional<std::uint64_t> NvmlLibrary::totalEnergyMillijoules(std::size_t device) const {
    if (device >= devices_.size() || !api_->totalEnergy)
        return std::nullopt;
    unsigned long long millijoules = 0;
    if (api_->totalEnergy(devices_[device], &millijoules) != NVML_SUCCESS)
        return std::nullopt;
    return static_cast<std::uint64_t>(millijoules);
}

} // namespace quelmo::linux_platform
