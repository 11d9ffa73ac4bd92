/// GTK 4: a `GtkGLArea` that shows the newest frame. A click, or `--detach`, moves it to
/// another window.
#include "BarsFrame.h"
#include "ExampleMain.h"

#include <gtk/gtk.h>

namespace {

struct View {
    const ExampleOptions& options;
    GtkWidget* area = nullptr;
    GtkWidget* window = nullptr;
    IKestrixGLScreenPreviewHelper* helper = nullptr;
    int painted = 0;
    bool open = true;
    std::string failure{};
};

void end(View* view, const char* failure)
{
    view->failure = failure;
    view->open = false;
}

/// The area is in a window and has a context there: at first and after each move.
void realize(GtkGLArea* area, View* view)
{
    gtk_gl_area_make_current(area);
    if (const GError* error = gtk_gl_area_get_error(area))
        return end(view, error->message);
    view->helper = CreateOpenGL3ScreenPreviewHelper_0002();
    if (!view->helper || view->helper->InitializeGL() < 0)
        end(view, "no helper in this context");
}

/// The area leaves its window, and its context ends. The last Release deletes GL objects, and GTK
/// does not make the context current for it.
void unrealize(GtkGLArea* area, View* view)
{
    gtk_gl_area_make_current(area);
    if (view->helper)
        view->helper->Release();
    view->helper = nullptr;
}

void closed(GtkWidget* window, View* view)
{
    if (window != view->window)
        return; // the area has left it
    view->window = nullptr;
    view->open = false;
}

/// Puts the area into a new window and closes the one before.
void place(View* view)
{
    GtkWidget* const before = view->window;
    view->window = gtk_window_new();
    gtk_window_set_title(GTK_WINDOW(view->window), "gtk_host");
    gtk_window_set_default_size(GTK_WINDOW(view->window), view->options.width,
                                view->options.height);
    g_signal_connect(view->window, "destroy", G_CALLBACK(closed), view);
    if (before) {
        gtk_window_set_child(GTK_WINDOW(before), nullptr);
        gtk_window_destroy(GTK_WINDOW(before));
    }
    gtk_window_set_child(GTK_WINDOW(view->window), view->area);
    gtk_window_present(GTK_WINDOW(view->window));
}

gboolean render(GtkGLArea* area, GdkGLContext*, View* view)
{
    if (!view->helper || !view->open)
        return TRUE;
    // From any thread in a real program; then gtk_gl_area_queue_render by g_idle_add.
    BarsFrame* frame = view->options.signal() ? new BarsFrame(view->painted) : nullptr;
    view->helper->SetFrame(frame);
    if (frame)
        frame->Release(); // the helper has a reference of its own

    // The area's framebuffer is not 0, and GTK has bound it. Its size is the area's times the
    // scale of the display.
    const int scale = gtk_widget_get_scale_factor(GTK_WIDGET(area));
    const int width = gtk_widget_get_width(GTK_WIDGET(area)) * scale;
    const int height = gtk_widget_get_height(GTK_WIDGET(area)) * scale;
    glViewport(0, 0, width, height);
    view->helper->PaintGL();

    makeOpaque(); // GTK blends the area over the window

    ++view->painted;
    if (view->options.ends(view->painted)) {
        view->open = false;
        try {
            writePng(view->options, width, height);
        } catch (const std::exception& error) {
            end(view, error.what()); // an exception must not pass through GTK
        }
    } else if (view->options.detach && view->painted == view->options.frames / 2) {
        const auto move = [](gpointer data) { place(static_cast<View*>(data)); };
        g_idle_add_once(move, view); // not while painting
    }
    return TRUE;
}

gboolean nextFrame(GtkWidget* area, GdkFrameClock*, gpointer)
{
    gtk_gl_area_queue_render(GTK_GL_AREA(area));
    return G_SOURCE_CONTINUE;
}

void run(const ExampleOptions& options)
{
    if (!gtk_init_check())
        throw std::runtime_error("no display");

    View view{options};
    view.area = gtk_gl_area_new();
    g_object_ref_sink(view.area); // it is between two windows at times
    gtk_gl_area_set_required_version(GTK_GL_AREA(view.area), 3, 2);
    g_signal_connect(view.area, "realize", G_CALLBACK(realize), &view);
    g_signal_connect(view.area, "unrealize", G_CALLBACK(unrealize), &view);
    g_signal_connect(view.area, "render", G_CALLBACK(render), &view);
    GtkGesture* click = gtk_gesture_click_new();
    g_signal_connect_swapped(click, "released", G_CALLBACK(place), &view);
    gtk_widget_add_controller(view.area, GTK_EVENT_CONTROLLER(click));
    gtk_widget_add_tick_callback(view.area, nextFrame, nullptr, nullptr);

    place(&view);
    while (view.open)
        g_main_context_iteration(nullptr, TRUE);

    if (view.window)
        gtk_window_destroy(GTK_WINDOW(view.window));
    g_object_unref(view.area);
    if (!view.failure.empty())
        throw std::runtime_error(view.failure);
}

} // namespace

int main(int count, char** arguments)
{
    return exampleMain("gtk_host", count, arguments, run);
}
