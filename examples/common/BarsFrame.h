/// A frame of a host, to be copied and changed: colour bars in v210, in its own memory.
///
/// The upper three quarters show the bars from white to black, the last quarter in reverse order.
/// The colours have 75 % and 25 % of full level, so that none is at the limits of R'G'B'.
#pragma once

#include <KestrixPreviewAPI.h>

#include <atomic>
#include <cstdint>
#include <vector>

/// A minimal frame: it has no `IKestrixVideoFrameMetadata`, so it counts as Rec. 709, because it is
/// not 720 pixels wide. Made by `new`, deleted by the last `Release`.
class BarsFrame final : public IKestrixVideoFrame, public IKestrixVideoBuffer {
public:
    static const int kWidth = 1920;
    static const int kHeight = 1080;

    /// Bars that have moved to the left by `shift` times 6 pixels.
    explicit BarsFrame(int shift) : m_words(kRowWords * kHeight + kOverReadWords)
    {
        // 10-bit Y', Cb, Cr by ITU-R BT.709-6, 3: white, yellow, cyan, green, magenta, red, blue,
        // black.
        static const std::uint32_t codes[8][3] = {{721, 512, 512}, {689, 288, 533}, {628, 563, 288},
                                                  {596, 339, 309}, {408, 685, 715}, {376, 461, 736},
                                                  {315, 736, 491}, {283, 512, 512}};
        const int groups = kWidth / 6;
        std::uint32_t* word = m_words.data();
        for (int line = 0; line < kHeight; ++line)
            for (int group = 0; group < groups; ++group) {
                const int bar = (group + shift) % groups * 8 / groups;
                const std::uint32_t* code = codes[line < kHeight * 3 / 4 ? bar : 7 - bar];
                // Six pixels in four words, three samples a word: Cb Y Cr, Y Cb Y, Cr Y Cb, Y Cr Y.
                const std::uint32_t y = code[0], cb = code[1], cr = code[2];
                *word++ = cb | y << 10 | cr << 20;
                *word++ = y | cb << 10 | y << 20;
                *word++ = cr | y << 10 | cb << 20;
                *word++ = y | cr << 10 | y << 20;
            }
    }

    HRESULT QueryInterface(REFIID id, void** out) override
    {
        if (!out)
            return E_POINTER;
        if (id == IID_IUnknown || id == IID_IKestrixVideoFrame)
            *out = static_cast<IKestrixVideoFrame*>(this);
        else if (id == IID_IKestrixVideoBuffer)
            *out = static_cast<IKestrixVideoBuffer*>(this);
        else
            *out = nullptr;
        if (!*out)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    std::uint32_t AddRef() override { return ++m_references; }
    std::uint32_t Release() override
    {
        const std::uint32_t left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }

    std::int64_t GetWidth() override { return kWidth; }
    std::int64_t GetHeight() override { return kHeight; }
    std::int64_t GetRowBytes() override { return kRowWords * 4; }
    std::uint32_t GetPixelFormat() override { return 0x76323130; } // "v210"
    std::uint32_t GetFlags() override { return FrameFlagDefault; }
    HRESULT GetTimecode(std::uint32_t, IKestrixTimecode**) override { return E_NOTIMPL; }
    HRESULT GetAncillaryData(IKestrixVideoFrameAncillary**) override { return E_NOTIMPL; }

    HRESULT GetBytes(void** out) override
    {
        if (!out)
            return E_POINTER;
        *out = m_words.data();
        return S_OK;
    }
    HRESULT StartAccess(std::uint32_t) override { return S_OK; }
    HRESULT EndAccess(std::uint32_t) override { return S_OK; }

private:
    ~BarsFrame() override = default;

    // 48 pixels are 128 bytes, and a line is a whole number of these.
    static const unsigned kRowWords = kWidth / 48 * 32;
    // The library may read 64 bytes past the last line.
    static const unsigned kOverReadWords = 16;

    std::atomic<std::uint32_t> m_references{1};
    std::vector<std::uint32_t> m_words;
};
