/// What the OpenGL 3 helper does with frames: uploads, tables, uniforms, fences, references.
#include "preview/ScreenPreviewLut.h"
#include "tests/common/PreviewFixture.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <limits>
#include <optional>

namespace kestrix::test {
namespace {

// 16 by 8 pixels of 4 bytes, and 16 bytes of padding a line: rows of 20 texels, 4 of them in a
// texture.
const MemoryFrameOptions kSmall{.width = 16, .height = 8, .format = code("BGRA"), .rowBytes = 80};
constexpr int kRow = 20;
constexpr int kRows = 4;

GLCall tableCall(const char* name, LutID id)
{
    const float* const table = ScreenPreviewLut::Get(id, LutFormat_RGBA32F);
    EXPECT_NE(table, nullptr);
    if (name == std::string("glTexImage3D"))
        return call(name, GL_TEXTURE_3D, 0, GL_RGBA, 33, 33, 33, 0, GL_RGBA, GL_FLOAT, table);
    return call(name, GL_TEXTURE_3D, 0, 0, 0, 0, 33, 33, 33, GL_RGBA, GL_FLOAT, table);
}

class GL3Paint : public FakeGLTest {
protected:
    GL3Paint() { EXPECT_EQ(helper->InitializeGL(), S_OK); }

    void paint(IKestrixVideoFrame* frame)
    {
        EXPECT_EQ(helper->SetFrame(frame), S_OK);
        repaint();
    }

    void repaint()
    {
        gl.clear();
        EXPECT_EQ(helper->PaintGL(), S_OK);
    }

    /// What was uploaded to the frame texture since the last paint began.
    std::vector<GLCall> uploads() const { return gl.callsTo({"glTexImage2D", "glTexSubImage2D"}); }
    std::vector<GLCall> tableUploads() const
    {
        return gl.callsTo({"glTexImage3D", "glTexSubImage3D"});
    }

    static GLCall storage(int width, int height)
    {
        return call("glTexImage2D", GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_BGRA,
                    GL_UNSIGNED_INT_8_8_8_8_REV, nullptr);
    }

    static GLCall upload(int x, int y, const Frame& frame)
    {
        return call("glTexSubImage2D", GL_TEXTURE_2D, 0, x, y, kRow, kRows, GL_BGRA,
                    GL_UNSIGNED_INT_8_8_8_8_REV, frame->bytes());
    }

    void expectUniform(const char* function, const char* name, auto... values) const
    {
        EXPECT_THAT(gl.calls(), Contains(call(function, FakeGL::location(name), values...)));
    }

    void expectPicture(double width, double height, int format3D) const
    {
        expectUniform("glUniform2f", "fFrameSize", width, height);
        expectUniform("glUniform1i", "v3DFormat", format3D);
    }

    void expectLeftAlone(const Frame& left) const
    {
        EXPECT_EQ(uploads().back(), upload(0, 0, left));
        expectPicture(16, 4, 0);
    }

    Helper helper{CreateOpenGL3ScreenPreviewHelper_0002()};
};

// --- Textures ------------------------------------------------------------------------------------

TEST_F(GL3Paint, UploadsEverySecondLineOnceForAFrame)
{
    const Frame frame = TestFrame::create(kSmall);
    gl.fake.unpackRowLength = 17;
    paint(frame.get());
    EXPECT_THAT(gl.callsTo({"glPixelStorei", "glTexImage2D", "glTexSubImage2D"}),
                ElementsAre(call("glPixelStorei", GL_UNPACK_ROW_LENGTH, 2 * kRow),
                            storage(kRow, kRows), upload(0, 0, frame),
                            call("glPixelStorei", GL_UNPACK_ROW_LENGTH, 17)));
    repaint();
    EXPECT_THAT(uploads(), IsEmpty());
    paint(frame.get());
    EXPECT_THAT(uploads(), ElementsAre(upload(0, 0, frame)));
}

TEST_F(GL3Paint, MakesNewStorageWhereSizeOrFormatChange)
{
    MemoryFrameOptions changed = kSmall;
    const auto expectStorage = [&](bool isNew) {
        paint(TestFrame::create(changed).get());
        EXPECT_EQ(uploads().size(), isNew ? 2u : 1u);
    };
    expectStorage(true);
    changed.flags = ~std::uint32_t{FrameFlagFlipVertical};
    changed.colorspace = code("2020");
    expectStorage(false);
    expectUniform("glUniform1i", "vFlip", 0); // no other bit flips a frame
    changed.width = 15;
    expectStorage(true);
    changed.height = 10;
    expectStorage(true);
    changed.rowBytes = 96;
    expectStorage(true);
    changed.format = code("BGRv");
    expectStorage(true);
    expectStorage(false);
}

TEST_F(GL3Paint, RoundsSizesDown)
{
    // 4 texels and 3 bytes a line. 5 lines, which are 2 pairs and one more.
    paint(
        TestFrame::create({.width = 4, .height = 5, .format = code("2vuy"), .rowBytes = 19}).get());
    EXPECT_THAT(uploads(), ElementsAre(storage(4, 2), call("glTexSubImage2D", GL_TEXTURE_2D, 0, 0,
                                                           0, 4, 2, GL_BGRA, kAny, kAny)));
    expectPicture(4, 2.5, 0);
    paint(TestFrame::create({.width = 4, .height = 1, .format = code("BGRA")}).get());
    EXPECT_THAT(uploads(), Contains(storage(4, 0)));
}

// GLPixelsTest.cpp checks which part is shown where.
TEST_F(GL3Paint, KeepsStorageForAsLongAsTheEyesAreShownTheSameWay)
{
    struct {
        const char* name;
        int format;
        int across, down; // eyes in the texture
    } const cases[] = {{"topb", 3, 1, 2},
                       {"left", 0, 1, 1},
                       {"righ", 1, 1, 1},
                       {"side", 2, 2, 1},
                       {"defa", 3, 1, 2}};
    const Frame right = TestFrame::create(kSmall);
    // The packing does not decide here.
    const Frame left = TestFrame::create(stereo(kSmall, right, code("none")));
    paint(left.get()); // one above the other by default
    for (const auto& [name, format, across, down] : cases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(helper->Set3DPreviewFormat(code(name)), S_OK);
        EXPECT_EQ(helper->Set3DPreviewFormat(code("left") + 1), S_OK) << "no format: no change";
        repaint();
        EXPECT_THAT(uploads(), IsEmpty());

        paint(left.get());
        EXPECT_EQ(uploads().front() == storage(kRow * across, kRows * down), name != cases[0].name);
        EXPECT_EQ(uploads().back() == upload(0, 0, left), format == 0);
        expectPicture(16 * across, 4 * down, format);
        paint(left.get());
        EXPECT_THAT(uploads(), Not(Contains(storage(kRow * across, kRows * down))));

        // If the right eye or its bytes are missing, the picture is the left eye alone, in storage
        // that may be too large. When the right eye is back, the way of showing has changed again.
        left->rightEyeStatus = E_FAIL;
        paint(left.get());
        EXPECT_EQ(uploads().size(), 1u);
        expectLeftAlone(left);
        left->rightEyeStatus = S_OK;
        right->startAccessStatus = E_FAIL;
        paint(left.get());
        expectLeftAlone(left);
        EXPECT_EQ(right->references(), 2u); // the test's and the left frame's
        right->startAccessStatus = S_OK;
        paint(left.get());
        EXPECT_EQ(uploads().front() == storage(kRow * across, kRows * down), format != 0);
    }
}

// Both eyes are uploaded with the size of the left one, so an eye of another shape would be read
// out of bounds.
TEST_F(GL3Paint, LeavesOutARightEyeOfAnotherShape)
{
    MemoryFrameOptions higher = kSmall;
    higher.height += 2;
    MemoryFrameOptions longer = kSmall;
    longer.rowBytes = 96;
    for (const MemoryFrameOptions& shape : {higher, longer}) {
        const Frame right = TestFrame::create(shape);
        const Frame left = TestFrame::create(stereo(kSmall, right));
        paint(left.get());
        expectLeftAlone(left);
    }
}

// --- Colour tables -------------------------------------------------------------------------------

TEST_F(GL3Paint, ExchangesTheTableOnlyWhereAnotherIsNeeded)
{
    struct {
        std::uint32_t format;
        std::optional<std::int64_t> colourspace;
        std::int64_t width;
        HRESULT getIntStatus;
        std::optional<LutID> table; // the new one; none if the old one stays
    } const cases[] = {
        {code("2vuy"), {}, 16, S_OK, {}}, // Rec. 709 YCbCr is in place from the start
        {code("BGRA"), {}, 16, S_OK, LutID_FullRGB_709},
        {kARGB, code("r709"), 16, S_OK, {}},
        {kARGB, code("2020"), 16, S_OK, LutID_FullRGB_2020},
        {code("v210"), code("2020"), 16, S_OK, LutID_YCbCr_2020},
        {code("v210"), {}, 720, S_OK, LutID_YCbCr_601_625},
        {code("r210"), code("r601"), 16, S_OK, LutID_StudioRGB_601_525},
        // If the code is unknown, the size decides.
        {code("r210"), 12345, 16, S_OK, LutID_StudioRGB_709},
        // This helper ignores the code if the status is not `S_OK`.
        {code("r210"), code("2020"), 16, 1, {}},
        {code("r210"), code("2020"), 16, E_FAIL, {}},
    };
    EXPECT_THAT(tableUploads(), ElementsAre(tableCall("glTexImage3D", LutID_YCbCr_709)));
    expectUniform("glUniform1i", "fTex", 0);
    expectUniform("glUniform1i", "fLut", 1); // the units that docs/embedding.md names
    for (const auto& c : cases) {
        const Frame frame = TestFrame::create({.width = c.width,
                                               .height = 576,
                                               .format = c.format,
                                               .rowBytes = 4 * c.width,
                                               .colorspace = c.colourspace});
        frame->getIntStatus = c.getIntStatus;
        paint(frame.get());
        std::vector<GLCall> expected;
        if (c.table)
            expected.push_back(tableCall("glTexSubImage3D", *c.table));
        EXPECT_EQ(tableUploads(), expected) << "case " << &c - cases;
    }
    repaint();
    EXPECT_THAT(tableUploads(), IsEmpty());

    // Another initialisation starts over, with the first table and with new storage.
    const Frame last = TestFrame::create({.width = 16, .height = 576, .format = code("r210")});
    gl.clear();
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    EXPECT_THAT(tableUploads(), ElementsAre(tableCall("glTexImage3D", LutID_YCbCr_709)));
    paint(last.get());
    EXPECT_THAT(tableUploads(), ElementsAre(tableCall("glTexSubImage3D", LutID_StudioRGB_709)));
    EXPECT_EQ(uploads().size(), 2u);
}

// --- Frames without bytes ------------------------------------------------------------------------

TEST_F(GL3Paint, UploadsNothingOfAFrameWithoutBytes)
{
    for (const auto& fail : {
             +[](TestFrame& frame) { frame.lacks = {IID_IKestrixVideoBuffer}; },
             +[](TestFrame& frame) { frame.startAccessStatus = E_FAIL; },
             +[](TestFrame& frame) { frame.getBytesStatus = E_FAIL; },
         }) {
        paint(TestFrame::create({.width = 32, .height = 8, .format = code("BGRA")}).get());
        const Frame frame = TestFrame::create(kSmall);
        fail(*frame);
        paint(frame.get());
        EXPECT_THAT(uploads(), IsEmpty());
        EXPECT_THAT(gl.callNames(), Not(Contains("glFenceSync")));
        EXPECT_THAT(gl.callNames(), Contains("glDrawElements"));
        EXPECT_EQ(frame->references(), 1u);
        EXPECT_EQ(frame->openAccesses(), 0);

        // The helper has recorded the new size, so the next frame of that size is no change.
        const Frame next = TestFrame::create(kSmall);
        paint(next.get());
        EXPECT_THAT(uploads(), ElementsAre(upload(0, 0, next)));
    }
}

TEST_F(GL3Paint, UploadsNothingOfASizeThatNoFrameHas)
{
    constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t k2To31 = std::int64_t{1} << 31;
    for (const Question question : {Question::Height, Question::RowBytes})
        for (const std::int64_t value : {std::int64_t{-8}, 2 * k2To31, kLeast, kLeast + 64,
                                         8 * k2To31 + 64}) { // 16 texels in 32 bits
            const Frame frame = TestFrame::create({.width = 16, .height = 8, .format = kARGB});
            frame->answers[question] = {value};
            paint(frame.get());
            EXPECT_THAT(uploads(), IsEmpty()) << static_cast<int>(question) << ' ' << value;
            EXPECT_EQ(frame->references(), 1u);
            EXPECT_EQ(frame->openAccesses(), 0);
        }
}

// --- Fences and references -----------------------------------------------------------------------

TEST_F(GL3Paint, HoldsTheFrameButNotItsBytesUntilTheFence)
{
    const Frame right = TestFrame::create(kSmall);
    const Frame left = TestFrame::create(stereo(kSmall, right));
    std::vector<std::string> log;
    gl.observe("glTexSubImage2D", [&](const GLCall&) {
        EXPECT_EQ(left->openAccesses(), 1);
        EXPECT_EQ(right->openAccesses(), 1);
        left->log = right->log = &log;
        left->name = "left ";
        right->name = "right ";
    });
    gl.observe("glClientWaitSync", [&](const GLCall&) {
        left->log = right->log = nullptr;
        EXPECT_EQ(left->openAccesses(), 0);
        EXPECT_EQ(right->openAccesses(), 0);
        EXPECT_EQ(right->references(), 2u); // the test's and the left frame's
        EXPECT_EQ(left->references(), 2u);  // the test's and the helper's
    });
    paint(left.get());
    EXPECT_EQ(left->references(), 1u);

    // After the uploads the helper gives back the right bytes, the right frame and the left bytes.
    const auto rightEnd = std::ranges::find(log, "right EndAccess 1");
    const auto leftEnd = std::ranges::find(log, "left EndAccess 1");
    ASSERT_NE(leftEnd, log.end());
    EXPECT_LT(rightEnd, leftEnd);
    EXPECT_EQ(std::count(log.begin(), leftEnd, "right Release"), 2); // of the buffer, of the frame

    const std::set<std::string> syncCalls{"glFenceSync", "glClientWaitSync", "glDeleteSync"};
    std::set<std::string> ordered = syncCalls;
    ordered.insert({"glTexSubImage2D", "glDrawElements"});
    const GLCall eye =
        call("glTexSubImage2D", kAny, kAny, kAny, kAny, kAny, kAny, kAny, kAny, kAny);
    EXPECT_THAT(gl.callsTo(ordered),
                ElementsAre(eye, eye, call("glFenceSync", GL_SYNC_GPU_COMMANDS_COMPLETE, 0),
                            call("glDrawElements", GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, 0),
                            call("glClientWaitSync", kAny, GL_SYNC_FLUSH_COMMANDS_BIT, 10'000'000),
                            call("glDeleteSync", kAny)));
    EXPECT_THAT(gl.fake.liveOf("fence"), IsEmpty());
    repaint();
    EXPECT_THAT(gl.callsTo(syncCalls), IsEmpty());
}

TEST_F(GL3Paint, HoldsOneReferenceToTheNewestFrame)
{
    const Frame first = TestFrame::create(kSmall);
    const Frame second = TestFrame::create(kSmall);
    gl.clear();
    std::vector<std::string> log;
    first->log = &log;
    helper->SetFrame(first.get());
    helper->SetFrame(first.get());
    EXPECT_THAT(log, ElementsAre("AddRef")) << "a frame is read only when it is painted";
    EXPECT_THAT(gl.calls(), IsEmpty());
    first->log = nullptr;
    helper->SetFrame(second.get());
    EXPECT_EQ(first->references(), 1u);
    repaint();
    EXPECT_THAT(uploads(), Contains(upload(0, 0, second)));
    EXPECT_EQ(second->references(), 1u);
    for (const bool ends : {false, true}) {
        helper->SetFrame(first.get());
        ends ? helper.reset() : static_cast<void>(helper->SetFrame(nullptr));
        EXPECT_EQ(first->references(), 1u);
    }
}

// --- Threads -------------------------------------------------------------------------------------

TEST_F(GL3Paint, TakesAFrameWhileAnotherIsPainted)
{
    const Frame first = TestFrame::create(kSmall);
    const Frame second = TestFrame::create(kSmall);
    std::future<HRESULT> delivery;
    gl.observe("glDrawElements", [&](const GLCall&) {
        if (delivery.valid())
            return;
        delivery = std::async(std::launch::async, [&] {
            helper->Set3DPreviewFormat(code("left"));
            return helper->SetFrame(second.get());
        });
        EXPECT_EQ(delivery.wait_for(std::chrono::seconds(10)), std::future_status::ready)
            << "SetFrame waits for the GL thread";
    });
    paint(first.get());
    ASSERT_TRUE(delivery.valid());
    EXPECT_EQ(delivery.get(), S_OK);
}

} // namespace
} // namespace kestrix::test
