#include "app/popover/PopoverContext.h"

#include "core/settings/Preferences.h"
#include "support/TempSettings.h"

#include <QSignalSpy>
#include <QTimer>
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
    PopoverContext context(nullptr, hooks());
    EXPECT_EQ(context.langRaw(), "auto");
    EXPECT_EQ(context.langChoices(), QStringList({"auto", "ko", "en"}));

    context.setLangRaw("ko");
    EXPECT_EQ(Preferences::langRaw(), "ko");
    EXPECT_EQ(context.lang(), "ko");
    EXPECT_EQ(reevaluations, 1);

    context.setLangRaw("ko"); // the same choice again changes nothing
    EXPECT_EQ(reevaluations, 1);
}

TEST_F(PopoverContextTest, CatStyleIsStoredAndSeenFromElsewhere) {
    PopoverContext context(nullptr, hooks());
    QSignalSpy style(&context, &PopoverContext::catStyleRawChanged);
    context.setCatStyleRaw("black");
    EXPECT_EQ(Preferences::catStyleRaw(), "black");
    context.setCatStyleRaw("black");
    EXPECT_EQ(style.count(), 1);

    Preferences::setCatStyleRaw("cheese");
    context.reload();
    EXPECT_EQ(context.catStyleRaw(), "cheese");
}

TEST_F(PopoverContextTest, LaunchAtLoginShowsTheRealState) {
    loginEntry = true;
    PopoverContext context(nullptr, hooks());
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

TEST_F(PopoverContextTest, HiddenViewsSeeAStillCopyOfTheReadings) {
    QTimer hub; // any object with readable properties stands for the hub
    hub.setInterval(1000);
    PopoverContext context(&hub, hooks());
    context.setShown(true);
    EXPECT_EQ(context.metrics(), &hub);

    context.setShown(false);
    QObject* still = context.metrics();
    ASSERT_NE(still, &hub);
    hub.setInterval(250);
    EXPECT_EQ(still->property("interval").toInt(), 1000);

    QSignalSpy switched(&context, &PopoverContext::metricsChanged);
    context.setShown(true);
    EXPECT_EQ(context.metrics(), &hub);
    EXPECT_EQ(switched.count(), 1);
}

TEST_F(PopoverContextTest, EndlessLoopsRunOnlyWhileShownAndResumeWhereTheyStopped) {
    PopoverContext context(nullptr, hooks());
    LoopClock& loops = *context.loops();
    EXPECT_FALSE(loops.running());

    context.setShown(true);
    EXPECT_TRUE(loops.running());
    QSignalSpy stepped(&loops, &LoopClock::elapsedChanged);
    ASSERT_TRUE(stepped.wait(1000));
    const int reached = loops.elapsed();
    EXPECT_GT(reached, 0);

    context.setShown(false);
    EXPECT_FALSE(loops.running());
    stepped.clear();
    EXPECT_FALSE(stepped.wait(3 * LoopClock::stepMs));
    EXPECT_EQ(loops.elapsed(), reached);

    // Open again: the loops go on from where they were, without a jump back to the start.
    context.setShown(true);
    ASSERT_TRUE(stepped.wait(1000));
    EXPECT_GE(loops.elapsed(), reached);
}

} // namespace
} // namespace quelmo
