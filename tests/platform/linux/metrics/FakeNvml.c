// A stand-in for NVIDIA's management library with two GPUs: both report utilisation, only the
// first counts energy. Tests load it by path in place of libnvidia-ml.so.1. C, like the library
// it stands in for: the reader's declarations must fit a C library's symbols, not C++ types.

static unsigned long long energyMillijoules = 1000;

__attribute__((visibility("default"))) void fakeNvmlSetEnergy(unsigned long long mj) {
    energyMillijoules = mj;
}

__attribute__((visibility("default"))) int nvmlInit_v2(void) {
    return 0;
}

__attribute__((visibility("default"))) int nvmlDeviceGetCount_v2(unsigned int* count) {
    *count = 2;
    return 0;
}

static int devices[2];

__attribute__((visibility("default"))) int nvmlDeviceGetHandleByIndex_v2(unsigned int index,
                                                                         void** device) {
    if (index > 1)
        return 2; // NVML_ERROR_INVALID_ARGUMENT
    *device = &devices[index];
    return 0;
}

typedef struct {
    unsigned int gpu;
    unsigned int memory;
} Utilization;

__attribute__((visibility("default"))) int nvmlDeviceGetUtilizationRates(void* device,
                                                                         Utilization* rates) {
    rates->gpu = device == &devices[0] ? 30 : 70;
    rates->memory = 5;
    return 0;
}

__attribute__((visibility("default"))) int
nvmlDeviceGetTotalEnergyConsumption(void* device, unsigned long long* energy) {
    if (device != &devices[0])
        return 3; // NVML_ERROR_NOT_SUPPORTED
    *energy = energyMillijoules;
    return 0;
}
