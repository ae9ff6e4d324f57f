#include "DBusMenuAdaptor.h"
#include "DBusMenuExporter.h"
#include "ScissorsIcon.h"
#include "StatusNotifierItem.h"
#include "StatusNotifierItemAdaptor.h"

#include <QCoreApplication>
#include <QDBusMetaType>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

const QList<StatusMenuEntry> quitOnly{{"Quit Nuvex", QKeySequence(Qt::CTRL | Qt::Key_Q)}};

// QtDBus silently leaves out of an interface any method or property whose type it cannot put
// on the bus (a host calling it then gets "no such method"). Every one must resolve.
void expectEveryMemberMarshals(const QMetaObject& adaptor) {
    registerDBusTypes();
    auto marshals = [](QByteArray type) {
        type.replace('&', "");
        const QMetaType meta = QMetaType::fromName(type);
        return meta.isValid() && QDBusMetaType::typeToSignature(meta) != nullptr;
    };
    for (int i = adaptor.methodOffset(); i < adaptor.methodCount(); ++i) {
        const QMetaMethod method = adaptor.method(i);
        if (method.access() != QMetaMethod::Public)
            continue;
        QList<QByteArray> types = method.parameterTypes();
        if (QByteArray(method.typeName()) != "void")
            types << method.typeName();
        for (const QByteArray& type : types)
            EXPECT_TRUE(marshals(type))
                << method.methodSignature().constData() << ": " << type.constData();
    }
    for (int i = adaptor.propertyOffset(); i < adaptor.propertyCount(); ++i)
        EXPECT_TRUE(marshals(adaptor.property(i).typeName())) << adaptor.property(i).name();
}

} // namespace

TEST(DBusInterfaceTest, EveryMethodAndPropertyCanGoOnTheBus) {
    expectEveryMemberMarshals(DBusMenuAdaptor::staticMetaObject);
    expectEveryMemberMarshals(StatusNotifierItemAdaptor::staticMetaObject);
}

TEST(DBusMenuTest, LayoutHoldsTheEntriesUnderTheRootToTheRequestedDepth) {
    DBusMenuExporter menu;
    QSignalSpy updated(&menu, &DBusMenuExporter::layoutUpdated);
    const uint before = menu.revision();
    menu.setEntries(quitOnly);
    EXPECT_GT(menu.revision(), before);
    EXPECT_EQ(updated.size(), 1);

    const DBusMenuLayoutItem all = menu.layout(0, -1, {});
    EXPECT_EQ(all.properties.value("children-display"), "submenu");
    ASSERT_EQ(all.children.size(), 1);
    const DBusMenuLayoutItem& quit = all.children[0];
    EXPECT_EQ(quit.id, 1);
    EXPECT_EQ(quit.properties.value("label"), "Quit Nuvex");
    EXPECT_EQ(quit.properties.value("shortcut").value<DBusMenuShortcut>(),
              DBusMenuShortcut({{"Control", "q"}}));

    EXPECT_TRUE(menu.layout(0, 0, {}).children.isEmpty());
    const DBusMenuLayoutItem labelsOnly = menu.layout(0, 1, {"label"});
    EXPECT_EQ(labelsOnly.children[0].properties.keys(), QStringList({"label"}));
    EXPECT_FALSE(menu.hasItem(2));
    EXPECT_TRUE(menu.layout(2, -1, {}).properties.isEmpty());
}

TEST(DBusMenuTest, ShortcutsUseKeysymNames) {
    EXPECT_EQ(DBusMenuExporter::shortcutOf(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_F4)),
              DBusMenuShortcut({{"Control", "Shift", "F4"}}));
    EXPECT_TRUE(DBusMenuExporter::shortcutOf(QKeySequence()).isEmpty());
}

TEST(DBusMenuTest, OnlyAClickOnAnEntryTriggersItAndOnlyAfterTheCallReturns) {
    DBusMenuExporter menu;
    menu.setEntries(quitOnly);
    QSignalSpy triggered(&menu, &DBusMenuExporter::triggered);
    menu.handleEvent(1, "hovered");
    menu.handleEvent(0, "clicked");
    menu.handleEvent(2, "clicked");
    menu.handleEvent(1, "clicked");
    EXPECT_EQ(triggered.size(), 0);
    QCoreApplication::processEvents();
    ASSERT_EQ(triggered.size(), 1);
    EXPECT_EQ(triggered[0][0].toInt(), 0);
}

TEST(StatusNotifierItemTest, TitleIsResentOnlyWhenItChanges) {
    StatusNotifierItem item(QDBusConnection(QStringLiteral("not connected")));
    QSignalSpy labels(&item, &StatusNotifierItem::newLabel);
    QSignalSpy toolTips(&item, &StatusNotifierItem::newToolTip);
    item.setTitle("12% 40%");
    item.setTitle("12% 40%");
    item.setTitle("13% 40%");
    ASSERT_EQ(labels.size(), 2);
    EXPECT_EQ(toolTips.size(), 2);
    EXPECT_EQ(labels[1][0].toString(), "13% 40%");
    EXPECT_EQ(labels[1][1].toString(), "100% 100%");
    EXPECT_EQ(item.toolTip().title, "13% 40%");
}

TEST(StatusNotifierItemTest, HostCallsBecomeClicksAtTheGivenPoint) {
    StatusNotifierItem item(QDBusConnection(QStringLiteral("not connected")));
    auto* adaptor = item.findChild<StatusNotifierItemAdaptor*>();
    ASSERT_NE(adaptor, nullptr);
    QSignalSpy activated(&item, &StatusNotifierItem::activated);
    QSignalSpy menus(&item, &StatusNotifierItem::contextMenuRequested);
    adaptor->Activate(1200, 14);
    adaptor->ContextMenu(30, 790);
    adaptor->SecondaryActivate(5, 5);
    ASSERT_EQ(activated.size(), 1);
    EXPECT_EQ(activated[0][0].toPoint(), QPoint(1200, 14));
    ASSERT_EQ(menus.size(), 1);
    EXPECT_EQ(menus[0][0].toPoint(), QPoint(30, 790));
    EXPECT_FALSE(adaptor->itemIsMenu());

    // The icon is offered by name only once there is a folder to find it in.
    EXPECT_TRUE(adaptor->iconName().isEmpty());
    item.setIcon("/run/user/1000/quelmo/icons", {});
    EXPECT_EQ(adaptor->iconName(), "quelmo-scissors-symbolic");
}

TEST(TrayIconTest, PixmapsAreBigEndianArgb) {
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(0x11, 0x22, 0x33, 0xff));
    image.setPixel(1, 0, qRgba(0x44, 0x55, 0x66, 0x80));
    const SniPixmap pixmap = toSniPixmap(image);
    EXPECT_EQ(pixmap.width, 2);
    EXPECT_EQ(pixmap.height, 1);
    EXPECT_EQ(pixmap.argb, QByteArray("\xff\x11\x22\x33\x80\x44\x55\x66", 8));
}

TEST(TrayIconTest, ScissorsAreDrawnInTheTintAndExportedForHosts) {
    const QImage icon = scissors::render(32, QColor(200, 0, 0));
    int opaque = 0;
    bool onlyTint = true;
    for (int y = 0; y < icon.height(); ++y)
        for (int x = 0; x < icon.width(); ++x) {
            const QRgb pixel = qUnpremultiply(icon.pixel(x, y));
            if (qAlpha(pixel) == 255)
                ++opaque;
            if (qAlpha(pixel) > 64 && (qGreen(pixel) > 8 || qBlue(pixel) > 8))
                onlyTint = false;
        }
    EXPECT_GT(opaque, 32 * 32 / 10); // clearly visible, not a faint outline
    EXPECT_LT(opaque, 32 * 32 / 2);  // and not a filled square
    EXPECT_TRUE(onlyTint);

    QTemporaryDir dir;
    ASSERT_TRUE(scissors::exportTo(dir.path()));
    for (const QString& path :
         {dir.path() + "/quelmo-scissors-symbolic.svg",
          dir.path() + "/hicolor/scalable/status/quelmo-scissors-symbolic.svg"}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        EXPECT_TRUE(file.readAll().contains("fill=\"currentColor\""));
    }
}
