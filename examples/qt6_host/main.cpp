/// Qt 6: a `QOpenGLWidget` that shows the newest frame. A double click, or `--detach`, moves it out
/// of its window into one of its own, and back.

// Qt's headers first: their own glext.h warns if another one was included before.
#include <QApplication>
#include <QMainWindow>
#include <QOpenGLContext>
#include <QOpenGLWidget>
#include <QSurfaceFormat>
#include <QTimer>

#include "BarsFrame.h"
#include "ExampleMain.h"

namespace {

class PreviewWidget : public QOpenGLWidget {
public:
    PreviewWidget(const ExampleOptions& options, QMainWindow* window)
        : QOpenGLWidget(window),
          m_options(options),
          m_window(window)
    {
        QObject::connect(&m_timer, &QTimer::timeout, this, [this] { update(); });
        m_timer.start(40);
    }
    ~PreviewWidget() override { releaseHelper(); }

    /// The error of a function that Qt calls; an exception must not leave such a function.
    const std::string& failure() const { return m_failure; }

    void detachOrAttach()
    {
        if (isWindow()) {
            m_window->setCentralWidget(this);
        } else {
            setParent(nullptr);
            show();
        }
    }

protected:
    /// Qt calls this again after the widget gets another top-level window, because it also gets
    /// another context.
    void initializeGL() override
    {
        // The old context ends before the new one is made, and the helper's objects end with it.
        m_contextEnds = QObject::connect(context(), &QOpenGLContext::aboutToBeDestroyed, this,
                                         &PreviewWidget::releaseHelper);
        m_helper = CreateOpenGL3ScreenPreviewHelper_0002();
        if (!m_helper || m_helper->InitializeGL() < 0)
            end("no helper in this context");
    }

    void paintGL() override
    {
        if (m_ended)
            return;
        // From any thread in a real program; then update() by a queued call.
        BarsFrame* frame = m_options.signal() ? new BarsFrame(m_painted) : nullptr;
        m_helper->SetFrame(frame);
        if (frame)
            frame->Release(); // the helper has a reference of its own

        // The widget's framebuffer is not 0, and Qt has bound it. Its size is in device pixels; a
        // unit of width() and height() may be several of these.
        const int width = qRound(this->width() * devicePixelRatio());
        const int height = qRound(this->height() * devicePixelRatio());
        glViewport(0, 0, width, height);
        m_helper->PaintGL();
        makeOpaque(); // Qt composes this framebuffer with what is behind the widget

        ++m_painted;
        if (m_options.ends(m_painted)) {
            try {
                writePng(m_options, width, height);
                end("");
            } catch (const std::exception& error) {
                end(error.what());
            }
        } else if (m_options.detach && m_painted == m_options.frames / 2) {
            QTimer::singleShot(0, this, [this] { detachOrAttach(); }); // not while painting
        }
    }

    void mouseDoubleClickEvent(QMouseEvent*) override { detachOrAttach(); }

private:
    void end(const char* failure)
    {
        m_timer.stop();
        m_ended = true;
        m_failure = failure;
        QTimer::singleShot(0, [] { QApplication::quit(); }); // exec() may not have begun
    }

    /// The last Release deletes GL objects. Qt makes no context current for a destructor, nor for
    /// the signal of a context that ends.
    void releaseHelper()
    {
        QObject::disconnect(m_contextEnds);
        makeCurrent();
        if (m_helper)
            m_helper->Release();
        m_helper = nullptr;
        doneCurrent();
    }

    const ExampleOptions& m_options;
    QMainWindow* m_window;
    IKestrixGLScreenPreviewHelper* m_helper = nullptr;
    QMetaObject::Connection m_contextEnds;
    QTimer m_timer;
    int m_painted = 0;
    bool m_ended = false;
    std::string m_failure;
};

void run(const ExampleOptions& options)
{
    // Before the application is made, so that the contexts of Qt itself have the same format.
    QSurfaceFormat format;
    format.setVersion(3, 2);
    format.setProfile(QSurfaceFormat::CoreProfile);
    QSurfaceFormat::setDefaultFormat(format);

    int count = 1;
    char name[] = "qt6_host";
    char* arguments[] = {name, nullptr};
    const QApplication application(count, arguments);

    QMainWindow window;
    auto* widget = new PreviewWidget(options, &window);
    window.setCentralWidget(widget);
    window.resize(options.width, options.height);
    window.show();
    QApplication::exec();
    const std::string failure = widget->failure();
    if (!widget->parent())
        delete widget; // the window does not own a detached widget
    if (!failure.empty())
        throw std::runtime_error(failure);
}

} // namespace

int main(int count, char** arguments)
{
    return exampleMain("qt6_host", count, arguments, run);
}
