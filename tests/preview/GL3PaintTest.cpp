/// What the OpenGL 3 helper does with frames: uploads, textures, uniforms, fences, references.
#include "preview/ScreenPreviewLut.h"
#include "tests/support/CaseName.h"
#include "tests/support/PreviewFixture.h"
#include "tests/support/TestFrame.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <map>
#include <optional>
#include <thread>

namespace kestrix::test {
namespace {

using host::MemoryFrameOptions;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

using Frame = host::Owned<TestFrame>;

constexpr std::uint32_t kARGB = 32;

// 16 by 8 pixels of 4 bytes, 16 bytes of padding a line: rows of 20 texels, 4 of them in a texture.
const MemoryFrameOptions kSmall{.width = 16, .height = 8, .format = code("BGRA"), .rowBytes = 80};
constexpr int kRow = 20;
constexpr int kRows = 4;

MemoryFrameOptions withRightEye(MemoryFrameOptions options, const Frame& right)
{
    // The packing is not what decides here.
    options.packing3D = code("none");
    options.rightEye = right.get();
    return options;
}

const float* tableOf(unsigned id)
{
    return ScreenPreviewLut::Get(static_cast<LutID>(id), LutFormat_RGBA32F);
}

class GL3Paint : public FakeGLTest {
protected:
    void paint(IKestrixVideoFrame* frame)
    {
        gl.clear();
        EXPECT_EQ(helper->SetFrame(frame), S_OK);
        EXPECT_EQ(helper->PaintGL(), S_OK);
    }

    void repaint()
    {
        gl.clear();
        EXPECT_EQ(helper->PaintGL(), S_OK);
    }

    /// What went to the frame texture since the last paint began.
    std::vector<GLCall> uploads() const { return gl.callsTo({"glTexImage2D", "glTexSubImage2D"}); }
    std::vector<GLCall> tableUploads() const
    {
        return gl.callsTo({"glTexImage3D", "glTexSubImage3D"});
    }

    using TextureBindings = std::map<std::pair<std::int64_t, std::int64_t>, std::int64_t>;

    /// What is bound to each unit and target at the first call to `name`.
    TextureBindings texturesAt(const std::string& name) const
    {
        TextureBindings bindings;
        std::int64_t unit = GL_TEXTURE0;
        for (const GLCall& made : gl.calls()) {
            if (made.name == name)
                break;
            if (made.name == "glActiveTexture")
                unit = made.arguments[0].integer();
            else if (made.name == "glBindTexture")
                bindings[{unit, made.arguments[0].integer()}] = made.arguments[1].integer();
        }
        return bindings;
    }

    static GLCall storage(int width, int height, unsigned type = GL_UNSIGNED_INT_8_8_8_8_REV)
    {
        return call("glTexImage2D", GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_BGRA, type,
                    nullptr);
    }

    static GLCall upload(int x, int y, const Frame& frame,
                         unsigned type = GL_UNSIGNED_INT_8_8_8_8_REV)
    {
        return call("glTexSubImage2D", GL_TEXTURE_2D, 0, x, y, kRow, kRows, GL_BGRA, type,
                    static_cast<const void*>(frame->bytes()));
    }

    static GLCall uniform(const char* function, const char* name, int value)
    {
        return call(function, FakeGL::location(name), value);
    }

    static GLCall frameSize(double width, double height)
    {
        return call("glUniform2f", FakeGL::location("fFrameSize"), width, height);
    }

    Helper helper = initialisedGL3Helper();
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
    EXPECT_THAT(gl.callNames(), Contains("glDrawElements"));

    paint(frame.get());
    EXPECT_THAT(uploads(), ElementsAre(upload(0, 0, frame)));
}

TEST_F(GL3Paint, MakesNewStorageWhereSizeOrFormatChange)
{
    const auto reallocates = [&](MemoryFrameOptions options) {
        paint(TestFrame::create(options).get());
        return uploads().size() == 2;
    };
    EXPECT_TRUE(reallocates(kSmall));
    EXPECT_FALSE(reallocates(kSmall));
    MemoryFrameOptions changed = kSmall;
    changed.flags = FrameFlagFlipVertical;
    changed.colorspace = code("2020");
    EXPECT_FALSE(reallocates(changed));
    changed.width = 15;
    EXPECT_TRUE(reallocates(changed));
    changed.height = 10;
    EXPECT_TRUE(reallocates(changed));
    changed.format = code("BGRv");
    EXPECT_TRUE(reallocates(changed));
    EXPECT_FALSE(reallocates(changed));
}

TEST_F(GL3Paint, RoundsSizesDown)
{
    // 4 texels and 3 bytes a line; 5 lines, of which 2 pairs.
    const Frame frame =
        TestFrame::create({.width = 4, .height = 5, .format = code("2vuy"), .rowBytes = 19});
    paint(frame.get());
    EXPECT_THAT(uploads(), ElementsAre(storage(4, 2), call("glTexSubImage2D", GL_TEXTURE_2D, 0, 0,
                                                           0, 4, 2, GL_BGRA, kAny, kAny)));
    EXPECT_THAT(gl.calls(), Contains(frameSize(4, 2.5)));

    const Frame line = TestFrame::create({.width = 4, .height = 1, .format = code("BGRA")});
    paint(line.get());
    EXPECT_THAT(uploads(), Contains(storage(4, 0)));
}

TEST_F(GL3Paint, ChoosesTheTexelTypeByFormat)
{
    struct {
        unsigned type;
        std::vector<std::uint32_t> formats;
    } const types[] = {
        {GL_UNSIGNED_INT_8_8_8_8,
         {kARGB, code("vRGB"), code("r210"), code("R10L"), code("R10l"), code("R12B"),
          code("R12b")}},
        {GL_UNSIGNED_INT_8_8_8_8_REV,
         {code("2vuy"), code("v210"), code("Ay10"), code("BGRA"), code("BGRv"), code("R10B"),
          code("R10b"), code("R12L"), code("R12l"), code("none"), code("YUY2"), 0}},
    };
    for (const auto& [type, formats] : types)
        for (const std::uint32_t format : formats) {
            MemoryFrameOptions options = kSmall;
            options.format = format;
            const Frame frame = TestFrame::create(options);
            paint(frame.get());
            EXPECT_THAT(uploads(), Contains(upload(0, 0, frame, type))) << "format " << format;
            EXPECT_THAT(gl.calls(),
                        Contains(call("glUniform1ui", FakeGL::location("fPixelFormat"), format)));
        }
}

// --- Two eyes ------------------------------------------------------------------------------------

struct StereoCase {
    const char* name;
    int format;
    int width, height;     // texture
    int rightX, rightY;    // of the right picture in it
    double frameW, frameH; // what the shader is told
    bool showsLeft, showsRight;
};

void PrintTo(const StereoCase& c, std::ostream* out)
{
    *out << c.name;
}

class GL3StereoPaint : public GL3Paint, public testing::WithParamInterface<StereoCase> {};

TEST_P(GL3StereoPaint, LaysTheEyesOut)
{
    const StereoCase& c = GetParam();
    const Frame right = TestFrame::create(kSmall);
    const Frame left = TestFrame::create(withRightEye(kSmall, right));
    EXPECT_EQ(helper->Set3DPreviewFormat(code(c.name)), S_OK);
    paint(left.get());

    std::vector<GLCall> expected{storage(c.width, c.height)};
    if (c.showsLeft)
        expected.push_back(upload(0, 0, left));
    if (c.showsRight)
        expected.push_back(upload(c.rightX, c.rightY, right));
    EXPECT_EQ(uploads(), expected);
    EXPECT_THAT(gl.calls(), Contains(frameSize(c.frameW, c.frameH)));
    EXPECT_THAT(gl.calls(), Contains(uniform("glUniform1i", "v3DFormat", c.format)));

    // The same again needs no new storage.
    paint(left.get());
    expected.erase(expected.begin());
    EXPECT_EQ(uploads(), expected);

    // Without a right eye the picture is the left one alone, in storage that may be too large.
    const Frame alone = TestFrame::create(kSmall);
    paint(alone.get());
    EXPECT_THAT(uploads(), ElementsAre(upload(0, 0, alone)));
    EXPECT_THAT(gl.calls(), Contains(frameSize(16, 4)));
    EXPECT_THAT(gl.calls(), Contains(uniform("glUniform1i", "v3DFormat", 0)));

    // With one the way of showing has changed again.
    paint(left.get());
    EXPECT_EQ(uploads().front() == storage(c.width, c.height), c.format != 0);
}

INSTANTIATE_TEST_SUITE_P(
    Formats, GL3StereoPaint,
    testing::Values(StereoCase{"left", 0, kRow, kRows, 0, 0, 16, 4, true, false},
                    StereoCase{"righ", 1, kRow, kRows, 0, 0, 16, 4, false, true},
                    StereoCase{"side", 2, 2 * kRow, kRows, kRow, 0, 32, 4, true, true},
                    StereoCase{"topb", 3, kRow, 2 * kRows, 0, kRows, 16, 8, true, true},
                    StereoCase{"defa", 3, kRow, 2 * kRows, 0, kRows, 16, 8, true, true}),
    caseName);

TEST_F(GL3Paint, ShowsTopAndBottomUntilToldOtherwise)
{
    const Frame right = TestFrame::create(kSmall);
    const Frame left = TestFrame::create(withRightEye(kSmall, right));
    paint(left.get());
    EXPECT_THAT(uploads(), Contains(storage(kRow, 2 * kRows)));

    // Not a format: nothing changes.
    helper->Set3DPreviewFormat(code("side"));
    EXPECT_EQ(helper->Set3DPreviewFormat(code("left") + 1), S_OK);
    // And what is painted already stays as it is.
    repaint();
    EXPECT_THAT(uploads(), IsEmpty());
    EXPECT_THAT(gl.calls(), Contains(uniform("glUniform1i", "v3DFormat", 3)));
    paint(left.get());
    EXPECT_THAT(uploads(), Contains(storage(2 * kRow, kRows)));
}

TEST_F(GL3Paint, ShowsTheLeftEyeWhereTheRightHasNoBytes)
{
    const Frame right = TestFrame::create(kSmall);
    const Frame left = TestFrame::create(withRightEye(kSmall, right));
    helper->Set3DPreviewFormat(code("side"));
    right->startAccessStatus = E_FAIL;
    paint(left.get());
    EXPECT_THAT(uploads(), ElementsAre(storage(kRow, kRows), upload(0, 0, left)));
    EXPECT_THAT(gl.calls(), Contains(frameSize(16, 4)));
    EXPECT_EQ(right->references(), 2u); // the test's and the left frame's

    left->rightEyeStatus = E_FAIL;
    right->startAccessStatus = S_OK;
    paint(left.get());
    EXPECT_THAT(uploads().back(), upload(0, 0, left));
    EXPECT_THAT(gl.calls(), Contains(uniform("glUniform1i", "v3DFormat", 0)));
}

// --- Colour tables -------------------------------------------------------------------------------

TEST_F(GL3Paint, ExchangesTheTableOnlyWhereAnotherIsNeeded)
{
    const auto uploadsFor = [&](std::uint32_t format, std::optional<std::int64_t> colourspace,
                                std::int64_t width = 16, HRESULT getIntStatus = S_OK) {
        const Frame frame = TestFrame::create({.width = width,
                                               .height = 576,
                                               .format = format,
                                               .rowBytes = 4 * width,
                                               .colorspace = colourspace});
        frame->getIntStatus = getIntStatus;
        paint(frame.get());
        return tableUploads();
    };
    const auto table = [](unsigned id) {
        return ElementsAre(call("glTexSubImage3D", GL_TEXTURE_3D, 0, 0, 0, 0, 33, 33, 33, GL_RGBA,
                                GL_FLOAT, tableOf(id)));
    };
    // Rec. 709 YCbCr is in place from the start.
    EXPECT_THAT(uploadsFor(code("2vuy"), {}), IsEmpty());
    EXPECT_THAT(uploadsFor(code("BGRA"), {}), table(6));
    EXPECT_THAT(uploadsFor(kARGB, code("r709")), IsEmpty());
    EXPECT_THAT(uploadsFor(kARGB, code("2020")), table(7));
    EXPECT_THAT(uploadsFor(code("v210"), code("2020")), table(3));
    EXPECT_THAT(uploadsFor(code("v210"), {}, 720), table(1));
    EXPECT_THAT(uploadsFor(code("r210"), code("r601")), table(8));
    // A code that nobody knows leaves it to the size.
    EXPECT_THAT(uploadsFor(code("r210"), 12345), table(10));
    // Here any status but success is none.
    EXPECT_THAT(uploadsFor(code("r210"), code("2020"), 16, 1), IsEmpty());
    EXPECT_THAT(uploadsFor(code("r210"), code("2020"), 16, E_FAIL), IsEmpty());

    repaint();
    EXPECT_THAT(tableUploads(), IsEmpty());
}

// --- Frames without bytes ------------------------------------------------------------------------

TEST_F(GL3Paint, UploadsNothingOfAFrameWithoutBytes)
{
    for (const auto& fail : {
             +[](TestFrame& frame) { frame.hasBuffer = false; },
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

        // The new size is known by now, so the next frame of that size finds no change.
        const Frame next = TestFrame::create(kSmall);
        paint(next.get());
        EXPECT_THAT(uploads(), ElementsAre(upload(0, 0, next)));
    }
}

// --- Painting ------------------------------------------------------------------------------------

TEST_F(GL3Paint, DrawsTheQuadAndLetsGoOfEverything)
{
    const Frame frame = TestFrame::create(kSmall);
    paint(frame.get());
    repaint();
    const unsigned program = gl.fake.liveOf("program").at(0);
    const unsigned vertexArray = gl.fake.liveOf("vertex array").at(0);
    const std::vector<unsigned> buffers = gl.fake.liveOf("buffer");
    const std::vector<unsigned> textures = gl.fake.liveOf("texture");
    EXPECT_THAT(
        gl.callsTo({"glUseProgram", "glBindVertexArray", "glBindBuffer", "glDrawElements"}),
        ElementsAre(call("glUseProgram", program), call("glBindVertexArray", vertexArray),
                    call("glBindBuffer", GL_ARRAY_BUFFER, buffers.at(0)),
                    call("glBindBuffer", GL_ELEMENT_ARRAY_BUFFER, buffers.at(1)),
                    call("glDrawElements", GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, bufferOffset(0)),
                    call("glBindBuffer", GL_ELEMENT_ARRAY_BUFFER, 0),
                    call("glBindBuffer", GL_ARRAY_BUFFER, 0), call("glBindVertexArray", 0),
                    call("glUseProgram", 0)));
    const TextureBindings drawn = texturesAt("glDrawElements");
    EXPECT_EQ(drawn.at({GL_TEXTURE0, GL_TEXTURE_2D}), textures.at(0));
    EXPECT_EQ(drawn.at({GL_TEXTURE1, GL_TEXTURE_3D}), textures.at(1));
}

TEST_F(GL3Paint, TellsTheShaderOfAFlippedFrame)
{
    MemoryFrameOptions options = kSmall;
    options.flags = FrameFlagFlipVertical;
    paint(TestFrame::create(options).get());
    EXPECT_THAT(gl.calls(), Contains(uniform("glUniform1i", "vFlip", 1)));
    // No other bit is looked at.
    options.flags = ~1u;
    paint(TestFrame::create(options).get());
    EXPECT_THAT(gl.calls(), Contains(uniform("glUniform1i", "vFlip", 0)));
}

TEST_F(GL3Paint, ClearsForNoFrameAndComesBackToTheLast)
{
    paint(TestFrame::create(kSmall).get());
    paint(nullptr);
    EXPECT_THAT(gl.calls(), ElementsAre(call("glClearColor", 0.0, 0.0, 0.0, 0.0),
                                        call("glClear", GL_COLOR_BUFFER_BIT)));
    repaint();
    EXPECT_THAT(uploads(), IsEmpty());
    EXPECT_THAT(gl.calls(), Contains(frameSize(16, 4)));
    EXPECT_THAT(gl.callNames(), Contains("glDrawElements"));
}

TEST_F(GL3Paint, StartsOverAfterAnotherInitialisation)
{
    const Frame frame = TestFrame::create({.width = 720, .height = 576, .format = code("BGRA")});
    paint(frame.get());
    gl.clear();
    EXPECT_EQ(helper->InitializeGL(), S_OK);
    // The table in place is the first one again.
    EXPECT_THAT(tableUploads(), ElementsAre(call("glTexImage3D", GL_TEXTURE_3D, 0, GL_RGBA, 33, 33,
                                                 33, 0, GL_RGBA, GL_FLOAT, tableOf(2))));
    paint(frame.get());
    EXPECT_THAT(uploads(), Contains(storage(720, 288)));
    EXPECT_EQ(tableUploads().size(), 1u);
}

// --- Fences and references -----------------------------------------------------------------------

TEST_F(GL3Paint, WaitsForTheUploadBehindTheDraw)
{
    paint(TestFrame::create(kSmall).get());
    const std::vector<GLCall> order = gl.callsTo(
        {"glTexSubImage2D", "glFenceSync", "glDrawElements", "glClientWaitSync", "glDeleteSync"});
    ASSERT_THAT(
        order,
        ElementsAre(call("glTexSubImage2D", kAny, kAny, kAny, kAny, kAny, kAny, kAny, kAny, kAny),
                    call("glFenceSync", GL_SYNC_GPU_COMMANDS_COMPLETE, 0),
                    call("glDrawElements", kAny, kAny, kAny, kAny),
                    call("glClientWaitSync", kAny, GL_SYNC_FLUSH_COMMANDS_BIT, 10'000'000),
                    call("glDeleteSync", kAny)));
    EXPECT_EQ(order[3].arguments[0], order[4].arguments[0]);
    EXPECT_THAT(gl.fake.liveOf("fence"), IsEmpty());

    repaint();
    EXPECT_THAT(gl.callsTo({"glFenceSync", "glClientWaitSync", "glDeleteSync"}), IsEmpty());
}

TEST_F(GL3Paint, HoldsTheFrameButNotItsBytesUntilTheFence)
{
    const Frame right = TestFrame::create(kSmall);
    const Frame left = TestFrame::create(withRightEye(kSmall, right));
    std::vector<std::string> log;

    bool uploaded = false;
    gl.observe("glTexSubImage2D", [&](const GLCall&) {
        uploaded = true;
        EXPECT_EQ(left->openAccesses(), 1);
        EXPECT_EQ(right->openAccesses(), 1);
        if (!left->log) {
            left->log = right->log = &log;
            left->name = "left ";
            right->name = "right ";
        }
    });
    bool waited = false;
    gl.observe("glClientWaitSync", [&](const GLCall&) {
        waited = true;
        left->log = right->log = nullptr;
        EXPECT_EQ(left->openAccesses(), 0);
        EXPECT_EQ(right->openAccesses(), 0);
        EXPECT_EQ(right->references(), 2u); // the test's and the left frame's
        EXPECT_EQ(left->references(), 2u);  // the test's and the helper's
    });
    paint(left.get());
    EXPECT_TRUE(uploaded);
    EXPECT_TRUE(waited);
    EXPECT_EQ(left->references(), 1u);

    // From the uploads on: the right bytes, the right frame, the left bytes.
    std::erase_if(log, [](const std::string& entry) { return entry.ends_with("AddRef"); });
    const auto rightEnd = std::find(log.begin(), log.end(), "right EndAccess 1");
    const auto leftEnd = std::find(log.begin(), log.end(), "left EndAccess 1");
    ASSERT_NE(leftEnd, log.end());
    EXPECT_LT(rightEnd, leftEnd);
    EXPECT_EQ(std::count(log.begin(), leftEnd, "right Release"), 2); // of the buffer, of the frame
}

TEST_F(GL3Paint, HoldsOneReferenceToTheNewestFrame)
{
    const Frame first = TestFrame::create(kSmall);
    const Frame second = TestFrame::create(kSmall);
    helper->SetFrame(first.get());
    helper->SetFrame(first.get());
    EXPECT_EQ(first->references(), 2u);
    helper->SetFrame(second.get());
    EXPECT_EQ(first->references(), 1u);
    EXPECT_EQ(second->references(), 2u);
    repaint();
    EXPECT_THAT(uploads(), Contains(upload(0, 0, second)));
    EXPECT_EQ(second->references(), 1u);

    helper->SetFrame(first.get());
    helper->SetFrame(nullptr);
    EXPECT_EQ(first->references(), 1u);

    helper->SetFrame(first.get());
    helper.reset();
    EXPECT_EQ(first->references(), 1u);
}

TEST_F(GL3Paint, ReadsTheFrameOnlyWhenPainting)
{
    const Frame frame = TestFrame::create(kSmall);
    std::vector<std::string> log;
    frame->log = &log;
    helper->SetFrame(frame.get());
    EXPECT_THAT(log, ElementsAre("AddRef"));
    EXPECT_THAT(gl.calls(), IsEmpty());
    frame->log = nullptr;
}

// --- Threads -------------------------------------------------------------------------------------

TEST_F(GL3Paint, TakesAFrameWhileAnotherIsPainted)
{
    const Frame first = TestFrame::create(kSmall);
    const Frame second = TestFrame::create(kSmall);
    bool delivered = false;
    std::future<HRESULT> delivery;
    gl.observe("glDrawElements", [&](const GLCall&) {
        if (std::exchange(delivered, true))
            return;
        delivery = std::async(std::launch::async, [&] {
            helper->Set3DPreviewFormat(code("left"));
            return helper->SetFrame(second.get());
        });
        EXPECT_EQ(delivery.wait_for(std::chrono::seconds(10)), std::future_status::ready)
            << "SetFrame waits for the GL thread";
    });
    paint(first.get());
    ASSERT_TRUE(delivered);
    EXPECT_EQ(delivery.get(), S_OK);

    repaint();
    EXPECT_THAT(uploads(), ElementsAre(upload(0, 0, second)));
}

TEST_F(GL3Paint, TakesFramesOfManyThreads)
{
    const Frame frames[] = {TestFrame::create(kSmall), TestFrame::create(kSmall),
                            TestFrame::create(kSmall)};
    std::atomic<bool> done{false};
    const auto deliver = [&](int offset) {
        for (int i = offset; i < 4000 + offset; ++i) {
            helper->SetFrame(i % 4 == 3 ? nullptr : frames[i % 4].get());
            helper->Set3DPreviewFormat(code(i % 2 ? "side" : "topb"));
        }
    };
    std::thread a(deliver, 0);
    std::thread b(deliver, 1);
    std::thread watcher([&] {
        a.join();
        b.join();
        done = true;
    });
    while (!done) {
        EXPECT_EQ(helper->PaintGL(), S_OK);
        gl.clear();
    }
    watcher.join();
    helper->SetFrame(nullptr);
    for (const Frame& frame : frames) {
        EXPECT_EQ(frame->references(), 1u);
        EXPECT_EQ(frame->openAccesses(), 0);
    }
}

} // namespace
} // namespace kestrix::test
