/// A guard that a host puts around calls to a preview helper: the GL state of the host does not
/// change the picture, and after the call the state is as before.
///
///     {
///         const KestrixGLStateGuard guard(SDL_GL_GetProcAddress); // or glfwGetProcAddress, ...
///         helper->PaintGL();
///     }
///
/// For `InitializeGL` and `PaintGL` of both helpers; their other operations do not touch GL state.
/// A host needs it only if it draws by itself in the same context. It costs some hundred GL
/// queries; if the driver has its own thread, each query waits for that thread.
///
/// The constructor sets all state on which the helpers rely: unpack parameters,
/// `GL_FRAMEBUFFER_SRGB` off, all tests and operations off that could discard or change a fragment,
/// and in a context with the fixed pipeline also matrices, texturing, lighting and so on.
/// Framebuffer and viewport stay as the host has set them: they are where the picture is painted.
/// The scissor box is set to the viewport, so that a helper clears only the view.
///
/// Context: OpenGL, not OpenGL ES; current and the same in constructor and destructor. Without the
/// fixed pipeline 3.2 or later; with it 1.2 or later, and a free entry on the attribute stack.
/// Outside `glBegin`, and with no active transform feedback, query or conditional render that a
/// quad would disturb. If state exists for each draw buffer or viewport (colour mask, blending,
/// scissor), the guard saves that of the first and restores it for all.
///
/// The header needs no other header of this project, works with any GL loader whose header was
/// included before, and compiles as C++11 and later. It needs the functions of OpenGL 1.1 at link
/// time (libGL or libOpenGL), and looks up the others.
#ifndef KESTRIX_GL_STATE_GUARD_H
#define KESTRIX_GL_STATE_GUARD_H

#include <GL/gl.h>
#include <GL/glext.h>

class KestrixGLStateGuard {
public:
    /// `getProcAddress` returns the address of an entry point, with any pointer type, for its name
    /// as `const char*`.
    template<class GetProcAddress>
    explicit KestrixGLStateGuard(GetProcAddress getProcAddress)
    {
        look(m_glActiveTexture, getProcAddress, "glActiveTexture");
        look(m_glBindBuffer, getProcAddress, "glBindBuffer");
        look(m_glUseProgram, getProcAddress, "glUseProgram");
        look(m_glBindVertexArray, getProcAddress, "glBindVertexArray");
        look(m_glBindSampler, getProcAddress, "glBindSampler");
        save();
        setNeutral();
    }

    ~KestrixGLStateGuard() { restore(); }

    KestrixGLStateGuard(const KestrixGLStateGuard&) = delete;
    KestrixGLStateGuard& operator=(const KestrixGLStateGuard&) = delete;

private:
    /// Disabled, in every context whose version has it.
    struct Capability {
        GLenum name;
        int since; // version of OpenGL, times 10
    };
    static const int kCapabilities = 21;
    static const Capability* capabilities()
    {
        static const Capability all[kCapabilities] = {{GL_BLEND, 10},
                                                      {GL_COLOR_LOGIC_OP, 11},
                                                      {GL_CULL_FACE, 10},
                                                      {GL_DEPTH_TEST, 10},
                                                      {GL_STENCIL_TEST, 10},
                                                      {GL_POLYGON_SMOOTH, 10},
                                                      {GL_CLIP_DISTANCE0, 10},
                                                      {GL_CLIP_DISTANCE1, 10},
                                                      {GL_CLIP_DISTANCE2, 10},
                                                      {GL_CLIP_DISTANCE3, 10},
                                                      {GL_CLIP_DISTANCE4, 10},
                                                      {GL_CLIP_DISTANCE5, 10},
                                                      {GL_SAMPLE_ALPHA_TO_COVERAGE, 13},
                                                      {GL_SAMPLE_ALPHA_TO_ONE, 13},
                                                      {GL_SAMPLE_COVERAGE, 13},
                                                      {GL_CLIP_DISTANCE6, 30},
                                                      {GL_CLIP_DISTANCE7, 30},
                                                      {GL_FRAMEBUFFER_SRGB, 30},
                                                      {GL_RASTERIZER_DISCARD, 30},
                                                      {GL_PRIMITIVE_RESTART, 31},
                                                      {GL_SAMPLE_MASK, 32}};
        return all;
    }

    /// The layout of pixels in the host's memory, and the values that the helpers rely on.
    struct PixelStore {
        GLenum name;
        GLint neutral;
    };
    static const int kPixelStores = 8;
    static const PixelStore* pixelStores()
    {
        static const PixelStore all[kPixelStores] = {
            {GL_UNPACK_SWAP_BYTES, GL_FALSE}, {GL_UNPACK_LSB_FIRST, GL_FALSE},
            {GL_UNPACK_ROW_LENGTH, 0},        {GL_UNPACK_IMAGE_HEIGHT, 0},
            {GL_UNPACK_SKIP_ROWS, 0},         {GL_UNPACK_SKIP_PIXELS, 0},
            {GL_UNPACK_SKIP_IMAGES, 0},       {GL_UNPACK_ALIGNMENT, 4}};
        return all;
    }

    template<class Function, class GetProcAddress>
    static void look(Function& function, GetProcAddress getProcAddress, const char* name)
    {
        function = reinterpret_cast<Function>(getProcAddress(name));
    }

    static GLint get(GLenum name)
    {
        GLint values[4] = {}; // GL_POLYGON_MODE may have two
        glGetIntegerv(name, values);
        return values[0];
    }
    static void set(GLenum capability, GLboolean on)
    {
        if (on)
            glEnable(capability);
        else
            glDisable(capability);
    }

    void save()
    {
        const GLubyte* version = glGetString(GL_VERSION);
        m_version = version ? (version[0] - '0') * 10 + (version[2] - '0') : 0;
        m_legacy = m_version < 32 ||
                   (get(GL_CONTEXT_PROFILE_MASK) & GL_CONTEXT_COMPATIBILITY_PROFILE_BIT) != 0;
        if (m_legacy)
            glPushAttrib(GL_ALL_ATTRIB_BITS);

        for (int i = 0; i < kCapabilities; ++i)
            if (m_version >= capabilities()[i].since)
                m_enabled[i] = glIsEnabled(capabilities()[i].name);
        for (int i = 0; i < kPixelStores; ++i)
            m_pixelStores[i] = get(pixelStores()[i].name);
        m_scissor = glIsEnabled(GL_SCISSOR_TEST);
        glGetIntegerv(GL_SCISSOR_BOX, m_scissorBox);
        glGetBooleanv(GL_COLOR_WRITEMASK, m_colorMask);
        glGetFloatv(GL_COLOR_CLEAR_VALUE, m_clearColor);
        m_polygonMode = get(GL_POLYGON_MODE);

        if (m_version >= 20)
            m_program = get(GL_CURRENT_PROGRAM);
        if (m_version >= 21)
            m_unpackBuffer = get(GL_PIXEL_UNPACK_BUFFER_BINDING);
        if (m_version >= 15)
            m_arrayBuffer = get(GL_ARRAY_BUFFER_BINDING);
        if (m_version >= 30)
            m_vertexArray = get(GL_VERTEX_ARRAY_BINDING);
        if (m_version >= 13)
            m_activeTexture = get(GL_ACTIVE_TEXTURE);
        for (int unit = 1; unit >= 0; --unit) {
            activate(unit);
            m_texture2D[unit] = get(GL_TEXTURE_BINDING_2D);
            m_texture3D[unit] = get(GL_TEXTURE_BINDING_3D);
            if (m_version >= 33)
                m_sampler[unit] = get(GL_SAMPLER_BINDING);
        }
        if (m_legacy) {
            // Not all drivers save it in a group of attributes.
            if (m_version >= 14)
                m_colorSum = glIsEnabled(GL_COLOR_SUM);
            // Unit 0 is active. Values instead of the stacks, which may be full.
            glGetFloatv(GL_PROJECTION_MATRIX, m_projection);
            glGetFloatv(GL_MODELVIEW_MATRIX, m_modelview);
            glGetFloatv(GL_TEXTURE_MATRIX, m_texture);
        }
    }

    void setNeutral()
    {
        for (int i = 0; i < kCapabilities; ++i)
            if (m_version >= capabilities()[i].since)
                glDisable(capabilities()[i].name);
        for (int i = 0; i < kPixelStores; ++i)
            glPixelStorei(pixelStores()[i].name, pixelStores()[i].neutral);
        GLint viewport[4];
        glGetIntegerv(GL_VIEWPORT, viewport);
        glEnable(GL_SCISSOR_TEST);
        glScissor(viewport[0], viewport[1], viewport[2], viewport[3]);
        glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);

        if (m_version >= 20)
            m_glUseProgram(0);
        if (m_version >= 21)
            m_glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
        if (m_version >= 33)
            for (GLuint unit = 0; unit < 2; ++unit)
                m_glBindSampler(unit, 0);
        if (m_legacy)
            setFixedPipelineNeutral();
    }

    void setFixedPipelineNeutral()
    {
        static const GLenum fragment[] = {GL_ALPHA_TEST, GL_FOG, GL_LIGHTING, GL_POLYGON_STIPPLE};
        for (const GLenum capability : fragment)
            glDisable(capability);
        if (m_version >= 14)
            glDisable(GL_COLOR_SUM);

        static const GLenum texture[] = {GL_TEXTURE_1D,    GL_TEXTURE_2D,    GL_TEXTURE_3D,
                                         GL_TEXTURE_GEN_S, GL_TEXTURE_GEN_T, GL_TEXTURE_GEN_R,
                                         GL_TEXTURE_GEN_Q};
        for (int unit = m_version >= 13 ? get(GL_MAX_TEXTURE_UNITS) : 1; unit-- > 0;) {
            activate(unit);
            for (const GLenum capability : texture)
                glDisable(capability);
            if (m_version >= 13)
                glDisable(GL_TEXTURE_CUBE_MAP);
        }

        // Unit 0 is active.
        static const GLenum matrices[] = {GL_PROJECTION, GL_TEXTURE, GL_MODELVIEW};
        for (const GLenum matrix : matrices) {
            glMatrixMode(matrix);
            glLoadIdentity();
        }
        glColor4f(1, 1, 1, 1); // the alpha of the picture

        // The transfer of pixels to a texture.
        static const GLenum scales[] = {GL_RED_SCALE, GL_GREEN_SCALE, GL_BLUE_SCALE,
                                        GL_ALPHA_SCALE};
        static const GLenum biases[] = {GL_RED_BIAS, GL_GREEN_BIAS, GL_BLUE_BIAS, GL_ALPHA_BIAS};
        for (int i = 0; i < 4; ++i) {
            glPixelTransferf(scales[i], 1);
            glPixelTransferf(biases[i], 0);
        }
        glPixelTransferi(GL_MAP_COLOR, GL_FALSE);
    }

    void restore()
    {
        if (m_legacy) {
            activate(0);
            loadMatrix(GL_PROJECTION, m_projection);
            loadMatrix(GL_MODELVIEW, m_modelview);
            loadMatrix(GL_TEXTURE, m_texture);
        }
        for (int unit = 0; unit < 2; ++unit) {
            activate(unit);
            glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(m_texture2D[unit]));
            glBindTexture(GL_TEXTURE_3D, static_cast<GLuint>(m_texture3D[unit]));
            if (m_version >= 33)
                m_glBindSampler(static_cast<GLuint>(unit), static_cast<GLuint>(m_sampler[unit]));
        }
        if (m_version >= 13)
            m_glActiveTexture(static_cast<GLenum>(m_activeTexture));
        if (m_version >= 30)
            m_glBindVertexArray(static_cast<GLuint>(m_vertexArray));
        if (m_version >= 15)
            m_glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(m_arrayBuffer));
        if (m_version >= 21)
            m_glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(m_unpackBuffer));
        if (m_version >= 20)
            m_glUseProgram(static_cast<GLuint>(m_program));

        glPolygonMode(GL_FRONT_AND_BACK, static_cast<GLenum>(m_polygonMode));
        glClearColor(m_clearColor[0], m_clearColor[1], m_clearColor[2], m_clearColor[3]);
        glColorMask(m_colorMask[0], m_colorMask[1], m_colorMask[2], m_colorMask[3]);
        glScissor(m_scissorBox[0], m_scissorBox[1], m_scissorBox[2], m_scissorBox[3]);
        set(GL_SCISSOR_TEST, m_scissor);
        for (int i = 0; i < kPixelStores; ++i)
            glPixelStorei(pixelStores()[i].name, m_pixelStores[i]);
        for (int i = 0; i < kCapabilities; ++i)
            if (m_version >= capabilities()[i].since)
                set(capabilities()[i].name, m_enabled[i]);

        if (m_legacy) {
            glPopAttrib();
            if (m_version >= 14)
                set(GL_COLOR_SUM, m_colorSum);
        }
    }

    void activate(int unit) const
    {
        if (m_version >= 13)
            m_glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
    }
    static void loadMatrix(GLenum mode, const GLfloat* matrix)
    {
        glMatrixMode(mode);
        glLoadMatrixf(matrix);
    }

    PFNGLACTIVETEXTUREPROC m_glActiveTexture;
    PFNGLBINDBUFFERPROC m_glBindBuffer;
    PFNGLUSEPROGRAMPROC m_glUseProgram;
    PFNGLBINDVERTEXARRAYPROC m_glBindVertexArray;
    PFNGLBINDSAMPLERPROC m_glBindSampler;

    int m_version;
    bool m_legacy; // has the fixed pipeline
    GLboolean m_enabled[kCapabilities] = {};
    GLint m_pixelStores[kPixelStores] = {};
    GLboolean m_colorSum = GL_FALSE;
    GLboolean m_scissor = GL_FALSE;
    GLint m_scissorBox[4] = {};
    GLboolean m_colorMask[4] = {};
    GLfloat m_clearColor[4] = {};
    GLint m_polygonMode = GL_FILL;
    GLint m_program = 0;
    GLint m_unpackBuffer = 0;
    GLint m_arrayBuffer = 0;
    GLint m_vertexArray = 0;
    GLint m_activeTexture = GL_TEXTURE0;
    GLint m_texture2D[2] = {};
    GLint m_texture3D[2] = {};
    GLint m_sampler[2] = {};
    GLfloat m_projection[16] = {};
    GLfloat m_modelview[16] = {};
    GLfloat m_texture[16] = {};
};

#endif // KESTRIX_GL_STATE_GUARD_H
