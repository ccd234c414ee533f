// FreeType text path: fonts found through fontconfig or embedded, glyphs rasterised with LCD filtering
// into a per-text RGBA texture (coverage per channel, white on black) drawn by "UITextShader".
#include <trelvogui/gui/renderers/textrendererfreetype.h>

#include <trelvogui/gui/renderers/detail/disabledlook.h>
#include <trelvogui/gui/renderers/detail/targetbarrier.h>
#include <trelvogui/gui/renderers/detail/uniforms.h>
#include <trelvogui/gui/texture.h>

#include <graphicsbase/glerror.h>
#include <graphicsbase/glscopedsetter.h>
#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>
#include <graphicsbase/resources.h>

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_LCD_FILTER_H
#include FT_OUTLINE_H
#include FT_SYNTHESIS_H

#include <GL/glew.h>
#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

using namespace GraphicsBase;

namespace GUI::Renderer {

namespace {

// Start of an extent placed in [min, max]: 0 at the min side, 1 centred, 2 at the max side; any
// other value places it at 0. No clipping: a wider extent starts before min.
int alignedStart(int min, int max, int extent, int alignment) {
    switch (alignment) {
    case 0:
        return min;
    case 1:
        return min + (max - min - extent) / 2;
    case 2:
        return max - extent;
    default:
        return 0;
    }
}

constexpr const char* kTag = "gui/renderers/textrendererfreetype";
constexpr const char* kFaceName = "Segoe UI";

// tan(12 degrees) in 16.16: the slant given to faces that have no italic of their own.
constexpr FT_Fixed kItalicShear = 0x0366A;
// Sizes are packed into 16 bits of the glyph key; nothing sensible is taller.
constexpr uint32_t kMaxFontSize = 0xFFFF;
// The cache is dropped wholesale beyond this many glyphs; a UI uses far fewer.
constexpr size_t kMaxCachedGlyphs = 8192;

// The four weight/slant variants a text can ask for.
enum Style : int { Regular = 0, Bold = 1, Italic = 2, BoldItalic = 3 };

int StyleOf(bool bold, bool italic) {
    return (bold ? Bold : 0) | (italic ? Italic : 0);
}

// One font file found by fontconfig for a style, or empty when the system has no real "Segoe UI".
struct SystemFace {
    std::string file;
    int index = 0;
    bool synthBold = false;
    bool synthItalic = false;
};

// fontconfig always answers with some font; only a match whose family really is the requested one
// counts, anything else falls back to the embedded fonts so that every machine renders alike.
SystemFace FindSystemFace(int style) {
    SystemFace result;
    FcPattern* pattern = FcPatternCreate();
    if (!pattern)
        return result;
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(kFaceName));
    FcPatternAddInteger(pattern, FC_WEIGHT, (style & Bold) ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    FcPatternAddInteger(pattern, FC_SLANT, (style & Italic) ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern, FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, pattern, FcMatchPattern);
    FcDefaultSubstitute(pattern);
    FcResult res = FcResultNoMatch;
    FcPattern* match = FcFontMatch(nullptr, pattern, &res);
    if (match) {
        FcChar8* family = nullptr;
        FcChar8* file = nullptr;
        int index = 0;
        int weight = FC_WEIGHT_REGULAR;
        int slant = FC_SLANT_ROMAN;
        if (FcPatternGetString(match, FC_FAMILY, 0, &family) == FcResultMatch &&
            std::string(reinterpret_cast<const char*>(family)) == kFaceName &&
            FcPatternGetString(match, FC_FILE, 0, &file) == FcResultMatch) {
            FcPatternGetInteger(match, FC_INDEX, 0, &index);
            FcPatternGetInteger(match, FC_WEIGHT, 0, &weight);
            FcPatternGetInteger(match, FC_SLANT, 0, &slant);
            result.file = reinterpret_cast<const char*>(file);
            result.index = index;
            result.synthBold = (style & Bold) && weight < FC_WEIGHT_DEMIBOLD;
            result.synthItalic = (style & Italic) && slant == FC_SLANT_ROMAN;
        }
        FcPatternDestroy(match);
    }
    FcPatternDestroy(pattern);
    return result;
}

// The fontconfig answer does not change while the process runs; ask once for all renderers.
const std::vector<SystemFace>& SystemFaces() {
    static const std::vector<SystemFace> faces = [] {
        std::vector<SystemFace> found;
        if (!FcInit())
            return found;
        for (int style = Regular; style <= BoldItalic; ++style) {
            found.push_back(FindSystemFace(style));
            if (found.back().file.empty())
                return std::vector<SystemFace>();
        }
        return found;
    }();
    return faces;
}

// A rasterised glyph: coverage as 3 bytes a pixel, rows top-down, placed relative to the pen on
// the baseline.
struct Glyph {
    int advance = 0;
    int left = 0;
    int top = 0;
    int width = 0;
    int rows = 0;
    std::vector<uint8_t> rgb;
};

// A face as one style uses it; several styles may share one FT_Face.
struct StyleFace {
    FT_Face face = nullptr;
    bool synthBold = false;
    bool synthItalic = false;
};

// Decodes a run of code points; wstring holds UTF-32 here, but surrogate pairs coming from UTF-16
// sources are joined rather than drawn as two boxes.
template <class F> void ForEachCodePoint(const std::wstring& s, F&& f) {
    for (size_t i = 0; i < s.size(); ++i) {
        uint32_t c = static_cast<uint32_t>(s[i]);
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < s.size()) {
            uint32_t low = static_cast<uint32_t>(s[i + 1]);
            if (low >= 0xDC00 && low < 0xE000) {
                c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            }
        }
        f(c);
    }
}

} // namespace

// What the text path remembers between draws: the font objects, the glyph cache and a scratch
// buffer that rasterising reuses, so a label re-rasterised every frame allocates nothing new.
struct TextRendererFreeType::Impl {
    // The font settings of the last rasterised text; `reserved` has no reader yet.
    struct FontSettings {
        int lastWidth = 512;
        int lastHeight = 512;
        int reserved = 5;
        int zero = 0;
        int height = 16;
        std::string face = kFaceName;
        bool bold = false;
        bool italic = false;
    };

    ~Impl() {
        for (FT_Face face : faces)
            FT_Done_Face(face);
        if (library)
            FT_Done_FreeType(library);
    }

    bool LoadFonts();
    FT_Face OpenFace(const std::string& file, int index);
    FT_Face OpenEmbedded(const char* name);
    bool EnsureSize(FT_Face face, uint32_t size);
    const Glyph* GetGlyph(int style, uint32_t size, bool rotated, uint32_t codePoint);
    bool Baseline(int style, uint32_t size, int* baseline);
    bool Extent(const std::wstring& text, uint32_t size, int style, bool rotated, int* width, int* height);
    bool Rasterise(GUI::Texture::Base* texture, const std::wstring& text, uint32_t size, int style,
                   bool rotated);

    FontSettings settings;
    std::unique_ptr<GLSLProgram> program;
    std::unique_ptr<GLSLProgram> fetchProgram; // the fast path's build, where the context offers fetch
    std::unique_ptr<GLVertexBuffer> quad;

    FT_Library library = nullptr;
    std::vector<FT_Face> faces;
    StyleFace styles[4];
    std::unordered_map<FT_Face, uint32_t> faceSize;
    std::unordered_map<uint64_t, Glyph> glyphs;
    std::unordered_map<uint32_t, int> baselines;
    std::vector<uint8_t> pixels;
};

FT_Face TextRendererFreeType::Impl::OpenFace(const std::string& file, int index) {
    FT_Face face = nullptr;
    if (FT_New_Face(library, file.c_str(), index, &face) != 0)
        return nullptr;
    faces.push_back(face);
    return face;
}

FT_Face TextRendererFreeType::Impl::OpenEmbedded(const char* name) {
    ResourceData data = LoadFromResource("TrelvoGUI", name, "FONT");
    if (!data)
        return nullptr;
    FT_Face face = nullptr;
    if (FT_New_Memory_Face(library, data.data, static_cast<FT_Long>(data.size), 0, &face) != 0)
        return nullptr;
    faces.push_back(face);
    return face;
}

bool TextRendererFreeType::Impl::LoadFonts() {
    if (FT_Init_FreeType(&library) != 0) {
        library = nullptr;
        return false;
    }
    // Without the filter the sub-pixel coverage shows strong colour fringes; a library built without
    // LCD support still renders, only in grey.
    FT_Library_SetLcdFilter(library, FT_LCD_FILTER_DEFAULT);

    const std::vector<SystemFace>& system = SystemFaces();
    if (!system.empty()) {
        std::unordered_map<std::string, FT_Face> opened;
        bool ok = true;
        for (int style = Regular; style <= BoldItalic && ok; ++style) {
            const SystemFace& s = system[static_cast<size_t>(style)];
            std::string key = s.file + "#" + std::to_string(s.index);
            FT_Face face = opened.count(key) ? opened[key] : OpenFace(s.file, s.index);
            opened[key] = face;
            ok = face != nullptr;
            styles[style] = {face, s.synthBold, s.synthItalic};
        }
        if (ok)
            return true;
        for (FT_Face face : faces)
            FT_Done_Face(face);
        faces.clear();
    }

    FT_Face regular = OpenEmbedded("UIFONT");
    FT_Face bold = OpenEmbedded("UIFONTBOLD");
    if (!regular)
        return false;
    styles[Regular] = {regular, false, false};
    styles[Italic] = {regular, false, true};
    styles[Bold] = bold ? StyleFace{bold, false, false} : StyleFace{regular, true, false};
    styles[BoldItalic] = bold ? StyleFace{bold, false, true} : StyleFace{regular, true, true};
    return true;
}

// The text size is the line height in pixels (ascender to descender), the way a positive font
// height asks for the whole cell rather than the em square.
bool TextRendererFreeType::Impl::EnsureSize(FT_Face face, uint32_t size) {
    auto it = faceSize.find(face);
    if (it != faceSize.end() && it->second == size)
        return true;
    FT_Size_RequestRec request{};
    request.type = FT_SIZE_REQUEST_TYPE_REAL_DIM;
    request.width = 0;
    request.height = static_cast<FT_Long>(size) * 64;
    if (FT_Request_Size(face, &request) != 0) {
        faceSize.erase(face);
        return false;
    }
    faceSize[face] = size;
    return true;
}

bool TextRendererFreeType::Impl::Baseline(int style, uint32_t size, int* baseline) {
    uint32_t key = (size << 2) | static_cast<uint32_t>(style);
    auto it = baselines.find(key);
    if (it != baselines.end()) {
        *baseline = it->second;
        return true;
    }
    FT_Face face = styles[style].face;
    if (!EnsureSize(face, size))
        return false;
    FT_Pos ascender = FT_MulFix(face->ascender, face->size->metrics.y_scale);
    *baseline = static_cast<int>((ascender + 32) >> 6);
    baselines[key] = *baseline;
    return true;
}

const Glyph* TextRendererFreeType::Impl::GetGlyph(int style, uint32_t size, bool rotated,
                                                  uint32_t codePoint) {
    uint64_t key =
        (uint64_t(codePoint) << 24) | (uint64_t(size) << 8) | (uint64_t(rotated) << 2) | uint64_t(style);
    auto it = glyphs.find(key);
    if (it != glyphs.end())
        return &it->second;
    if (glyphs.size() >= kMaxCachedGlyphs)
        glyphs.clear();

    const StyleFace& sf = styles[style];
    FT_Face face = sf.face;
    if (!EnsureSize(face, size))
        return nullptr;
    FT_UInt index = FT_Get_Char_Index(face, codePoint);
    // Light hinting snaps only the vertical direction, which keeps advances and outlines the same
    // whichever way the text runs; the sub-pixel direction is chosen at render time.
    if (FT_Load_Glyph(face, index, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP) != 0)
        return nullptr;
    FT_GlyphSlot slot = face->glyph;
    if (sf.synthBold)
        FT_GlyphSlot_Embolden(slot);
    if (sf.synthItalic && slot->format == FT_GLYPH_FORMAT_OUTLINE) {
        FT_Matrix shear{0x10000, kItalicShear, 0, 0x10000};
        FT_Outline_Transform(&slot->outline, &shear);
    }
    // Turned text is laid out horizontally and rotated afterwards; rendering it with vertical
    // sub-pixels makes those land horizontally on the screen once turned.
    if (FT_Render_Glyph(slot, rotated ? FT_RENDER_MODE_LCD_V : FT_RENDER_MODE_LCD) != 0)
        return nullptr;

    Glyph g;
    g.advance = static_cast<int>((slot->advance.x + 32) >> 6);
    g.left = slot->bitmap_left;
    g.top = slot->bitmap_top;
    const FT_Bitmap& bm = slot->bitmap;
    int rows = static_cast<int>(bm.rows);
    int pitch = bm.pitch < 0 ? -bm.pitch : bm.pitch;
    auto row = [&](int r) {
        return bm.pitch < 0 ? bm.buffer + static_cast<size_t>(rows - 1 - r) * pitch
                            : bm.buffer + static_cast<size_t>(r) * pitch;
    };
    switch (bm.pixel_mode) {
    case FT_PIXEL_MODE_LCD:
        g.width = static_cast<int>(bm.width) / 3;
        g.rows = rows;
        break;
    case FT_PIXEL_MODE_LCD_V:
        g.width = static_cast<int>(bm.width);
        g.rows = rows / 3;
        break;
    default:
        g.width = static_cast<int>(bm.width);
        g.rows = rows;
        break;
    }
    g.rgb.resize(static_cast<size_t>(g.width) * g.rows * 3);
    for (int r = 0; r < g.rows; ++r) {
        for (int c = 0; c < g.width; ++c) {
            uint8_t* out = &g.rgb[(static_cast<size_t>(r) * g.width + c) * 3];
            switch (bm.pixel_mode) {
            case FT_PIXEL_MODE_LCD:
                for (int k = 0; k < 3; ++k)
                    out[k] = row(r)[3 * c + k];
                break;
            case FT_PIXEL_MODE_LCD_V:
                for (int k = 0; k < 3; ++k)
                    out[k] = row(3 * r + k)[c];
                break;
            case FT_PIXEL_MODE_MONO:
                out[0] = out[1] = out[2] = (row(r)[c >> 3] & (0x80 >> (c & 7))) ? 255 : 0;
                break;
            default:
                out[0] = out[1] = out[2] = row(r)[c];
                break;
            }
        }
    }
    return &glyphs.emplace(key, std::move(g)).first->second;
}

// The extent of the horizontal run: the sum of the advances by the line height. A slanted run also
// covers the overhang of its last glyphs, so italics are not cut off at the right edge.
bool TextRendererFreeType::Impl::Extent(const std::wstring& text, uint32_t size, int style, bool rotated,
                                        int* width, int* height) {
    if (size == 0 || size > kMaxFontSize || !styles[style].face)
        return false;
    bool ok = true;
    int pen = 0;
    int ink = 0;
    ForEachCodePoint(text, [&](uint32_t c) {
        const Glyph* g = ok ? GetGlyph(style, size, rotated, c) : nullptr;
        if (!g) {
            ok = false;
            return;
        }
        ink = std::max(ink, pen + g->left + g->width);
        pen += g->advance;
    });
    if (!ok)
        return false;
    *width = (style & Italic) ? std::max(pen, ink) : pen;
    *height = static_cast<int>(size);
    return true;
}

bool TextRendererFreeType::Impl::Rasterise(GUI::Texture::Base* texture, const std::wstring& text,
                                           uint32_t size, int style, bool rotated) {
    settings.height = static_cast<int>(size);
    // Text lives in one texture: a run beyond the context's texture limit cannot be drawn, and a font
    // that large would only make FreeType render enormous glyphs first.
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    GB_CHECK_GL(kTag);
    if (size > static_cast<uint32_t>(limit)) {
        std::printf(
            "TextRendererFreeType: A font size of %u pixels exceeds the texture limit of %d; the text is "
            "not drawn.\n",
            size, limit);
        return false;
    }
    int runWidth = 0;
    int runHeight = 0;
    int baseline = 0;
    if (!Extent(text, size, style, rotated, &runWidth, &runHeight) || !Baseline(style, size, &baseline))
        return false;
    int width = rotated ? runHeight : runWidth;
    int height = rotated ? runWidth : runHeight;
    if (width > limit || height > limit) {
        std::printf(
            "TextRendererFreeType: The text's %d x %d pixels exceed the texture limit of %d; it is not "
            "drawn.\n",
            width, height, limit);
        return false;
    }
    settings.lastWidth = width;
    settings.lastHeight = height;

    // White on black, rows top-down; alpha stays 0 since coverage lives in the colour channels.
    pixels.assign(static_cast<size_t>(width) * height * 4, 0);
    int pen = 0;
    ForEachCodePoint(text, [&](uint32_t c) {
        const Glyph* g = GetGlyph(style, size, rotated, c);
        if (!g)
            return;
        for (int r = 0; r < g->rows; ++r) {
            int y = baseline - g->top + r; // row in the horizontal run, from the top
            if (y < 0 || y >= runHeight)
                continue;
            for (int col = 0; col < g->width; ++col) {
                int x = pen + g->left + col;
                if (x < 0 || x >= runWidth)
                    continue;
                // A turned run reads bottom to top: the start of the string lands on the last row and
                // the tops of the glyphs face the left edge.
                size_t at = rotated ? (static_cast<size_t>(runWidth - 1 - x) * width + y) * 4
                                    : (static_cast<size_t>(y) * width + x) * 4;
                const uint8_t* src = &g->rgb[(static_cast<size_t>(r) * g->width + col) * 3];
                for (int k = 0; k < 3; ++k)
                    pixels[at + k] = std::max(pixels[at + k], src[k]);
            }
        }
        pen += g->advance;
    });

    texture->SetSize(width, height);
    texture->SetData(pixels.data());
    return true;
}

TextRendererFreeType::TextRendererFreeType() : impl_(std::make_unique<Impl>()) {}
TextRendererFreeType::~TextRendererFreeType() = default;

bool TextRendererFreeType::Initialize() {
    impl_ = std::make_unique<Impl>();
    // A desktop-wide font smoothing switch has no counterpart here: FreeType's LCD filter gives the
    // sub-pixel coverage on its own.
    if (!impl_->LoadFonts())
        return false;

    impl_->quad = std::make_unique<GLVertexBuffer>();
    const float quad[] = {0.f, 0.f, 1.f, 0.f, 1.f, 1.f, 0.f, 1.f};
    if (!impl_->quad->addAttribute(2) || !impl_->quad->finishLayout() || !impl_->quad->upload(quad, 4))
        return false;

    return detail::BuildTargetPrograms(impl_->program, impl_->fetchProgram, "UITextShader.vert",
                                       "UITextShader.frag");
}

void TextRendererFreeType::Draw(GUI::Texture::Base* target, GUI::Text* text, GUI::Geometry::Rectangle area,
                                int horizontalAlignment, int verticalAlignment) {
    if (!text || !target)
        return;
    // Rasterising uploads through the active unit; inside a layer update that may be the unit holding
    // the target's id layer, which the upload would unbind for every later draw of the frame.
    glActiveTexture(GL_TEXTURE1);
    GB_CHECK_GL(kTag);
    if (!target->IsValid()) {
        impl_->settings.bold = text->bold;
        impl_->settings.italic = text->italic;
        if (impl_->Rasterise(target, text->string, text->size, StyleOf(text->bold, text->italic),
                             text->orientation == 1))
            target->SetValid(true); // after SetData, which re-allocates and clears the flag
        else {
            std::printf("Problem creating texture from text.\n");
            return;
        }
    }

    int width = target->Width();
    int height = target->Height();
    int x = alignedStart(area.xMin, area.xMax, width, horizontalAlignment);
    int y = alignedStart(area.yMin, area.yMax, height, verticalAlignment);

    const GUI::Geometry::Rectangle footprint{x, x + std::max(width, 0), y, y + std::max(height, 0)};
    if (!impl_->program || !impl_->program->isLinked() || !detail::InDrawRegion(footprint))
        return;
    // Blending off for a draw that composes in its shader, unless the text is being faded.
    std::optional<GL::GLScopedSetter> state;
    if (!detail::DisabledLook::Active())
        state.emplace(GL::Disable{GL_BLEND});
    glActiveTexture(GL_TEXTURE1);
    GB_CHECK_GL(kTag);
    target->Bind();
    GLSLProgram& textProgram = detail::ProgramFor(*impl_->program, impl_->fetchProgram.get());
    const bool samples = &textProgram == impl_->program.get();
    textProgram.begin();
    GLuint program = textProgram.getProgram();
    // A default label colour is all zero; draw it as opaque black rather than not at all.
    float alpha = text->color.a == 0 ? 1.f : text->color.a / 255.f;
    glUniform4f(detail::UniformLocationQuiet(program, "fontColor"), text->color.r / 255.f,
                text->color.g / 255.f, text->color.b / 255.f, alpha);
    GB_CHECK_GL(kTag);
    glUniform1i(detail::UniformLocationQuiet(program, "textureSampler"), 1);
    GB_CHECK_GL(kTag);
    if (samples) {
        glUniform1i(detail::UniformLocation(program, "targetColorSampler"), 9);
        GB_CHECK_GL(kTag);
        glUniform1i(detail::UniformLocationQuiet(program, "targetIDSampler"), 10);
        GB_CHECK_GL(kTag);
    }
    glUniform1ui(detail::UniformLocationQuiet(program, "sid"), subId_);
    GB_CHECK_GL(kTag);
    glUniform1ui(detail::UniformLocationQuiet(program, "pid"), primaryId_);
    GB_CHECK_GL(kTag);
    glUniform2i(detail::UniformLocationQuiet(program, "pos"), x, y);
    GB_CHECK_GL(kTag);
    glUniform2ui(detail::UniformLocationQuiet(program, "rect"), static_cast<GLuint>(std::max(width, 0)),
                 static_cast<GLuint>(std::max(height, 0)));
    GB_CHECK_GL(kTag);
    detail::TargetBarrierFor(footprint, samples);
    impl_->quad->draw(GLVertexBuffer::TriangleFan);
    detail::EndDraw(textProgram);
    // Unbinding is a texture change as well, with the same cost as a program change on the fast path;
    // the next label's texture simply replaces this one.
    if (detail::StrictBarriers()) {
        glBindTexture(GL_TEXTURE_2D, 0);
        GB_CHECK_GL(kTag);
    }
}

void TextRendererFreeType::Measure(GUI::Text* text, int* width, int* height) {
    *width = 0;
    *height = 0;
    if (!text)
        return;
    bool rotated = text->orientation * 90 != 0;
    int w = 0;
    int h = 0;
    if (!impl_->Extent(text->string, text->size, StyleOf(text->bold, text->italic), rotated, &w, &h))
        return;
    *width = rotated ? h : w;
    *height = rotated ? w : h;
}

void TextRendererFreeType::SetScreen(unsigned int width, unsigned int height, const glm::mat4& projection) {
    screenWidth_ = width;
    screenHeight_ = height;
    for (GLSLProgram* program : {impl_->program.get(), impl_->fetchProgram.get()}) {
        if (program == nullptr || !program->isLinked())
            continue;
        program->begin();
        glUniformMatrix4fv(detail::UniformLocationQuiet(program->getProgram(), "ProjectionMatrix"), 1,
                           GL_FALSE, glm::value_ptr(projection));
        GB_CHECK_GL(kTag);
        program->end();
    }
}

} // namespace GUI::Renderer
