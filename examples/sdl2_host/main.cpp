/// SDL 2: a program that also draws by itself. A guard separates its GL state from the helper's.
#include "BarsFrame.h"
#include "ExampleMain.h"
#include "KestrixGLStateGuard.h"

#include <SDL.h>

namespace {

/// A red lamp in the lower left corner, as an example of a program's own drawing. It leaves its
/// state changed: without the guard the next picture would have wrong colours, be clipped to the
/// lamp's box and be shifted within its lines.
void drawLamp(int width, int height)
{
    glEnable(GL_FRAMEBUFFER_SRGB); // for what is blended in linear light
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, 0, width / 16, height / 16);
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 100); // as after the upload of part of a picture
}

void run(const ExampleOptions& options)
{
    if (SDL_Init(SDL_INIT_VIDEO) != 0)
        throw std::runtime_error(SDL_GetError());
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 2);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
    SDL_GL_SetAttribute(SDL_GL_FRAMEBUFFER_SRGB_CAPABLE, 1);
    // Without alpha, so that a compositor does not show what is behind the window.
    SDL_GL_SetAttribute(SDL_GL_ALPHA_SIZE, 0);
    SDL_Window* window = SDL_CreateWindow(
        "sdl2_host", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, options.width,
        options.height, SDL_WINDOW_OPENGL | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    const SDL_GLContext context = window ? SDL_GL_CreateContext(window) : nullptr;
    if (!context)
        throw std::runtime_error(SDL_GetError());

    IKestrixGLScreenPreviewHelper* helper = CreateOpenGL3ScreenPreviewHelper_0002();
    if (!helper)
        throw std::runtime_error("no memory for a helper");
    check(helper->InitializeGL(), "InitializeGL");

    int painted = 0;
    for (bool open = true; open;) {
        SDL_Event event;
        while (SDL_PollEvent(&event))
            open = open && event.type != SDL_QUIT;

        // From any thread in a real program, such as the one on which a capture device calls back.
        BarsFrame* frame = options.signal() ? new BarsFrame(painted) : nullptr;
        check(helper->SetFrame(frame), "SetFrame");
        if (frame)
            frame->Release(); // the helper has a reference of its own

        // The framebuffer's size, which differs from SDL_GetWindowSize on a high-DPI display.
        int width = 0;
        int height = 0;
        SDL_GL_GetDrawableSize(window, &width, &height);
        glViewport(0, 0, width, height);
        {
            const KestrixGLStateGuard guard(SDL_GL_GetProcAddress);
            check(helper->PaintGL(), "PaintGL");
        }
        drawLamp(width, height);

        ++painted;
        if (options.ends(painted)) {
            writePng(options, width, height);
            open = false;
        }
        SDL_GL_SwapWindow(window);
    }

    // The last Release deletes GL objects. A program with several windows makes the right context
    // current before it.
    SDL_GL_MakeCurrent(window, context);
    helper->Release();
    SDL_GL_DeleteContext(context);
    SDL_DestroyWindow(window);
    SDL_Quit();
}

} // namespace

int main(int count, char** arguments)
{
    return exampleMain("sdl2_host", count, arguments, run);
}
