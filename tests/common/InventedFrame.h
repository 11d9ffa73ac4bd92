/// Frames that contradict themselves.
#pragma once

#include "tests/common/TestFrame.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>
#include <vector>

namespace kestrix::test {

/// What a host is asked of a frame in numbers.
enum class Question { Width, Height, RowBytes, PixelFormat, Flags, Count };

/// A frame that answers as it is told, which need not have to do with its memory.
class InventedFrame final : public TestFrame {
public:
    struct Answer {
        /// Given from the first `Get` on.
        std::int64_t first;
        /// Given from the second on, after the last `askAgain`.
        std::int64_t later;
    };

    /// Frames of the size and the format of `options`, in bytes that have to be given.
    static host::Owned<InventedFrame> create(const host::MemoryFrameOptions& options)
    {
        return host::Owned<InventedFrame>(new InventedFrame(options));
    }

    Answer& answer(Question question) { return m_answers[static_cast<int>(question)]; }
    void answer(Question question, std::int64_t value) { answer(question) = {value, value}; }

    /// Questions count as new.
    void askAgain() { std::fill(std::begin(m_asked), std::end(m_asked), false); }

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

    std::int64_t GetWidth() override { return get(Question::Width); }
    std::int64_t GetHeight() override { return get(Question::Height); }
    std::int64_t GetRowBytes() override { return get(Question::RowBytes); }
    std::uint32_t GetPixelFormat() override
    {
        return static_cast<std::uint32_t>(get(Question::PixelFormat));
    }
    std::uint32_t GetFlags() override { return static_cast<std::uint32_t>(get(Question::Flags)); }

    HRESULT GetBytes(void** out) override
    {
        const HRESULT status = TestFrame::GetBytes(out);
        if (givesNullBytes)
            *out = nullptr;
        return status;
    }

private:
    explicit InventedFrame(const host::MemoryFrameOptions& options) : TestFrame(options)
    {
        answer(Question::Width, TestFrame::GetWidth());
        answer(Question::Height, TestFrame::GetHeight());
        answer(Question::RowBytes, TestFrame::GetRowBytes());
        answer(Question::PixelFormat, TestFrame::GetPixelFormat());
        answer(Question::Flags, TestFrame::GetFlags());
    }

    std::int64_t get(Question question)
    {
        bool& asked = m_asked[static_cast<int>(question)];
        const Answer& answer = this->answer(question);
        return std::exchange(asked, true) ? answer.later : answer.first;
    }

    Answer m_answers[static_cast<int>(Question::Count)] = {};
    bool m_asked[static_cast<int>(Question::Count)] = {};
};

} // namespace kestrix::test
