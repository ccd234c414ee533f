#pragma once
// A small host application: a lit, rotating cube of its own and a TrelvoGUI overlay on top.

#include <trelvogui/gui/guiinputmanager.h>
#include <trelvogui/gui/guimanager.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>
#include <graphicsbase/graphicsscene.h>
#include <graphicsbase/localframe.h>

#include <GL/glew.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace GUI::Controls {
class Panel;
class Label;
class Button;
class SwitchButton;
} // namespace GUI::Controls
class ProbeControl;
class ManipulatorControl;
class PlaneControl;
class TriadControl;
class LightControl;
class SceneCompositor;

namespace demo {
class DemoLegend;
class DemoCharts;

/// Everything a host does: owns its scene, builds the overlay once, forwards input through the
/// input manager and draws the overlay after its own scene each frame.
class DemoHost : public GraphicsBase::GraphicsScene {
public:
    DemoHost(int width, int height);
    ~DemoHost() override;

    /// With the host's context current. False (with a message) if the overlay cannot start.
    bool Initialize();
    /// Draws the cube (turned by `angle` degrees) on its floor into the current framebuffer through
    /// the scene compositor, then the overlay.
    void RenderFrame(float angle);
    /// Ambient occlusion on the scene (off by default); `showTerm` shows the occlusion term alone.
    void SetSceneOcclusion(bool on, bool showTerm = false);
    void Resize(int width, int height);

    /// Host-side input, y growing downward; the previous position is tracked here.
    bool MouseMove(int x, int y, int buttons = 0);
    bool MousePress(int x, int y, int buttons);
    bool MouseRelease(int x, int y, int buttons);
    /// A wheel turn with the pointer where the last pointer event left it (120 a notch).
    bool MouseWheel(int delta);
    /// A key press (GLFW key codes: Escape is 256) with the given modifier bits.
    bool KeyPress(unsigned int key, unsigned int modifiers = 0);
    /// Puts the cube and the gizmo back where the last finished gizmo drag started; the host's undo,
    /// one step per drag. False when there is nothing to undo.
    bool UndoGizmoDrag();

    void SetDrawFlags(GraphicsBase::DrawFlags flags) override;
    /// Lines describing what the last events reached.
    std::vector<std::string> TakeJournal();

    /// The host's camera, light and the cube's pose, shared with the 3D widgets.
    const std::shared_ptr<GraphicsBase::Camera>& SceneCamera() const { return camera_; }
    const std::shared_ptr<GraphicsBase::DirectionalLight>& SceneLight() const { return light_; }
    const std::shared_ptr<GraphicsBase::LocalFrame>& CubeFrame() const { return cubeFrame_; }
    /// What a host does after moving its camera: new matrices (the widgets that follow it notice).
    void CameraChanged();

    bool Rotating() const { return rotating_; }
    GUI::GUIManager& Manager() { return *manager_; }
    GUI::Controls::Button* ResetButton() { return resetButton_; }
    GUI::Controls::SwitchButton* RotateSwitch() { return rotateSwitch_; }
    GUI::Controls::Panel* Toolbar() { return toolbar_; }
    GUI::Controls::Panel* NotesPanel() { return notes_; }
    ProbeControl* Probe() { return probe_.get(); }
    /// The gizmo on the cube and the slicing-plane widget beside it.
    ManipulatorControl* Gizmo() { return gizmo_.get(); }
    PlaneControl* SlicePlane() { return plane_.get(); }
    /// The view-orientation cube (lower left) and the light widget (lower right).
    TriadControl* Triad() { return triad_.get(); }
    LightControl* LightWidget() { return lightWidget_.get(); }
    /// The colour bar with its depth axis and the distance axis under the scene.
    DemoLegend* Legend() { return legend_.get(); }
    DemoCharts* Charts() { return charts_.get(); }
    /// A pixel deep inside a part of a control, found in the overlay's id layer; host pixels, y down.
    /// False when the part is not drawn.
    bool FindPart(unsigned pid, unsigned sid, int& x, int& y);

private:
    void buildOverlay();
    /// The 3D widgets: a gizmo that carries the cube and a plane widget.
    bool buildSceneWidgets();
    bool buildCube();
    void drawCube();
    void note(std::string line) { journal_.push_back(std::move(line)); }
    template <class T> T* own(T* control) {
        owned_.emplace_back(control, [](void* p) { delete static_cast<T*>(p); });
        return control;
    }

    int width_;
    int height_;
    std::shared_ptr<GraphicsBase::Camera> camera_;
    std::shared_ptr<GraphicsBase::DirectionalLight> light_;
    std::shared_ptr<GraphicsBase::LocalFrame> cubeFrame_;
    std::shared_ptr<GUI::GUIManager> manager_;
    std::unique_ptr<GUI::GUIInputManager> input_;
    std::unique_ptr<SceneCompositor> compositor_;
    std::unique_ptr<ProbeControl> probe_;
    std::unique_ptr<ManipulatorControl> gizmo_;
    std::unique_ptr<PlaneControl> plane_;
    std::unique_ptr<TriadControl> triad_;
    std::unique_ptr<LightControl> lightWidget_;
    std::unique_ptr<DemoLegend> legend_;
    std::unique_ptr<DemoCharts> charts_;
    float spinAngle_ = 0.f;
    std::vector<std::unique_ptr<void, void (*)(void*)>> owned_;
    GUI::Controls::Panel* toolbar_ = nullptr;
    GUI::Controls::Panel* notes_ = nullptr;
    GUI::Controls::Button* resetButton_ = nullptr;
    GUI::Controls::SwitchButton* rotateSwitch_ = nullptr;
    GUI::Controls::Label* clicksLabel_ = nullptr;
    int clicks_ = 0;
    bool rotating_ = true;
    int lastX_ = 0;
    int lastY_ = 0;
    std::vector<std::string> journal_;
    std::vector<std::string> stepNotes_;
    // The host's undo stack of gizmo drags: the gizmo's and the cube's pose when each drag started.
    struct GizmoUndo {
        GraphicsBase::LocalFrame gizmo;
        GraphicsBase::LocalFrame cube;
    };
    std::vector<GizmoUndo> gizmoUndo_;
    GraphicsBase::LocalFrame cubeAtPress_;
    GLuint cubeProgram_ = 0;
    GLuint cubeVao_ = 0;
    GLuint cubeVbo_ = 0;
};

} // namespace demo
