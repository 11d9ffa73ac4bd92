/// The free functions for identifiers, strings, threads and time.
#include "support/KSXstring.h"
#include "support/KSXuuid.h"
#include "support/Threads.h"
#include "support/Timeval.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <set>
#include <string>
#include <thread>

namespace {

TEST(Identifiers, DifferAndAreWrittenInByteOrder)
{
    std::set<std::string> made;
    for (int i = 0; i < 1000; ++i)
        made.insert(KSXuuidToStdString(KSXuuid_Generate()));
    EXPECT_EQ(made.size(), 1000U);
    // RFC 4122, random identifiers: version 4 in the upper half of byte 6, variant 10 at the top of
    // byte 8.
    for (const std::string& text : made)
        EXPECT_TRUE(text.size() == 32 && text[12] == '4' &&
                    std::string("89AB").find(text[16]) != std::string::npos)
            << text;

    EXPECT_EQ(KSXuuidToStdString({{0x00, 0x01, 0x0a, 0x10, 0x7f, 0x80, 0xa0, 0xff, 0xde, 0xad, 0xbe,
                                   0xef, 0x09, 0x90, 0xc0, 0x0c}}),
              "00010A107F80A0FFDEADBEEF0990C00C");
}

TEST(Strings, AreCopiedForTheReceiverToFree)
{
    EXPECT_EQ(KSXstringBytesRequired(""), 1U);
    EXPECT_EQ(KSXstringBytesRequired("four"), 5U);

    const char* first = nullptr;
    EXPECT_EQ(KSXstringFromCharArray(&first, "text"), first);
    EXPECT_STREQ(first, "text");
    const char* second = nullptr;
    EXPECT_EQ(KSXstringFromStdString(&second, std::string("up to\0here", 10)), second);
    EXPECT_STREQ(second, "up to");
    EXPECT_NE(first, second);
    std::string back = "before";
    KSXstringToStdString(first, back);
    EXPECT_EQ(back, "text");
    std::free(const_cast<char*>(first));
    std::free(const_cast<char*>(second));
}

TEST(Strings, AreCutToTheirPlaceAndAlwaysTerminated)
{
    const struct {
        unsigned length;
        std::string expected; // all 8 bytes; '#' is a byte that must not be written
    } cases[] = {
        {1, std::string("\0#######", 8)},
        {4, std::string("abc\0####", 8)},
        {5, std::string("abcd\0###", 8)},
        {7, std::string("abcd\0\0\0#", 8)},
    };
    for (const auto& c : cases) {
        std::string place(8, '#');
        KSXstringToCharArray("abcd", place.data(), c.length);
        EXPECT_EQ(place, c.expected) << c.length;
    }
}

void* returnArgument(void* argument)
{
    return argument;
}

TEST(Threads, AreJoinedAndTheirResultIsTold)
{
    int value = 0;
    for (const bool wanted : {true, false}) {
        pthread_t thread{};
        ASSERT_EQ(pthread_create(&thread, nullptr, returnArgument, &value), 0);
        EXPECT_FALSE(pthread_current_thread_equals(thread, pthread_self()));
        void* result = nullptr;
        EXPECT_EQ(pthread_join_nodeadlock_implementation(thread, wanted ? &result : nullptr), 0);
        EXPECT_EQ(result, wanted ? &value : nullptr);
    }
    EXPECT_TRUE(pthread_current_thread_equals(pthread_self(), {}));
}

/// What a thread finds if it joins itself. No thread can wait for it after that, so it meets the
/// test at a barrier. The object is kept until the process ends, because the thread may still be
/// leaving the barrier when the test ends.
struct SelfJoin {
    bool wantsResult;
    pthread_barrier_t done{};
    int status = -1;
    void* result = this;
    int state = -1;
} s_selfJoins[] = {{false}, {true}};

void* joinMyself(void* argument)
{
    auto& found = *static_cast<SelfJoin*>(argument);
    void** const result = found.wantsResult ? &found.result : nullptr;
    found.status = pthread_join_nodeadlock_implementation(pthread_self(), result);
    pthread_attr_t attributes;
    pthread_getattr_np(pthread_self(), &attributes);
    pthread_attr_getdetachstate(&attributes, &found.state);
    pthread_attr_destroy(&attributes);
    pthread_barrier_wait(&found.done);
    return nullptr;
}

TEST(Threads, ThatJoinThemselvesAreDetached)
{
    for (SelfJoin& found : s_selfJoins) {
        pthread_barrier_init(&found.done, nullptr, 2);
        pthread_t thread{};
        ASSERT_EQ(pthread_create(&thread, nullptr, joinMyself, &found), 0);
        pthread_barrier_wait(&found.done);
        EXPECT_EQ(found.status, 0);
        EXPECT_EQ(found.result, found.wantsResult ? nullptr : static_cast<void*>(&found));
        EXPECT_EQ(found.state, PTHREAD_CREATE_DETACHED);
    }
}

TEST(Threads, LockARecursiveMutexAgain)
{
    pthread_mutex_t mutex;
    ASSERT_EQ(ksx_recursive_pthread_mutex_init(&mutex), 0);
    const auto isFreeForOthers = [&] {
        bool isFree = false;
        std::thread([&] {
            isFree = pthread_mutex_trylock(&mutex) == 0;
            if (isFree)
                pthread_mutex_unlock(&mutex);
        }).join();
        return isFree;
    };
    EXPECT_EQ(pthread_mutex_lock(&mutex), 0);
    EXPECT_EQ(pthread_mutex_trylock(&mutex), 0);
    EXPECT_EQ(pthread_mutex_unlock(&mutex), 0);
    EXPECT_FALSE(isFreeForOthers()) << "unlocked less often than locked";
    EXPECT_EQ(pthread_mutex_unlock(&mutex), 0);
    EXPECT_TRUE(isFreeForOthers());
    EXPECT_EQ(pthread_mutex_destroy(&mutex), 0);
}

TEST(Times, Differ)
{
    const struct {
        timeval a, b;
        std::int32_t milliseconds, microseconds;
    } cases[] = {
        {{5, 300000}, {2, 100000}, 3200, 3200000},
        {{2, 100000}, {5, 300000}, -3200, -3200000},
        // The microseconds are cut towards zero, neither rounded nor floored.
        {{1, 0}, {0, 999500}, 1, 500},
        {{1, 500}, {1, 0}, 0, 500},
        {{1, 0}, {1, 1999}, -1, -1999},
        // A result of more than 32 bits loses its upper bits.
        {{2147, 483648}, {0, 0}, 2147483, INT_MIN},
        {{4294, 967297}, {0, 0}, 4294967, 1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(TimevalDiffMS(c.a, c.b), c.milliseconds) << c.a.tv_sec << ' ' << c.a.tv_usec;
        EXPECT_EQ(TimevalDiffUS(c.a, c.b), c.microseconds) << c.a.tv_sec << ' ' << c.a.tv_usec;
    }
}

TEST(Times, AddMilliseconds)
{
    const struct {
        timeval base;
        int milliseconds;
        timeval sum;
    } cases[] = {
        {{10, 999000}, 1, {11, 0}},
        {{10, 999999}, 2147483, {2158, 482999}},
        {{10, 500000}, -300, {10, 200000}},
        // The carry is cut towards zero: the seconds stay and the microseconds are negative.
        {{10, 500000}, -700, {10, -200000}},
        {{10, 500000}, -2700, {8, -200000}},
    };
    for (const auto& c : cases) {
        timeval sum = c.base;
        TimevalAddMS(sum, sum, c.milliseconds);
        EXPECT_EQ(sum.tv_sec, c.sum.tv_sec) << c.milliseconds;
        EXPECT_EQ(sum.tv_usec, c.sum.tv_usec) << c.milliseconds;
    }
}

} // namespace
