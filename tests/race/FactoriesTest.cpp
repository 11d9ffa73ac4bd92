/// Many threads call the factories at the start of a process.
#include "api/KestrixPreviewAPI_v14_2_1.h"
#include "preview/ScreenPreviewLut.h"

#include <gtest/gtest.h>

#include <barrier>
#include <thread>
#include <vector>

namespace kestrix::test {
namespace {

constexpr unsigned kThreads = 16;
constexpr IUnknown* (*kFactories[])() = {
    []() -> IUnknown* { return CreateOpenGL3ScreenPreviewHelper_0002(); },
    []() -> IUnknown* { return CreateOpenGL3ScreenPreviewHelper_0001(); },
    []() -> IUnknown* { return CreateOpenGLScreenPreviewHelper_0002(); },
    []() -> IUnknown* { return CreateOpenGLScreenPreviewHelper_0001(); }};

/// Each number is a test of its own, so it has a new process if tests are run one by one.
class FreshProcess : public testing::TestWithParam<int> {};

TEST_P(FreshProcess, GivesHelpersToManyThreadsAtOnce)
{
    std::barrier start(kThreads);
    const float* seen[kThreads][ScreenPreviewLut::kTables] = {};
    std::vector<std::thread> threads;
    for (unsigned thread = 0; thread < kThreads; ++thread)
        threads.emplace_back([&, thread] {
            start.arrive_and_wait();
            // Each factory is the first one on some of the threads.
            for (unsigned i = 0; i < 4; ++i) {
                IUnknown* const helper = kFactories[(thread + i) % 4]();
                ASSERT_NE(helper, nullptr);
                EXPECT_EQ(helper->AddRef(), 2U);
                EXPECT_EQ(helper->Release(), 1U);
                EXPECT_EQ(helper->Release(), 0U);
            }
            for (unsigned id = 0; id < ScreenPreviewLut::kTables; ++id)
                seen[thread][id] = ScreenPreviewLut::Get(static_cast<LutID>(id), LutFormat_RGBA32F);
        });
    for (std::thread& thread : threads)
        thread.join();
    for (unsigned id = 0; id < ScreenPreviewLut::kTables; ++id)
        for (const auto& tables : seen) {
            EXPECT_NE(tables[id], nullptr) << id;
            EXPECT_EQ(tables[id], seen[0][id]) << id;
        }
}

INSTANTIATE_TEST_SUITE_P(Race, FreshProcess, testing::Range(0, 4));
INSTANTIATE_TEST_SUITE_P(RaceFull, FreshProcess, testing::Range(0, 100));

} // namespace
} // namespace kestrix::test
