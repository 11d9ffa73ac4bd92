/// A still picture as frames of any format.
#include "Input.h"

#include <algorithm>

namespace preview_host {
namespace {

using kestrix::host::Color;

class PictureInput : public Input {
public:
    PictureInput(const std::string& path, const Image& image, const FrameLayout& layout)
        : m_path(path),
          m_image(image)
    {
        PictureInput::setLayout(layout);
    }

    void setLayout(const FrameLayout& layout) override
    {
        m_picture.assign(layout.bytes(), 0);
        RowWriter writer(layout);
        const std::uint8_t* pixel = m_image.rgba.data();
        for (unsigned y = 0; y < m_image.size.height; ++y) {
            for (Color& color : writer.row()) {
                color = {pixel[0] / 255.0, pixel[1] / 255.0, pixel[2] / 255.0, pixel[3] / 255.0};
                pixel += 4;
            }
            writer.write(y, m_picture.data());
        }
    }

    std::string description() const override { return "picture " + m_path; }

    bool isEndless() const override { return true; }

    void prepare(std::uint8_t* bytes) override
    {
        std::copy(m_picture.begin(), m_picture.end(), bytes);
    }

    Read read(std::uint64_t, std::uint8_t*) override { return Read::Frame; }

private:
    const std::string m_path;
    const Image m_image;
    std::vector<std::uint8_t> m_picture;
};

} // namespace

std::unique_ptr<Input> makePictureInput(const std::string& path, const Image& image,
                                        const FrameLayout& layout)
{
    return std::make_unique<PictureInput>(path, image, layout);
}

} // namespace preview_host
