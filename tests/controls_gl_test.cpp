// Standard controls through the real path: drawn into the id layer, driven by routed pointer events.
#include "support/overlayfixture.h"

#include <trelvogui/gui/button.h>
#include <trelvogui/gui/guimanager.h>
#include <trelvogui/gui/label.h>
#include <trelvogui/gui/panel.h>
#include <trelvogui/gui/sizehandle.h>
#include <trelvogui/gui/switchbutton.h>
#include <trelvogui/probecontrol.h>

using namespace GraphicsBase;

using GUI::Geometry::Rectangle;

namespace {
class ControlsTest : public trelvo::test::OverlayTest {};
} // namespace

TEST_F(ControlsTest, ClickOnAButtonsTextReachesTheButton) {
    GUI::Controls::Button button;
    button.SetRectangle({20, 180, 100, 140});
    button.SetText(L"WWWWWW");
    button.GetLabel()->SetFontSize(28);
    button.Register(manager);
    int clicks = 0;
    button.ClickedSignal.connect([&] { ++clicks; });
    manager->UpdateLayers();

    // Find a pixel the text covers: it carries the label's id, the rest of the face the button's.
    const unsigned labelId = button.GetLabel()->GetId();
    int textX = -1, textY = -1, labelPixels = 0;
    for (int y = 100; y < 140; ++y)
        for (int x = 20; x < 180; ++x)
            if (PidAt(x, y) == labelId) {
                ++labelPixels;
                textX = x;
                textY = y;
            }
    ASSERT_GT(labelPixels, 20) << "the text writes the label's id where it covers";
    EXPECT_EQ(PidAt(22, 102), button.GetId()) << "the face around the text is the button's";
    EXPECT_EQ(PidAt(10, 120), 0u);

    DrawFlags result = Click(textX, textY);
    EXPECT_EQ(clicks, 1);
    EXPECT_NE(result & DRAW_OVERLAY, DRAW_NOTHING);
}

TEST_F(ControlsTest, SwitchClickThroughTheManagerTogglesAndReportsTheCallback) {
    GUI::Controls::SwitchButton sw;
    sw.SetRectangle({50, 78, 50, 78});
    sw.SetCallback([] { return DRAW_CAMERA; });
    sw.Register(manager);
    manager->UpdateLayers();
    ASSERT_EQ(PidAt(64, 64), sw.GetId());
    DrawFlags result = Click(64, 64);
    EXPECT_FALSE(sw.IsOn());
    EXPECT_EQ(result & DrawFlags(5), DrawFlags(5)) << "the callback's flags with 1 added reach the host";
    Click(64, 64);
    EXPECT_TRUE(sw.IsOn());
}

TEST_F(ControlsTest, DraggingTheGripResizesThePanelAndStopsAtTheMinimum) {
    GUI::Controls::Panel panel;
    panel.SetRectangle({40, 160, 100, 200});
    panel.SetMinSize(80, 60);
    panel.SetSizeable(true);
    panel.Register(manager);
    manager->UpdateLayers();
    GUI::Controls::SizeHandle* grip = panel.GetSizeHandle();
    ASSERT_EQ(PidAt(155, 104), grip->GetId()) << "the grip is hit in the panel's x-max, y-min corner";

    // Host coordinates from here on (y down). The control receives the previous event's position:
    // each step applies the one before it.
    Press(155, 152);
    Move(175, 172, 155, 152, 1);
    Move(195, 192, 175, 172, 1);
    EXPECT_EQ(panel.GetRectangle(), (Rectangle{40, 180, 80, 200}));
    Move(0, 6, 195, 192, 1);
    Move(0, 5, 0, 6, 1);
    EXPECT_EQ(panel.GetRectangle(), (Rectangle{40, 120, 140, 200}))
        << "clamped to 80 x 60, x-min and y-max fixed";
    EXPECT_EQ(grip->GetRectangle(), (Rectangle{111, 120, 140, 149}));
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(115, 143), grip->GetId());
}

TEST_F(ControlsTest, ProbeBoxIsDrawnWhereItSaysAndFollowsSetLocation) {
    ProbeControl probe(manager);
    probe.Initialize();
    probe.SetName(L"Probe");
    manager->UpdateLayers();
    unsigned panelId = probe.GetPanel()->GetId();
    auto at = probe.GetLocation();
    auto size = probe.GetSize();
    EXPECT_EQ(PidAt(at[0] + 1, at[1] + size[1] - 2), panelId);
    probe.SetLocation(10, 20);
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(11, 21), panelId);
    EXPECT_EQ(PidAt(at[0] + size[0] - 1, at[1] + size[1] - 1), 0u);
    probe.Hide();
    manager->UpdateLayers();
    EXPECT_EQ(PidAt(11, 21), 0u);
}
