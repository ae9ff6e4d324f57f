#pragma once

// Everything the hub needs from the machine, handed over at construction. The application builds
// it from the Linux readers; tests build it from fakes. A missing source reads as neutral.

#include "core/advisor/LanguageModel.h"
#include "core/cleanup/DesktopSession.h"
#include "core/cleanup/ProcessSignaller.h"
#include "core/cleanup/SystemInfo.h"
#include "core/metrics/PowerMonitor.h"
#include "core/metrics/sources/ChipFactsSource.h"
#include "core/metrics/sources/CpuTicksSource.h"
#include "core/metrics/sources/EnergySource.h"
#include "core/metrics/sources/GpuLoadSource.h"
#include "core/metrics/sources/MemorySource.h"
#include "core/metrics/sources/ProcessSource.h"

#include <functional>
#include <memory>

namespace quelmo {

struct Platform {
    std::unique_ptr<CpuTicksSource> cpuTicks;
    std::unique_ptr<ChipFactsSource> chip;
    std::unique_ptr<GpuLoadSource> gpu;
    std::unique_ptr<MemorySource> memory;
    std::unique_ptr<EnergySource> energy;
    std::unique_ptr<ProcessSource> processes;
    // Whether the process table is read on a thread of its own, its readings arriving later
    // through the event loop. Off: read at once on the hub's thread (tests).
    bool readProcessesOffThread = false;
    std::unique_ptr<DesktopSession> desktop;
    std::unique_ptr<SystemInfo> system;
    std::unique_ptr<ProcessSignaller> signaller;
    std::unique_ptr<LanguageModel> model; // the local language model; none: the advisor is off
    PowerMonitor::Clock clock = PowerMonitor::monotonicSeconds; // seconds, monotonic
    // Runs `task` once, `delayMs` from now, on this thread. Unset: a timer of this thread's
    // event loop. Tests run the task when they choose.
    using Later = std::function<void(int delayMs, std::function<void()> task)>;
    Later later;
};

} // namespace quelmo
