/// A checker that a host puts between itself and a preview helper while it is being developed. It
/// has the interface of the helper, passes every call on, and reports what would otherwise be a
/// black view, a wrong picture or a crash. Copy it into your host, with KestrixFrameCheck.h.
///
///     IKestrixGLScreenPreviewHelper* helper = CreateOpenGL3ScreenPreviewHelper_0002();
///     #ifndef NDEBUG
///     helper = KestrixCheckedHelper::wrap(KestrixHelperKind::OpenGL3, helper, eglGetProcAddress);
///     #endif
///
/// It reports, each text once:
///
/// - a call on another thread than the one that called `InitializeGL`, and two calls of the
///   fixed-function helper at the same time;
/// - no current context, a context that is too old, one without the fixed pipeline;
/// - GL errors that the host left before a call, and GL errors of the call;
/// - an incomplete framebuffer, a viewport without pixels;
/// - frames that are not shown or damaged, with the reason (KestrixFrameCheck.h);
/// - frames that the host has released too often;
/// - failed calls.
///
/// Differences from the helper alone: the GL errors are read, so the host does not see them; a
/// frame keeps some references of the checker until the next paint or the next frame, also in the
/// fixed-function helper; each call costs GL queries.
///
/// Needs the functions of OpenGL 1.1 at link time (libGL or libOpenGL). Whether a context is
/// current is known from `glGetString`, which libglvnd and Mesa answer without one. Compiles as
/// C++11 and later.
#ifndef KESTRIX_CHECKED_HELPER_H
#define KESTRIX_CHECKED_HELPER_H

#include "KestrixFrameCheck.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>

#ifdef KESTRIX_NAMESPACE
namespace KESTRIX_NAMESPACE {
#endif

class KestrixCheckedHelper final : public IKestrixGLScreenPreviewHelper {
public:
    /// Receives one line. May be called on any thread that calls the helper.
    using Report = std::function<void(const std::string&)>;

    /// Wraps `helper` and takes over the caller's reference; null stays null. `getProcAddress`
    /// returns the address of an entry point, with any pointer type, for its name as `const char*`.
    /// Without a `report`, the lines go to standard error.
    template<class GetProcAddress>
    static IKestrixGLScreenPreviewHelper*
    wrap(KestrixHelperKind kind, IKestrixGLScreenPreviewHelper* helper,
         GetProcAddress getProcAddress, Report report = Report())
    {
        if (!helper)
            return nullptr;
        const Find find = [getProcAddress](const char* name) {
            return reinterpret_cast<PFNGLCHECKFRAMEBUFFERSTATUSPROC>(getProcAddress(name));
        };
        if (!report)
            report = [](const std::string& line) {
                std::fprintf(stderr, "KestrixCheckedHelper: %s\n", line.c_str());
            };
        return new KestrixCheckedHelper(kind, helper, find, std::move(report));
    }

    HRESULT QueryInterface(REFIID id, void** out) override
    {
        if (id != IID_IUnknown && id != IID_IKestrixGLScreenPreviewHelper)
            return m_helper->QueryInterface(id, out);
        if (!out)
            return m_helper->QueryInterface(id, out);
        *out = this;
        AddRef();
        return 0;
    }

    std::uint32_t AddRef() override { return ++m_references; }

    std::uint32_t Release() override
    {
        const std::uint32_t left = --m_references;
        if (left == 0) {
            {
                const GLCall call(*this, "the last Release");
                settle(exchangeWatched(nullptr));
                m_helper->Release();
            }
            delete this;
        }
        return left;
    }

    HRESULT InitializeGL() override
    {
        m_glThread = std::this_thread::get_id();
        const GLCall call(*this, "InitializeGL");
        readContext();
        const HRESULT status = m_helper->InitializeGL();
        m_initialised = status >= 0;
        reportFailure("InitializeGL", status);
        return status;
    }

    HRESULT PaintGL() override
    {
        const GLCall call(*this, "PaintGL");
        if (!m_initialised)
            tell("PaintGL: InitializeGL was not called or has failed");
        else if (call.hasContext())
            checkTarget();
        IKestrixVideoFrame* const watched = exchangeWatched(nullptr);
        // The OpenGL 3 helper has a reference until the paint.
        expectReferences(watched, m_kind == KestrixHelperKind::OpenGL3 ? kSpare + 1 : kSpare);
        const HRESULT status = m_helper->PaintGL();
        settle(watched);
        reportFailure("PaintGL", status);
        return status;
    }

    HRESULT SetFrame(IKestrixVideoFrame* frame) override
    {
        const Call call(*this, "SetFrame");
        if (frame) {
            const KestrixFrameAnswer answer =
                KestrixWouldBeShown(m_kind, frame, context(), m_mode.load());
            if (answer.outcome != KestrixFrameAnswer::Shown)
                tell("SetFrame: " + answer.words);
            watch(frame);
        }
        const HRESULT status = m_helper->SetFrame(frame);
        settle(exchangeWatched(frame));
        reportFailure("SetFrame", status);
        return status;
    }

    HRESULT Set3DPreviewFormat(std::uint32_t format) override
    {
        const Call call(*this, "Set3DPreviewFormat");
        m_mode = format;
        return m_helper->Set3DPreviewFormat(format);
    }

private:
    using Find = std::function<PFNGLCHECKFRAMEBUFFERSTATUSPROC(const char*)>;

    /// References of the checker to the last frame. A frame that the host releases too often still
    /// exists when this is noticed.
    static const std::uint32_t kSpare = 16;

    /// A call of any kind: notices a second one at the same time.
    class Call {
    public:
        Call(KestrixCheckedHelper& owner, const std::string& name) : m_owner(owner)
        {
            if (owner.m_calls++ > 0 && owner.m_kind == KestrixHelperKind::FixedFunction)
                owner.tell(name + ": another call of the same fixed-function helper is running");
        }
        ~Call() { --m_owner.m_calls; }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;

    private:
        KestrixCheckedHelper& m_owner;
    };

    /// A call that uses GL: notices thread, context and errors.
    class GLCall {
    public:
        GLCall(KestrixCheckedHelper& owner, const std::string& name)
            : m_call(owner, name),
              m_owner(owner),
              m_name(name),
              m_hasContext(glGetString(GL_VERSION) != nullptr)
        {
            const bool isInitialised = owner.m_glThread != std::thread::id();
            if (isInitialised && owner.m_glThread != std::this_thread::get_id())
                owner.tell(name + ": this is not the thread that called InitializeGL");
            // A helper that was never initialised has no GL objects to delete.
            if (!m_hasContext && isInitialised)
                owner.tell(name + ": no OpenGL context is current on this thread");
            tellErrors(": the host left the GL error ");
        }
        ~GLCall() { tellErrors(": the call caused the GL error "); }
        GLCall(const GLCall&) = delete;
        GLCall& operator=(const GLCall&) = delete;

        bool hasContext() const { return m_hasContext; }

    private:
        void tellErrors(const char* words)
        {
            // The limit is for drivers that return an error without end after the loss of a
            // context.
            for (int i = 0; m_hasContext && i < 16; ++i) {
                const GLenum error = glGetError();
                if (error == GL_NO_ERROR)
                    return;
                m_owner.tell(m_name + words + nameOfError(error));
            }
        }

        const Call m_call;
        KestrixCheckedHelper& m_owner;
        const std::string m_name;
        const bool m_hasContext;
    };

    KestrixCheckedHelper(KestrixHelperKind kind, IKestrixGLScreenPreviewHelper* helper, Find find,
                         Report report)
        : m_kind(kind),
          m_helper(helper),
          m_find(std::move(find)),
          m_report(std::move(report))
    {
    }
    ~KestrixCheckedHelper() override = default;

    static std::string nameOfError(GLenum error)
    {
        switch (error) {
        case GL_INVALID_ENUM:
            return "GL_INVALID_ENUM";
        case GL_INVALID_VALUE:
            return "GL_INVALID_VALUE";
        case GL_INVALID_OPERATION:
            return "GL_INVALID_OPERATION";
        case GL_OUT_OF_MEMORY:
            return "GL_OUT_OF_MEMORY";
        case GL_INVALID_FRAMEBUFFER_OPERATION:
            return "GL_INVALID_FRAMEBUFFER_OPERATION";
        default:
            return std::to_string(error);
        }
    }

    void tell(const std::string& line)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_told.insert(line).second)
            m_report(line);
    }

    void reportFailure(const char* call, HRESULT status)
    {
        if (status < 0) {
            char code[16];
            std::snprintf(code, sizeof code, "0x%08X", static_cast<unsigned>(status));
            tell(std::string(call) + ": the helper returned " + code);
        }
    }

    KestrixContextFacts context()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_context;
    }

    void readContext()
    {
        KestrixContextFacts facts;
        if (const GLubyte* version = glGetString(GL_VERSION)) {
            GLint value = 0;
            facts.version = (version[0] - '0') * 10 + (version[2] - '0');
            if (facts.version >= 32) {
                glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &value);
                facts.fixedPipeline = (value & GL_CONTEXT_CORE_PROFILE_BIT) == 0;
            }
            glGetIntegerv(GL_MAX_TEXTURE_SIZE, &value);
            facts.largestTexture = value;
        }
        if (m_kind == KestrixHelperKind::OpenGL3 && facts.version > 0 && facts.version < 32)
            tell("InitializeGL: the context is older than OpenGL 3.2");
        if (m_kind == KestrixHelperKind::FixedFunction && !facts.fixedPipeline)
            tell("InitializeGL: the context is a core profile and has no fixed pipeline");
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_context = facts;
    }

    /// The place where the picture is painted.
    void checkTarget()
    {
        GLint viewport[4] = {};
        glGetIntegerv(GL_VIEWPORT, viewport);
        if (viewport[2] == 0 || viewport[3] == 0)
            tell("PaintGL: the viewport has no pixels");
        const PFNGLCHECKFRAMEBUFFERSTATUSPROC status =
            context().version >= 30 ? m_find("glCheckFramebufferStatus") : nullptr;
        if (status && status(GL_DRAW_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE)
            tell("PaintGL: the framebuffer is incomplete");
    }

    /// Adds the spare references. A frame that returns no counts is not watched.
    void watch(IKestrixVideoFrame* frame)
    {
        std::uint32_t count = 0;
        for (std::uint32_t i = 0; i < kSpare; ++i)
            count = frame->AddRef();
        if (count == kSpare)
            tell("SetFrame: the host has no reference to the frame, it was released too often");
    }

    IKestrixVideoFrame* exchangeWatched(IKestrixVideoFrame* frame)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::swap(frame, m_watched);
        return frame;
    }

    /// Reports if `frame` has fewer references than are owned. Returns how many there are, `least`
    /// at most; a frame that does not count is believed.
    std::uint32_t expectReferences(IKestrixVideoFrame* frame, std::uint32_t least)
    {
        if (!frame)
            return least;
        const std::uint32_t first = frame->AddRef();
        const std::uint32_t second = frame->AddRef();
        frame->Release();
        frame->Release();
        if (second != first + 1 || first - 1 >= least)
            return least;
        tell("the host has released a frame too often");
        return first - 1;
    }

    /// Gives the spare references back.
    void settle(IKestrixVideoFrame* frame)
    {
        if (!frame)
            return;
        for (std::uint32_t left = expectReferences(frame, kSpare); left > 0; --left)
            frame->Release();
    }

    const KestrixHelperKind m_kind;
    IKestrixGLScreenPreviewHelper* const m_helper;
    const Find m_find;
    const Report m_report;
    std::atomic<std::uint32_t> m_references{1};
    std::atomic<int> m_calls{0};
    std::atomic<std::uint32_t> m_mode{Preview3DDefault};
    std::thread::id m_glThread;
    bool m_initialised = false;

    std::mutex m_mutex; // for what follows
    KestrixContextFacts m_context;
    IKestrixVideoFrame* m_watched = nullptr;
    std::set<std::string> m_told;
};

#ifdef KESTRIX_NAMESPACE
} // namespace KESTRIX_NAMESPACE
#endif

#endif // KESTRIX_CHECKED_HELPER_H
