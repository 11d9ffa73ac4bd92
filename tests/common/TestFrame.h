/// Frames in memory that fail or contradict themselves on request, and log what is done with them.
#pragma once

#include "api/KestrixPreviewAPI_v14_2_1.h"
#include "host/MutableMemoryFrame.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace kestrix::test {

/// The properties of a frame that are numbers.
enum class Question { Width, Height, RowBytes, PixelFormat, Flags, Count };

template<class FRAME>
class BasicTestFrame : public FRAME {
public:
    static host::Owned<BasicTestFrame> create(const host::MemoryFrameOptions& options)
    {
        return host::Owned<BasicTestFrame>(new BasicTestFrame(options));
    }

    /// What the properties return, call by call, even if it does not fit the frame's memory. The
    /// last value repeats. A property without values here returns the true one.
    std::map<Question, std::deque<std::int64_t>> answers;
    /// `QueryInterface` gives null for these interfaces, with the status below.
    std::vector<REFIID> lacks;
    HRESULT lacksStatus = E_NOINTERFACE;
    /// Queries for `IUnknown` return `ProbeReply` and store nothing.
    bool answersProbe = false;
    /// The frame accepts this number of registrations and refuses the next one.
    int registrationsTaken = std::numeric_limits<int>::max();
    static constexpr HRESULT kRegistrationRefused = E_NOTIMPL;
    /// How long a registration takes. Meanwhile other threads can run.
    std::chrono::microseconds registrationTime{0};
    HRESULT startAccessStatus = S_OK;
    HRESULT getBytesStatus = S_OK;
    bool givesNullBytes = false;
    /// A failure stores null, any other status the right eye, unless there is none.
    HRESULT rightEyeStatus = S_OK;
    bool givesNoRightEye = false;
    /// The status of `GetInt`, which stores the frame's colourspace even if this is a failure.
    HRESULT getIntStatus = S_OK;

    /// Called at each operation except `AddRef` and `Release`, with its name: it may throw, or call
    /// a helper.
    std::function<void(const char* operation)> called;

    /// Receives a line for each change of references and accesses: `name` and the operation. Null
    /// if there is no log. Several frames can share one.
    std::vector<std::string>* log = nullptr;
    std::string name;

    HRESULT QueryInterface(REFIID id, void** out) override
    {
        call("QueryInterface");
        if (out && std::find(lacks.begin(), lacks.end(), id) != lacks.end()) {
            *out = nullptr;
            return lacksStatus;
        }
        if (answersProbe && id == IID_IUnknown)
            return ProbeReply;
        return FRAME::QueryInterface(id, out);
    }

    std::uint32_t AddRef() override
    {
        note("AddRef");
        return FRAME::AddRef();
    }

    std::uint32_t Release() override
    {
        note("Release");
        return FRAME::Release();
    }

    std::int64_t GetWidth() override { return answer(Question::Width, FRAME::GetWidth()); }
    std::int64_t GetHeight() override { return answer(Question::Height, FRAME::GetHeight()); }
    std::int64_t GetRowBytes() override { return answer(Question::RowBytes, FRAME::GetRowBytes()); }
    std::uint32_t GetFlags() override { return answer(Question::Flags, FRAME::GetFlags()); }
    std::uint32_t GetPixelFormat() override
    {
        return answer(Question::PixelFormat, FRAME::GetPixelFormat());
    }

    HRESULT StartAccess(std::uint32_t flags) override
    {
        call("StartAccess");
        note("StartAccess " + std::to_string(flags));
        return startAccessStatus < 0 ? startAccessStatus : FRAME::StartAccess(flags);
    }

    HRESULT GetBytes(void** out) override
    {
        call("GetBytes");
        note("GetBytes");
        const HRESULT status = FRAME::GetBytes(out);
        if (givesNullBytes)
            *out = nullptr;
        return getBytesStatus < 0 ? getBytesStatus : status;
    }

    HRESULT EndAccess(std::uint32_t flags) override
    {
        note("EndAccess " + std::to_string(flags));
        const HRESULT status = FRAME::EndAccess(flags);
        EXPECT_EQ(status, S_OK) << "no such access is open";
        call("EndAccess");
        return status;
    }

    HRESULT GetInt(std::uint32_t id, std::int64_t* out) override
    {
        call("GetInt");
        const HRESULT status = FRAME::GetInt(id, out);
        return status < 0 ? status : getIntStatus;
    }

    std::uint32_t Get3DPackingFormat() override
    {
        call("Get3DPackingFormat");
        return FRAME::Get3DPackingFormat();
    }

    HRESULT GetFrameForRightEye(IKestrixVideoFrame** out) override
    {
        call("GetFrameForRightEye");
        if (rightEyeStatus < 0 || givesNoRightEye) {
            *out = nullptr;
            return rightEyeStatus;
        }
        const HRESULT status = FRAME::GetFrameForRightEye(out);
        return status < 0 ? status : rightEyeStatus;
    }

    HRESULT RegisterInterfaceProvider(REFIID id, IUnknown* provider) override
    {
        call("RegisterInterfaceProvider");
        if (provider && registrationsTaken-- <= 0)
            return kRegistrationRefused;
        std::this_thread::sleep_for(registrationTime);
        return FRAME::RegisterInterfaceProvider(id, provider);
    }

protected:
    using FRAME::FRAME;

private:
    void note(const std::string& operation)
    {
        if (log)
            log->push_back(name + operation);
    }

    void call(const char* operation) const
    {
        if (called)
            called(operation);
    }

    template<class NUMBER>
    NUMBER answer(Question question, NUMBER trueValue)
    {
        call("a property");
        const auto found = answers.find(question);
        if (found == answers.end())
            return trueValue;
        auto& left = found->second;
        const std::int64_t first = left.front();
        if (left.size() > 1)
            left.pop_front();
        return static_cast<NUMBER>(first);
    }
};

using TestFrame = BasicTestFrame<host::MemoryFrame>;
using MutableTestFrame = BasicTestFrame<host::MutableMemoryFrame>;

} // namespace kestrix::test
