/// The check that hosts copy: its answers compared with what both helpers return and paint. And the
/// checker between a host and a helper.
#include "examples/common/KestrixCheckedHelper.h"
#include "preview/ScreenPreviewBase.h"
#include "preview/ScreenPreviewLut.h"
#include "tests/preview/DriverFixture.h"

#include "conversion/PixelFormats.h"
#include <GLFW/glfw3.h>

#include <algorithm>
#include <cstring>
#include <thread>
#include <tuple>

using namespace kestrix::test;
using testing::HasSubstr;

namespace {

using KSX::PixelConversion::kPixelFormats;

KestrixHelperKind kindOf(const HelperKind& helper)
{
    return helper.context == GLContext::Kind::Core32 ? KestrixHelperKind::OpenGL3
                                                     : KestrixHelperKind::FixedFunction;
}

/// Compares the answer with what the helper returns and paints: something of the frame, or black.
void expectAnswer(const HelperKind& kind, IKestrixGLScreenPreviewHelper* helper,
                  const MemoryFrameOptions& options)
{
    const Frame frame = TestFrame::create(options);
    const auto answer = KestrixWouldBeShown(kindOf(kind), frame.get());
    const auto paint = [&](int byte) {
        std::memset(frame->bytes(), byte, frame->size());
        Canvas canvas(8, 8);
        EXPECT_EQ(helper->SetFrame(frame.get()), answer.setFrameStatus) << answer.words;
        EXPECT_EQ(helper->PaintGL(), S_OK);
        return canvas.read();
    };
    // Both are light in every format, range and byte order.
    const auto painted = paint(0xB0);
    const bool showsTheFrame = painted != paint(0x80);
    EXPECT_EQ(showsTheFrame, answer.outcome != KestrixFrameAnswer::NotShown) << answer.words;

    const auto isBlack = [](const auto& pixel) {
        return *std::max_element(pixel.begin(), pixel.begin() + 3) <= 0;
    };
    const bool black = std::all_of(painted.begin(), painted.end(), isBlack);
    EXPECT_FALSE(black && showsTheFrame);
    const bool isCalledBlack = answer.words.rfind("black", 0) == 0;
    EXPECT_TRUE(black || !isCalledBlack) << answer.words;
}

class FrameCheck : public DriverTest, public testing::WithParamInterface<HelperKind> {
protected:
    FrameCheck() : DriverTest(GetParam().context) {}

    void SetUp() override
    {
        DriverTest::SetUp();
        if (HasFatalFailure())
            return;
        helper.reset(GetParam().create());
        ASSERT_EQ(helper->InitializeGL(), S_OK);
    }
};
INSTANTIATE_TEST_SUITE_P(Helpers, FrameCheck, testing::ValuesIn(kHelperKinds),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(FrameCheck, AnswersAsTheScreenShows)
{
    std::vector<std::uint32_t> codes{code("R12b"), code("none"), 0};
    for (const auto& format : kPixelFormats)
        codes.push_back(format.code);
    const std::optional<std::int64_t> colourspaces[] = {
        std::nullopt, ColorspaceCodeRec601, ColorspaceCodeRec709, ColorspaceCodeRec2020, 7};
    for (const std::uint32_t format : codes)
        for (const auto& colourspace : colourspaces)
            for (const bool captured : {false, true})
                for (const std::int64_t width : {1, 4, 5, 12, 13, 48})
                    for (const std::int64_t height : {1, 2, 3}) {
                        SCOPED_TRACE(testing::Message() << format << " " << width << "x" << height
                                                        << " " << colourspace.value_or(0));
                        MemoryFrameOptions options;
                        options.width = width;
                        options.height = height;
                        options.format = format;
                        options.colorspace = colourspace;
                        options.captured = captured;
                        if (captured && (width != 48 || height != 2))
                            continue;
                        if (!KSX::PixelConversion::findPixelFormat(format))
                            options.rowBytes = 36 * 6;
                        ASSERT_NO_FATAL_FAILURE(expectAnswer(GetParam(), helper.get(), options));
                    }
}

TEST_P(FrameCheck, AnswersForRowBytesAndLineSteps)
{
    const std::tuple<std::int64_t, std::int64_t, std::int64_t> sizes[] = {
        {3839, 2, 0}, {3840, 3, 0}, {3840, 4, 0}, {7679, 7, 0},   {7680, 7, 0},
        {7680, 8, 0}, {64, 4, 252}, {64, 4, 3},   {64, 4, 257},   {64, 4, 256},
        {64, 4, 0},   {0, 4, 0},    {64, 0, 256}, {64, 16, 40000}};
    for (const auto& [width, height, rowBytes] : sizes) {
        SCOPED_TRACE(testing::Message() << width << "x" << height << ", " << rowBytes);
        MemoryFrameOptions options;
        options.width = width;
        options.height = height;
        options.format = code("BGRA");
        if (rowBytes || width == 64)
            options.rowBytes = rowBytes;
        ASSERT_NO_FATAL_FAILURE(expectAnswer(GetParam(), helper.get(), options));
    }
}

TEST_P(FrameCheck, AnswersForFramesWithoutBytesAndForEyes)
{
    MemoryFrameOptions options{.width = 64, .height = 4, .format = code("BGRA")};
    const auto words = [&](const Frame& frame) {
        return KestrixWouldBeShown(kindOf(GetParam()), frame.get()).words;
    };
    const Frame frame = TestFrame::create(options);
    EXPECT_THAT(words(frame), HasSubstr("shown as Rec. 709 by "));
    frame->givesNullBytes = true;
    EXPECT_THAT(words(frame), HasSubstr("gives null"));
    frame->getBytesStatus = E_FAIL;
    EXPECT_THAT(words(frame), HasSubstr("GetBytes of the frame's buffer fails"));
    frame->startAccessStatus = E_FAIL;
    EXPECT_THAT(words(frame), HasSubstr("StartAccess"));
    frame->lacks = {IID_IKestrixVideoBuffer};
    EXPECT_THAT(words(frame), HasSubstr("no IKestrixVideoBuffer"));

    const Frame pair = TestFrame::create(stereo(options, TestFrame::create(options)));
    EXPECT_THAT(words(pair), HasSubstr("shown as"));
    MemoryFrameOptions other = options;
    other.height = 6;
    const Frame uneven = TestFrame::create(stereo(options, TestFrame::create(other)));
    EXPECT_EQ(words(uneven), "the right eye is left out: it has another size");
    const Frame packed = TestFrame::create(stereo(options, TestFrame::create(options), 1));
    EXPECT_EQ(helper->SetFrame(packed.get()),
              KestrixWouldBeShown(kindOf(GetParam()), packed.get()).setFrameStatus);
}

TEST(FrameCheckWords, TellTheColourspaceThatTheHelpersAssume)
{
    const char* const tables[] = {"Rec. 601 of 525 lines", "Rec. 601 of 625 lines", "Rec. 709",
                                  "Rec. 2020"};
    const std::map<KSX::PixelConversion::Colorspace, std::string> names = {
        {KSX::PixelConversion::Colorspace601, "Rec. 601"},
        {KSX::PixelConversion::Colorspace709, "Rec. 709"},
        {KSX::PixelConversion::Colorspace2020, "Rec. 2020"},
        {KSX::PixelConversion::ColorspaceUnspecified, "no known colourspace"}};
    for (const std::int64_t width : {719, 720, 721})
        for (const std::int64_t height : {480, 486, 576, 720})
            for (const std::optional<std::int64_t> stated :
                 {std::optional<std::int64_t>(), std::optional<std::int64_t>(ColorspaceCodeRec601),
                  std::optional<std::int64_t>(ColorspaceCodeRec709),
                  std::optional<std::int64_t>(ColorspaceCodeRec2020),
                  std::optional<std::int64_t>(5)}) {
                MemoryFrameOptions options;
                options.width = width;
                options.height = height;
                options.format = code("2vuy");
                options.colorspace = stated;
                const Frame frame = TestFrame::create(options);
                const auto told = [&](KestrixHelperKind kind) {
                    return KestrixColourspaceOf(kind, KestrixPropertiesOf(kind, frame.get()));
                };
                EXPECT_THAT(told(KestrixHelperKind::OpenGL3),
                            testing::StartsWith(tables[ScreenPreviewLut::GetID(
                                static_cast<unsigned>(width), static_cast<unsigned>(height),
                                options.format, static_cast<unsigned>(stated.value_or(0)))]));
                EXPECT_THAT(told(KestrixHelperKind::FixedFunction),
                            testing::StartsWith(
                                names.at(ScreenPreviewBase::frameColourspace(frame.get()))));
            }
}

/// A checked helper, and what it reports.
class CheckedHelper : public FrameCheck {
protected:
    void SetUp() override
    {
        FrameCheck::SetUp();
        if (!HasFatalFailure())
            helper.reset(KestrixCheckedHelper::wrap(
                kindOf(GetParam()), GetParam().create(), glfwGetProcAddress,
                [this](const std::string& line) { reports.push_back(line); }));
    }

    Frame frameOf(std::int64_t width = 64)
    {
        return TestFrame::create({.width = width, .height = 4, .format = code("v210")});
    }

    std::vector<std::string> reports;
};
INSTANTIATE_TEST_SUITE_P(Helpers, CheckedHelper, testing::ValuesIn(kHelperKinds),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(CheckedHelper, IsSilentAndPaintsTheSame)
{
    const Frame frame = noise({.width = 64, .height = 4, .format = code("v210")}, 3);
    const auto picture = [&](IKestrixGLScreenPreviewHelper* painter) {
        Canvas canvas(16, 16);
        EXPECT_EQ(painter->InitializeGL(), S_OK);
        for (int i = 0; i < 3; ++i) {
            EXPECT_EQ(painter->SetFrame(frame.get()), S_OK);
            EXPECT_EQ(painter->SetFrame(frame.get()), S_OK);
            EXPECT_EQ(painter->PaintGL(), S_OK);
        }
        return canvas.read();
    };
    const auto checked = picture(helper.get());
    EXPECT_EQ(frame->AddRef(), 2U) << "the checker has released its references";
    frame->Release();
    const Helper plain(GetParam().create());
    EXPECT_EQ(checked, picture(plain.get()));
    EXPECT_THAT(reports, IsEmpty());
}

TEST_P(CheckedHelper, ReportsEachMisuseOnce)
{
    helper->PaintGL();
    EXPECT_THAT(reports, Contains("PaintGL: InitializeGL was not called or has failed"));
    ASSERT_EQ(helper->InitializeGL(), S_OK);
    reports.clear();
    Canvas canvas(16, 16);

    const Frame narrow = frameOf(7);
    for (int i = 0; i < 2; ++i)
        helper->SetFrame(narrow.get());
    if (GetParam().context == GLContext::Kind::Legacy)
        EXPECT_THAT(reports, ElementsAre(HasSubstr("v210 needs a width of 13"),
                                         HasSubstr("the helper returned 0x80000003")));
    else
        EXPECT_THAT(reports, IsEmpty());
    reports.clear();

    driverGL<decltype(::glEnable)>("glEnable")(0xBAD);
    helper->PaintGL();
    EXPECT_THAT(reports, ElementsAre("PaintGL: the host left the GL error GL_INVALID_ENUM"));
    reports.clear();

    driverGL<decltype(::glViewport)>("glViewport")(0, 0, 0, 16);
    helper->PaintGL();
    EXPECT_THAT(reports, ElementsAre("PaintGL: the viewport has no pixels"));
    reports.clear();

    std::thread([&] { helper->PaintGL(); }).join();
    EXPECT_THAT(reports, Contains("PaintGL: this is not the thread that called InitializeGL"));
    EXPECT_THAT(reports, Contains("PaintGL: no OpenGL context is current on this thread"));
    reports.clear();

    Frame frame = frameOf();
    EXPECT_EQ(helper->SetFrame(frame.get()), S_OK);
    frame->Release(); // the test's own
    frame->Release(); // one too many
    helper->PaintGL();
    EXPECT_THAT(reports, Contains("the host has released a frame too often"));
    // The frame is gone with the last reference.
    (void)frame.release();
    context.forgetMessages();
}

} // namespace
