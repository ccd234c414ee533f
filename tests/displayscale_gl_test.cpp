// The display scale: a widget drawn at scale 2 in a view twice as large is the scale-1 picture
// enlarged, for the 3D widgets and the data controls alike; bad scales are refused.
#include "support/layerpixels.h"
#include "support/overlayfixture.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/lightcontrol.h>
#include <trelvogui/manipulatorcontrol.h>
#include <trelvogui/triadcontrol.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/directionallight.h>
#include <graphicsbase/localframe.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>
#include <string>

using namespace GraphicsBase;

namespace {

constexpr int kWidth = 200, kHeight = 160;

class DisplayScaleTest : public trelvo::test::OverlayTest {
protected:
    void SetUp() override {
        OverlayTest::SetUp();
        camera = std::make_shared<Camera>();
        light = std::make_shared<DirectionalLight>();
        camera->SetTarget({0.f, 0.f, 0.f});
        camera->SetPosition({2.f, 1.5f, 4.f});
        camera->SetUpVector({0.f, 1.f, 0.f});
    }
    /// Sizes the view and the camera for `scale`, lets the host lay out, and returns the layers as drawn.
    trelvo::test::LayerPixels DrawAt(float scale, const std::function<void()>& layOut) {
        const int w = static_cast<int>(kWidth * scale), h = static_cast<int>(kHeight * scale);
        EXPECT_TRUE(manager->SetDisplayScale(scale));
        manager->Resize(w, h);
        camera->SetViewport(w, h);
        camera->CalcMatrices();
        layOut();
        manager->UpdateLayers();
        return trelvo::test::ReadLayers(*manager, w, h);
    }

    std::shared_ptr<Camera> camera;
    std::shared_ptr<DirectionalLight> light;
};

struct Widget {
    const char* name;
    /// Compared in blocks of this many scale-1 pixels a side: text is hinted at each size, so a
    /// number lands a pixel or two apart at the two sizes and is compared more coarsely.
    int block;
    /// Makes and initialises the widget.
    std::function<std::shared_ptr<GUI::Controls::Base>(std::shared_ptr<Camera>,
                                                       std::shared_ptr<DirectionalLight>)>
        make;
};

const Widget kWidgets[] = {
    {"gizmo", 2,
     [](auto camera, auto) {
         auto gizmo = std::make_shared<ManipulatorControl>(camera);
         EXPECT_TRUE(gizmo->Initialize());
         gizmo->attachFrame(std::make_shared<LocalFrame>());
         return std::static_pointer_cast<GUI::Controls::Base>(gizmo);
     }},
    {"cube", 2,
     [](auto camera, auto light) {
         auto cube = std::make_shared<TriadControl>(camera, light);
         EXPECT_TRUE(cube->Initialize());
         return std::static_pointer_cast<GUI::Controls::Base>(cube);
     }},
    {"light", 2,
     [](auto, auto light) {
         auto lamp = std::make_shared<LightControl>(light);
         EXPECT_TRUE(lamp->Initialize());
         return std::static_pointer_cast<GUI::Controls::Base>(lamp);
     }},
    {"axis", 4,
     [](auto, auto) {
         auto axis = std::make_shared<AxisControl>();
         axis->SetOrientation(AxisControl::AlongYMin);
         axis->SetTitle(L"mm");
         axis->SetRange(0.f, 100.f);
         EXPECT_TRUE(axis->Initialize());
         return std::static_pointer_cast<GUI::Controls::Base>(axis);
     }},
};

// Blocks that differ by more than this in a channel count as different; edges and glyphs rasterised
// at another size account for a few of them.
constexpr int kChannelTolerance = 48;
constexpr double kMostDifferent = 0.1;

} // namespace

// Each widget is drawn at scale 1, then the same widget after the scale changes to 2 and the host
// doubles the view (and the rectangles it lays out): each 2 x 2 block of the first picture must match
// the 4 x 4 block in the second, but for edges, and the widget must cover pixels at all.
TEST_F(DisplayScaleTest, AtScaleTwoInATwiceLargerViewEachWidgetIsItsScaleOnePictureEnlarged) {
    for (const Widget& widget : kWidgets) {
        SCOPED_TRACE(widget.name);
        auto control = widget.make(camera, light);
        // The host lays out the axis in its view's pixels (the 3D widgets place themselves).
        const bool hostLaidOut = std::string(widget.name) == "axis";
        auto layOut = [&](int k) {
            if (hostLaidOut)
                control->SetRectangle({20 * k, 180 * k, 30 * k, 70 * k});
        };
        control->Register(manager);
        const auto one = DrawAt(1.f, [&] { layOut(1); });
        const auto two = DrawAt(2.f, [&] { layOut(2); });

        // Compared in blocks, so that an edge rasterised a pixel apart at the two sizes still counts
        // as the same picture.
        auto block = [](const trelvo::test::LayerPixels& layers, int x, int y, int n, int c) {
            int sum = 0;
            for (int dy = 0; dy < n; ++dy)
                for (int dx = 0; dx < n; ++dx)
                    sum += layers.Color(x * n + dx, y * n + dy)[c];
            return sum / (n * n);
        };
        const int n = widget.block;
        int covered = 0, different = 0;
        for (int y = 0; y < kHeight / n; ++y)
            for (int x = 0; x < kWidth / n; ++x) {
                if (block(one, x, y, n, 3) == 0 && block(two, x, y, 2 * n, 3) == 0)
                    continue;
                int worst = 0;
                for (int c = 0; c < 4; ++c)
                    worst = std::max(worst, std::abs(block(one, x, y, n, c) - block(two, x, y, 2 * n, c)));
                ++covered;
                different += worst > kChannelTolerance;
            }
        EXPECT_GT(covered, 50);
        EXPECT_LT(different, kMostDifferent * covered) << different << " of " << covered;
        if (HasFailure()) {
            trelvo::test::SaveLayer(one, std::string("displayscale-") + widget.name + "-1");
            trelvo::test::SaveLayer(two, std::string("displayscale-") + widget.name + "-2");
        }
        control.reset();
        manager->SetDisplayScale(1.f);
    }
}

TEST_F(DisplayScaleTest, ScalesOutsideHalfToFourAreRefusedAndTheLastGoodOneKept) {
    ASSERT_TRUE(manager->SetDisplayScale(1.5f));
    for (float bad : {0.49f, 4.01f, 0.f, -2.f, std::numeric_limits<float>::quiet_NaN(),
                      std::numeric_limits<float>::infinity()}) {
        testing::internal::CaptureStdout();
        EXPECT_FALSE(manager->SetDisplayScale(bad));
        EXPECT_NE(testing::internal::GetCapturedStdout().find("GUIManager::SetDisplayScale()"),
                  std::string::npos);
        EXPECT_EQ(manager->GetDisplayScale(), 1.5f);
    }
    EXPECT_TRUE(manager->SetDisplayScale(0.5f));
    EXPECT_TRUE(manager->SetDisplayScale(4.f));
}
