#include "support/pngencode.h"

#include <graphicsbase/pngreader.h>
#include <graphicsbase/resources.h>

#include <gtest/gtest.h>
#include <png.h>

#include <cstdint>
#include <vector>

using namespace GraphicsBase;

namespace {

using trelvo::test::EncodePng;

// A 3 x 2 image whose every byte differs, so that swapped rows, channels or pixels all show.
std::vector<uint8_t> Pattern(int channels) {
    std::vector<uint8_t> p(3 * 2 * channels);
    for (std::size_t i = 0; i < p.size(); ++i)
        p[i] = static_cast<uint8_t>(10 + 9 * i);
    return p;
}

struct DecodeCase {
    const char* name;
    int colorType;
    int bitDepth;
    bool interlaced;
    std::vector<uint8_t> stored; ///< rows as written
    int expectedChannels;
    std::vector<uint8_t> expected; ///< data() after decoding
};

std::vector<DecodeCase> DecodeCases() {
    std::vector<DecodeCase> cases;
    cases.push_back({"rgb", PNG_COLOR_TYPE_RGB, 8, false, Pattern(3), 3, Pattern(3)});
    cases.push_back({"rgba", PNG_COLOR_TYPE_RGBA, 8, false, Pattern(4), 4, Pattern(4)});
    cases.push_back({"rgba interlaced", PNG_COLOR_TYPE_RGBA, 8, true, Pattern(4), 4, Pattern(4)});
    // Grey expands to equal channels; grey with alpha to RGBA.
    cases.push_back({"grey",
                     PNG_COLOR_TYPE_GRAY,
                     8,
                     false,
                     {0, 50, 100, 150, 200, 250},
                     3,
                     {0, 0, 0, 50, 50, 50, 100, 100, 100, 150, 150, 150, 200, 200, 200, 250, 250, 250}});
    cases.push_back({"grey alpha",
                     PNG_COLOR_TYPE_GRAY_ALPHA,
                     8,
                     false,
                     {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12},
                     4,
                     {1, 1, 1, 2, 3, 3, 3, 4, 5, 5, 5, 6, 7, 7, 7, 8, 9, 9, 9, 10, 11, 11, 11, 12}});
    // 16-bit channels keep their high byte (big-endian in the file).
    cases.push_back({"rgb16",
                     PNG_COLOR_TYPE_RGB,
                     16,
                     false,
                     {0x12, 0xFF, 0x34, 0x00, 0x56, 0x80, 0, 0, 0, 0, 0, 0, 0xAB, 1, 0xCD, 2, 0xEF, 3,
                      0,    0,    0,    0,    0,    0,    0, 0, 0, 0, 0, 0, 0,    0, 0,    0, 0xFF, 0xFF},
                     3,
                     {0x12, 0x34, 0x56, 0, 0, 0, 0xAB, 0xCD, 0xEF, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF}});
    return cases;
}

TEST(PNGReader, DecodesSupportedLayoutsRowsTopDown) {
    for (const DecodeCase& c : DecodeCases()) {
        SCOPED_TRACE(c.name);
        std::vector<unsigned char> png = EncodePng(3, 2, c.colorType, c.bitDepth, c.stored, {}, c.interlaced);
        ASSERT_FALSE(png.empty());
        PNGReader reader;
        ASSERT_TRUE(reader.loadFromMemory(png.data(), png.size()));
        EXPECT_EQ(reader.width(), 3);
        EXPECT_EQ(reader.height(), 2);
        EXPECT_EQ(reader.channels(), c.expectedChannels);
        std::vector<uint8_t> data(reader.data(), reader.data() + c.expected.size());
        EXPECT_EQ(data, c.expected);
    }
}

TEST(PNGReader, PaletteBecomesRgb) {
    const std::vector<png_color> palette = {{200, 10, 20}, {30, 220, 40}, {50, 60, 230}};
    std::vector<unsigned char> png = EncodePng(3, 2, PNG_COLOR_TYPE_PALETTE, 8, {0, 1, 2, 2, 1, 0}, palette);
    PNGReader reader;
    ASSERT_TRUE(reader.loadFromMemory(png.data(), png.size()));
    ASSERT_EQ(reader.channels(), 3);
    const std::vector<uint8_t> expected = {200, 10, 20,  30, 220, 40, 50,  60, 230,
                                           50,  60, 230, 30, 220, 40, 200, 10, 20};
    EXPECT_EQ(std::vector<uint8_t>(reader.data(), reader.data() + 18), expected);
}

TEST(PNGReader, RgbaViewAddsOpaqueAlphaToRgbAndKeepsRgba) {
    std::vector<unsigned char> rgb = EncodePng(3, 2, PNG_COLOR_TYPE_RGB, 8, Pattern(3));
    PNGReader reader;
    ASSERT_TRUE(reader.loadFromMemory(rgb.data(), rgb.size()));
    std::vector<unsigned char> view = reader.rgba();
    ASSERT_EQ(view.size(), 24u);
    const std::vector<uint8_t> src = Pattern(3);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(view[i * 4 + 0], src[i * 3 + 0]);
        EXPECT_EQ(view[i * 4 + 1], src[i * 3 + 1]);
        EXPECT_EQ(view[i * 4 + 2], src[i * 3 + 2]);
        EXPECT_EQ(view[i * 4 + 3], 255);
    }

    std::vector<unsigned char> rgba = EncodePng(3, 2, PNG_COLOR_TYPE_RGBA, 8, Pattern(4));
    ASSERT_TRUE(reader.loadFromMemory(rgba.data(), rgba.size()));
    EXPECT_EQ(reader.rgba(), Pattern(4));
}

TEST(PNGReader, CorruptInputFailsAndLeavesReaderEmpty) {
    const std::vector<unsigned char> good = EncodePng(3, 2, PNG_COLOR_TYPE_RGBA, 8, Pattern(4));
    ASSERT_GT(good.size(), 60u);

    std::vector<unsigned char> badCrc = good;
    badCrc[good.size() - 20] ^= 0x5A; // inside the image data chunk
    std::vector<unsigned char> badHeader = good;
    badHeader[16] = 0x7F; // width far beyond any sane limit
    badHeader[29] ^= 0xFF;
    std::vector<unsigned char> noSignature = good;
    noSignature[1] = 'X';
    std::vector<unsigned char> garbage(200, 0xAB);

    struct Case {
        const char* name;
        std::vector<unsigned char> bytes;
    };
    const Case cases[] = {
        {"empty", {}},
        {"signature only", std::vector<unsigned char>(good.begin(), good.begin() + 8)},
        {"truncated header", std::vector<unsigned char>(good.begin(), good.begin() + 20)},
        {"truncated data", std::vector<unsigned char>(good.begin(), good.end() - 25)},
        {"bad crc", badCrc},
        {"bad header", badHeader},
        {"no signature", noSignature},
        {"garbage", garbage},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        PNGReader reader;
        // A previous image must not survive a failed load.
        ASSERT_TRUE(reader.loadFromMemory(good.data(), good.size()));
        EXPECT_FALSE(reader.loadFromMemory(c.bytes.data(), c.bytes.size()));
        EXPECT_EQ(reader.width(), 0);
        EXPECT_EQ(reader.height(), 0);
        EXPECT_EQ(reader.channels(), 0);
        EXPECT_EQ(reader.data(), nullptr);
        EXPECT_TRUE(reader.rgba().empty());
    }
    PNGReader reader;
    EXPECT_FALSE(reader.loadFromMemory(nullptr, 100));
}

TEST(PNGReader, EmbeddedSkinImagesDecode) {
    struct Case {
        const char* name;
        int channels;
    };
    for (const Case& c : {Case{"UIATLAS", 4}, Case{"UIATLASSTENCIL", 3}}) {
        SCOPED_TRACE(c.name);
        ResourceData res = LoadFromResource("TrelvoGUI", c.name, "PNG");
        ASSERT_TRUE(res);
        PNGReader reader(c.name);
        ASSERT_TRUE(reader.loadFromMemory(res.data, res.size));
        EXPECT_EQ(reader.width(), 800);
        EXPECT_EQ(reader.height(), 900);
        EXPECT_EQ(reader.channels(), c.channels);
        EXPECT_EQ(reader.name(), c.name);
    }
}

} // namespace
