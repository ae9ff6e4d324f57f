#include "platform/linux/metrics/IntelGpuPmu.h"

#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/KernelText.h"
#include "platform/linux/common/RootPath.h"

#include <QDir>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <linux/perf_event.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quelmo::linux_platform {

namespace {

int openCounter(std::uint32_t type, std::uint64_t config, int cpu) {
    perf_event_attr attr{};
    attr.size = sizeof(attr);
    attr.type = type;
    attr.config = config;
    attr.read_format = PERF_FORMAT_TOTAL_TIME_ENABLED;
    const long fd = ::syscall(SYS_perf_event_open, &attr, -1 /* any process */, cpu,
                              -1 /* no group */, PERF_FLAG_FD_CLOEXEC);
    return fd < 0 ? -1 : static_cast<int>(fd);
}

bool readCounter(int fd, std::uint64_t& busy, std::uint64_t& enabled) {
    std::uint64_t values[2] = {};
    ssize_t n = 0;
    do {
        n = ::read(fd, values, sizeof(values));
    } while (n < 0 && errno == EINTR);
    if (n != static_cast<ssize_t>(sizeof(values)))
        return false;
    busy = values[0];
    enabled = values[1];
    return true;
}

bool isI915Pmu(const QString& name) {
    return name == QLatin1String("i915") || name.startsWith(QLatin1String("i915_"));
}

} // namespace

std::optional<std::uint64_t> parsePmuEventConfig(std::string_view description) {
    description = trimmed(description);
    std::size_t pos = 0;
    while (pos <= description.size()) {
        std::size_t comma = description.find(',', pos);
        if (comma == std::string_view::npos)
            comma = description.size();
        const std::string_view term = description.substr(pos, comma - pos);
        if (term.substr(0, 7) == "config=") {
            std::string_view number = term.substr(7);
            int base = 10;
            if (number.substr(0, 2) == "0x" || number.substr(0, 2) == "0X") {
                number.remove_prefix(2);
                base = 16;
            }
            std::uint64_t value = 0;
            const auto [end, error] =
                std::from_chars(number.data(), number.data() + number.size(), value, base);
            if (number.empty() || error != std::errc() || end != number.data() + number.size())
                return std::nullopt;
            return value;
        }
        pos = comma + 1;
    }
    return std::nullopt;
}

bool isEngineBusyEvent(std::string_view eventName) {
    constexpr std::string_view suffix = "-busy";
    return eventName.size() > suffix.size() &&
           eventName.substr(eventName.size() - suffix.size()) == suffix;
}

IntelGpuPmu::IntelGpuPmu(const QString& root) {
    const QString base = QString::fromStdString(rootedPath(root, "sys/bus/event_source/devices"));
    for (const QString& pmu : QDir(base).entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (!isI915Pmu(pmu))
            continue;
        const std::string dir =
            rootedPath(root, "sys/bus/event_source/devices/" + pmu.toStdString());
        const auto typeText = readSmallFile(dir + "/type", 64);
        const auto type = typeText ? parseUnsigned(trimmed(*typeText)) : std::nullopt;
        if (!type || *type > UINT32_MAX)
            continue;
        // System-wide counters are opened on the CPU the PMU names (the first of its mask).
        int cpu = 0;
        if (const auto mask = readSmallFile(dir + "/cpumask", 4096)) {
            if (const auto cpus = cpuList(*mask); cpus && !cpus->empty())
                cpu = static_cast<int>(cpus->front());
        }
        Device device;
        const QDir events(QString::fromStdString(dir + "/events"));
        for (const QString& event : events.entryList(QDir::Files)) {
            const std::string name = event.toStdString();
            if (!isEngineBusyEvent(name))
                continue;
            const auto description = readSmallFile(dir + "/events/" + name, 4096);
            const auto config = description ? parsePmuEventConfig(*description) : std::nullopt;
            if (!config)
                continue;
            const int fd = openCounter(static_cast<std::uint32_t>(*type), *config, cpu);
            if (fd >= 0)
                device.engines.push_back(Counter{fd});
        }
        if (!device.engines.empty())
            devices_.push_back(std::move(device));
    }
}

IntelGpuPmu::~IntelGpuPmu() {
    for (Device& device : devices_) {
        for (Counter& counter : device.engines) {
            if (counter.fd >= 0)
                ::close(counter.fd);
        }
    }
}

std::vector<std::int64_t> IntelGpuPmu::readPercents() {
    std::vector<std::int64_t> percents;
    for (Device& device : devices_) {
        std::optional<double> busiest;
        for (Counter& counter : device.engines) {
            std::uint64_t busy = 0, enabled = 0;
            if (!readCounter(counter.fd, busy, enabled))
                continue;
            if (counter.seen && enabled > counter.enabled && busy >= counter.busy) {
                const double share = static_cast<double>(busy - counter.busy) /
                                     static_cast<double>(enabled - counter.enabled) * 100.0;
                busiest = std::max(busiest.value_or(0.0), share);
            }
            counter.busy = busy;
            counter.enabled = enabled;
            counter.seen = true;
        }
        if (busiest)
            percents.push_back(static_cast<std::int64_t>(std::lround(*busiest)));
    }
    return percents;
}

} // namespace quelmo::linux_platform
