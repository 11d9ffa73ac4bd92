/// Stages of no use but to be watched: each note down how it is called, and what comes out tells
/// what went in, in which order and from where.
///
/// A pixel holds a number. Every stage makes 3 * number + ID of it, so the order of stages shows;
/// one that looks back adds 7 times the pixel before a group to the group's first, and one that
/// looks ahead 5 times the pixel behind a group to its last.
#pragma once

#include "conversion/Pipeline.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>

namespace kestrix::test {

using KSX::PixelConversion::Kernel;
using KSX::PixelConversion::Packed;
using KSX::PixelConversion::Pixels;

/// The operations called on the stage of each ID, in order: f, s and l for the first, a plain and
/// the last step.
inline thread_local std::array<std::string, 10> operations;

/// How numbers lie in a format's groups: little-endian, one behind the other; what is left of a
/// group is filled when written.
struct Numbers {
    unsigned groupBytes, groupPixels;
    unsigned size = groupBytes / groupPixels;

    static constexpr std::uint8_t kFiller = 0x5A;

    /// The bits of a number that there is room for.
    constexpr std::uint32_t mask() const { return size >= 4 ? ~0u : (1u << 8 * size) - 1; }

    /// Bytes of a row of `width` pixels, whole groups.
    constexpr std::size_t rowBytes(std::size_t width) const
    {
        return (width + groupPixels - 1) / groupPixels * groupBytes;
    }

    std::uint32_t get(const void* bytes, unsigned pixel) const
    {
        std::uint32_t number = 0;
        std::memcpy(&number, static_cast<const std::uint8_t*>(bytes) + offset(pixel),
                    std::min(size, 4u));
        return number;
    }

    void put(void* bytes, unsigned pixel, std::uint32_t number) const
    {
        const std::uint64_t wide = number & mask();
        std::memcpy(static_cast<std::uint8_t*>(bytes) + offset(pixel), &wide, size);
    }

private:
    std::size_t offset(unsigned pixel) const
    {
        return std::size_t{pixel} / groupPixels * groupBytes + pixel % groupPixels * size;
    }
};

template<class FORMAT>
inline constexpr Numbers numbersOf{FORMAT::kBytes, FORMAT::kPixels};

enum class Kind { Plain, Back, Ahead, Constant };

template<int ID, unsigned N, class INPUT, class OUTPUT>
class ArtificialStage : public Kernel<N, N> {
public:
    using Input = INPUT;
    using Output = OUTPUT;
    static constexpr int kId = ID;

    static constexpr std::uint32_t number(std::uint32_t in) { return 3 * in + ID; }

protected:
    using In = Pixels<INPUT, N>;
    using Out = Pixels<OUTPUT, N>;

    static void note(char operation) { operations[ID] += operation; }
    static std::uint32_t get(const In& in, unsigned pixel)
    {
        return numbersOf<INPUT>.get(&in, pixel);
    }

    /// A step in which `before` and `behind` join the first and the last pixel.
    static Out mixed(const In& in, std::uint32_t before, std::uint32_t behind)
    {
        Out out;
        std::memset(&out, Numbers::kFiller, sizeof(out));
        for (unsigned i = 0; i < N; ++i)
            numbersOf<OUTPUT>.put(&out, i,
                                  number(get(in, i)) + (i == 0 ? 7 * before : 0) +
                                      (i == N - 1 ? 5 * behind : 0));
        return out;
    }
};

template<int ID, unsigned N, class INPUT = Packed<4>, class OUTPUT = INPUT>
class PLAIN : public ArtificialStage<ID, N, INPUT, OUTPUT> {
public:
    static constexpr Kind kKind = Kind::Plain;

    [[gnu::noinline]] Pixels<OUTPUT, N> step(const Pixels<INPUT, N>& in)
    {
        this->note('s');
        return this->mixed(in, 0, 0);
    }
};

template<int ID, unsigned N, class INPUT = Packed<4>, class OUTPUT = INPUT>
class LOOK_BACK : public ArtificialStage<ID, N, INPUT, OUTPUT> {
public:
    static constexpr Kind kKind = Kind::Back;

    [[gnu::noinline]] Pixels<OUTPUT, N> firstStep(const Pixels<INPUT, N>& in)
    {
        this->note('f');
        m_before = this->get(in, 0);
        return rest(in);
    }

    [[gnu::noinline]] Pixels<OUTPUT, N> step(const Pixels<INPUT, N>& in)
    {
        this->note('s');
        return rest(in);
    }

private:
    Pixels<OUTPUT, N> rest(const Pixels<INPUT, N>& in)
    {
        const auto out = this->mixed(in, m_before, 0);
        m_before = this->get(in, N - 1);
        return out;
    }

    std::uint32_t m_before = 0xdead;
};

template<int ID, unsigned N, class INPUT = Packed<4>, class OUTPUT = INPUT>
class LOOK_AHEAD : public ArtificialStage<ID, N, INPUT, OUTPUT> {
public:
    static constexpr Kind kKind = Kind::Ahead;

    [[gnu::noinline]] Pixels<OUTPUT, N> step(const Pixels<INPUT, N>& in, __m128i next)
    {
        this->note('s');
        return this->mixed(in, 0, numbersOf<INPUT>.get(&next, 0));
    }

    [[gnu::noinline]] Pixels<OUTPUT, N> lastStep(const Pixels<INPUT, N>& in)
    {
        this->note('l');
        return this->mixed(in, 0, this->get(in, N - 1));
    }
};

inline constexpr std::uint32_t kConstantNumber = 0xC1C2C3C4;

/// Gives the same number for every pixel, so that every byte written is known.
template<int ID, unsigned N, class INPUT, class OUTPUT>
class CONSTANT : public ArtificialStage<ID, N, INPUT, OUTPUT> {
public:
    static constexpr Kind kKind = Kind::Constant;
    [[gnu::noinline]] Pixels<OUTPUT, N> step(const Pixels<INPUT, N>&)
    {
        this->note('s');
        Pixels<OUTPUT, N> out;
        std::memset(&out, Numbers::kFiller, sizeof(out));
        for (unsigned i = 0; i < N; ++i)
            numbersOf<OUTPUT>.put(&out, i, kConstantNumber);
        return out;
    }
};

/// A merged form of plain stages on `Packed<4>`.
template<int ID, unsigned N, class... PARTS>
class FORM : public Kernel<N, N> {
public:
    using Input = Packed<4>;
    using Output = Packed<4>;

    [[gnu::noinline]] Pixels<Output, N> step(const Pixels<Input, N>& in)
    {
        operations[ID] += 's';
        Pixels<Output, N> out;
        for (unsigned i = 0; i < N; ++i) {
            std::uint32_t number = numbersOf<Input>.get(&in, i);
            ((number = PARTS::number(number)), ...);
            numbersOf<Output>.put(&out, i, number);
        }
        return out;
    }
};

} // namespace kestrix::test
