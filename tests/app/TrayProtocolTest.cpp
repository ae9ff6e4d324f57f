#include "app/tray/DBusMenuAdaptor.h"
#include "app/tray/ScissorsIcon.h"
#include "app/tray/StatusNotifierItemAdaptor.h"

#include <QDBusMetaType>
#include <QFile>
#include <QMetaMethod>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

// QtDBus silently leaves out of an interface any method or property whose type it cannot put
// on the bus (a host calling it then gets "no such method"). Every one must resolve.
// QtDBus finds a slot's argument types by name, as the adaptor spells them.
void expectEveryMemberMarshals(const QMetaObject& adaptor) {
    registerDBusTypes();
    QDBusMetaType::signatureToMetaType("i"); // QtDBus registers its own types on first use
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

TEST(TrayProtocolTest, EveryMethodAndPropertyCanGoOnTheBus) {
    expectEveryMemberMarshals(DBusMenuAdaptor::staticMetaObject);
    expectEveryMemberMarshals(StatusNotifierItemAdaptor::staticMetaObject);
}

TEST(TrayProtocolTest, IconPixmapsAreBigEndianArgb) {
    QImage image(2, 1, QImage::Format_ARGB32);
    image.setPixel(0, 0, qRgba(0x11, 0x22, 0x33, 0xff));
    image.setPixel(1, 0, qRgba(0x44, 0x55, 0x66, 0x80));
    const SniPixmap pixmap = toSniPixmap(image);
    EXPECT_EQ(pixmap.width, 2);
    EXPECT_EQ(pixmap.height, 1);
    EXPECT_EQ(pixmap.argb, QByteArray("\xff\x11\x22\x33\x80\x44\x55\x66", 8));
}

TEST(TrayProtocolTest, TheIconIsWrittenUnderANameEveryHostFindsWithItsSymbolicTwinOnlyOnRequest) {
    // Cinnamon looks names ending in "-symbolic" up only in the desktop's theme, and its status
    // watcher picks the twin whenever there is one; GNOME Shell asks for the name with
    // "-symbolic" appended and recolours that one.
    const QTemporaryDir folder;
    const QString name = QString::fromLatin1(scissors::iconName);
    EXPECT_FALSE(name.endsWith(QLatin1String("-symbolic")));
    for (const bool twin : {true, false}) {
        ASSERT_TRUE(scissors::exportTo(folder.path(), QColor(0x12, 0x34, 0x56), twin));
        for (const QString& where : {folder.path(), folder.path() + "/hicolor/scalable/status"}) {
            QFile plain(where + '/' + name + ".svg"),
                symbolic(where + '/' + name + "-symbolic.svg");
            ASSERT_TRUE(plain.open(QIODevice::ReadOnly)) << where.toStdString();
            EXPECT_TRUE(plain.readAll().contains("#123456"));
            EXPECT_EQ(symbolic.open(QIODevice::ReadOnly), twin) << where.toStdString();
            if (twin) {
                const QByteArray symbolicSvg = symbolic.readAll();
                EXPECT_TRUE(symbolicSvg.contains("currentColor"));
            }
        }
    }
}
