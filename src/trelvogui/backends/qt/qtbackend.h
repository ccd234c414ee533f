#pragma once
// Feeds a QOpenGLWidget's (or QOpenGLWindow's) events to an overlay and draws it after the host's
// paintGL, scheduling frames only through update().

#include <trelvogui/backends/qt/trelvogui_qt_export.h>
#include <trelvogui/gui/guiinputmanager.h>

#include <graphicsbase/graphicsscene.h>

#include <boost/signals2/connection.hpp>
#include <boost/signals2/signal.hpp>

#include <QObject>
#include <QPointer>

#include <memory>

class QOpenGLWidget;
class QOpenGLWindow;
class QOpenGLContext;
class QEvent;

namespace GraphicsBase {
class Camera;
}

namespace GUI {

class GUIManager;
namespace detail {
class FollowedCameras;
}

/// Watches a QOpenGLWidget or QOpenGLWindow through an event filter and offers its mouse, wheel,
/// key, touch and tablet events to a GUIInputManager whose first screen handler is the overlay's
/// manager. Positions are converted from device-independent to framebuffer pixels through the
/// device-pixel ratio (y growing downward); keys arrive as Qt key codes with Qt's modifier bits;
/// wheel deltas are Qt's angle delta (120 per notch). Events no handler consumed go on to the view's
/// own handlers. The manager follows the framebuffer's size. A redraw request of the manager or a
/// non-zero input result calls the view's update(); nothing runs on a timer, so an idle view draws
/// nothing.
///
/// On a widget it switches on mouse tracking and touch events, and gives a widget without a focus
/// policy the strong one, so that hover, touch and keys arrive.
///
/// Usage: construct it with the view (before or after the context exists); initialise the manager in
/// the view's initializeGL. A QOpenGLWidget gets the overlay drawn after each paintGL by itself; a
/// QOpenGLWindow host calls Paint() from its paintOverGL.
class TRELVOGUI_QT_EXPORT QtBackend : public QObject, public GraphicsBase::GraphicsScene {
public:
    /// Every non-zero input result, for hosts that act on more than the overlay's redraw (a camera
    /// moved by the view cube, the scene changed by the gizmo).
    boost::signals2::signal<void(GraphicsBase::DrawFlags)> DrawFlagsSignal;

    QtBackend(QOpenGLWidget* widget, GUIManager& manager);
    QtBackend(QOpenGLWindow* window, GUIManager& manager);
    ~QtBackend() override;

    QtBackend(const QtBackend&) = delete;
    QtBackend& operator=(const QtBackend&) = delete;

    /// False when the view was null or already had a backend; nothing is watched then.
    bool Installed() const { return installed_; }
    GUIInputManager& Input() { return *input_; }
    GUIManager& Manager() { return *manager_; }

    /// Brings the manager to the framebuffer's size, updates the layers and composites them into
    /// the framebuffer bound now. Needs the view's context current; false, with a message, otherwise
    /// or when the manager is not initialised.
    bool Paint();
    /// Frames the overlay was drawn into.
    int Frames() const { return frames_; }
    /// Framebuffer pixels per device-independent pixel.
    double PixelRatio() const;
    /// While on (the default), each Paint sets the manager's display scale to PixelRatio(), so the
    /// widgets keep their size on a HiDPI screen and when the view moves to another screen. Off
    /// leaves the scale to the host.
    void SetFollowDisplayScale(bool on) { followDisplayScale_ = on; }
    bool GetFollowDisplayScale() const { return followDisplayScale_; }

    /// Keeps the camera's viewport at the framebuffer size when the view is resized (before the
    /// host's paint) or its device-pixel ratio changes, and rebuilds its matrices, so widgets are
    /// drawn and picked where the host's scene is. Null, or a camera already followed, is ignored.
    void FollowViewport(std::shared_ptr<GraphicsBase::Camera> camera);

    /// Input results arrive here: anything non-zero schedules a frame.
    void SetDrawFlags(GraphicsBase::DrawFlags flags) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void attach(QObject* view);
    void update();
    bool ready();
    QOpenGLContext* context() const;
    GraphicsBase::DrawFlags dispatch(QEvent* event);
    GraphicsBase::DrawFlags offerTablet(QEvent* event);
    bool paintWidget(QEvent* event);

    QPointer<QOpenGLWidget> widget_;
    QPointer<QOpenGLWindow> window_;
    QObject* view_ = nullptr;
    GUIManager* manager_;
    std::unique_ptr<GUIInputManager> input_;
    std::unique_ptr<detail::FollowedCameras> cameras_;
    boost::signals2::scoped_connection redrawRequest_;
    bool installed_ = false;
    bool followDisplayScale_ = true;
    bool warnedEarly_ = false;
    bool painting_ = false;
    bool paintedInPaintGL_ = false;
    int lastX_ = 0;
    int lastY_ = 0;
    int frames_ = 0;
    int tracedFrames_ = 0;
    bool traceFrames_ = false;
};

} // namespace GUI
