// Desktop-entry files: parsing, the choice of a localised name, and the index of installed
// applications with its precedence rules, window-class matching and refresh.

#include "platform/linux/apps/DesktopEntry.h"

#include "platform/linux/apps/AppIdentity.h"
#include "platform/linux/apps/DesktopEntryIndex.h"
#include "support/FixtureTree.h"

#include <gtest/gtest.h>

namespace quelmo::linux_platform {
namespace {

TEST(DesktopEntry, MainGroupFirstKeyUnescapedAndNameInTheInterfaceLanguage) {
    const auto entry = parseDesktopEntry("[Something Else]\nName=Wrong\n[Desktop Entry]\n"
                                         "  Name = Text\\sEditor  \nName=Duplicate\n"
                                         "Comment=a\\nb\\\\c\\;d\n"
                                         "Name[ko_KR]=편집기 KR\nName[ko]=편집기\n"
                                         "Name[sr]=Uređivač\nName[sr@latin]=Latinica\n"
                                         "Name[de_AT]=Editor AT\n[Desktop Action new]\nIcon=new\n");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->value(QStringLiteral("Comment")), QStringLiteral("a\nb\\c\\;d"));
    EXPECT_FALSE(entry->values.contains(QStringLiteral("Icon")));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Action x]\nName=A\n"));
    const auto name = [&](const char* lang, const char* messages) {
        return localizedValue(*entry, QStringLiteral("Name"), QString::fromLatin1(lang),
                              LocaleName::fromPosix(QString::fromLatin1(messages)));
    };
    EXPECT_EQ(name("ko", "ko_KR.UTF-8"), QStringLiteral("편집기 KR")); // the user's own variant
    EXPECT_EQ(name("ko", "en_US.UTF-8"), QStringLiteral("편집기"));
    EXPECT_EQ(name("sr", "sr_RS.UTF-8@latin"), QStringLiteral("Latinica"));
    EXPECT_EQ(name("sr", "C"), QStringLiteral("Uređivač"));
    EXPECT_EQ(name("de", "C"), QStringLiteral("Editor AT")); // any variant beats no translation
    EXPECT_EQ(name("en", "ko_KR.UTF-8"), QStringLiteral("Text Editor"));
}

class DesktopEntryIndexTest : public ::testing::Test {
protected:
    test::FixtureTree tree;
    DesktopEntryIndex index{{tree.path(QStringLiteral("home")), tree.path(QStringLiteral("usr"))}};
    void app(const char* file, const char* extra = "") {
        tree.write(QLatin1String(file),
                   QByteArray("[Desktop Entry]\nType=Application\nName=") + file + "\n" + extra);
    }
    QString nameOf(const char* id) {
        const InstalledApp* found = index.find(QString::fromLatin1(id));
        return found ? found->entry.value(QStringLiteral("Name")) : QString();
    }
};

TEST_F(DesktopEntryIndexTest, HigherFoldersWinHiddenEntriesAreDeletedNewOnesAreNoticed) {
    app("usr/applications/org.example.Edit.desktop");
    app("home/applications/org.example.Edit.desktop");
    app("usr/applications/org.example.Gone.desktop");
    app("home/applications/org.example.Gone.desktop", "Hidden=true\n");
    app("usr/applications/kde4/okular.desktop");
    tree.write("usr/applications/link.desktop", "[Desktop Entry]\nType=Link\nName=L\n");
    EXPECT_EQ(nameOf("org.example.Edit"),
              QStringLiteral("home/applications/org.example.Edit.desktop"));
    EXPECT_EQ(nameOf("org.example.Gone"), QString());
    EXPECT_EQ(nameOf("kde4-okular"), QStringLiteral("usr/applications/kde4/okular.desktop"));
    EXPECT_EQ(nameOf("link"), QString());

    // Installed later, in a folder that did not even exist at the first look.
    app("home/applications/late.desktop");
    EXPECT_NE(nameOf("late"), QString());
}

TEST_F(DesktopEntryIndexTest, WindowClassesAndTheOrderOfIdentitySources) {
    app("usr/applications/org.example.Viewer.desktop", "StartupWMClass=ViewerMain\n");
    app("usr/applications/gimp.desktop");
    app("usr/applications/org.one.tool.desktop");
    app("usr/applications/org.two.tool.desktop");
    const auto idOf = [&](const char* instance, const char* cls) {
        const InstalledApp* found =
            index.findByWindowClass(QString::fromLatin1(instance), QString::fromLatin1(cls));
        return found ? found->id : QString();
    };
    EXPECT_EQ(idOf("viewer", "ViewerMain"), QStringLiteral("org.example.Viewer"));
    EXPECT_EQ(idOf("gimp-2.10", "Gimp"), QStringLiteral("gimp"));
    EXPECT_EQ(idOf("x", "Viewer"), QStringLiteral("org.example.Viewer")); // the id's last part
    EXPECT_EQ(idOf("tool", "Tool"), QString()); // two entries end in ".tool": no guess

    // The launch unit first, then ids the windows declare, then their classes.
    const WindowHints byClass{{}, {}, QStringLiteral("gimp"), QStringLiteral("Gimp")};
    const WindowHints declared{QStringLiteral("org.example.Declared"), {}, {}, {}};
    const WindowHints kde{{}, QStringLiteral("/usr/share/applications/org.kde.x.desktop"), {}, {}};
    EXPECT_EQ(appIdFromWindows({byClass, declared}, index), QStringLiteral("org.example.Declared"));
    EXPECT_EQ(appIdFromWindows({byClass, kde}, index), QStringLiteral("org.kde.x"));
    const auto unit = QByteArrayLiteral("0::/app-gnome-org.example.Unit-12.scope\n");
    EXPECT_EQ(resolveAppId(
                  unit, [&] { return std::vector{declared}; }, index),
              QStringLiteral("org.example.Unit"));
}

} // namespace
} // namespace quelmo::linux_platform
