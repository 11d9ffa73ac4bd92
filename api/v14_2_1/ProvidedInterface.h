/// Adds an old interface to a current frame.
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

/// A current frame as a frame of revision 14.2.1: the common part of the three adapters. `Current`
/// and `Old` are a frame interface and its old form; `Adapter` is the adapter itself.
///
/// A `Provider` that is registered with the frame owns the adapter. A query on the frame for the
/// old interface returns the adapter. An adapter has no count of its own: its references are
/// references to the frame. It is destroyed when its registration ends, at the latest with the
/// frame.
///
/// The constructor opens the frame's memory for reading and writing. The access is never closed,
/// because the bytes of an old frame can be used at any time.
template<class Current, class Old, class Adapter>
class CProvidedInterfaceBase : public Old {
public:
    class Provider;

    CProvidedInterfaceBase(const CProvidedInterfaceBase&) = delete;
    CProvidedInterfaceBase& operator=(const CProvidedInterfaceBase&) = delete;

    /// Makes an adapter for `frame`. Null if allocation fails.
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
        if (!buffer)
            return;
        buffer->StartAccess(BufferAccessReadWrite);
        try {
            buffer->GetBytes(&m_bytes);
        } catch (...) {
            buffer->EndAccess(BufferAccessReadWrite);
            throw;
        }
    }
    ~CProvidedInterfaceBase() override = default;

    /// Handles queries for `ownID` and for the old frame, and passes all others to the current
    /// frame. `out` is passed unchanged, because it may point to a probe that the frame knows.
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

    /// Calls an operation of the frame. If there is no frame, statuses are `E_FAIL` and numbers 0.
    template<class Result, class Interface, class... Parameters>
    Result forward(Result (Interface::*operation)(Parameters...),
                   std::type_identity_t<Parameters>... arguments)
    {
        if (m_frame)
            return (m_frame->*operation)(arguments...);
        return std::is_same_v<Result, HRESULT> ? static_cast<Result>(E_FAIL) : Result{0};
    }

    /// Registers `provider` for each of `ids` in order, and stops at the first failure.
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

/// The object that is registered with the frame. Makes the adapter at the first query, and owns it.
template<class Current, class Old, class Adapter>
class CProvidedInterfaceBase<Current, Old, Adapter>::Provider final
    : public ReferenceCounted<IUnknown> {
public:
    /// Makes a provider for `frame`, which may be null. The provider has no reference to the frame,
    /// because the frame will have one to the provider. Null if allocation fails.
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

    /// If several threads make an adapter at the same time, one of these adapters is kept.
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
