/// A frame in memory that fails where a test wants it to, and tells what was done with its memory.
#pragma once

#include "host/MemoryFrame.h"

#include <string>
#include <vector>

namespace kestrix::test {

class TestFrame : public host::MemoryFrame {
public:
    static host::Owned<TestFrame> create(const host::MemoryFrameOptions& options)
    {
        return host::Owned<TestFrame>(new TestFrame(options));
    }

    /// Where there is no buffer, `QueryInterface` has none to give.
    bool hasBuffer = true;
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
        if (out && id == IID_IKestrixVideoBuffer && !hasBuffer) {
            *out = nullptr;
            return E_NOINTERFACE;
        }
        return MemoryFrame::QueryInterface(id, out);
    }

    std::uint32_t AddRef() override
    {
        note("AddRef");
        return MemoryFrame::AddRef();
    }

    std::uint32_t Release() override
    {
        note("Release");
        return MemoryFrame::Release();
    }

    HRESULT StartAccess(std::uint32_t flags) override
    {
        note("StartAccess " + std::to_string(flags));
        return startAccessStatus < 0 ? startAccessStatus : MemoryFrame::StartAccess(flags);
    }

    HRESULT GetBytes(void** out) override
    {
        note("GetBytes");
        const HRESULT status = MemoryFrame::GetBytes(out);
        return getBytesStatus < 0 ? getBytesStatus : status;
    }

    HRESULT EndAccess(std::uint32_t flags) override
    {
        note("EndAccess " + std::to_string(flags));
        return MemoryFrame::EndAccess(flags);
    }

    HRESULT GetInt(std::uint32_t id, std::int64_t* out) override
    {
        const HRESULT status = MemoryFrame::GetInt(id, out);
        return status < 0 ? status : getIntStatus;
    }

    HRESULT GetFrameForRightEye(IKestrixVideoFrame** out) override
    {
        if (rightEyeStatus < 0) {
            *out = nullptr;
            return rightEyeStatus;
        }
        return MemoryFrame::GetFrameForRightEye(out);
    }

protected:
    using MemoryFrame::MemoryFrame;

private:
    void note(const std::string& operation)
    {
        if (log)
            log->push_back(name + operation);
    }
};

} // namespace kestrix::test
