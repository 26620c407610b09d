// The libyang layer of the tool: see oc_yang.hpp.
#include "oc_yang.hpp"

#include <libyang/libyang.h>

namespace ocsysmap::yang {

YangError::YangError(std::vector<Diagnostic> found)
    : std::runtime_error(found.empty() ? std::string("invalid data")
                                       : found.front().path + ": " + found.front().message),
      diagnostics(std::move(found)) {}

YangError::YangError(const std::string &message) : std::runtime_error(message) {}

Models::Models(const std::filesystem::path &) {
    throw YangError("not built yet");
}

Models::~Models() {
    ly_ctx_destroy(ctx_);
}

std::optional<std::filesystem::path> models_dir(std::optional<std::string_view> option) {
    if (option) {
        return std::filesystem::path(*option);
    }
    return std::nullopt;
}

void DataFree::operator()(lyd_node *node) const noexcept {
    lyd_free_all(node);
}

std::vector<tidl_yfw_datatree *> from_lyd(yfw::Arena &, const lyd_node *, bool) {
    return {};
}

Data to_lyd(const Models &, const tidl_yfw_datatree &) {
    return nullptr;
}

std::string print(const lyd_node *, Format) {
    return {};
}

Data parse(const Models &, std::string_view, Format, Content) {
    return nullptr;
}

std::vector<Diagnostic> validate(const Models &, Data &, Content) {
    return {};
}

} // namespace ocsysmap::yang
