/// Reads or makes video frames and shows them through a preview helper.
#include "Interrupt.h"
#include "Options.h"
#include "Paths.h"
#include "Session.h"

#include <csignal>
#include <exception>
#include <iostream>
#include <new>

int main(int argc, char** argv)
{
    constexpr int kUsage = 2;
    constexpr int kFailure = 1;
    // The run continues if the reader of the report has closed the pipe.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        if (const auto options = preview_host::parseOptions(argc, argv)) {
            preview_host::checkInput(options->input);
            preview_host::checkInput(options->rightEye);
            if (!options->screenshot.empty())
                preview_host::checkOutput(options->screenshot);
            preview_host::catchInterrupts();
            preview_host::Session(*options).run();
        }
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
