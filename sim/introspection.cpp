// SPDX-License-Identifier: Apache-2.0
#include "sim/introspection.hpp"

namespace morvath::sim
{

constexpr std::string_view opening =
    R"(<!DOCTYPE node PUBLIC "-//freedesktop//DTD D-BUS Object Introspection 1.0//EN"
"http://www.freedesktop.org/standards/dbus/1.0/introspect.dtd">
<node>
 <interface name="org.freedesktop.DBus.Peer">
  <method name="Ping"/>
  <method name="GetMachineId">
   <arg type="s" name="machine_uuid" direction="out"/>
  </method>
 </interface>
 <interface name="org.freedesktop.DBus.Introspectable">
  <method name="Introspect">
   <arg type="s" name="xml_data" direction="out"/>
  </method>
 </interface>
 <interface name="org.freedesktop.DBus.Properties">
  <method name="Get">
   <arg type="s" name="interface_name" direction="in"/>
   <arg type="s" name="property_name" direction="in"/>
   <arg type="v" name="value" direction="out"/>
  </method>
  <method name="Set">
   <arg type="s" name="interface_name" direction="in"/>
   <arg type="s" name="property_name" direction="in"/>
   <arg type="v" name="value" direction="in"/>
  </method>
  <method name="GetAll">
   <arg type="s" name="interface_name" direction="in"/>
   <arg type="a{sv}" name="props" direction="out"/>
  </method>
  <signal name="PropertiesChanged">
   <arg type="s" name="interface_name"/>
   <arg type="a{sv}" name="changed_properties"/>
   <arg type="as" name="invalidated_properties"/>
  </signal>
 </interface>
)";

namespace
{

// No name that the bus allows needs escaping in XML.
void describe(std::string& xml, const Interface& interface)
{
    xml += " <interface name=\"" + interface.name + "\">\n";
    for (const Property& property : interface.properties)
    {
        if (!property.hidden)
        {
            xml += "  <property name=\"" + property.name + "\" type=\"" +
                   property.value.signature + "\" access=\"" +
                   (property.readOnly ? "read" : "readwrite") + "\"/>\n";
        }
    }
    xml += " </interface>\n";
}

} // namespace

std::string introspectionXml(const Node& node, std::string_view methods)
{
    std::string xml(opening);
    xml += methods;
    for (const Interface& interface : node.interfaces)
    {
        describe(xml, interface);
    }
    for (const std::string& child : node.children)
    {
        xml += " <node name=\"" + child + "\"/>\n";
    }
    xml += "</node>\n";
    return xml;
}

} // namespace morvath::sim
