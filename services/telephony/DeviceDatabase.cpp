// Goes through all ttys and keeps those that have a device of USB or PCI above them. What is asked
// of an interface is asked of itself first, and then of its device.
#include "services/telephony/DeviceDatabase.h"

#include <libudev.h>

#include <memory>
#include <string_view>

namespace telephonyservice {
namespace {

// The kernel has no more minor numbers for all serial drivers together.
constexpr std::size_t kMostInterfaces = 4096;
constexpr std::string_view kOnBoardPrefix = "ttyS";
constexpr std::string_view kTagPrefix = "ID_MM_";
// Simple communications controller, modem; any programming interface.
constexpr std::string_view kPciModemClass = "0x0703";
// USB communications class, abstract control model.
constexpr std::string_view kUsbCommunicationsClass = "02";
constexpr std::string_view kUsbAcmSubclass = "02";

template <auto Unref> struct Unreferencer {
    template <class Object> void operator()(Object* object) const { Unref(object); }
};
using ContextPtr = std::unique_ptr<udev, Unreferencer<udev_unref>>;
using EnumeratePtr = std::unique_ptr<udev_enumerate, Unreferencer<udev_enumerate_unref>>;
using DevicePtr = std::unique_ptr<udev_device, Unreferencer<udev_device_unref>>;

std::string TextOf(const char* text) {
    return text != nullptr ? text : "";
}

std::string AttributeOf(udev_device* device, const char* name) {
    return device != nullptr ? TextOf(udev_device_get_sysattr_value(device, name)) : "";
}

// The interface's own property, or its device's.
std::string PropertyOf(udev_device* interface, udev_device* hardware, const char* name) {
    const std::string own = TextOf(udev_device_get_property_value(interface, name));
    return own.empty() ? TextOf(udev_device_get_property_value(hardware, name)) : own;
}

// What the device calls itself: as the database encodes it, or without the database as it is.
std::string OwnTextOf(udev_device* interface, udev_device* hardware, const char* property,
                      const char* attribute) {
    std::string encoded = PropertyOf(interface, hardware, property);
    return encoded.empty() ? AttributeOf(hardware, attribute) : encoded;
}

void CollectTags(udev_device* device, std::set<std::string>& tags) {
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_device_get_properties_list_entry(device)) {
        const std::string name = TextOf(udev_list_entry_get_name(entry));
        if (name.starts_with(kTagPrefix) && TextOf(udev_list_entry_get_value(entry)) == "1")
            tags.insert(name);
    }
}

// The devices found belong to the tty. Null when it is neither of them.
udev_device* FindHardware(udev_device* tty) {
    udev_device* const usb =
        udev_device_get_parent_with_subsystem_devtype(tty, "usb", "usb_device");
    if (usb != nullptr)
        return usb;
    udev_device* const pci = udev_device_get_parent_with_subsystem_devtype(tty, "pci", nullptr);
    const bool isModem = AttributeOf(pci, "class").starts_with(kPciModemClass);
    const bool isPort = TextOf(udev_device_get_sysname(tty)).starts_with(kOnBoardPrefix);
    return isModem || !isPort ? pci : nullptr;
}

bool Describe(udev_device* tty, SerialInterface& serial) {
    udev_device* const hardware = FindHardware(tty);
    serial.devicePath = TextOf(udev_device_get_devnode(tty));
    if (hardware == nullptr || serial.devicePath.empty())
        return false;
    serial.sysfsPath = TextOf(udev_device_get_syspath(tty));
    serial.hardware = TextOf(udev_device_get_syspath(hardware));
    serial.maker = PropertyOf(tty, hardware, "ID_VENDOR_FROM_DATABASE");
    serial.model = PropertyOf(tty, hardware, "ID_MODEL_FROM_DATABASE");
    serial.encodedMaker = OwnTextOf(tty, hardware, "ID_VENDOR_ENC", "manufacturer");
    serial.encodedModel = OwnTextOf(tty, hardware, "ID_MODEL_ENC", "product");
    CollectTags(hardware, serial.tags);
    CollectTags(tty, serial.tags);

    udev_device* const interface =
        udev_device_get_parent_with_subsystem_devtype(tty, "usb", "usb_interface");
    serial.role = AttributeOf(interface, "interface");
    serial.number = AttributeOf(interface, "bInterfaceNumber");
    if (AttributeOf(interface, "bInterfaceClass") == kUsbCommunicationsClass &&
        AttributeOf(interface, "bInterfaceSubClass") == kUsbAcmSubclass)
        serial.acmProtocol = AttributeOf(interface, "bInterfaceProtocol");
    return true;
}

} // namespace

std::vector<SerialInterface> ListSerialInterfaces() {
    std::vector<SerialInterface> interfaces;
    const ContextPtr context(udev_new());
    const EnumeratePtr ttys(context ? udev_enumerate_new(context.get()) : nullptr);
    if (!ttys || udev_enumerate_add_match_subsystem(ttys.get(), "tty") < 0 ||
        udev_enumerate_scan_devices(ttys.get()) < 0)
        return interfaces;
    udev_list_entry* entry = nullptr;
    udev_list_entry_foreach(entry, udev_enumerate_get_list_entry(ttys.get())) {
        const DevicePtr tty(
            udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
        SerialInterface serial;
        if (tty && interfaces.size() < kMostInterfaces && Describe(tty.get(), serial))
            interfaces.push_back(std::move(serial));
    }
    return interfaces;
}

} // namespace telephonyservice
