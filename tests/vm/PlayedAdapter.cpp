#include "tests/vm/PlayedAdapter.h"

#include <endian.h>
#include <filesystem>
#include <fstream>
#include <linux/usb/functionfs.h>
#include <sys/mount.h>

namespace {

namespace fs = std::filesystem;

constexpr char kGadget[] = "/sys/kernel/config/usb_gadget/played";
constexpr char kEndpoints[] = "/tmp/played";
constexpr char kController[] = "dummy_udc.1"; // the other one is g_serial's

// The request for the lines, and the status that is told with them.
constexpr __u8 kAsksLines = 5;
constexpr char kNothingToSend = 0x40;

struct __attribute__((packed)) Descriptors {
    usb_functionfs_descs_head_v2 header;
    __le32 count;
    usb_interface_descriptor interface;
    usb_endpoint_descriptor_no_audio input;
    usb_endpoint_descriptor_no_audio output;
};

usb_endpoint_descriptor_no_audio Endpoint(__u8 address) {
    constexpr __u16 kPacketSize = 512;
    return {sizeof(usb_endpoint_descriptor_no_audio),
            USB_DT_ENDPOINT,
            address,
            USB_ENDPOINT_XFER_BULK,
            htole16(kPacketSize),
            0};
}

void WriteTo(const fs::path& path, const char* text) {
    std::ofstream file(path);
    file << text << std::flush;
    EXPECT_TRUE(file.good()) << path;
}

template <class Record> void Put(const CDescriptor& file, const Record& record) {
    EXPECT_EQ(write(file.Get(), &record, sizeof record), static_cast<ssize_t>(sizeof record));
}

} // namespace

CPlayedAdapter::CPlayedAdapter() {
    const fs::path gadget = kGadget;
    fs::create_directories(gadget / "configs/c.1");
    fs::create_directories(gadget / "functions/ffs.played");
    fs::create_directory_symlink(gadget / "functions/ffs.played", gadget / "configs/c.1/f");
    // The FT232B: it has the fewest requests of its own.
    WriteTo(gadget / "idVendor", "0x0403");
    WriteTo(gadget / "idProduct", "0x6001");
    WriteTo(gadget / "bcdDevice", "0x0400");

    fs::create_directories(kEndpoints);
    EXPECT_EQ(mount("played", kEndpoints, "functionfs", 0, nullptr), 0);
    const fs::path endpoints = kEndpoints;
    m_control.Reset(open((endpoints / "ep0").c_str(), O_RDWR | O_CLOEXEC));
    const __u32 flags = FUNCTIONFS_HAS_HS_DESC | FUNCTIONFS_ALL_CTRL_RECIP;
    Put(m_control, Descriptors{{htole32(FUNCTIONFS_DESCRIPTORS_MAGIC_V2),
                                htole32(sizeof(Descriptors)), htole32(flags)},
                               htole32(3),
                               {sizeof(usb_interface_descriptor), USB_DT_INTERFACE, 0, 0, 2,
                                USB_CLASS_VENDOR_SPEC, 0xFF, 0xFF, 0},
                               Endpoint(USB_DIR_IN | 1),
                               Endpoint(USB_DIR_OUT | 2)});
    Put(m_control, usb_functionfs_strings_head{htole32(FUNCTIONFS_STRINGS_MAGIC),
                                               htole32(sizeof(usb_functionfs_strings_head)), 0, 0});
    m_input.Reset(open((endpoints / "ep1").c_str(), O_RDWR | O_CLOEXEC));
    m_thread = std::thread(&CPlayedAdapter::AnswerRequests, this);
    WriteTo(gadget / "UDC", kController);
}

CPlayedAdapter::~CPlayedAdapter() {
    WriteTo(fs::path(kGadget) / "UDC", "\n");
    m_thread.join();
}

void CPlayedAdapter::AnswerRequests() {
    usb_functionfs_event event{};
    while (read(m_control.Get(), &event, sizeof event) == sizeof event &&
           event.type != FUNCTIONFS_UNBIND) {
        if (event.type != FUNCTIONFS_SETUP)
            continue;
        char data[256] = {};
        if (event.u.setup.bRequest == kAsksLines) {
            data[0] = static_cast<char>(m_lines.load());
            data[1] = kNothingToSend;
        }
        const std::size_t length =
            std::min<std::size_t>(le16toh(event.u.setup.wLength), sizeof data);
        const bool isQuestion = (event.u.setup.bRequestType & USB_DIR_IN) != 0;
        // The driver gives up when it has waited too long.
        static_cast<void>(!(isQuestion ? write(m_control.Get(), data, length)
                                       : read(m_control.Get(), data, length)));
    }
}

void CPlayedAdapter::Send(const std::string& bytes, BYTE status, BYTE lines) {
    m_lines = lines;
    const std::string packet =
        std::string{static_cast<char>(lines), static_cast<char>(status)} + bytes;
    EXPECT_EQ(write(m_input.Get(), packet.data(), packet.size()),
              static_cast<ssize_t>(packet.size()));
}
