/// A small host: reads or makes video frames and shows them through a preview helper.
#include "Options.h"
#include "Session.h"

#include "conversion/PixelFormats.h"

#include <csignal>
#include <exception>
#include <iomanip>
#include <iostream>
#include <new>

namespace preview_host {
namespace {

void listFormats()
{
    for (const auto& info : KSX::PixelConversion::kPixelFormats)
        std::cout << info.name << "  " << std::left << std::setw(25) << info.engineName
                  << std::right << std::setw(2) << info.groupBytes << " bytes for "
                  << info.groupPixels << (info.groupPixels == 1 ? " pixel\n" : " pixels\n");
}

} // namespace
} // namespace preview_host

int main(int argc, char** argv)
{
    constexpr int kUsage = 2;
    constexpr int kFailure = 1;
    // A reader of our report that has gone is no reason to stop.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const auto options = preview_host::parseOptions(argc, argv);
        if (!options)
            return 0;
        if (options->listFormats)
            preview_host::listFormats();
        else
            preview_host::Session(*options).run();
        return 0;
    } catch (const preview_host::UsageError& error) {
        std::cerr << "preview_host: " << error.what() << '\n';
        return kUsage;
    } catch (const std::bad_alloc&) {
        std::cerr << "preview_host: not enough memory for frames of this size\n";
    } catch (const std::exception& error) {
        std::cerr << "preview_host: " << error.what() << '\n';
    }
    return kFailure;
}
