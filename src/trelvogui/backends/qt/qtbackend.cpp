#include <trelvogui/backends/qt/qtbackend.h>

#include <trelvogui/backends/detail/displayscale.h>
#include <trelvogui/backends/detail/followedcameras.h>
#include <trelvogui/backends/detail/frametrace.h>
#include <trelvogui/gui/guimanager.h>

#include <graphicsbase/logfile.h>
#include <graphicsbase/uievents.h>

#include <QKeyEvent>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QOpenGLWindow>
#include <QResizeEvent>
#include <QTabletEvent>
#include <QTouchEvent>
#include <QWheelEvent>

#include <cmath>
#include <cstdio>
#include <map>
#include <set>

using namespace GraphicsBase;

namespace GUI {
namespace {
std::set<QObject*>& attached() {
    static std::set<QObject*> views;
    return views;
}

int buttonMask(Qt::MouseButtons buttons) {
    return (buttons & Qt::LeftButton ? VX_UI::BUTTON_LEFT : 0) |
           (buttons & Qt::RightButton ? VX_UI::BUTTON_RIGHT : 0) |
           (buttons & Qt::MiddleButton ? VX_UI::BUTTON_MIDDLE : 0);
}

int toPixel(double v, double ratio) {
    return static_cast<int>(std::floor(v * ratio));
}
} // namespace

QtBackend::QtBackend(QOpenGLWidget* widget, GUIManager& manager)
    : widget_(widget), manager_(&manager), input_(std::make_unique<GUIInputManager>(*this)),
      cameras_(std::make_unique<detail::FollowedCameras>()), traceFrames_(detail::TraceFramesRequested()) {
    attach(widget);
    if (!installed_)
        return;
    // A widget gets moves without a button held (hover), touch points and keys only when it asks
    // for them; touch points no handler takes still become mouse events.
    widget->setMouseTracking(true);
    widget->setAttribute(Qt::WA_AcceptTouchEvents);
    if (widget->focusPolicy() == Qt::NoFocus)
        widget->setFocusPolicy(Qt::StrongFocus);
}

QtBackend::QtBackend(QOpenGLWindow* window, GUIManager& manager)
    : window_(window), manager_(&manager), input_(std::make_unique<GUIInputManager>(*this)),
      cameras_(std::make_unique<detail::FollowedCameras>()), traceFrames_(detail::TraceFramesRequested()) {
    attach(window);
}

QtBackend::~QtBackend() {
    if (!view_)
        return;
    view_->removeEventFilter(this);
    attached().erase(view_);
}

void QtBackend::attach(QObject* view) {
    if (!view) {
        LogFile::Instance().AddLine(LogLevel::Warning, "QtBackend: the view is null.\n");
        return;
    }
    if (attached().count(view)) {
        LogFile::Instance().AddLine(LogLevel::Warning, "QtBackend: the view already has a backend.\n");
        return;
    }
    view_ = view;
    attached().insert(view);
    input_->addScreenHandler(manager_);
    redrawRequest_ = manager_->RedrawRequestSignal.connect([this] { update(); });
    view->installEventFilter(this);
    const auto swapped = [this] {
        // Qt may paint twice before it swaps once.
        while (tracedFrames_ < frames_)
            detail::TraceFrame(traceFrames_, ++tracedFrames_);
    };
    if (widget_)
        connect(widget_.data(), &QOpenGLWidget::frameSwapped, this, swapped);
    else
        connect(window_.data(), &QOpenGLWindow::frameSwapped, this, swapped);
    // A view destroyed first (its parent went) leaves a backend that does nothing.
    connect(view, &QObject::destroyed, this, [this] {
        LogFile::Instance().AddLine(LogLevel::Info,
                                    "QtBackend: the view was destroyed; the backend is detached.\n");
        attached().erase(view_);
        view_ = nullptr;
        installed_ = false;
        redrawRequest_.disconnect();
    });
    installed_ = true;
}

void QtBackend::update() {
    // Requests made while the view paints (controls built in initializeGL, changes made in paintGL)
    // are drawn by this very frame: asking again would draw a second one for nothing.
    if (painting_)
        return;
    if (widget_)
        widget_->update();
    else if (window_)
        window_->update();
}

double QtBackend::PixelRatio() const {
    return widget_ ? widget_->devicePixelRatioF() : window_ ? window_->devicePixelRatio() : 1.0;
}

QOpenGLContext* QtBackend::context() const {
    return widget_ ? widget_->context() : window_ ? window_->context() : nullptr;
}

void QtBackend::SetDrawFlags(DrawFlags flags) {
    GraphicsScene::SetDrawFlags(flags);
    if (flags == DRAW_NOTHING)
        return;
    update();
    DrawFlagsSignal(flags);
}

bool QtBackend::ready() {
    if (manager_->GetRenderer())
        return true;
    if (!warnedEarly_)
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "QtBackend: input before the manager is initialised goes to the view.\n");
    warnedEarly_ = true;
    return false;
}

bool QtBackend::Paint() {
    QOpenGLContext* current = QOpenGLContext::currentContext();
    if (!installed_ || !current || current != context()) {
        std::printf("QtBackend::Paint(): the view's context is not current; the overlay is not drawn.\n");
        return false;
    }
    if (!manager_->GetRenderer()) {
        std::printf("QtBackend::Paint(): the manager is not initialised.\n");
        return false;
    }
    const double ratio = PixelRatio();
    const int width = static_cast<int>(std::lround((widget_ ? widget_->width() : window_->width()) * ratio));
    const int height =
        static_cast<int>(std::lround((widget_ ? widget_->height() : window_->height()) * ratio));
    if (width > 0 && height > 0 && (width != manager_->GetWidth() || height != manager_->GetHeight())) {
        manager_->Resize(width, height);
        cameras_->Resize(width, height); // a new device-pixel ratio sends no resize event
    }
    if (followDisplayScale_)
        detail::FollowDisplayScale(*manager_, ratio);
    current->functions()->glViewport(0, 0, width, height);
    manager_->UpdateLayers();
    manager_->Draw();
    paintedInPaintGL_ = painting_;
    ++frames_;
    // A running animation wants the next frame as well.
    if (manager_->NeedsRedraw())
        update();
    return true;
}

bool QtBackend::paintWidget(QEvent* event) {
    // The widget's own paint event runs the host's paintGL into its framebuffer; the overlay goes on
    // top before the widget is composed onto the screen.
    painting_ = true;
    paintedInPaintGL_ = false;
    static_cast<QObject*>(widget_.data())->event(event);
    if (!paintedInPaintGL_ && widget_ && widget_->isValid()) {
        widget_->makeCurrent();
        Paint();
    }
    painting_ = false;
    // A running animation wants the next frame as well.
    if (manager_->NeedsRedraw())
        update();
    return true;
}

bool QtBackend::eventFilter(QObject* watched, QEvent* event) {
    if (!installed_ || watched != view_)
        return false;
    switch (event->type()) {
    case QEvent::Paint:
        return widget_ && !painting_ && paintWidget(event);
    case QEvent::Resize: {
        // Before the host's paint, so that its scene and the widgets agree from the first frame on.
        const QSize size = static_cast<QResizeEvent*>(event)->size();
        const double ratio = PixelRatio();
        cameras_->Resize(static_cast<int>(std::lround(size.width() * ratio)),
                         static_cast<int>(std::lround(size.height() * ratio)));
        return false;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd:
    case QEvent::TabletPress:
    case QEvent::TabletMove:
    case QEvent::TabletRelease:
        if (!ready() || dispatch(event) == DRAW_NOTHING)
            return false;
        event->accept();
        return true;
    default:
        return false;
    }
}

DrawFlags QtBackend::dispatch(QEvent* event) {
    ClearDrawFlags();
    const double ratio = PixelRatio();
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseMove: {
        const auto* m = static_cast<QMouseEvent*>(event);
        const int x = toPixel(m->position().x(), ratio), y = toPixel(m->position().y(), ratio);
        const int buttons = buttonMask(m->buttons()), mods = static_cast<int>(m->modifiers());
        // Hit detection reads the overlay's layers: the view's context must be current for it.
        if (widget_)
            widget_->makeCurrent();
        else
            window_->makeCurrent();
        if (event->type() == QEvent::MouseMove)
            input_->mouseMoveEvent(x, y, lastX_, lastY_, buttons, mods);
        else if (event->type() == QEvent::MouseButtonRelease)
            input_->mouseReleaseEvent(x, y, x, y, buttons, mods);
        else
            input_->mousePressEvent(x, y, x, y, buttons, mods);
        if (widget_)
            widget_->doneCurrent();
        else
            window_->doneCurrent();
        lastX_ = x;
        lastY_ = y;
        break;
    }
    case QEvent::Wheel: {
        const int delta = static_cast<QWheelEvent*>(event)->angleDelta().y();
        if (delta != 0)
            input_->mouseWheelEvent(delta);
        break;
    }
    case QEvent::KeyPress:
    case QEvent::KeyRelease: {
        const auto* k = static_cast<QKeyEvent*>(event);
        const auto key = static_cast<unsigned>(k->key()), mods = static_cast<unsigned>(k->modifiers());
        if (event->type() == QEvent::KeyPress)
            input_->keyPressEvent(key, mods);
        else
            input_->keyReleaseEvent(key, mods);
        break;
    }
    case QEvent::TouchBegin:
    case QEvent::TouchUpdate:
    case QEvent::TouchEnd: {
        VX_UI::TouchEvent touch;
        for (const QEventPoint& p : static_cast<QTouchEvent*>(event)->points()) {
            if (touch.pointCount == 10)
                break;
            VX_UI::TouchPoint& t = touch.points[touch.pointCount++];
            t.id = p.id();
            t.x = static_cast<float>(p.position().x() * ratio);
            t.y = static_cast<float>(p.position().y() * ratio);
            t.state = p.state() == QEventPoint::Pressed ? 0 : p.state() == QEventPoint::Released ? 2 : 1;
        }
        input_->touchDispatchToHandlers(&touch);
        break;
    }
    default:
        return offerTablet(event);
    }
    return GetDrawFlags();
}

DrawFlags QtBackend::offerTablet(QEvent* event) {
    const auto* t = static_cast<QTabletEvent*>(event);
    VX_UI::TabletEvent tablet;
    tablet.x = static_cast<float>(t->position().x() * PixelRatio());
    tablet.y = static_cast<float>(t->position().y() * PixelRatio());
    tablet.pressure = static_cast<float>(t->pressure());
    tablet.buttons = buttonMask(t->buttons());
    // The input manager has no tablet entry: offer it to the handlers in the same order, on a copy,
    // since a handler may remove itself.
    const std::map<int, InputHandler*> handlers = input_->GetScreenHandlers();
    DrawFlags result = DRAW_NOTHING;
    for (const auto& [id, handler] : handlers) {
        if (result != DRAW_NOTHING)
            break;
        result = event->type() == QEvent::TabletPress     ? handler->tabletPressEvent(&tablet)
                 : event->type() == QEvent::TabletRelease ? handler->tabletReleaseEvent(&tablet)
                                                          : handler->tabletMoveEvent(&tablet);
    }
    if (result != DRAW_NOTHING)
        SetDrawFlags(result);
    return result;
}

void QtBackend::FollowViewport(std::shared_ptr<Camera> camera) {
    cameras_->Add(std::move(camera));
}

} // namespace GUI
