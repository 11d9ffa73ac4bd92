/// Paints white in each format with both helpers, and prints what the screen shows: a part of
/// docs/colour.md.
#include "conversion/PixelFormats.h"
#include "docs/printed/FormatNames.h"
#include "host/RowEncoder.h"
#include "preview/ShaderFormats.h"
#include "tests/common/PreviewFixture.h"

#include <cmath>
#include <cstdio>
#include <vector>

namespace {

using namespace kestrix::test;
using namespace KSX::PixelConversion;

/// R, G and B of the middle of the picture in 1/255; nothing if the helper refuses the frame.
std::string shown(const HelperKind& kind, PixelFormat format)
{
    const GLContext context(kind.context);
    if (!context.failure().empty()) {
        std::fprintf(stderr, "%s\n", context.failure().c_str());
        std::exit(1);
    }
    constexpr int kWidth = 48;
    constexpr int kHeight = 16;
    const Frame frame = TestFrame::create(
        {.width = kWidth, .height = kHeight, .format = format, .colorspace = ColorspaceCodeRec709});
    kestrix::host::RowEncoder encoder(format, Colorspace709, kWidth);
    for (int line = 0; line < kHeight; ++line)
        encoder.encode(std::vector<kestrix::host::Color>(kWidth, {1, 1, 1, 1}),
                       static_cast<std::uint8_t*>(frame->bytes()) + line * frame->GetRowBytes());

    const Helper helper(kind.create());
    helper->InitializeGL();
    if (helper->SetFrame(frame.get()) < 0)
        return "";
    Canvas canvas(kWidth, kHeight / 2);
    helper->PaintGL();
    const auto pixel = canvas.read()[kWidth * (kHeight / 4) + kWidth / 2];
    std::string text;
    for (std::size_t component = 0; component < 3; ++component)
        text += (component ? ", " : "") + std::to_string(std::lround(255 * pixel[component]));
    return text;
}

} // namespace

int main()
{
    GLRecorder::get().useDriver();
    std::puts("| Format | Fixed function | OpenGL 3 |\n|---|---|---|");
    for (const PixelFormatInfo& info : kPixelFormats) {
        const std::string fixed = shown(kHelperKinds[0], info.code);
        const std::string openGL3 =
            findShaderFormat(info.code) ? shown(kHelperKinds[1], info.code) : "";
        if (!fixed.empty() || !openGL3.empty())
            std::printf("| %s | %s | %s |\n", nameOf(info.code).c_str(), fixed.c_str(),
                        openGL3.c_str());
    }
}
