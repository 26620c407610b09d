// Every test of the library starts from the state the library has at load,
// so that no test depends on the order in which the tests run.
#include <gtest/gtest.h>

#include "ymap_module_state.hpp"

namespace {

class ResetModuleState : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo &) override { ymap::reset_module_state(); }
};

const bool registered = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new ResetModuleState);
    return true;
}();

} // namespace
