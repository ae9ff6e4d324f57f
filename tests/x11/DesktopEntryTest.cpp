// Desktop-entry files: parsing, the choice of a localised name, and the index of installed
// applications with its precedence rules and refresh.

#include "desktop/DesktopEntry.h"

#include "FixtureTree.h"
#include "desktop/AppIdentity.h"
#include "desktop/DesktopEntryIndex.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quelmo::linux_platform {
namespace {

TEST(DesktopEntry, KeepsOnlyTheMainGroupWithValuesUnescaped) {
    const auto entry = parseDesktopEntry("# comment\n"
                                         "[Something Else]\nName=Wrong\n"
                                         "[Desktop Entry]\n"
                                         "  Name = Text\\sEditor  \n"
                                         "Name=Duplicate\n"
                                         "Comment=line\\none\\ttab\\\\slash\\;kept\n"
                                         "Broken line without equals\n"
                                         "=no key\n"
                                         "[Desktop Action new]\nName=New Window\n");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->value(QStringLiteral("Name")), QStringLiteral("Text Editor"));
    EXPECT_EQ(entry->value(QStringLiteral("Comment")),
              QStringLiteral("line\none\ttab\\slash\\;kept"));
    EXPECT_EQ(entry->values.size(), 2);

    EXPECT_FALSE(parseDesktopEntry("[Desktop Action x]\nName=A\n"));
    EXPECT_FALSE(parseDesktopEntry(QByteArrayView("\xff\xfe\0garbage", 10)));
}

TEST(DesktopEntry, NameFollowsTheInterfaceLanguage) {
    const auto entry = parseDesktopEntry("[Desktop Entry]\nName=Editor\n"
                                         "Name[ko_KR]=편집기 KR\nName[ko]=편집기\n"
                                         "Name[sr]=Uređivač\nName[sr@latin]=Latinica\n"
                                         "Name[de_AT]=Editor AT\n");
    ASSERT_TRUE(entry);
    const QString name = QStringLiteral("Name");
    const auto pick = [&](const char* lang, const char* messages) {
        return localizedValue(*entry, name, QString::fromLatin1(lang),
                              LocaleName::fromPosix(QString::fromLatin1(messages)));
    };
    // The user's own locale variant comes first when it is in the interface language.
    EXPECT_EQ(pick("ko", "ko_KR.UTF-8"), QStringLiteral("편집기 KR"));
    // Korean interface on an English system: the plain language key.
    EXPECT_EQ(pick("ko", "en_US.UTF-8"), QStringLiteral("편집기"));
    EXPECT_EQ(pick("sr", "sr_RS.UTF-8@latin"), QStringLiteral("Latinica"));
    EXPECT_EQ(pick("sr", "C"), QStringLiteral("Uređivač"));
    // Only a country variant exists: still better than the untranslated name.
    EXPECT_EQ(pick("de", "C"), QStringLiteral("Editor AT"));
    EXPECT_EQ(pick("en", "ko_KR.UTF-8"), QStringLiteral("Editor"));

    const auto noName = parseDesktopEntry("[Desktop Entry]\nName[ko]=only\n");
    EXPECT_FALSE(localizedValue(*noName, name, QStringLiteral("en"), {}));
}

class DesktopEntryIndexTest : public ::testing::Test {
protected:
    test::FixtureTree tree;
    QStringList dirs() const {
        return {tree.path(QStringLiteral("home")), tree.path(QStringLiteral("usr"))};
    }
    static QByteArray app(const char* name, const char* extra = "") {
        return QByteArray("[Desktop Entry]\nType=Application\nName=") + name + "\n" + extra;
    }
};

TEST_F(DesktopEntryIndexTest, HigherFoldersWinAndHiddenEntriesAreDeleted) {
    tree.write("usr/applications/org.example.Edit.desktop", app("System Edit"));
    tree.write("home/applications/org.example.Edit.desktop", app("My Edit"));
    tree.write("usr/applications/org.example.Gone.desktop", app("Gone"));
    tree.write("home/applications/org.example.Gone.desktop", app("Gone", "Hidden=true\n"));
    tree.write("usr/applications/kde4/okular.desktop", app("Okular"));
    tree.write("usr/applications/link.desktop", "[Desktop Entry]\nType=Link\nName=L\n");

    DesktopEntryIndex index(dirs());
    ASSERT_NE(index.find(QStringLiteral("org.example.Edit")), nullptr);
    EXPECT_EQ(index.find(QStringLiteral("org.example.Edit"))->entry.value(QStringLiteral("Name")),
              QStringLiteral("My Edit"));
    EXPECT_EQ(index.find(QStringLiteral("org.example.Gone")), nullptr);
    EXPECT_NE(index.find(QStringLiteral("kde4-okular")), nullptr);
    EXPECT_EQ(index.find(QStringLiteral("link")), nullptr);
}

TEST_F(DesktopEntryIndexTest, WindowClassMatching) {
    tree.write("usr/applications/org.example.Viewer.desktop",
               app("Viewer", "StartupWMClass=ViewerMain\n"));
    tree.write("usr/applications/org.xfce.mousepad.desktop", app("Mousepad"));
    tree.write("usr/applications/gimp.desktop", app("GIMP"));
    tree.write("usr/applications/org.one.tool.desktop", app("One"));
    tree.write("usr/applications/org.two.tool.desktop", app("Two"));

    DesktopEntryIndex index(dirs());
    const auto idFor = [&](const char* instance, const char* cls) -> QString {
        const InstalledApp* found =
            index.findByWindowClass(QString::fromLatin1(instance), QString::fromLatin1(cls));
        return found ? found->id : QString();
    };
    EXPECT_EQ(idFor("viewer", "ViewerMain"), QStringLiteral("org.example.Viewer"));
    EXPECT_EQ(idFor("ViewerMain", "Other"), QStringLiteral("org.example.Viewer"));
    EXPECT_EQ(idFor("gimp-2.10", "Gimp"), QStringLiteral("gimp"));
    EXPECT_EQ(idFor("mousepad", "Mousepad"), QStringLiteral("org.xfce.mousepad"));
    EXPECT_EQ(idFor("tool", "Tool"), QString()); // two entries end in ".tool": no guess
    EXPECT_EQ(idFor("", ""), QString());
}

TEST_F(DesktopEntryIndexTest, NoticesInstalledAndRemovedApplications) {
    tree.write("usr/applications/first.desktop", app("First"));
    DesktopEntryIndex index(dirs());
    EXPECT_NE(index.find(QStringLiteral("first")), nullptr);
    EXPECT_EQ(index.find(QStringLiteral("late")), nullptr);

    // A folder created after the first look (the user's own one) is noticed too.
    tree.write("home/applications/late.desktop", app("Late"));
    EXPECT_NE(index.find(QStringLiteral("late")), nullptr);

    tree.remove("usr/applications/first.desktop");
    // Make sure the folder's time differs even on coarse-grained file systems.
    const QByteArray folder = QFile::encodeName(tree.path(QStringLiteral("usr/applications")));
    const timespec times[2] = {{0, UTIME_OMIT}, {1000000000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, folder.constData(), times, 0), 0);
    EXPECT_EQ(index.find(QStringLiteral("first")), nullptr);
}

TEST_F(DesktopEntryIndexTest, IdentityPrefersTheLaunchUnitThenDeclaredIdsThenClasses) {
    tree.write("usr/applications/org.example.Edit.desktop",
               app("Edit", "Name[ko]=편집\nStartupWMClass=EditWin\n"));
    DesktopEntryIndex index(dirs());
    const QByteArray scope = "0::/user.slice/app-gnome-org.example.Launched-12.scope\n";
    bool windowsAsked = false;
    const auto windows = [&](std::vector<WindowHints> hints) {
        return [&windowsAsked, hints] {
            windowsAsked = true;
            return hints;
        };
    };
    EXPECT_EQ(resolveAppId(scope, windows({{QStringLiteral("gtk.id"), {}, {}, {}}}), index),
              QStringLiteral("org.example.Launched"));
    EXPECT_FALSE(windowsAsked); // the unit was enough: no round trips to the X server

    WindowHints byClass{{}, {}, QStringLiteral("edit"), QStringLiteral("EditWin")};
    WindowHints declared{QStringLiteral("org.example.Declared"), {}, {}, {}};
    WindowHints kde{{}, QStringLiteral("/usr/share/applications/org.kde.x.desktop"), {}, {}};
    EXPECT_EQ(resolveAppId("0::/\n", windows({byClass, declared}), index),
              QStringLiteral("org.example.Declared"));
    EXPECT_EQ(resolveAppId("0::/\n", windows({kde}), index), QStringLiteral("org.kde.x"));
    EXPECT_EQ(resolveAppId("0::/\n", windows({byClass}), index),
              QStringLiteral("org.example.Edit"));
    EXPECT_FALSE(resolveAppId("0::/\n", windows({}), index));

    EXPECT_EQ(displayNameOf(QStringLiteral("org.example.Edit"), index, QStringLiteral("ko"), {}),
              QStringLiteral("편집"));
    EXPECT_EQ(displayNameOf(QStringLiteral("org.example.Edit"), index, QStringLiteral("en"), {}),
              QStringLiteral("Edit"));
    EXPECT_FALSE(
        displayNameOf(QStringLiteral("org.example.Launched"), index, QStringLiteral("en"), {}));
}

} // namespace
} // namespace quelmo::linux_platform
