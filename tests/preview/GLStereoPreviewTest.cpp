/// How the fixed-function helper shows the two eyes of stereoscopic frames.
#include "tests/preview/GLPreviewFixture.h"

#include <algorithm>
#include <utility>

namespace kestrix::test {
namespace {

using host::MemoryFrameOptions;

class GLStereoPreview : public GLPreview {
protected:
    /// The picture of two eyes of 16 by 8 pixels, tagged 1 and 2.
    Upload showStereo(const char* format)
    {
        const Frame right = taggedFrame(rgba(16, 8), 2);
        Frame left = TestFrame::create(stereo(rgba(16, 8), right));
        const Frame picture = taggedFrame(rgba(16, 8), 1);
        std::copy_n(picture->bytes(), picture->size(), left->bytes());
        EXPECT_EQ(helper->Set3DPreviewFormat(code(format)), S_OK);
        return show(left.get());
    }

    /// A picture of one eye of 16 by 8 pixels at a place in the texture.
    static void expectEye(const Upload& upload, int tag, int left, int top)
    {
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 16; ++x) {
                EXPECT_EQ(upload.tagAt(left + x, top + y), tag);
                EXPECT_EQ(upload.pixel(left + x, top + y)[0], x);
                EXPECT_EQ(upload.lineAt(top + y, left + x), 2 * y);
            }
    }
};

TEST_F(GLStereoPreview, ShowsOneEye)
{
    const std::pair<const char*, int> cases[] = {{"left", 1}, {"righ", 2}};
    for (const auto& [format, tag] : cases) {
        const Upload upload = showStereo(format);
        EXPECT_EQ(upload.width, 16);
        ASSERT_EQ(upload.height, 4);
        expectEye(upload, tag, 0, 0);
    }
}

TEST_F(GLStereoPreview, ShowsEyesSideBySide)
{
    const Upload upload = showStereo("side");
    ASSERT_EQ(upload.width, 32);
    ASSERT_EQ(upload.height, 4);
    expectEye(upload, 1, 0, 0);
    expectEye(upload, 2, 16, 0);
}

TEST_F(GLStereoPreview, ShowsOneEyeAboveTheOtherOtherwise)
{
    for (const char* format : {"topb", "defa", "none"}) {
        const Upload upload = showStereo(format);
        ASSERT_EQ(upload.width, 16);
        ASSERT_EQ(upload.height, 8);
        expectEye(upload, 1, 0, 0);
        expectEye(upload, 2, 0, 4);
    }
}

TEST_F(GLStereoPreview, StartsWithOneEyeAboveTheOther)
{
    const Frame right = TestFrame::create(rgba(16, 8));
    EXPECT_EQ(show(TestFrame::create(stereo(rgba(16, 8), right)).get()).height, 8);
}

TEST_F(GLStereoPreview, ShowsWhatThereIsOfAFrameWithoutARightEye)
{
    for (const char* format : {"defa", "righ", "side"}) {
        helper->Set3DPreviewFormat(code(format));
        const Frame right = TestFrame::create(rgba(16, 8));
        const Frame left = TestFrame::create(stereo(rgba(16, 8), right));
        left->rightEyeStatus = E_FAIL;
        const Upload upload = show(left.get());
        EXPECT_EQ(upload.width, 16);
        EXPECT_EQ(upload.height, 4);
    }
}

TEST_F(GLStereoPreview, DoesNotAskForThePackingForTheLeftEyeAlone)
{
    const Frame right = TestFrame::create(rgba(16, 8));
    const Frame left = TestFrame::create(stereo(rgba(16, 8), right, code("side")));
    helper->Set3DPreviewFormat(code("left"));
    EXPECT_EQ(helper->SetFrame(left.get()), S_OK);
}

TEST_F(GLStereoPreview, FlipsEachEyeByItself)
{
    MemoryFrameOptions flipped = rgba(16, 8);
    flipped.flags = FrameFlagFlipVertical;
    const Frame right = taggedFrame(flipped, 2);
    const Upload upload = show(taggedFrame(stereo(rgba(16, 8), right), 1).get());
    EXPECT_EQ(upload.lineAt(0), 0);
    EXPECT_EQ(upload.lineAt(3), 6);
    EXPECT_EQ(upload.lineAt(4), 7);
    EXPECT_EQ(upload.lineAt(7), 1);
}

TEST_F(GLStereoPreview, LeavesTheOldRightEyeWhereTheNewIsOfAnotherKind)
{
    MemoryFrameOptions otherFormat = rgba(16, 8);
    otherFormat.format = code("BGRA");
    MemoryFrameOptions otherColours = rgba(16, 8);
    otherColours.colorspace = code("2020");
    for (const MemoryFrameOptions& options : {otherFormat, otherColours})
        for (const char* format : {"side", "topb"}) {
            // Into both slots.
            showStereo(format);
            showStereo(format);
            const Frame right = taggedFrame(options, 4);
            const Upload upload = show(taggedFrame(stereo(rgba(16, 8), right), 3).get());
            expectEye(upload, 3, 0, 0);
            if (upload.width > 16)
                expectEye(upload, 2, 16, 0);
            else
                expectEye(upload, 2, 0, 4);
        }
}

} // namespace
} // namespace kestrix::test
