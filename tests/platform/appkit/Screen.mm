// What all tests with AppKit stand on: a screen, and a pool of what each of them leaves behind.
#import "platform/appkit/System.h"

#include <gtest/gtest.h>

namespace {

class Screen : public testing::Environment {
    void SetUp() override { ASSERT_TRUE(Kest::AppKit::connectToScreen()); }
};

class Pool : public testing::EmptyTestEventListener {
    void OnTestProgramStart(const testing::UnitTest&) override { pool = [[NSAutoreleasePool alloc] init]; }
    void OnTestEnd(const testing::TestInfo&) override
    {
        [pool drain];
        pool = [[NSAutoreleasePool alloc] init];
    }
    NSAutoreleasePool* pool = nil;
};

const bool kBegun = [] {
    testing::AddGlobalTestEnvironment(new Screen);
    testing::UnitTest::GetInstance()->listeners().Append(new Pool);
    return true;
}();

} // namespace
