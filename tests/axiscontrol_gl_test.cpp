// The axis's tick band drawn into the overlay's layers: where it lands, its colour, its ids.
#include "support/layerpixels.h"
#include "support/overlayfixture.h"
#include "support/shaderdir.h"

#include <trelvogui/axiscontrol.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

using namespace GraphicsBase;

using GUI::Geometry::Rectangle;
using trelvo::test::LayerPixels;
using trelvo::test::ReadLayers;

namespace {

const GUI::Color kInk{250, 200, 40, 255};

class AxisGLTest : public trelvo::test::OverlayTest {
protected:
    /// An initialised, registered axis on `r` with the test's ink, drawn once.
    void Build(AxisControl& axis, AxisControl::Orientation orientation, Rectangle r) {
        axis.SetOrientation(orientation);
        axis.SetFontColor(kInk);
        ASSERT_TRUE(axis.Initialize());
        axis.SetRectangle(r);
        axis.Register(manager);
        manager->UpdateLayers();
    }
    LayerPixels Layers() { return ReadLayers(*manager, 256, 256); }
};

// A 160 x 160 axis at (48, 48): four intervals either way, ticks every 40 pixels along it.
const Rectangle kSquare{48, 208, 48, 208};

// Overlay pixel at `along` pixels along the axis and `depth` pixels into the band from its edge.
struct Edge {
    AxisControl::Orientation orientation;
    int (*x)(int along, int depth);
    int (*y)(int along, int depth);
};
const Edge kEdges[] = {
    {AxisControl::AlongYMin, [](int a, int) { return 48 + a; }, [](int, int d) { return 48 + d; }},
    {AxisControl::AlongYMax, [](int a, int) { return 48 + a; }, [](int, int d) { return 207 - d; }},
    {AxisControl::AlongXMax, [](int, int d) { return 207 - d; }, [](int a, int) { return 48 + a; }},
    // This orientation mirrors its band about the x-min edge: it lies just outside the rectangle.
    {AxisControl::AlongXMin, [](int, int d) { return 47 - d; }, [](int a, int) { return 48 + a; }},
};

} // namespace

TEST_F(AxisGLTest, BandLiesAlongItsEdgeWithAMarkAtEachTickAndCarriesTheAxisId) {
    for (const Edge& e : kEdges) {
        SCOPED_TRACE(static_cast<int>(e.orientation));
        AxisControl axis;
        Build(axis, e.orientation, kSquare);
        ASSERT_EQ(axis.GetIntervalCount(), 4);
        const LayerPixels layers = Layers();
        const unsigned id = axis.GetId();
        auto pid = [&](int along, int depth) { return layers.Pid(e.x(along, depth), e.y(along, depth)); };

        EXPECT_EQ(pid(20, 0), id) << "baseline along the edge";
        EXPECT_EQ(pid(20, 1), id);
        EXPECT_EQ(pid(20, 2), 0u) << "between the marks the band is only the baseline";
        EXPECT_EQ(pid(20, 8), 0u) << "nothing past the band's depth";
        for (int tick : {40, 80, 120}) {
            EXPECT_EQ(pid(tick - 1, 7), id) << "mark of tick " << tick;
            EXPECT_EQ(pid(tick, 7), id);
            EXPECT_EQ(pid(tick + 1, 7), 0u);
            EXPECT_EQ(pid(tick - 2, 7), 0u);
        }
        EXPECT_EQ(pid(0, 7), id) << "the end marks stay inside the band";
        EXPECT_EQ(pid(159, 7), id);
        auto c = layers.Color(e.x(20, 0), e.y(20, 0));
        EXPECT_EQ(c, (std::array<uint8_t, 4>{kInk.r, kInk.g, kInk.b, kInk.a}));
        if (HasFailure()) {
            trelvo::test::SaveLayer(layers, "axis_band_" + std::to_string(e.orientation));
            return;
        }
    }
}

TEST_F(AxisGLTest, MarksFollowIntegerStepsAndTheirNumbers) {
    AxisControl axis;
    axis.SetAxisType(AxisControl::IntegerSteps);
    axis.SetRange(0.f, 10.f);
    Build(axis, AxisControl::AlongYMin, {40, 200, 100, 140});
    const LayerPixels layers = Layers();
    // Ticks at 0.3, 0.6 and 0.9 of 160 pixels: 48, 96, 144.
    for (int t : {48, 96, 144}) {
        EXPECT_EQ(layers.Pid(40 + t, 106), axis.GetId()) << t;
        EXPECT_EQ(layers.Pid(40 + t + 1, 106), 0u) << t;
    }
    EXPECT_EQ(axis.GetNumberLabels()[1]->GetRectangle(), (Rectangle{40 + 48 - 25, 40 + 48 + 25, 108, 128}));
}

TEST_F(AxisGLTest, ShowFlagsLeaveThePictureAsItWas) {
    AxisControl axis;
    axis.SetTitle(L"Depth (mm)");
    axis.SetRange(-2000.f, 1500.f);
    Build(axis, AxisControl::AlongYMax, {20, 236, 60, 200});
    const LayerPixels before = Layers();
    axis.ShowTicks(false);
    axis.ShowNumbers(false);
    axis.ShowTitle(false);
    axis.SetNeedsRedraw(true);
    manager->UpdateLayers();
    const LayerPixels after = Layers();
    EXPECT_EQ(before.color, after.color);
    // Also catches a first frame that differs from later ones: the numbers' quads overlap, so a
    // lost id layer binding while their texts are rasterised shows up as missing label ids.
    EXPECT_EQ(before.ids, after.ids);

    // The numbers are really there: the first one's text covers some of its rectangle.
    const Rectangle first = axis.GetNumberLabels().front()->GetRectangle();
    const unsigned labelId = axis.GetNumberLabels().front()->GetId();
    int covered = 0;
    for (int y = first.yMin; y < first.yMax; ++y)
        for (int x = std::max(first.xMin, 0); x < first.xMax; ++x)
            covered += after.Pid(x, y) == labelId;
    EXPECT_GT(covered, 10);
}

// Disabled, a data control (here an axis with its numbers and title) is drawn at a fixed fraction of
// its opacity over what is behind it and writes no ids, so the panel under it gets the pointer.
TEST_F(AxisGLTest, ADisabledDataControlIsDrawnFadedAndLeavesThePointerToWhatIsBehind) {
    GUI::Controls::Panel panel;
    panel.SetRectangle({0, 256, 0, 256});
    panel.Register(manager);
    AxisControl axis;
    axis.SetFontColor(kInk);
    ASSERT_TRUE(axis.Initialize());
    axis.SetRectangle(kSquare);
    panel.AddChild(&axis);
    manager->UpdateLayers();
    const LayerPixels on = Layers();
    axis.SetVisible(false);
    manager->UpdateLayers();
    const LayerPixels hidden = Layers();
    axis.SetVisible(true);
    axis.SetEnabled(false);
    manager->UpdateLayers();
    const LayerPixels off = Layers();
    // Each of the axis's draws (band, marks, texts) is faded over what is under it, so a pixel ends
    // between the panel's colour and the enabled axis's one, most of the way back to the panel.
    int axisPixels = 0, contrasted = 0;
    float share = 0.f;
    for (int y = 0; y < 256; ++y)
        for (int x = 0; x < 256; ++x) {
            if (on.Pid(x, y) == hidden.Pid(x, y))
                continue;
            ++axisPixels;
            ASSERT_EQ(off.Pid(x, y), panel.GetId()) << x << "," << y;
            for (int c = 0; c < 3; ++c) {
                const int from = hidden.Color(x, y)[c], to = on.Color(x, y)[c], got = off.Color(x, y)[c];
                // 8-bit rounding of the layer and of the blend: two steps either way.
                ASSERT_TRUE(got >= std::min(from, to) - 2 && got <= std::max(from, to) + 2) << x << "," << y;
                if (std::abs(to - from) > 40) {
                    share += static_cast<float>(got - from) / static_cast<float>(to - from);
                    ++contrasted;
                }
            }
        }
    ASSERT_GT(contrasted, 100);
    EXPECT_NEAR(share / static_cast<float>(contrasted), 0.45f, 0.15f) << "faded to about 45 %";
    EXPECT_GT(axisPixels, 500) << "the band, its marks and its texts";
    axis.SetEnabled(true);
    manager->UpdateLayers();
    const LayerPixels again = Layers();
    EXPECT_EQ(again.color, on.color);
    EXPECT_EQ(again.ids, on.ids);
}

TEST_F(AxisGLTest, MissingUniformsAndBrokenShaders) {
    struct Case {
        const char* name;
        const char* vertex;
        const char* fragment;
        bool initializes;
        bool reportsProjection;
        bool drawsBand;
    };
    const char* kPlainFragment = R"(#version 330 core
uniform uint pid;
layout(location = 0) out vec4 fragColor;
layout(location = 1) out uvec4 fragIds;
void main() { fragColor = vec4(1.0); fragIds = uvec4(pid, 0u, 0u, 0u); }
)";
    const Case cases[] = {
        {"no projection", R"(#version 330 core
layout(location = 0) in vec2 position;
uniform mat4 ModelViewMatrix;
void main() { gl_Position = vec4(-1.0, -1.0, 0.0, 1.0) + ModelViewMatrix * vec4(position, 0.0, 1.0) * vec4(2.0 / 256.0, 2.0 / 256.0, 1.0, 0.0); }
)",
         kPlainFragment, true, true, true},
        {"no model-view: silent", R"(#version 330 core
layout(location = 0) in vec2 position;
uniform mat4 ProjectionMatrix;
void main() { gl_Position = ProjectionMatrix * vec4(position * 4.0, 0.0, 1.0); }
)",
         kPlainFragment, true, false, false},
        {"broken fragment stage", R"(#version 330 core
void main() { gl_Position = vec4(0.0); }
)",
         "#version 330 core\nvoid main() { broken }\n", false, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        trelvo::test::ShaderDir shaders;
        shaders.Write("BackgroundMV.vs", c.vertex);
        shaders.Write("Background.fs", c.fragment);
        AxisControl axis;
        axis.SetOrientation(AxisControl::AlongYMin);
        testing::internal::CaptureStdout();
        EXPECT_EQ(axis.Initialize(), c.initializes);
        axis.SetRectangle({40, 200, 100, 140});
        axis.Register(manager);
        manager->UpdateLayers();
        const std::string output = testing::internal::GetCapturedStdout();
        EXPECT_EQ(output.find("Could not get index for ProjectionMatrix\n") != std::string::npos,
                  c.reportsProjection)
            << output;
        EXPECT_EQ(output.find("ModelViewMatrix"), std::string::npos) << output;
        EXPECT_EQ(Layers().Pid(60, 101) == axis.GetId(), c.drawsBand);
    }
}

TEST_F(AxisGLTest, ATurnedAxisLaysOutItsLabelsAsOneMadeThatWay) {
    const std::pair<AxisControl::Orientation, AxisControl::Orientation> turns[] = {
        {AxisControl::AlongYMin, AxisControl::AlongXMax},
        {AxisControl::AlongXMin, AxisControl::AlongYMax},
        {AxisControl::AlongYMax, AxisControl::AlongYMin}};
    for (const auto& [from, to] : turns) {
        SCOPED_TRACE(std::to_string(from) + " -> " + std::to_string(to));
        AxisControl turned, made;
        turned.SetTitle(L"t");
        made.SetTitle(L"t");
        Build(turned, from, kSquare);
        turned.SetOrientation(to);
        turned.SetRectangle(kSquare); // the next layout
        Build(made, to, kSquare);
        EXPECT_EQ(turned.GetTitleLabel()->GetOrientation(), made.GetTitleLabel()->GetOrientation());
        ASSERT_EQ(turned.GetNumberLabels().size(), made.GetNumberLabels().size());
        for (std::size_t i = 0; i < made.GetNumberLabels().size(); ++i) {
            GUI::Controls::Label* a = turned.GetNumberLabels()[i];
            GUI::Controls::Label* b = made.GetNumberLabels()[i];
            EXPECT_EQ(a->GetHorizontalAlignment(), b->GetHorizontalAlignment()) << i;
            EXPECT_EQ(a->GetVerticalAlignment(), b->GetVerticalAlignment()) << i;
            EXPECT_EQ(a->GetRectangle(), b->GetRectangle()) << i;
        }
    }
}
