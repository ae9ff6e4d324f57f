#include "cleanup/FocusTracker.h"

#include "CleanupFakes.h"
#include "TempSettings.h"
#include "settings/SettingsKeys.h"

#include <QSettings>
#include <QVariantMap>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

QVariantMap stored() {
    return QSettings().value(SettingsKeys::focusLastActive).toMap();
}
void store(const QVariant& value) {
    QSettings().setValue(SettingsKeys::focusLastActive, value);
}

class FocusTrackerTest : public ::testing::Test {
protected:
    void SetUp() override { TempSettings::clear(); }
};

TEST_F(FocusTrackerTest, LoadsSeedsTheFrontAppWithoutSavingAndSavesEveryActivation) {
    store(QVariantMap{{"gedit", 1700000000.25}, {"firefox", 1600000000}});
    FakeDesktop desktop;
    desktop.frontApp = "mousepad";
    const double start = FocusTracker::nowSeconds();
    std::optional<FocusTracker> tracker(&desktop);

    EXPECT_EQ(tracker->lastActive("gedit")->toMSecsSinceEpoch(), 1700000000250);
    EXPECT_GE(tracker->lastActiveSeconds("mousepad").value_or(0), start);
    EXPECT_EQ(stored().size(), 2); // the seed is not written

    desktop.activate("");
    desktop.activate("firefox");
    EXPECT_GE(tracker->lastActiveSeconds("firefox").value_or(0), start);
    EXPECT_EQ(stored().keys(), QStringList({"firefox", "gedit", "mousepad"}));
    EXPECT_EQ(stored().value("firefox").metaType().id(), QMetaType::Double);

    tracker.reset(); // a late activation finds no tracker and writes nothing
    desktop.activate("late");
    EXPECT_FALSE(stored().contains("late"));
    EXPECT_EQ(FocusTracker(nullptr).lastActiveSeconds("gedit"), 1700000000.25);
}

TEST_F(FocusTrackerTest, AStoredValueOfTheWrongShapeIsIgnoredWholeThenReplaced) {
    for (const QVariant& bad : {QVariant(QVariantMap{{"a", 1.0}, {"b", QStringLiteral("x")}}),
                                QVariant(QVariantMap{{"a", qQNaN()}}), QVariant("a=1")}) {
        store(bad);
        FakeDesktop desktop;
        const FocusTracker tracker(&desktop);
        EXPECT_FALSE(tracker.lastActiveSeconds("a"));
        desktop.activate("c");
        EXPECT_EQ(stored().keys(), QStringList({"c"}));
    }
}

} // namespace
