/// How an old interface is added to a current frame.
#pragma once

#include "api/InterfaceRef.h"
#include "api/KestrixPreviewAPI_v14_2_1.h"
#include "api/QueryInterface.h"
#include "api/ReferenceCounted.h"
#include "api/v14_2_1/Probe.h"

#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <new>
#include <type_traits>

/// A current frame as one of revision 14.2.1: what the three adapters `Adapter` have in common.
/// `Current` and `Old` are a frame interface and its old form.
///
/// An adapter belongs to a `Provider` that is registered with the frame, and is found by querying
/// the frame for the old interface. It has no count of its own: its references are references to
/// the frame. It ends with its registration, at the latest with the frame.
///
/// The frame's memory is opened for reading and writing when the adapter is made and never closed,
/// as an old frame's bytes can be used at any time.
template<class Current, class Old, class Adapter>
class CProvidedInterfaceBase : public Old {
public:
    class Provider;

    CProvidedInterfaceBase(const CProvidedInterfaceBase&) = delete;
    CProvidedInterfaceBase& operator=(const CProvidedInterfaceBase&) = delete;

    /// Makes an adapter for `frame`. Null where memory is short.
    static Adapter* providerConstructsCProvidedInterface(Current* frame)
    {
        return new (std::nothrow) Adapter(frame);
    }

    std::uint32_t AddRef() override { return forward(&Current::AddRef); }
    std::uint32_t Release() override { return forward(&Current::Release); }

    std::int64_t GetWidth() override { return forward(&Current::GetWidth); }
    std::int64_t GetHeight() override { return forward(&Current::GetHeight); }
    std::int64_t GetRowBytes() override { return forward(&Current::GetRowBytes); }
    std::uint32_t GetPixelFormat() override { return forward(&Current::GetPixelFormat); }
    std::uint32_t GetFlags() override { return forward(&Current::GetFlags); }

    HRESULT GetBytes(void** out) override
    {
        if (!out)
            return E_POINTER;
        *out = m_bytes;
        return m_bytes ? S_OK : E_FAIL;
    }

    HRESULT GetTimecode(std::uint32_t format, IKestrixTimecode** out) override
    {
        return forward(&Current::GetTimecode, format, out);
    }
    HRESULT GetAncillaryData(IKestrixVideoFrameAncillary** out) override
    {
        return forward(&Current::GetAncillaryData, out);
    }

protected:
    /// `frame` may be null.
    explicit CProvidedInterfaceBase(Current* frame) : m_frame(frame)
    {
        InterfaceRef<IKestrixVideoBuffer> buffer;
        if (frame)
            buffer.query(frame, IID_IKestrixVideoBuffer);
        if (buffer) {
            buffer->StartAccess(BufferAccessReadWrite);
            buffer->GetBytes(&m_bytes);
        }
    }
    ~CProvidedInterfaceBase() override = default;

    /// Answers for `ownID` and for the old frame, and hands all else on to the current one: `out`
    /// as it is, for it may point to a probe that the frame knows.
    HRESULT answerOrForward(REFIID ownID, REFIID id, void** out)
    {
        if (!out)
            return E_POINTER;
        if (IsProbe(out))
            return ProbeReply;
        if (id == ownID || id == IID_IKestrixVideoFrame_v14_2_1)
            return AnswerWith<Old>(this, out);
        if (m_frame)
            return m_frame->QueryInterface(id, out);
        *out = nullptr;
        return E_NOINTERFACE;
    }

    /// Calls an operation of the frame. Where there is no frame, statuses are `E_FAIL` and numbers
    /// 0.
    template<class Result, class Interface, class... Parameters>
    Result forward(Result (Interface::*operation)(Parameters...),
                   std::type_identity_t<Parameters>... arguments)
    {
        if (m_frame)
            return (m_frame->*operation)(arguments...);
        return std::is_same_v<Result, HRESULT> ? static_cast<Result>(E_FAIL) : Result{0};
    }

    /// Registers `provider` for each of `ids` in turn, up to the first failure.
    template<class Registry>
    static HRESULT registerFor(std::initializer_list<REFIID> ids, Registry* registry,
                               IUnknown* provider)
    {
        HRESULT status = S_OK;
        for (const REFIID& id : ids)
            if (status >= 0)
                status = registry->RegisterInterfaceProvider(id, provider);
        return status;
    }

    Current* frame() const { return m_frame; }

private:
    Current* const m_frame;
    void* m_bytes = nullptr;
};

/// What the frame holds: makes the adapter when it is first asked for, and owns it.
template<class Current, class Old, class Adapter>
class CProvidedInterfaceBase<Current, Old, Adapter>::Provider final
    : public ReferenceCounted<IUnknown> {
public:
    /// Makes a provider for `frame`, which may be null and which it holds no reference to, as the
    /// frame is to hold it. Null where memory is short.
    static InterfaceRef<IUnknown> create(Current* frame)
    {
        InterfaceRef<IUnknown> provider;
        *provider.receive() = new (std::nothrow) Provider(frame);
        return provider;
    }

    HRESULT QueryInterface(REFIID id, void** out) override
    {
        if (Adapter* const adapter = adapterOfFrame())
            return adapter->QueryInterface(id, out);
        if (out && !IsProbe(out))
            *out = nullptr;
        return E_OUTOFMEMORY;
    }

private:
    explicit Provider(Current* frame) : m_frame(frame) {}
    ~Provider() override { delete m_adapter.load(); }

    /// Of threads that come here at the same time one makes the adapter that stays.
    Adapter* adapterOfFrame()
    {
        if (Adapter* const made = m_adapter.load())
            return made;
        Adapter* const adapter = Adapter::providerConstructsCProvidedInterface(m_frame);
        Adapter* other = nullptr;
        if (m_adapter.compare_exchange_strong(other, adapter))
            return adapter;
        delete adapter;
        return other;
    }

    Current* const m_frame;
    std::atomic<Adapter*> m_adapter{nullptr};
};
