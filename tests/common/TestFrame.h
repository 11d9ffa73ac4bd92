/// Frames in memory that fail where a test wants it to, and tell what was done with them.
#pragma once

#include "api/KestrixPreviewAPI_v14_2_1.h"
#include "host/MutableMemoryFrame.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace kestrix::test {

template<class FRAME>
class BasicTestFrame : public FRAME {
public:
    static host::Owned<BasicTestFrame> create(const host::MemoryFrameOptions& options)
    {
        return host::Owned<BasicTestFrame>(new BasicTestFrame(options));
    }

    /// Interfaces that `QueryInterface` has not to give.
    std::vector<REFIID> lacks;
    /// Queries for `IUnknown` are answered as the probe, the place for the answer left as it is.
    bool answersProbe = false;
    /// So many registrations of providers are taken, and the next refused with this status.
    int registrationsTaken = std::numeric_limits<int>::max();
    /// How long a registration takes, for other threads to come in between.
    std::chrono::microseconds registrationTime{0};
    static constexpr HRESULT kRegistrationRefused = E_NOTIMPL;
    HRESULT startAccessStatus = S_OK;
    HRESULT getBytesStatus = S_OK;
    HRESULT rightEyeStatus = S_OK;
    /// Answered by `GetInt` beside the frame's colourspace, which it stores whatever the status.
    HRESULT getIntStatus = S_OK;

    /// Counts of references and accesses go here as they change, each as `name` and the operation.
    /// Null for no log. More frames can share one.
    std::vector<std::string>* log = nullptr;
    std::string name;

    HRESULT QueryInterface(REFIID id, void** out) override
    {
        if (out && std::find(lacks.begin(), lacks.end(), id) != lacks.end()) {
            *out = nullptr;
            return E_NOINTERFACE;
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

    HRESULT StartAccess(std::uint32_t flags) override
    {
        note("StartAccess " + std::to_string(flags));
        return startAccessStatus < 0 ? startAccessStatus : FRAME::StartAccess(flags);
    }

    HRESULT GetBytes(void** out) override
    {
        note("GetBytes");
        const HRESULT status = FRAME::GetBytes(out);
        return getBytesStatus < 0 ? getBytesStatus : status;
    }

    HRESULT EndAccess(std::uint32_t flags) override
    {
        note("EndAccess " + std::to_string(flags));
        return FRAME::EndAccess(flags);
    }

    HRESULT GetInt(std::uint32_t id, std::int64_t* out) override
    {
        const HRESULT status = FRAME::GetInt(id, out);
        return status < 0 ? status : getIntStatus;
    }

    HRESULT GetFrameForRightEye(IKestrixVideoFrame** out) override
    {
        if (rightEyeStatus < 0) {
            *out = nullptr;
            return rightEyeStatus;
        }
        return FRAME::GetFrameForRightEye(out);
    }

    HRESULT RegisterInterfaceProvider(REFIID id, IUnknown* provider) override
    {
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
};

using TestFrame = BasicTestFrame<host::MemoryFrame>;
using MutableTestFrame = BasicTestFrame<host::MutableMemoryFrame>;

} // namespace kestrix::test
