/// Prints the list of pixel formats.
#include "FormatList.h"

#include "Decision.h"

#include "conversion/PixelFormats.h"

#include <iomanip>
#include <ostream>

namespace preview_host {
namespace {

using namespace KSX::PixelConversion;

/// The options of ffmpeg that write frames with these bytes; empty if it has none. ffmpeg has no
/// studio-range RGB: it writes the codes that it gets.
constexpr struct {
    PixelFormat format;
    const char* options;
} kInFFmpeg[] = {
    {PixelFormat_2vuy, "-f rawvideo -pix_fmt uyvy422"},
    {PixelFormat_YUY2, "-f rawvideo -pix_fmt yuyv422"},
    {PixelFormat_v210, "-f rawvideo -c:v v210"},
    {PixelFormat_ARGB, "-f rawvideo -pix_fmt argb"},
    {PixelFormat_BGRA, "-f rawvideo -pix_fmt bgra"},
    {PixelFormat_BGRX, "-f rawvideo -pix_fmt bgr0"},
    {PixelFormat_RGBA, "-f rawvideo -pix_fmt rgba"},
    {PixelFormat_RGB3, "-f rawvideo -pix_fmt rgb24"},
    {PixelFormat_r210, "-f rawvideo -c:v r210"},
};

const char* inFFmpeg(PixelFormat format)
{
    for (const auto& entry : kInFFmpeg)
        if (entry.format == format)
            return entry.options;
    return "";
}

} // namespace

void listFormats(std::ostream& out)
{
    for (const PixelFormatInfo& info : kPixelFormats) {
        out << info.name << "  " << std::left << std::setw(25) << info.engineName << std::right
            << std::setw(2) << info.groupBytes << " bytes for " << info.groupPixels
            << (info.groupPixels == 1 ? " pixel   " : " pixels  ") << helpersFor(info.code);
        if (const std::string options = inFFmpeg(info.code); !options.empty())
            out << "  ffmpeg " << options;
        out << '\n';
    }
}

} // namespace preview_host
