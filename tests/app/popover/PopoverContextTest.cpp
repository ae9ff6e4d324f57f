#include "app/popover/PopoverContext.h"

#include "app/popover/Loop.h"
#include "core/settings/Preferences.h"
#include "support/TempSettings.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

namespace quelmo {
namespace {

class PopoverContextTest : public ::testing::Test {
protected:
    void SetUp() override { test::TempSettings::clear(); }

    int reevaluations = 0;
    bool loginAccepts = true;
    bool loginEntry = false;
    PopoverContext::Hooks hooks() {
        return {.languageChanged = [this] { ++reevaluations; },
                .setLaunchAtLogin =
                    [this](bool on) {
                        if (loginAccepts)
                            loginEntry = on;
                        return loginAccepts;
                    },
                .launchAtLoginEnabled = [this] { return loginEntry; }};
    }
};

TEST_F(PopoverContextTest, LanguageChoiceIsStoredAndAsksAgain) {
    PopoverContext context(hooks());
    EXPECT_EQ(context.langRaw(), "auto");

    context.setLangRaw("ko");
    EXPECT_EQ(Preferences::langRaw(), "ko");
    EXPECT_EQ(context.lang(), "ko");
    EXPECT_EQ(reevaluations, 1);

    context.setLangRaw("ko"); // the same choice again changes nothing
    EXPECT_EQ(reevaluations, 1);
}

TEST_F(PopoverContextTest, CatStyleIsStoredAndSeenFromElsewhere) {
    PopoverContext context(hooks());
    context.setCatStyleRaw("black");
    EXPECT_EQ(Preferences::catStyleRaw(), "black");

    Preferences::setCatStyleRaw("cheese");
    context.reload();
    EXPECT_EQ(context.catStyleRaw(), "cheese");
}

TEST_F(PopoverContextTest, LaunchAtLoginShowsTheRealState) {
    loginEntry = true;
    PopoverContext context(hooks());
    EXPECT_TRUE(context.launchAtLogin());

    context.setLaunchAtLogin(false);
    EXPECT_FALSE(context.launchAtLogin());
    EXPECT_FALSE(loginEntry);

    loginAccepts = false;
    QSignalSpy changes(&context, &PopoverContext::launchAtLoginChanged);
    context.setLaunchAtLogin(true);
    EXPECT_FALSE(context.launchAtLogin()); // refused: back to the entry's state
    EXPECT_EQ(changes.count(), 2);
}

Readings cpuAt(double total, QList<double> perCore = {}) {
    Readings readings;
    readings.cpuTotal = total;
    readings.cpuPerCore = std::move(perCore);
    return readings;
}

TEST_F(PopoverContextTest, HiddenViewsSeeTheReadingsOfTheirLastShowing) {
    PopoverContext context(hooks());
    PopoverReadings& readings = *context.readings();
    QSignalSpy changed(&readings, &PopoverReadings::changed);
    context.setShown(true);
    context.setReadings(cpuAt(0.5, {0.5, 0.5}));
    EXPECT_EQ(readings.cpuTotal(), 0.5);
    context.setReadings(cpuAt(0.5, {0.5, 0.5})); // the same: no change
    EXPECT_EQ(changed.count(), 1);

    context.setShown(false);
    context.setReadings(cpuAt(0.25));
    context.setReadings(cpuAt(0.75));
    EXPECT_EQ(readings.cpuTotal(), 0.5);
    EXPECT_EQ(changed.count(), 1);

    // Shown again: the latest readings at once, in one change.
    context.setShown(true);
    EXPECT_EQ(readings.cpuTotal(), 0.75);
    EXPECT_TRUE(readings.cpuPerCore().isEmpty());
    EXPECT_EQ(changed.count(), 2);
}

TEST_F(PopoverContextTest, EndlessLoopsRunOnlyWhileShown) {
    PopoverContext context(hooks());
    LoopClock& loops = *context.loops();
    Loop loop;
    loop.setHalfPeriodMs(100);
    loop.setTravel(2);
    loop.setClock(&loops);
    EXPECT_FALSE(loops.running());

    context.setShown(true);
    EXPECT_TRUE(loops.running());
    QSignalSpy moved(&loop, &Loop::phaseChanged);
    ASSERT_TRUE(moved.wait(1000));

    context.setShown(false);
    EXPECT_FALSE(loops.running());
    moved.clear();
    EXPECT_FALSE(moved.wait(300));
}

} // namespace
} // namespace quelmo
