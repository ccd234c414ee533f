#pragma once
// The atlas regions each standard control type uses, per state.

#include <trelvogui/gui/textureregion.h>

namespace GUI::Controls {

/// Filled by Atlas::LoadControlSet from the built-in skin.
struct Set {
    GUI::Texture::Expandable buttonNormal;
    GUI::Texture::Expandable buttonPressed;
    GUI::Texture::Expandable buttonHovered;
    GUI::Texture::Expandable buttonDisabled;
    GUI::Texture::Expandable panelNormal;
    GUI::Texture::Expandable panelHovered;
    GUI::Texture::NonExpandable switchOn;
    GUI::Texture::NonExpandable switchOff;
    GUI::Texture::NonExpandable sizeHandleNormal;
    GUI::Texture::NonExpandable sizeHandleHovered;
    GUI::Texture::NonExpandable downButtonNormal;
    GUI::Texture::NonExpandable downButtonHovered;
    GUI::Texture::NonExpandable upButtonNormal;
    GUI::Texture::NonExpandable upButtonHovered;
    GUI::Texture::Expandable smallSquareA;
    GUI::Texture::Expandable smallSquareB;
    GUI::Texture::Expandable box1[4];
    GUI::Texture::Expandable box2[3];
    GUI::Texture::Expandable box3[1];
    /// Room for further regions; LoadControlSet leaves these empty.
    GUI::Texture::Expandable extra[4][4];
};

} // namespace GUI::Controls
