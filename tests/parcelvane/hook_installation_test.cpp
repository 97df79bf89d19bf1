// Hook installation happens once per process, when the library loads, so
// each case runs the hook probe in a process of its own.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace {

class HookInstallation : public testing::TestWithParam<const char*> {};

TEST_P(HookInstallation, InAProcessOfItsOwn) {
    // A call passed on to itself may loop for ever: the probe gets a deadline.
    const std::string command =
        std::string("timeout 60 ") + HOOK_PROBE + " " + GetParam() + " 2>&1";
    FILE* const probe = ::popen(command.c_str(), "r");
    ASSERT_NE(probe, nullptr);
    std::string output;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, probe)) > 0;)
        output.append(buffer, n);
    const int status = ::pclose(probe);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << output;
    EXPECT_NE(output.find(std::string("passed: ") + GetParam()), std::string::npos) << output;
}

INSTANTIATE_TEST_SUITE_P(Scenarios, HookInstallation,
                         testing::Values("inherited", "own", "no_chat_session", "two_copies"),
                         [](const testing::TestParamInfo<const char*>& info) {
                             return std::string(info.param);
                         });

}  // namespace
