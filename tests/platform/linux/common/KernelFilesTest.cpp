#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/RootPath.h"
#include "support/FixtureTree.h"

#include <gtest/gtest.h>

using namespace quelmo::linux_platform;
using quelmo::test::FixtureTree;

TEST(RootPathTest, EverySpellingOfTheLiveRootReadsTheLiveFiles) {
    for (const char* live : {"", "/", "//", "///"}) {
        EXPECT_TRUE(isLiveRoot(QString::fromLatin1(live))) << live;
        EXPECT_EQ(rootedPath(QString::fromLatin1(live), "proc/stat"), "/proc/stat") << live;
        EXPECT_EQ(rootedPath(QString::fromLatin1(live), "/proc/stat"), "/proc/stat") << live;
    }
    for (const char* tree : {"/tmp/tree", "/tmp/tree/", "/tmp/tree//", "tree"})
        EXPECT_FALSE(isLiveRoot(QString::fromLatin1(tree))) << tree;
}

TEST(KernelFileTest, SmallFilesWholeOrNotAtAll) {
    FixtureTree tree;
    tree.write(QStringLiteral("big"), QByteArray(5000, 'x'));
    tree.write(QStringLiteral("empty"), QByteArray());
    const auto at = [&](const char* name) { return tree.path(QLatin1String(name)).toStdString(); };

    EXPECT_EQ(readSmallFile(at("big"), 5000).value_or("").size(), 5000u);
    EXPECT_FALSE(readSmallFile(at("big"), 4999)); // never a silently cut file
    EXPECT_EQ(readSmallFile(at("empty")), std::optional<std::string>(""));
    EXPECT_FALSE(readSmallFile(at("missing")));
    EXPECT_FALSE(readSmallFile(tree.root().toStdString())); // a directory is no file
}

TEST(KernelFileTest, IntegerFilesTakeTheFirstNumberOfTheFirstLine) {
    FixtureTree tree;
    const auto integer = [&](const QByteArray& contents) {
        tree.write(QStringLiteral("value"), contents);
        return readIntegerFile(tree.path(QStringLiteral("value")).toStdString());
    };
    EXPECT_EQ(integer("  45000\n"), std::optional<std::int64_t>(45000));
    EXPECT_EQ(integer("-12 extra\n7\n"), std::optional<std::int64_t>(-12));
    EXPECT_EQ(integer("\n\n3\n"), std::optional<std::int64_t>(3)); // blank lines before it
    EXPECT_FALSE(integer("disabled\n"));
    EXPECT_FALSE(integer("12abc\n"));
    EXPECT_FALSE(integer(""));
    EXPECT_FALSE(integer("99999999999999999999999\n"));
}

TEST(KernelFileTest, AKeptFileShowsTheLatestContentsOnEveryRead) {
    FixtureTree tree;
    tree.write(QStringLiteral("energy_uj"), "100\n");
    KernelFile file(tree.path(QStringLiteral("energy_uj")).toStdString());
    ASSERT_TRUE(file.isOpen());
    EXPECT_EQ(file.read(), std::optional<std::string_view>("100\n"));
    tree.write(QStringLiteral("energy_uj"), QByteArray(10000, '7')); // outgrows the buffer
    EXPECT_EQ(file.read().value_or("").size(), 10000u);
    EXPECT_FALSE(KernelFile(tree.path(QStringLiteral("missing")).toStdString()).read());
}
