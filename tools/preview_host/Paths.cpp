/// Looks at files by their kind and their first bytes.
#include "Paths.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <unistd.h>

namespace preview_host {

void checkInput(const std::string& path)
{
    using namespace std::string_view_literals;
    constexpr struct {
        std::string_view start;
        const char* name;
    } kPictures[] = {
        {"\xFF\xD8\xFF"sv, "JPEG"}, {"GIF8"sv, "GIF"}, {"II*\0"sv, "TIFF"}, {"MM\0*"sv, "TIFF"}};

    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        throw std::runtime_error(path +
                                 " is a directory; the input is a PNG picture or a file of raw "
                                 "frames");
    if (!std::filesystem::is_regular_file(path, ignored))
        return;
    std::string start(4, '\1');
    std::ifstream(path, std::ios::binary).read(start.data(), 4);
    for (const auto& picture : kPictures)
        if (start.starts_with(picture.start))
            throw std::runtime_error(path + " is a " + picture.name +
                                     " picture; only PNG pictures are read, ffmpeg -i " + path +
                                     " picture.png makes one");
}

void checkOutput(const std::string& path)
{
    std::error_code ignored;
    const bool isNew = !std::filesystem::exists(path, ignored);
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
    if (file < 0)
        throw std::runtime_error("can't write " + path + ": " + std::strerror(errno));
    close(file);
    if (isNew)
        unlink(path.c_str());
}

} // namespace preview_host
