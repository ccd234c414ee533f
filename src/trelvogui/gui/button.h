#pragma once
// A skinned push button with a centred text label.

#include <trelvogui/gui/controlbase.h>
#include <trelvogui/gui/eventsbase.h>

#include <string>

namespace GUI::Texture {
class Expandable;
}

namespace GUI::Controls {

class Label;

/// Owns its label (its only child). Listen to clicks through ClickedSignal. Custom regions, when set,
/// replace the atlas's button regions for their state.
class TRELVOGUI_EXPORT Button : public Base, public GUI::Events::Base {
public:
    Button();
    ~Button() override;

    void DrawControl(GUI::Texture::Atlas* atlas) override;
    /// Also gives the label the whole button, centred on both axes.
    void SetRectangle(GUI::Geometry::Rectangle r) override;
    /// The rectangle grown by the button skin's borders.
    GUI::Geometry::Rectangle GetRenderRectangleStandard(GUI::Texture::Atlas* atlas) override;

    void SetText(std::wstring text);
    std::wstring GetText();
    /// Restyle it freely (font size, colour) but do not delete it.
    Label* GetLabel() { return label_; }
    /// Not owned; null restores the atlas default for that state. Requests no redraw.
    void SetCustomGraphics(GUI::Texture::Expandable* normal, GUI::Texture::Expandable* pressed,
                           GUI::Texture::Expandable* hovered, GUI::Texture::Expandable* disabled);
    GUI::Texture::Expandable* CustomNormal() { return customNormal_; }
    GUI::Texture::Expandable* CustomPressed() { return customPressed_; }
    GUI::Texture::Expandable* CustomHovered() { return customHovered_; }
    GUI::Texture::Expandable* CustomDisabled() { return customDisabled_; }

private:
    Label* label_;
    GUI::Texture::Expandable* customNormal_ = nullptr;
    GUI::Texture::Expandable* customPressed_ = nullptr;
    GUI::Texture::Expandable* customHovered_ = nullptr;
    GUI::Texture::Expandable* customDisabled_ = nullptr;
};

} // namespace GUI::Controls
