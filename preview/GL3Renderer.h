/// The GL objects of the OpenGL 3 helper, and painting with them.
#pragma once

#include "preview/GL3Functions.h"
#include "preview/GL3Program.h"
#include "preview/GL3ScreenPreview.h"
#include "preview/ScreenPreviewLut.h"

/// Paints the newest frame as one quad over the viewport.
///
/// GL thread, the context current, entry points looked up. Not one GL error is read. Names are
/// plain and not owned by handles, since the context that they belong to may be gone when this is
/// destroyed; whoever destroys it calls `cleanup` before.
class CGL3ScreenPreview::Renderer {
public:
    /// Makes all objects in the current context, without regard to any that there are. `E_FAIL`
    /// where a shader does not build; what was made until then stays until `cleanup`.
    /// `hasObjects` tells whether something of an attempt is there.
    ///
    /// Clears the colour buffer. Leaves the vertex array bound, unit 0 active, all else unbound.
    HRESULT init();
    [[nodiscard]] bool hasObjects() const { return m_vertexArray != 0; }

    /// Deletes all objects and forgets the last frame's size and format, so that the next upload
    /// makes its storage anew. Good at any time, also before `init`.
    void cleanup();

    /// Clears the colour buffer to transparent black; that stays the clear colour.
    static void clear();

    /// Uploads a frame: every second line, as 32-bit texels. `format` says how both eyes are to be
    /// shown and has no effect on a frame with one.
    ///
    /// `fence` receives a sync object that tells when the frame's bytes have been read; it stays as
    /// it is where the frame has no bytes to give or is of no size that a texture can have, and the
    /// picture before then stays too. A right eye counts only if its lines lie as the left one's
    /// do. Restores `GL_UNPACK_ROW_LENGTH`; leaves no texture bound, and unit 0 active.
    void update(IKestrixVideoFrame* frame, Preview3DFormat format, GLsync& fence);

    /// Draws what was uploaded last, black before that. Leaves program, vertex array, both buffers
    /// and the textures of units 0 and 1 unbound, and unit 0 active.
    void paint();

private:
    void makeQuad();
    void makeFrameTexture();
    void makeLutTexture();

    /// Takes over size and format; true when one of them is new.
    bool adoptProperties(IKestrixVideoFrame* frame, std::int64_t height, std::int64_t rowBytes);
    /// Brings the table for the frame's properties and colourspace code into the texture.
    void selectLut(std::uint32_t colourspaceCode);
    /// Fills the bound frame texture as `m_3DFormat` says; `right` may be null where it says so.
    /// Makes the storage first if asked to.
    void uploadEyes(const void* left, const void* right, GLsizei texelsPerRow, bool makeStorage);

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
    /// As the last upload used it.
    Preview3DFormat m_3DFormat = Preview3DFormat::TopBottom;
    /// The last frame was stored bottom line first.
    bool m_flip = false;
};
