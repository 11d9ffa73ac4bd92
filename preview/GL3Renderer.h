/// The GL objects of the OpenGL 3 helper, and painting with them.
#pragma once

#include "preview/GL3Functions.h"
#include "preview/GL3Program.h"
#include "preview/GL3ScreenPreview.h"
#include "preview/ScreenPreviewLut.h"

/// Paints the newest frame as one quad over the viewport.
///
/// GL thread, the context current, entry points looked up. No GL error is read. Names are plain and
/// not owned by handles, because their context may no longer exist when this object is destroyed.
/// The owner calls `cleanup` before that.
class CGL3ScreenPreview::Renderer {
public:
    /// Makes all objects in the current context, and ignores existing objects. `E_FAIL` if a shader
    /// does not build: the objects made until then stay until `cleanup`, and `hasObjects` is true.
    ///
    /// Clears the colour buffer. Leaves the vertex array bound, unit 0 active, all else unbound.
    HRESULT init();
    [[nodiscard]] bool hasObjects() const { return m_vertexArray != 0; }
    /// Whether all objects exist. The texture of the colour table is the last that `init` makes.
    [[nodiscard]] bool canPaint() const { return m_lutTexture != 0; }

    /// Deletes all objects and forgets the last frame's size and format, so that the next upload
    /// makes new storage. Allowed at any time, also before `init`.
    void cleanup();

    /// Clears the colour buffer to transparent black, and leaves this clear colour set.
    static void clear();

    /// Only if `canPaint` is true. Uploads a frame: every second line, as 32-bit texels. `format`
    /// sets how the two eyes of a pair are shown; it has no effect on a frame without a right eye.
    /// A right eye is used only if its height and row bytes are those of the left eye.
    ///
    /// `fence` receives a sync object that is signalled after the frame's bytes have been read. If
    /// the frame returns no bytes, or no texture can have its size, `fence` and the picture stay as
    /// they are. Restores `GL_UNPACK_ROW_LENGTH`; leaves no texture bound, and unit 0 active.
    void update(IKestrixVideoFrame* frame, Preview3DFormat format, GLsync& fence);

    /// Only if `canPaint` is true. Draws what was uploaded last, or black if nothing was. Leaves
    /// program, vertex array, both buffers and the textures of units 0 and 1 unbound, and unit 0
    /// active.
    void paint();

private:
    void makeQuad();
    void makeFrameTexture();
    void makeLutTexture();

    /// Stores size and format; true if one of them is new.
    bool adoptProperties(IKestrixVideoFrame* frame, std::int64_t height, std::int64_t rowBytes);
    /// Uploads the table for the frame's properties and colourspace code, unless the texture
    /// contains it.
    void selectLut(std::uint32_t colourspaceCode);
    /// Fills the bound frame texture as `m_3DFormat` says; `right` is null only if that is
    /// `LeftOnly`. Each eye has `rows` rows. Makes the storage first if `makeStorage` is true.
    void uploadEyes(const void* left, const void* right, GLsizei texelsPerRow, GLsizei rows,
                    bool makeStorage);

    GLuint m_vertexArray = 0;
    GLuint m_vertexBuffer = 0;
    GLuint m_indexBuffer = 0;
    GL3Program m_program;
    /// 2D, the frame's words.
    GLuint m_frameTexture = 0;
    /// 3D, the colour table.
    GLuint m_lutTexture = 0;

    /// Of the last frame: pixels, lines, `PixelFormat`.
    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    std::uint32_t m_pixelFormat = 0;
    /// From one of its lines to the next; padding is uploaded too.
    std::int64_t m_rowBytes = 0;
    /// The table that is in the texture.
    LutID m_lutID = LutID_YCbCr_709;
    /// The 3D format of the last upload.
    Preview3DFormat m_3DFormat = Preview3DFormat::TopBottom;
    /// The last frame was stored bottom line first.
    bool m_flip = false;
};
