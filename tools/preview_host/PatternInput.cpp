/// The moving test pattern as frames of any format.
#include "Input.h"

#include "host/TestPattern.h"

#include <algorithm>
#include <cmath>

namespace preview_host {
namespace {

class PatternInput : public Input {
public:
    PatternInput(const FrameLayout& layout, double rate)
        : m_pattern(layout.size.width, layout.size.height,
                    static_cast<unsigned>(std::max(1.0, std::round(rate))))
    {
        PatternInput::setLayout(layout);
    }

    void setLayout(const FrameLayout& layout) override
    {
        m_writer.emplace(layout);
        m_still.assign(layout.bytes(), 0);
        for (unsigned y = 0; y < m_pattern.firstMovingRow(); ++y)
            writeRow(0, y, m_still.data());
    }

    std::string description() const override { return "test pattern"; }

    bool isEndless() const override { return true; }

    void prepare(std::uint8_t* bytes) override { std::copy(m_still.begin(), m_still.end(), bytes); }

    Read read(std::uint64_t index, std::uint8_t* bytes) override
    {
        for (unsigned y = m_pattern.firstMovingRow(); y < m_writer->height(); ++y)
            writeRow(index, y, bytes);
        return Read::Frame;
    }

private:
    void writeRow(std::uint64_t index, unsigned y, std::uint8_t* bytes)
    {
        m_pattern.fillRow(index, y, m_writer->row());
        m_writer->write(y, bytes);
    }

    const kestrix::host::TestPattern m_pattern;
    std::optional<RowWriter> m_writer;
    std::vector<std::uint8_t> m_still;
};

} // namespace

std::unique_ptr<Input> makePatternInput(const FrameLayout& layout, double rate)
{
    return std::make_unique<PatternInput>(layout, rate);
}

} // namespace preview_host
