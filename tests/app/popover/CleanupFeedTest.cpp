#include "app/popover/CleanupFeed.h"

#include "core/metrics/SystemMetrics.h"
#include "core/settings/AppLang.h"

#include <gtest/gtest.h>

using namespace quelmo;

namespace {

CleanupCandidate idleApp(qint64 pid, const QString& name, double minutes) {
    CleanupCandidate c;
    c.proc.id = pid;
    c.proc.name = name;
    c.reason = CleanupReason::idleApp;
    c.idleMinutes = minutes;
    return c;
}

QString rowText(CleanupFeed& feed, int row, int role) {
    return feed.candidates()->data(feed.candidates()->index(row), role).toString();
}

} // namespace

// The card follows the hub: its candidates, its sensitivity both ways, and its terminate.
TEST(CleanupFeedTest, FollowsTheHub) {
    SystemMetrics hub(Platform{});
    CleanupFeed feed(hub);
    EXPECT_EQ(feed.candidates()->count(), 0);

    hub.setCleanupCandidates({idleApp(41, "mail", 90), idleApp(42, "notes", 20)});
    EXPECT_EQ(feed.candidates()->count(), 2);
    EXPECT_EQ(feed.candidates()->cutTargetCount(), 2);

    feed.setSensitivity(0.9);
    EXPECT_EQ(hub.sensitivity(), 0.9);
    hub.setSensitivity(0.2);
    EXPECT_EQ(feed.sensitivity(), 0.2);

    // A cut without a journey reaches the hub at once: the pids are held back from the list.
    feed.cut()->executeCut({41, 42}, std::nullopt, {});
    EXPECT_TRUE(hub.cuttingPIDs().contains(41));
    EXPECT_TRUE(hub.cuttingPIDs().contains(42));
    EXPECT_EQ(feed.cut()->cutTrigger(), 1);
}

// The texts follow the interface language from the next update on, rows and fixed texts alike.
TEST(CleanupFeedTest, TextsFollowTheLanguage) {
    AppLang::setPreferredLanguagesSource([] { return QStringList{"en-US"}; });
    CleanupFeed feed([](const QList<qint64>&) {});
    feed.setCandidates({idleApp(7, "mail", 125)}, {});
    EXPECT_EQ(rowText(feed, 0, CandidateListModel::IdleDetailRole),
              "Last used 2h 5m ago · no window");
    EXPECT_EQ(feed.texts()["cutAll"], "Cut all");

    AppLang::setPreferredLanguagesSource([] { return QStringList{"ko-KR"}; });
    feed.refreshLanguage();
    EXPECT_TRUE(feed.korean());
    EXPECT_EQ(rowText(feed, 0, CandidateListModel::IdleDetailRole),
              "마지막 사용 2시간 5분 전 · 창 없음");
    EXPECT_EQ(rowText(feed, 0, CandidateListModel::ReasonLabelRole), "안 쓰는 앱");
    EXPECT_EQ(feed.texts()["cutAll"], "모두 Cut");
    AppLang::setPreferredLanguagesSource({});
}
