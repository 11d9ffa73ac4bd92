/// Frames that contradict themselves.
#pragma once

#include "tests/common/TestFrame.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <vector>

namespace kestrix::test {

/// The properties of a frame that are numbers.
enum class Question { Width, Height, RowBytes, PixelFormat, Flags, Count };

/// A frame whose answers need not fit its memory.
class InventedFrame final : public TestFrame {
public:
    static host::Owned<InventedFrame> create(const host::MemoryFrameOptions& options)
    {
        return host::Owned<InventedFrame>(new InventedFrame(options));
    }

    /// Answers `value` from the first `Get` on, whatever was set before.
    void answer(Question question, std::int64_t value) { answers[question] = {value}; }

    /// The answers in the order of the `Get`s. The last one is repeated. None: the true value.
    std::map<Question, std::deque<std::int64_t>> answers;

    /// Interfaces that `QueryInterface` gives as null, with `S_OK`.
    std::vector<REFIID> givesNull;
    bool givesNullBytes = false;

    HRESULT QueryInterface(REFIID id, void** out) override
    {
        if (std::find(givesNull.begin(), givesNull.end(), id) != givesNull.end()) {
            *out = nullptr;
            return S_OK;
        }
        return TestFrame::QueryInterface(id, out);
    }

    std::int64_t GetWidth() override { return get(Question::Width, TestFrame::GetWidth()); }
    std::int64_t GetHeight() override { return get(Question::Height, TestFrame::GetHeight()); }
    std::int64_t GetRowBytes() override
    {
        return get(Question::RowBytes, TestFrame::GetRowBytes());
    }
    std::uint32_t GetPixelFormat() override
    {
        return static_cast<std::uint32_t>(get(Question::PixelFormat, TestFrame::GetPixelFormat()));
    }
    std::uint32_t GetFlags() override
    {
        return static_cast<std::uint32_t>(get(Question::Flags, TestFrame::GetFlags()));
    }

    HRESULT GetBytes(void** out) override
    {
        const HRESULT status = TestFrame::GetBytes(out);
        if (givesNullBytes)
            *out = nullptr;
        return status;
    }

private:
    using TestFrame::TestFrame;

    std::int64_t get(Question question, std::int64_t trueValue)
    {
        auto& left = answers[question];
        if (left.empty())
            return trueValue;
        const std::int64_t answer = left.front();
        if (left.size() > 1)
            left.pop_front();
        return answer;
    }
};

} // namespace kestrix::test
