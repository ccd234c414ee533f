#pragma once
// A labelled value axis of the overlay: a tick band along one edge, a number per tick and a title.

#include <trelvogui/gui/controlbase.h>

#include <memory>
#include <string>
#include <vector>

namespace GraphicsBase {
class GLSLProgram;
}
namespace GraphicsBase {
class GLVertexBuffer;
}

namespace GUI::Controls {
class Label;
}

/// One axis along one edge of its rectangle. The ticks come from a value range and either a wanted
/// pixel spacing or a requested count; each tick gets a number label (owned children, recreated only
/// when the tick count changes) and the axis gets one title label. The tick band (a baseline along the
/// edge and a mark per tick, in the font colour) is drawn with the axis's own program and writes the
/// axis's id, so the band is hit-tested like any control; the labels write their own ids.
///
/// Orientations 0 and 1 are horizontal (band along y-min with numbers above it, band along y-max with
/// numbers below it); 2 and 3 are vertical (band along x-max with numbers to its left, band along
/// x-min with numbers to its right). Any other value leaves the tick count, the labels' placement and
/// the band alone. For orientation 3 the band is drawn mirrored about the x-min edge, i.e. just
/// outside the rectangle, with the numbers inside it one band depth away.
///
/// Layout works without a GL context until Initialize; after it, every layout re-uploads the band's
/// vertices, so setters then need the context current like drawing does.
class TRELVOGUI_EXPORT AxisControl : public GUI::Controls::Base {
public:
    /// 0: the range evenly divided into the interval count; 1: integer steps; 2: nice steps (1, 2 or
    /// 5 times a power of ten, about one per tick spacing, numbers in the shortest fixed form that
    /// tells neighbours apart); 3: logarithmic (decades, with minor ticks at 2..9 where they fit).
    enum AxisType : int { EvenlyDivided = 0, IntegerSteps = 1, NiceSteps = 2, Logarithmic = 3 };
    enum Orientation : int { AlongYMin = 0, AlongYMax = 1, AlongXMax = 2, AlongXMin = 3 };

    AxisControl();
    ~AxisControl() override;

    /// Draws the tick band; nothing until Initialize has succeeded.
    void DrawCustom() override;
    /// Stores the rectangle and lays the axis out again (ticks, numbers, title, band).
    void SetRectangle(GUI::Geometry::Rectangle r) override;

    /// With the GL context current: builds "BackgroundMV.vs" + "Background.fs" and the band geometry.
    /// False on any shader or link failure; the axis then draws no band.
    virtual bool Initialize();

    /// Stored only: the axis always shows its title, ticks and numbers. Hosts that want one of them
    /// gone hide the label or the axis itself.
    void ShowTitle(bool show);
    void ShowTicks(bool show);
    void ShowNumbers(bool show);

    /// A changed value lays the axis out again; an equal one does nothing.
    void SetAxisType(AxisType type);
    /// Wanted pixels between ticks; a changed value lays the axis out again. A spacing below 1 is
    /// refused with a message.
    void SetTickSpacing(int spacing);
    /// Asks for n + 1 intervals, overriding the spacing (0 goes back to the spacing). Takes effect at
    /// the next layout (SetRectangle, SetTickSpacing, SetAxisType) or SetRange, not at once.
    void SetTickCount(int n);
    /// Stores the range and recomputes the ticks, numbers and band.
    void SetRange(float min, float max);
    /// Stores the edge and requests a redraw. The band follows at once; the labels keep their places
    /// until the next layout.
    void SetOrientation(Orientation orientation);
    /// Stores the title and shows it in the title label (which the first layout creates).
    void SetTitle(std::wstring title);
    /// Colour of the labels and of the band.
    void SetFontColor(const GUI::Color& color);

    int GetTickSpacing() const;
    float GetMin() const;
    float GetMax() const;
    Orientation GetOrientation() const;
    std::wstring GetTitle() const;

    AxisType GetAxisType() const { return axisType_; }
    int GetTickCount() const { return tickCount_; }
    int GetTickLength() const { return tickLength_; }
    /// Intervals in use; there is one tick more.
    int GetIntervalCount() const { return intervalCount_; }
    GUI::Color GetFontColor() const { return fontColor_; }
    bool TitleShown() const { return showTitle_; }
    bool TicksShown() const { return showTicks_; }
    bool NumbersShown() const { return showNumbers_; }
    /// Tick positions as fractions 0..1 along the axis, and the values shown at them.
    const std::vector<float>& GetTickFractions() const { return tickFractions_; }
    const std::vector<float>& GetTickValues() const { return tickValues_; }
    /// Unlabelled minor ticks of a logarithmic axis (2..9 times each decade), as fractions.
    const std::vector<float>& GetMinorTickFractions() const { return minorFractions_; }
    /// Where `value` lies along the axis as a fraction of its length (0 at min, 1 at max), in the
    /// axis's scale: logarithmic for type 3 (NaN for values that are not positive), linear otherwise.
    /// NaN for an empty range.
    double FractionOf(double value) const;
    /// The value at a fraction of the axis's length; the inverse of FractionOf.
    double ValueAt(double fraction) const;
    /// The nice-tick choice, as a pure function for hosts that lay out their own ticks: values from
    /// `lo` to `hi` (either order) in about `wanted` steps of 1, 2 or 5 times a power of ten, and
    /// the texts that tell neighbours apart. Empty for non-finite bounds; one tick for an empty range.
    static void NiceTicks(double lo, double hi, int wanted, std::vector<double>& values,
                          std::vector<std::string>& texts);
    /// The labels the axis owns; the title label is null until the first layout.
    const std::vector<GUI::Controls::Label*>& GetNumberLabels() const { return numberLabels_; }
    GUI::Controls::Label* GetTitleLabel() const { return titleLabel_; }

public:
    /// Lays the numbers and title out again at the new scale.
    void OnDisplayScaleChanged() override;

private:
    int Scaled(int pixels) const;
    void Update();
    void ComputeTicks();
    void RebuildNumberLabels();
    void FormatNumbers();
    void PlaceNumbers();
    void LayoutTitle();
    bool BuildGeometry();
    void ComputeNiceTicks(int wanted);
    void ComputeLogTicks(int wanted);
    int WantedIntervals();
    void KeepFractionsAscending();

    bool showTitle_ = true;
    bool showTicks_ = true;
    bool showNumbers_ = true;
    AxisType axisType_ = EvenlyDivided;
    int tickLength_ = 8;
    int tickSpacing_ = 40;
    int tickCount_ = 0;
    int intervalCount_ = 1;
    GUI::Color fontColor_{255, 255, 255, 255};
    Orientation orientation_ = AlongYMax;
    float min_ = 0.f;
    float max_ = 1.f;
    std::wstring title_ = L" ";
    std::vector<float> tickFractions_;
    std::vector<float> tickValues_;
    // Types 2 and 3 decide their texts with the ticks.
    std::vector<std::string> tickTexts_;
    std::vector<float> minorFractions_;
    // A logarithmic axis over a range that is not positive says so once, not at every layout.
    bool reportedLogRange_ = false;
    GUI::Controls::Label* titleLabel_ = nullptr;
    std::vector<GUI::Controls::Label*> numberLabels_;
    // Scratch of FormatNumbers: the new texts, and the labels not yet given one.
    std::vector<std::wstring> numberTexts_;
    std::vector<GUI::Controls::Label*> labelsByText_;
    GraphicsBase::GLSLProgram* program_ = nullptr;
    std::unique_ptr<GraphicsBase::GLSLProgram>
        fetchProgram_; // the fast path's build, where the context offers fetch
    GraphicsBase::GLVertexBuffer* vertexBuffer_ = nullptr;
    // Scratch for the band's vertices, kept so that a re-layout does not allocate again.
    std::vector<float> bandVertices_;
};
