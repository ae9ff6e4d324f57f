#include "core/metrics/ChipInfo.h"
#include "core/metrics/GPUMonitor.h"
#include "core/metrics/PowerMonitor.h"
#include "platform/linux/metrics/ChipFactsReader.h"
#include "platform/linux/metrics/CpuTicksReader.h"
#include "platform/linux/metrics/EnergyReader.h"
#include "platform/linux/metrics/GpuLoadReader.h"
#include "platform/linux/metrics/MemInfoReader.h"
#include "support/FixtureTree.h"

#include <QThread>
#include <algorithm>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace quelmo;
using namespace quelmo::linux_platform;
using namespace quelmo::test;

namespace {

QStringList channelNames(EnergyReader& reader) {
    QStringList names;
    for (const EnergyChannel& c : reader.readChannels().value_or(std::vector<EnergyChannel>{}))
        names << c.name + QLatin1Char('/') + c.unit;
    names.sort();
    return names;
}

double gpuOf(const QString& root, std::shared_ptr<NvmlLibrary> nvml = nullptr) {
    return GPUMonitor(std::make_unique<GpuLoadReader>(root, std::move(nvml))).sample();
}

} // namespace

TEST(CpuTicksReaderTest, FoldsTheKernelColumnsIntoFourStates) {
    // user nice system idle iowait irq softirq steal guest guest_nice
    const auto ticks =
        parseCpuTicks("cpu  9 9 9 9\ncpu0 1 2 3 4 5 6 7 8 9 10\ncpu1 1 2 3 4\nintr 5");
    ASSERT_TRUE(ticks);
    ASSERT_EQ(ticks->size(), 2u);
    EXPECT_EQ((*ticks)[0].user, 1u);
    EXPECT_EQ((*ticks)[0].nice, 2u);
    EXPECT_EQ((*ticks)[0].system, 3u + 6 + 7 + 8);
    EXPECT_EQ((*ticks)[0].idle, 4u + 5);
    EXPECT_EQ((*ticks)[1].idle, 4u); // an old kernel's short line

    EXPECT_EQ(CpuTicksReader(machine("intel-laptop")).readTicks()->size(), 16u);
    EXPECT_EQ(CpuTicksReader(machine("this-vm")).readTicks()->size(), 2u);
    // A truncated CPU line, a missing file: no reading rather than a wrong one.
    EXPECT_FALSE(CpuTicksReader(machine("hostile")).readTicks());
    EXPECT_FALSE(CpuTicksReader(machine("no-proc")).readTicks());
    EXPECT_FALSE(parseCpuTicks("cpu0 1 2 3 x\n"));
    EXPECT_FALSE(parseCpuTicks("cpu0 1 2 3 99999999999999999999\n"));
}

TEST(CpuTicksReaderTest, RereadsTheOpenFile) {
    const FixtureTree tree("arm-board");
    CpuTicksReader reader(tree.root());
    EXPECT_EQ(reader.readTicks()->size(), 8u);
    tree.write("proc/stat", "cpu  1 1 1 1\ncpu0 10 0 0 0\ncpu1 20 0 0 0\n");
    const auto ticks = reader.readTicks();
    ASSERT_EQ(ticks->size(), 2u);
    EXPECT_EQ((*ticks)[1].user, 20u);
}

TEST(ChipFactsReaderTest, NamesAndCoreClassesOfEachMachine) {
    struct Case {
        const char* machine;
        const char* name;
        const char* summary;
        int logical;
    };
    for (const Case& c :
         {Case{"intel-laptop", "12th Gen Intel(R) Core(TM) i7-1260P", "8P + 8E", 16},
          Case{"amd-desktop", "AMD Ryzen 7 5800X 8-Core Processor", "16 cores", 16},
          Case{"arm-board", "Radxa ROCK 5 Model B", "4P + 4E", 8},
          Case{"this-vm", "AMD EPYC", "2 cores", 2}}) {
        SCOPED_TRACE(c.machine);
        const ChipFacts facts = ChipFactsReader(machine(c.machine)).readChipFacts();
        EXPECT_EQ(facts.name, QString::fromUtf8(c.name));
        EXPECT_EQ(ChipInfo::coreSummary(facts), QString::fromUtf8(c.summary));
        EXPECT_EQ(facts.logicalCpus, c.logical);
    }

    const ChipFacts hostile = ChipFactsReader(machine("hostile")).readChipFacts();
    EXPECT_EQ(hostile.name, QString());
    EXPECT_EQ(hostile.performanceCores + hostile.efficiencyCores + hostile.logicalCpus, 0);
    EXPECT_EQ(ChipInfo::coreSummary(hostile),
              QStringLiteral("%1 cores").arg(QThread::idealThreadCount()));
}

TEST(ChipFactsReaderTest, BoardLinesWhenThereIsNoModelNameNorDeviceTree) {
    const FixtureTree tree("arm-board");
    tree.remove("sys/firmware");
    tree.write("proc/cpuinfo", "processor\t: 0\nCPU part\t: 0xd03\n\nHardware\t: BCM2835\n"
                               "Revision\t: a02082\nModel\t\t: Raspberry Pi 3 Model B Rev 1.2\n");
    EXPECT_EQ(ChipFactsReader(tree.root()).readChipFacts().name, QStringLiteral("BCM2835"));
    tree.write("proc/cpuinfo", "Model\t\t: Raspberry Pi 3 Model B Rev 1.2\n");
    EXPECT_EQ(ChipFactsReader(tree.root()).readChipFacts().name,
              QStringLiteral("Raspberry Pi 3 Model B Rev 1.2"));
    // One capacity missing: no classes can be told apart.
    tree.remove("sys/devices/system/cpu/cpu5");
    EXPECT_EQ(ChipFactsReader(tree.root()).readChipFacts().performanceCores, 0);
}

TEST(MemInfoReaderTest, MapsMeminfoOntoPageCounts) {
    MemInfoReader laptop(machine("intel-laptop"));
    EXPECT_EQ(laptop.physicalBytes(), 16093612.0 * 1024);
    const auto pages = laptop.readPages();
    ASSERT_TRUE(pages);
    EXPECT_EQ(pages->internal, 2000000.0 + 500000); // AnonPages + Shmem
    EXPECT_EQ(pages->purgeable, 0.0);
    EXPECT_EQ(pages->wired,
              1000.0 + 150000 + 20000 + 40000); // Unevictable SUnreclaim KernelStack PageTables
    EXPECT_EQ(pages->compressed, 10000.0);      // Zswap
    EXPECT_EQ(pages->active, 3000000.0);
    EXPECT_EQ(pages->pageSize, 1024.0);

    // zram's compressed bytes count as compressed memory.
    EXPECT_EQ(MemInfoReader(machine("amd-desktop")).readPages()->compressed, 26214400.0 / 1024);

    MemInfoReader hostile(machine("hostile"));
    EXPECT_EQ(hostile.physicalBytes(), 0.0);
    EXPECT_FALSE(hostile.readPages());
    EXPECT_FALSE(MemInfoReader(machine("no-proc")).readPages());
}

TEST(GpuLoadReaderTest, BusiestCardAndNothingFromWhatIsNotACard) {
    // card0 at 37 %; card1 asleep counts as idle; a connector and a render node are not cards.
    EXPECT_DOUBLE_EQ(gpuOf(machine("amd-desktop")), 0.37);
    EXPECT_EQ(gpuOf(machine("hostile")), 1.0); // 150 % capped; "busy" and "" ignored
    EXPECT_EQ(gpuOf(machine("this-vm")), 0.0);
    // The laptop's i915 counters cannot be opened (not a real PMU): no reading, no failure.
    IntelGpuPmu pmu(machine("intel-laptop"));
    pmu.readPercents();
    EXPECT_TRUE(pmu.readPercents().empty());
    EXPECT_EQ(gpuOf(machine("intel-laptop")), 0.0);
}

TEST(GpuLoadReaderTest, PmuEventDescriptions) {
    EXPECT_EQ(parsePmuEventConfig("config=0x100000\n"), std::optional<std::uint64_t>(0x100000));
    EXPECT_EQ(parsePmuEventConfig("event=0x3,config=12"), std::optional<std::uint64_t>(12));
    EXPECT_FALSE(parsePmuEventConfig("config=zz"));
    EXPECT_FALSE(parsePmuEventConfig("event=0x3"));
    EXPECT_TRUE(isEngineBusyEvent("vcs1-busy"));
    EXPECT_FALSE(isEngineBusyEvent("rcs0-busy.unit"));
}

TEST(EnergyReaderTest, RaplZonesAreNeverCountedTwice) {
    // The core zone stands for the CPU, so the package is not counted; psys and the MMIO copy
    // of the package are left out.
    EnergyReader laptop(machine("intel-laptop"), nullptr);
    EXPECT_TRUE(laptop.available());
    EXPECT_EQ(channelNames(laptop), QStringList({"CPU Energy/uJ", "GPU/uJ"}));
    const auto channels = *laptop.readChannels();
    const auto core = std::find_if(channels.begin(), channels.end(),
                                   [](const EnergyChannel& c) { return c.name == "CPU Energy"; });
    EXPECT_EQ(core->value, 60000000u);
    EXPECT_EQ(core->range, 262143328850u);
    EXPECT_TRUE(core->id.endsWith(QLatin1String("intel-rapl:0:0")));

    // Without a core zone the package is the CPU; the socket counter of hwmon then adds nothing.
    EnergyReader desktop(machine("amd-desktop"), nullptr);
    EXPECT_EQ(channelNames(desktop), QStringList({"CPU Energy/uJ"}));

    EnergyReader hostile(machine("hostile"), nullptr);
    EXPECT_FALSE(hostile.available());
    EXPECT_FALSE(hostile.readChannels());
    EXPECT_FALSE(EnergyReader(machine("this-vm"), nullptr).available());
}

TEST(EnergyReaderTest, HwmonCountersByLabel) {
    const FixtureTree tree("amd-desktop");
    tree.remove("sys/class/powercap");
    EnergyReader reader(tree.root(), nullptr);
    EXPECT_EQ(channelNames(reader), QStringList({"CPU Energy/uJ"})); // Esocket0, not Ecore000
    EXPECT_EQ(reader.readChannels()->front().value, 123456789012u);

    // Without the socket's counter, counters of single cores never stand for the CPU, even
    // where their labels name it.
    tree.write("sys/class/hwmon/hwmon1/energy1_label", "CPU core 0\n");
    tree.write("sys/class/hwmon/hwmon1/energy17_label", "Ecore017\n");
    EXPECT_FALSE(EnergyReader(tree.root(), nullptr).available());

    EXPECT_EQ(hwmonEnergyChannel("Esocket1"), QStringLiteral("CPU Energy"));
    EXPECT_EQ(hwmonEnergyChannel("Ecore017"), QString());
    EXPECT_EQ(hwmonEnergyChannel("GPU energy"), QStringLiteral("GPU"));
    EXPECT_EQ(hwmonEnergyChannel("dram"), QStringLiteral("DRAM"));
}

TEST(EnergyReaderTest, UnreadableCountersAreUnavailable) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "root reads every file; the fixture's directory case covers read errors";
    const FixtureTree tree("intel-laptop");
    for (const char* zone : {"intel-rapl:0", "intel-rapl:0:0", "intel-rapl:0:1", "intel-rapl:1"})
        QFile::setPermissions(tree.root() + "/sys/class/powercap/" + zone + "/energy_uj",
                              QFile::WriteOwner);
    tree.remove("sys/class/powercap/intel-rapl-mmio:0");
    EXPECT_FALSE(EnergyReader(tree.root(), nullptr).available());
}

TEST(EnergyReaderTest, PowerFromAWrappingRaplCounter) {
    const FixtureTree tree("intel-laptop");
    const QString core = "sys/class/powercap/intel-rapl:0:0/energy_uj";
    tree.write(core, "262142828850\n"); // 0.5 J short of the range
    double now = 100.0;
    PowerMonitor power(std::make_unique<EnergyReader>(tree.root(), nullptr), [&] { return now; });
    EXPECT_FALSE(power.sample());
    tree.write(core, "1500000\n");
    tree.write("sys/class/powercap/intel-rapl:0:1/energy_uj", "5250000\n");
    now += 1.0;
    const auto reading = power.sample();
    ASSERT_TRUE(reading);
    EXPECT_DOUBLE_EQ(reading->cpuWatts, 2.0);
    EXPECT_DOUBLE_EQ(reading->gpuWatts, 0.25);
}

TEST(NvmlLibraryTest, UtilisationAndEnergyThroughTheLoadedLibrary) {
    EXPECT_FALSE(NvmlLibrary::load("libquelmo-no-such-library.so.1"));
    EXPECT_FALSE(NvmlLibrary::load("libm.so.6")); // loads, but is not NVML

    const auto nvml = NvmlLibrary::load(QUELMO_FAKE_NVML);
    ASSERT_TRUE(nvml);
    EXPECT_EQ(nvml->deviceCount(), 2u);
    EXPECT_DOUBLE_EQ(gpuOf(machine("this-vm"), nvml), 0.70);

    void* handle = ::dlopen(QUELMO_FAKE_NVML, RTLD_NOW | RTLD_NOLOAD);
    ASSERT_NE(handle, nullptr);
    const auto setEnergy =
        reinterpret_cast<void (*)(unsigned long long)>(::dlsym(handle, "fakeNvmlSetEnergy"));
    double now = 0;
    PowerMonitor power(std::make_unique<EnergyReader>(machine("this-vm"), nvml),
                       [&] { return now; });
    setEnergy(1000);
    EXPECT_FALSE(power.sample());
    setEnergy(4000);
    now = 2.0;
    EXPECT_DOUBLE_EQ(power.sample()->gpuWatts, 1.5); // 3000 mJ over 2 s; the second GPU counts none
    ::dlclose(handle);
}
