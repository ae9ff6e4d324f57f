#include "app/tray/CachedInterfaceXml.h"

#include <QMetaClassInfo>

namespace quelmo {

namespace {

// The interfaces every object on the bus has; the properties are answered by CachedProperties.
constexpr const char* standardInterfaces = R"(  <interface name="org.freedesktop.DBus.Properties">
    <method name="Get">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="property_name" type="s" direction="in"/>
      <arg name="value" type="v" direction="out"/>
    </method>
    <method name="Set">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="property_name" type="s" direction="in"/>
      <arg name="value" type="v" direction="in"/>
    </method>
    <method name="GetAll">
      <arg name="interface_name" type="s" direction="in"/>
      <arg name="values" type="a{sv}" direction="out"/>
    </method>
    <signal name="PropertiesChanged">
      <arg name="interface_name" type="s" direction="out"/>
      <arg name="changed_properties" type="a{sv}" direction="out"/>
      <arg name="invalidated_properties" type="as" direction="out"/>
    </signal>
  </interface>
  <interface name="org.freedesktop.DBus.Introspectable">
    <method name="Introspect">
      <arg name="xml_data" type="s" direction="out"/>
    </method>
  </interface>
  <interface name="org.freedesktop.DBus.Peer">
    <method name="Ping"/>
    <method name="GetMachineId">
      <arg name="machine_uuid" type="s" direction="out"/>
    </method>
  </interface>
)";

} // namespace

CachedInterfaceXml::CachedInterfaceXml(QObject* parent) : QDBusAbstractAdaptor(parent) {}

QString CachedInterfaceXml::Introspect() {
    if (xml_.isEmpty()) {
        // Made on the first call, once every adaptor of the parent exists.
        xml_ = QStringLiteral("<!DOCTYPE node PUBLIC \"-//freedesktop//DTD D-BUS Object "
                              "Introspection 1.0//EN\"\n"
                              "\"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd\">\n"
                              "<node>\n");
        for (const QObject* child : parent()->children()) {
            const QMetaObject* meta = child->metaObject();
            const int info = meta->indexOfClassInfo("D-Bus Introspection");
            if (qobject_cast<const QDBusAbstractAdaptor*>(child) && info >= 0)
                xml_ += QString::fromUtf8(meta->classInfo(info).value());
        }
        xml_ += QString::fromLatin1(standardInterfaces) + QStringLiteral("</node>\n");
    }
    return xml_;
}

} // namespace quelmo
