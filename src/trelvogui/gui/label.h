#pragma once
// A run of text: the text part of buttons and data controls.

#include <trelvogui/gui/controlbase.h>

#include <string>

namespace GUI::Controls {

/// Shows one text. The text is rasterised into the label's colour texture, which is created on the
/// first draw and re-rasterised only after the text changes.
class TRELVOGUI_EXPORT Label : public Base {
public:
    Label();
    ~Label() override;

    void DrawControl(GUI::Texture::Atlas* atlas) override;
    /// Handed on to the parent, so that a button's label never keeps the hover for itself.
    GraphicsBase::DrawFlags OnMouseEnter(GUI::Event* e) override;
    GraphicsBase::DrawFlags OnMouseExit(GUI::Event* e) override;
    /// Fits the rectangle to the measured text on the axes whose sizing policy is 1.
    void CalcBoundingBox(GUI::Texture::Atlas* atlas) override;
    /// The rectangle, grown by as much as the text overhangs it (whatever the alignment).
    GUI::Geometry::Rectangle GetRenderRectangleStandard(GUI::Texture::Atlas* atlas) override;

    virtual std::wstring GetText();
    virtual GUI::Text* GetTextRecord();
    /// An empty text becomes one space; an unchanged text requests nothing.
    virtual void SetText(std::wstring text);
    /// 0 min side, 1 centred, 2 max side. Stored only.
    virtual void SetHorizontalAlignment(int a);
    virtual void SetVerticalAlignment(int a);
    /// 0 horizontal, 1 turned 90 degrees. Requests no redraw.
    virtual void SetOrientation(int o);
    virtual int GetHorizontalAlignment();
    virtual int GetVerticalAlignment();
    virtual int GetOrientation();
    virtual GUI::Color GetColor();
    virtual void SetColor(GUI::Color c);

    unsigned int FontSize() const { return text_.size; }
    /// Requests no redraw and no re-measure; the next draw rasterises at the new size.
    void SetFontSize(unsigned int size);

private:
    void invalidateText();

    GUI::Text text_;
    int horizontalAlignment_ = 0;
    int verticalAlignment_ = 0;
};

} // namespace GUI::Controls
