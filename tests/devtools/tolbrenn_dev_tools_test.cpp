// The tools library as a loading library sees it: a class found by name whose
// file browser is prepared once, from any thread, before any screen exists.
#include <gtest/gtest.h>

#include <TolbrennDevTools/TolbrennDevTools.h>

#include <objc/runtime.h>

#include <cstdlib>
#include <thread>
#include <vector>

namespace {

TEST(TolbrennDevTools, IsAClassOfClassMethodsFoundByName) {
    const Class cls = objc_getClass("TolbrennDevTools");
    ASSERT_NE(cls, nullptr);
    EXPECT_EQ(cls, TolbrennDevTools::objcClass());
    unsigned int count = 0;
    Method* instanceMethods = class_copyMethodList(cls, &count);
    std::free(instanceMethods);
    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(class_respondsToSelector(object_getClass(reinterpret_cast<id>(cls)),
                                         sel_registerName("loadFileBrowserLibrariesIfNeeded")));
}

// Nothing in this program prepares the browser before this test does; each
// test runs in a process of its own under CTest.
TEST(TolbrennDevTools, PreparesTheFileBrowserOnceFromManyThreads) {
    if (TolbrennDevTools::fileBrowserLibrariesLoaded()) {
        GTEST_SKIP() << "another test of this process prepared the browser; run it alone";
    }

    std::vector<std::thread> threads;
    std::vector<char> readyAfterCall(8, 0);
    for (std::size_t i = 0; i < readyAfterCall.size(); ++i) {
        threads.emplace_back([&readyAfterCall, i] {
            const objc::AutoreleasePool pool;
            TolbrennDevTools::loadFileBrowserLibrariesIfNeeded();
            // Whoever returns from the call finds the browser ready, also a
            // thread that arrived while another was preparing it.
            readyAfterCall[i] = TolbrennDevTools::fileBrowserLibrariesLoaded() ? 1 : 0;
        });
    }
    for (auto& t : threads) t.join();
    for (const char ready : readyAfterCall) EXPECT_EQ(ready, 1);

    TolbrennDevTools::loadFileBrowserLibrariesIfNeeded();  // again: nothing to do
    EXPECT_TRUE(TolbrennDevTools::fileBrowserLibrariesLoaded());
}

}  // namespace
