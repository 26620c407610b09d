// The device's request path without the network: the bytes are the content
// of an <edit-config> or the subtree filter of a read, run through the model
// check, the walkers and the store, against a store that starts from the
// same few native trees every run; a get also answers the operational roots.
// A refused edit leaves the store and its file byte for byte as they were;
// after an accepted one, a device started from the file answers a get-config
// of everything as the device that took it.
//
// Input layout: one byte, then the text.
//   bits 0-1  0 edit, 1 get-config, 2 get, 3 edit then get
//   bits 2-3  the edit's default operation: merge, replace, none (3: merge)
//   bit 4     test-option test-only
// The models come from OCSYSMAP_MODELS, else from the directory the build
// names; the store lives in a directory of its own under /dev/shm (or TMPDIR).
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

#include "device.hpp"
#include "ocsysmap_io.hpp"
#include "oper/oper_state.hpp"
#include "registered_trees.hpp"

namespace {

namespace fs = std::filesystem;
using ocsysmapd::Device;
using ocsysmapd::Forest;
using ocsysmapd::Node;

// A store as a device holds it after a few edits: native roots of several
// modules, a list with entries, a leaf the edits can replace or delete.
constexpr std::string_view kSeedStore =
    R"(<config><host-names xmlns="http://tarvex.local/ns/yang/Tarvex-QV-shellutil-cfg">)"
    R"(<host-name>router-1</host-name></host-names>)"
    R"(<banners xmlns="http://tarvex.local/ns/yang/Tarvex-QV-infra-infra-cfg">)"
    R"(<banner><banner-name>motd</banner-name><banner-text>hello</banner-text></banner>)"
    R"(</banners></config>)";

void require(bool holds, const char *what) {
    if (!holds) {
        std::fprintf(stderr, "device_fuzz: broken: %s\n", what);
        std::abort();
    }
}

bool same(const Node &a, const Node &b) {
    if (a.tag != b.tag || a.ns != b.ns || a.has_value != b.has_value || a.value != b.value ||
        a.children.size() != b.children.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.children.size(); ++i) {
        if (!same(a.children[i], b.children[i])) {
            return false;
        }
    }
    return true;
}

bool same(const Forest &a, const Forest &b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!same(a[i], b[i])) {
            return false;
        }
    }
    return true;
}

std::string bytes_of(const fs::path &file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

struct Fixture {
    Fixture() {
        const char *shm = "/dev/shm";
        const char *tmp = std::getenv("TMPDIR");
        dir = fs::path(fs::is_directory(shm) ? shm
                       : tmp != nullptr      ? tmp
                                             : "/tmp") /
              ("ocsysmap-device-fuzz-" + std::to_string(::getpid()));
        fs::create_directories(dir);
        store = dir / "store.xml";
        const auto from_env = ocsysmap::yang::models_dir(std::nullopt);
        models = std::make_unique<ocsysmap::yang::Models>(
            from_env ? *from_env : fs::path(OCSYSMAP_FUZZ_MODELS));
    }
    ~Fixture() {
        std::error_code ec;
        fs::remove_all(dir, ec);
    }
    // A device over the seed store, as every run starts, whose <get> also
    // answers the operational roots of its configuration, as the server's does.
    std::unique_ptr<Device> fresh_device() const {
        {
            std::ofstream out(store, std::ios::binary | std::ios::trunc);
            out << kSeedStore;
        }
        auto device = std::make_unique<Device>(trees, *models, ocsysmapd::StoreFile(store));
        device->set_operational([d = device.get(), this] {
            std::string data;
            return oper->build(d->read(KIND_GET_CONFIG, std::nullopt, data)
                                   ? Forest{}
                                   : ocsysmapd::oper::parse_config(data));
        });
        return device;
    }

    std::array<yfw_map_reg_mod_t, ocsysmap::kRegistrations.size()> trees =
        ocsysmap::registered_trees();
    fs::path dir;
    fs::path store;
    std::unique_ptr<ocsysmap::yang::Models> models;
    std::unique_ptr<ocsysmapd::oper::OperState> oper =
        std::make_unique<ocsysmapd::oper::OperState>();
};

const Fixture &fixture() {
    static const Fixture f;
    return f;
}

void edit(Device &device, const Fixture &f, std::string_view text, uint8_t header) {
    const Forest before = device.store();
    const std::string file_before = bytes_of(f.store);
    ocsysmapd::EditOptions options;
    switch ((header >> 2) & 3) {
    case 1:
        options.default_operation = ocsysmapd::EditDefault::replace;
        break;
    case 2:
        options.default_operation = ocsysmapd::EditDefault::none;
        break;
    default:
        break;
    }
    options.test_only = (header & 0x10) != 0;
    const auto failed = device.edit(text, options);
    if (failed || options.test_only) {
        require(same(device.store(), before), "a refused edit changed the store");
        require(bytes_of(f.store) == file_before, "a refused edit changed the store's file");
        return;
    }
    // A restart reads the file: the device must answer as it did before (the
    // configuration: host figures in the operational roots change by the second).
    std::string before_restart;
    std::string after_restart;
    const auto failed_before = device.read(KIND_GET_CONFIG, std::nullopt, before_restart);
    const auto failed_after = Device(f.trees, *f.models, ocsysmapd::StoreFile(f.store))
                                  .read(KIND_GET_CONFIG, std::nullopt, after_restart);
    if (std::getenv("DEVICE_FUZZ_VERBOSE") != nullptr) {
        std::fprintf(
            stderr, "device_fuzz: before a restart: %s\n%s\nafter: %s\n%s\n",
            failed_before ? failed_before->message.c_str() : "answered", before_restart.c_str(),
            failed_after ? failed_after->message.c_str() : "answered", after_restart.c_str());
        yfw::Arena arena;
        std::fprintf(stderr, "store\n%s\nfile\n%s\n",
                     ocsysmap::to_json(*ocsysmapd::to_document(arena, device.store())).c_str(),
                     bytes_of(f.store).c_str());
    }
    require(failed_before.has_value() == failed_after.has_value() &&
                before_restart == after_restart,
            "the device answers otherwise after a restart");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) {
        return 0;
    }
    const Fixture &f = fixture();
    const uint8_t header = data[0];
    const std::string_view text(reinterpret_cast<const char *>(data + 1), size - 1);
    const std::unique_ptr<Device> device = f.fresh_device();
    std::string answer;
    switch (header & 3) {
    case 0:
        edit(*device, f, text, header);
        break;
    case 1:
        (void)device->read(KIND_GET_CONFIG, text, answer);
        break;
    case 2:
        (void)device->read(KIND_GET, text, answer);
        break;
    default:
        edit(*device, f, text, header);
        (void)device->read(KIND_GET, text, answer);
        break;
    }
    return 0;
}
