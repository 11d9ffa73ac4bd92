/// Attaches each adapter to its frame, and handles its queries.
#include "api/v14_2_1/ProvidedFrames.h"

#include "api/v14_2_1/VideoFrame3DExtensions.h"

#include <mutex>

// --- CKestrixVideoFrame_v14_2_1 ------------------------------------------------------------------

HRESULT CKestrixVideoFrame_v14_2_1::create(IKestrixVideoFrame* frame,
                                           IKestrixVideoFrame_v14_2_1** out)
{
    static std::mutex s_mutex;
    const std::lock_guard lock(s_mutex);

    const HRESULT found = QueryInto(frame, IID_IKestrixVideoFrame_v14_2_1, out);
    if (found >= 0)
        return found;

    const auto provider = Provider::create(frame);
    if (!provider)
        return E_OUTOFMEMORY;
    InterfaceRef<IKestrixMutableVideoFrame> registry;
    registry.query(frame, IID_IKestrixMutableVideoFrame);
    if (!registry)
        return E_UNEXPECTED;
    const HRESULT registered =
        registerFor({IID_IKestrixVideoFrame_v14_2_1}, registry.get(), provider.get());
    if (registered < 0)
        return registered;
    return QueryInto(frame, IID_IKestrixVideoFrame_v14_2_1, out);
}

HRESULT CKestrixVideoFrame_v14_2_1::QueryInterface(REFIID id, void** out)
{
    return answerOrForward(IID_IKestrixVideoFrame_v14_2_1, id, out);
}

// --- CKestrixMutableVideoFrame_v14_2_1 -----------------------------------------------------------

HRESULT CKestrixMutableVideoFrame_v14_2_1::create(IKestrixMutableVideoFrame* frame,
                                                  IKestrixMutableVideoFrame_v14_2_1** out)
{
    static std::mutex s_mutex;
    const std::lock_guard lock(s_mutex);

    const HRESULT found = QueryInto(frame, IID_IKestrixMutableVideoFrame_v14_2_1, out);
    if (found >= 0)
        return found;

    const auto provider = Provider::create(frame);
    if (!provider)
        return E_OUTOFMEMORY;
    HRESULT registered =
        registerFor({IID_IKestrixMutableVideoFrame_v14_2_1}, frame, provider.get());
    if (registered < 0)
        return registered;
    registered = registerFor({IID_IKestrixVideoFrame_v14_2_1}, frame, provider.get());
    if (registered < 0) {
        frame->RegisterInterfaceProvider(IID_IKestrixMutableVideoFrame_v14_2_1, nullptr);
        return registered;
    }
    return QueryInto(frame, IID_IKestrixMutableVideoFrame_v14_2_1, out);
}

HRESULT CKestrixMutableVideoFrame_v14_2_1::QueryInterface(REFIID id, void** out)
{
    return answerOrForward(IID_IKestrixMutableVideoFrame_v14_2_1, id, out);
}

HRESULT CKestrixMutableVideoFrame_v14_2_1::SetFlags(std::uint32_t flags)
{
    return forward(&IKestrixMutableVideoFrame::SetFlags, flags);
}

HRESULT CKestrixMutableVideoFrame_v14_2_1::SetTimecode(std::uint32_t format,
                                                       IKestrixTimecode* timecode)
{
    return forward(&IKestrixMutableVideoFrame::SetTimecode, format, timecode);
}

HRESULT CKestrixMutableVideoFrame_v14_2_1::SetTimecodeFromComponents(
    std::uint32_t format, std::uint8_t hours, std::uint8_t minutes, std::uint8_t seconds,
    std::uint8_t frames, std::uint32_t flags)
{
    return forward(&IKestrixMutableVideoFrame::SetTimecodeFromComponents, format, hours, minutes,
                   seconds, frames, flags);
}

HRESULT CKestrixMutableVideoFrame_v14_2_1::SetAncillaryData(IKestrixVideoFrameAncillary* ancillary)
{
    return forward(&IKestrixMutableVideoFrame::SetAncillaryData, ancillary);
}

HRESULT CKestrixMutableVideoFrame_v14_2_1::SetTimecodeUserBits(std::uint32_t format,
                                                               std::uint32_t userBits)
{
    return forward(&IKestrixMutableVideoFrame::SetTimecodeUserBits, format, userBits);
}

// --- CKestrixVideoInputFrame_v14_2_1 -------------------------------------------------------------

HRESULT CKestrixVideoInputFrame_v14_2_1::create(IKestrixVideoFrame* frame,
                                                IKestrixVideoInputFrame_v14_2_1** out)
{
    static std::mutex s_mutex;
    const std::lock_guard lock(s_mutex);

    const HRESULT found = QueryInto(frame, IID_IKestrixVideoInputFrame_v14_2_1, out);
    if (found >= 0)
        return found;

    InterfaceRef<IKestrixFrameProviderRegistry> registry;
    registry.query(frame, IID_IKestrixFrameProviderRegistry);
    if (!registry)
        return E_FAIL;
    InterfaceRef<IKestrixVideoInputFrame> inputFrame;
    inputFrame.query(frame, IID_IKestrixVideoInputFrame);
    const auto provider = Provider::create(inputFrame.get());
    if (!provider)
        return E_OUTOFMEMORY;
    const HRESULT registered =
        registerFor({IID_IKestrixVideoInputFrame_v14_2_1, IID_IKestrixVideoFrame_v14_2_1,
                     IID_IKestrixVideoFrame3DExtensions_v14_2_1},
                    registry.get(), provider.get());
    if (registered < 0)
        return registered;
    return QueryInto(frame, IID_IKestrixVideoInputFrame_v14_2_1, out);
}

HRESULT CKestrixVideoInputFrame_v14_2_1::QueryInterface(REFIID id, void** out)
{
    if (out && !IsProbe(out) && id == IID_IKestrixVideoFrame3DExtensions_v14_2_1)
        return query3DExtensions(out);
    return answerOrForward(IID_IKestrixVideoInputFrame_v14_2_1, id, out);
}

HRESULT CKestrixVideoInputFrame_v14_2_1::query3DExtensions(void** out)
{
    *out = nullptr;
    InterfaceRef<IKestrixVideoFrame3DExtensions> current;
    if (frame())
        current.query(frame(), IID_IKestrixVideoFrame3DExtensions);
    if (!current)
        return E_NOINTERFACE;
    *out = CKestrixVideoFrame3DExtensions_v14_2_1::create(current.get());
    return *out ? S_OK : E_OUTOFMEMORY;
}

HRESULT CKestrixVideoInputFrame_v14_2_1::GetStreamTime(std::int64_t* time, std::int64_t* duration,
                                                       std::int64_t scale)
{
    return forward(&IKestrixVideoInputFrame::GetStreamTime, time, duration, scale);
}

HRESULT CKestrixVideoInputFrame_v14_2_1::GetHardwareReferenceTimestamp(std::int64_t scale,
                                                                       std::int64_t* time,
                                                                       std::int64_t* duration)
{
    return forward(&IKestrixVideoInputFrame::GetHardwareReferenceTimestamp, scale, time, duration);
}
