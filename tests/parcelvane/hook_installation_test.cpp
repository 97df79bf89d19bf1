// Hooks are installed once per process, at load, so the hook probe runs in a process of its own.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace {

TEST(HookInstallation, TwoCopiesOfTheLibraryKeepTheirOwnSlots) {
    // A call passed on to itself may loop for ever: the probe gets a deadline.
    FILE* const probe = ::popen("timeout 60 " HOOK_PROBE " 2>&1", "r");
    ASSERT_NE(probe, nullptr);
    std::string output;
    char buffer[4096];
    for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, probe)) > 0;)
        output.append(buffer, n);
    const int status = ::pclose(probe);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << output;
    EXPECT_NE(output.find("passed\n"), std::string::npos) << output;
}

}  // namespace
