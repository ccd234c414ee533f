// The manager's display scale: every 3D widget and data control drawn at scale 2 in a view twice as
// large is its scale-1 picture enlarged, colours and picking ids alike.
#include "support/layerpixels.h"
#include "support/overlayfixture.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/chartcontrol.h>
#include <trelvogui/legendcontrol.h>
#include <trelvogui/lightcontrol.h>
#include <trelvogui/manipulatorcontrol.h>
#include <trelvogui/triadcontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>

namespace {

using trelvo::test::LayerPixels;

struct Widget {
    const char* name;
    /// Makes, initialises and registers the widget; `rectangle` is where a rectangle-placed one goes
    /// at scale 1 (the test doubles it for scale 2).
    std::function<std::unique_ptr<GUI::Controls::Base>(const std::shared_ptr<Camera>&,
                                                       const std::shared_ptr<DirectionalLight>&)>
        make;
    GUI::Geometry::Rectangle rectangle;
    /// Share of drawn pixels allowed to differ from the enlarged picture: glyphs rasterised at twice
    /// the size are not the small ones enlarged (their place and extent still are), the rest is.
    double tolerance;
};

GUI::Geometry::Rectangle Doubled(const GUI::Geometry::Rectangle& r) {
    return {2 * r.xMin, 2 * r.xMax, 2 * r.yMin, 2 * r.yMax};
}

const Widget kWidgets[] = {
    {"Gizmo",
     [](auto& camera, auto&) -> std::unique_ptr<GUI::Controls::Base> {
         auto gizmo = std::make_unique<ManipulatorControl>(camera);
         if (!gizmo->Initialize())
             return nullptr;
         gizmo->setPosition(0.2f, -0.1f, 0.f);
         return gizmo;
     },
     {0, 0, 0, 0},
     0.01},
    {"ViewCube",
     [](auto& camera, auto& light) -> std::unique_ptr<GUI::Controls::Base> {
         auto cube = std::make_unique<TriadControl>(camera, light);
         return cube->Initialize() ? std::move(cube) : nullptr;
     },
     {0, 0, 0, 0},
     0.02},
    {"Light",
     [](auto&, auto& light) -> std::unique_ptr<GUI::Controls::Base> {
         auto widget = std::make_unique<LightControl>(light);
         return widget->Initialize() ? std::move(widget) : nullptr;
     },
     {0, 0, 0, 0},
     0.01},
    {"Axis",
     [](auto&, auto&) -> std::unique_ptr<GUI::Controls::Base> {
         auto axis = std::make_unique<AxisControl>();
         if (!axis->Initialize())
             return nullptr;
         axis->SetTitle(L"Depth");
         axis->SetRange(0.f, 10.f);
         return axis;
     },
     {40, 220, 100, 140},
     0.45},
    {"Chart",
     [](auto&, auto&) -> std::unique_ptr<GUI::Controls::Base> {
         auto chart = std::make_unique<ChartControl>();
         if (!chart->Initialize() || !chart->SetRanges(0.0, 10.0, 0.0, 5.0))
             return nullptr;
         return chart;
     },
     {8, 248, 8, 248},
     0.15},
    {"Legend",
     [](auto&, auto&) -> std::unique_ptr<GUI::Controls::Base> {
         auto legend = std::make_unique<LegendControl>();
         if (!legend->Initialize() || !legend->SetRange(0.0, 100.0))
             return nullptr;
         legend->SetColorMap({{20, 40, 200, 255}, {240, 200, 30, 255}}, true);
         return legend;
     },
     {20, 120, 20, 236},
     0.15},
};

class DisplayScaleTest : public trelvo::test::OverlayTest, public ::testing::WithParamInterface<Widget> {
protected:
    void SetUp() override {
        OverlayTest::SetUp();
        camera = std::make_shared<Camera>();
        camera->SetPosition({3.f, 2.5f, 4.f});
        camera->SetTarget({0.f, 0.f, 0.f});
        camera->SetPerspective(45.f, 0.1f, 100.f);
        light = std::make_shared<DirectionalLight>();
        light->position = {1.f, 1.f, 2.f};
    }

    /// The layers of a view of `side` pixels at the manager's current scale.
    LayerPixels Draw(GUI::Controls::Base& widget, int side, const GUI::Geometry::Rectangle& rectangle) {
        manager->Resize(side, side);
        camera->SetViewport(side, side);
        camera->CalcMatrices();
        manager->SetCameraUpdated(true);
        if (rectangle.Width() > 0)
            widget.SetRectangle(rectangle);
        manager->UpdateLayers();
        return trelvo::test::ReadLayers(*manager, side, side);
    }

    std::shared_ptr<Camera> camera;
    std::shared_ptr<DirectionalLight> light;
};

/// Pixels of `large` that no pixel of `small` around the matching one explains (edges may fall on
/// either side of a doubled pixel), out of the drawn ones.
struct Mismatch {
    int drawn = 0, colour = 0, ids = 0;
};

GUI::Geometry::Rectangle DrawnBounds(const LayerPixels& layers) {
    GUI::Geometry::Rectangle b{1 << 20, -1, 1 << 20, -1};
    for (int y = 0; y < layers.height; ++y)
        for (int x = 0; x < layers.width; ++x)
            if (layers.Color(x, y)[3] != 0 || layers.Pid(x, y) != 0)
                b = {std::min(b.xMin, x), std::max(b.xMax, x), std::min(b.yMin, y), std::max(b.yMax, y)};
    return b;
}

Mismatch Compare(const LayerPixels& small, const LayerPixels& large) {
    Mismatch m;
    for (int y = 0; y < large.height; ++y)
        for (int x = 0; x < large.width; ++x) {
            const auto c = large.Color(x, y);
            const uint32_t pid = large.Pid(x, y), sid = large.Sid(x, y);
            if (c[3] == 0 && pid == 0)
                continue;
            ++m.drawn;
            bool colour = false, ids = false;
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    const int sx = x / 2 + dx, sy = y / 2 + dy;
                    if (sx < 0 || sy < 0 || sx >= small.width || sy >= small.height)
                        continue;
                    const auto s = small.Color(sx, sy);
                    bool near = true;
                    for (int k = 0; k < 4; ++k)
                        near = near && std::abs(int(s[k]) - int(c[k])) <= 40;
                    colour = colour || near;
                    ids = ids || (small.Pid(sx, sy) == pid && small.Sid(sx, sy) == sid);
                }
            m.colour += colour ? 0 : 1;
            m.ids += ids ? 0 : 1;
        }
    return m;
}

} // namespace

TEST_P(DisplayScaleTest, ScaleTwoInATwiceLargerViewIsTheScaleOnePictureEnlarged) {
    const Widget& w = GetParam();
    std::unique_ptr<GUI::Controls::Base> widget = w.make(camera, light);
    ASSERT_TRUE(widget);
    widget->Register(manager);
    const LayerPixels small = Draw(*widget, 256, w.rectangle);
    // The live widget follows the change: nothing is made again.
    ASSERT_TRUE(manager->SetDisplayScale(2.f));
    const LayerPixels large = Draw(*widget, 512, Doubled(w.rectangle));
    const Mismatch m = Compare(small, large);
    ASSERT_GT(m.drawn, 400) << "nothing drawn";
    // Where the widget lies and how far it reaches: to the doubled pixel, give or take a glyph's side
    // bearing, which a right-aligned number's large font rounds differently.
    const GUI::Geometry::Rectangle a = DrawnBounds(small), b = DrawnBounds(large);
    EXPECT_NEAR(b.xMin, 2 * a.xMin, 6);
    EXPECT_NEAR(b.xMax, 2 * a.xMax, 6);
    EXPECT_NEAR(b.yMin, 2 * a.yMin, 6);
    EXPECT_NEAR(b.yMax, 2 * a.yMax, 6);
    const double colour = double(m.colour) / m.drawn, ids = double(m.ids) / m.drawn;
    EXPECT_LE(colour, w.tolerance) << m.colour << " of " << m.drawn;
    EXPECT_LE(ids, w.tolerance) << m.ids << " of " << m.drawn;
    if (HasFailure()) {
        trelvo::test::SaveLayer(small, std::string("displayscale_") + w.name + "_1");
        trelvo::test::SaveLayer(large, std::string("displayscale_") + w.name + "_2");
    }
    widget.reset();
}

INSTANTIATE_TEST_SUITE_P(Widgets, DisplayScaleTest, ::testing::ValuesIn(kWidgets),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(DisplayScaleTest, OutsideHalfToFourIsRefusedAndAChangeRedraws) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (float bad : {0.49f, 4.01f, 0.f, -1.f, nan, std::numeric_limits<float>::infinity()}) {
        testing::internal::CaptureStdout();
        EXPECT_FALSE(manager->SetDisplayScale(bad)) << bad;
        EXPECT_EQ(testing::internal::GetCapturedStdout().rfind("GUIManager::SetDisplayScale(): ", 0), 0u);
        EXPECT_EQ(manager->GetDisplayScale(), 1.f);
    }
    manager->UpdateLayers();
    for (float good : {0.5f, 4.f}) {
        ASSERT_FALSE(manager->NeedsRedraw());
        EXPECT_TRUE(manager->SetDisplayScale(good));
        EXPECT_EQ(manager->GetDisplayScale(), good);
        EXPECT_TRUE(manager->NeedsRedraw());
        manager->UpdateLayers();
    }
}
