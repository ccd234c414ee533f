// The OBJ reader on the embedded cube model and on malformed input.
#include <graphicsbase/resources.h>
#include <graphicsbase/ui3delementreader.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace GraphicsBase;

namespace {

bool Load(const std::string& text, std::vector<UI3DVertex>& out, std::string& error) {
    return UI3DElementReader::LoadFromASCIIToVertexArray(reinterpret_cast<const unsigned char*>(text.data()),
                                                         text.size(), out, &error);
}

const char* kTriangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 0 1\nvn 0 0 1\n";

} // namespace

// Each face's outward normal and the cell of the label image its texture coordinates stay in.
TEST(UI3DElementReader, EmbeddedCubeHasSixLabelledFacesWithOutwardNormals) {
    ResourceData model = LoadFromResource("TrelvoGUI", "OBJ_3DWIDGETCUBE", "OBJ");
    ASSERT_TRUE(model);
    std::vector<UI3DVertex> v;
    std::string error;
    ASSERT_TRUE(UI3DElementReader::LoadFromASCIIToVertexArray(model.data, model.size, v, &error)) << error;
    ASSERT_EQ(v.size(), 36u);

    struct Face {
        float normal[3];
        float u0, v0; // the cell's lower corner in texture coordinates
    };
    const Face faces[6] = {{{0, -1, 0}, 2 / 3.f, 0},    {{0, 1, 0}, 1 / 3.f, 0},     {{0, 0, 1}, 0, 0.5f},
                           {{-1, 0, 0}, 2 / 3.f, 0.5f}, {{0, 0, -1}, 1 / 3.f, 0.5f}, {{1, 0, 0}, 0, 0}};
    for (std::size_t i = 0; i < v.size(); ++i) {
        const int face = static_cast<int>(i / 6);
        SCOPED_TRACE("vertex " + std::to_string(i));
        EXPECT_EQ(v[i].secondaryId, face);
        const Face& f = faces[face];
        for (int a = 0; a < 3; ++a) {
            EXPECT_FLOAT_EQ(v[i].normal[a], f.normal[a]);
            EXPECT_FLOAT_EQ(std::fabs(v[i].position[a]), 1.f) << "a corner of the side-2 cube";
        }
        const float along =
            v[i].position[0] * f.normal[0] + v[i].position[1] * f.normal[1] + v[i].position[2] * f.normal[2];
        EXPECT_FLOAT_EQ(along, 1.f) << "the corner lies on its own face";
        EXPECT_GE(v[i].texCoord[0], f.u0 - 1e-5f);
        EXPECT_LE(v[i].texCoord[0], f.u0 + 1 / 3.f + 1e-5f);
        EXPECT_GE(v[i].texCoord[1], f.v0 - 1e-5f);
        EXPECT_LE(v[i].texCoord[1], f.v0 + 0.5f + 1e-5f);
    }
    // Counter-clockwise seen from outside, so back-face culling keeps the near faces.
    for (std::size_t t = 0; t < 12; ++t) {
        const float* a = v[t * 3].position;
        const float* b = v[t * 3 + 1].position;
        const float* c = v[t * 3 + 2].position;
        const float e1[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
        const float e2[3] = {c[0] - a[0], c[1] - a[1], c[2] - a[2]};
        const float n[3] = {e1[1] * e2[2] - e1[2] * e2[1], e1[2] * e2[0] - e1[0] * e2[2],
                            e1[0] * e2[1] - e1[1] * e2[0]};
        const float* outward = v[t * 3].normal;
        EXPECT_GT(n[0] * outward[0] + n[1] * outward[1] + n[2] * outward[2], 0.f) << "triangle " << t;
    }
}

TEST(UI3DElementReader, CornerFormsRelativeIndicesAndIgnoredLines) {
    const std::string text = std::string("# comment\r\nmtllib x.mtl\n") + kTriangle +
                             "o first\ns 1\nusemtl m\nf 1/1/1 2/2/1 3/3/1\n"
                             "o second\ng group\nf -3//-1 -2 -1/-1\n";
    std::vector<UI3DVertex> v;
    std::string error;
    ASSERT_TRUE(Load(text, v, error)) << error;
    ASSERT_EQ(v.size(), 6u);
    EXPECT_EQ(v[0].secondaryId, 0);
    EXPECT_EQ(v[3].secondaryId, 1);
    EXPECT_FLOAT_EQ(v[1].texCoord[0], 1.f);
    EXPECT_FLOAT_EQ(v[3].normal[2], 1.f) << "v//vn";
    EXPECT_FLOAT_EQ(v[4].normal[2], 0.f) << "a bare position has no normal";
    EXPECT_FLOAT_EQ(v[5].texCoord[1], 1.f) << "v/vt with a relative index";
    EXPECT_FLOAT_EQ(v[5].position[1], 1.f);
    EXPECT_FLOAT_EQ(v[0].color[3], 1.f);
}

TEST(UI3DElementReader, RefusesMalformedInputWithAReason) {
    struct Case {
        const char* name;
        std::string text;
        const char* reason;
    };
    const std::string head = kTriangle;
    std::string manyPositions;
    for (std::size_t i = 0; i <= UI3DElementReader::kMaxElements; ++i)
        manyPositions += "v 0 0 0\n";
    const Case cases[] = {
        {"empty", "", "no faces"},
        {"no faces", head + "o 0\n", "has no faces"},
        {"face before any object", head + "f 1/1/1 2/2/1 3/3/1\n", "before any object"},
        {"empty object before another", head + "o 0\no 1\nf 1 2 3\n", "object 0 has no faces"},
        {"bad number", "v 0 0 zero\n", "not a finite number"},
        {"number with trailing text", "v 0 0 1.5x\n", "not a finite number"},
        {"not finite", "v 0 inf 0\n", "not a finite number"},
        {"nan", "vn nan 0 0\n", "not a finite number"},
        {"truncated position", "v 0 0\n", "needs 3 numbers, got 2"},
        {"extra normal value", "vn 0 0 1 1\n", "needs 3 numbers, got 4"},
        {"truncated texture coordinate", "vt 0\n", "needs 2 or 3 numbers"},
        {"position index 0", head + "o 0\nf 0 1 2\n", "position index 0 is out of range"},
        {"position index past the end", head + "o 0\nf 1 2 4\n", "position index 4 is out of range"},
        {"relative index before the start", head + "o 0\nf -4 1 2\n", "position index -4 is out of range"},
        {"texture index out of range", head + "o 0\nf 1/4 2/1 3/1\n", "texture coordinate index 4"},
        {"normal index out of range", head + "o 0\nf 1//2 2//1 3//1\n", "normal index 2"},
        {"index overflow", head + "o 0\nf 99999999999999999999 1 2\n", "is not an index"},
        {"huge index", head + "o 0\nf 4294967297 1 2\n", "position index 4294967297 is out of range"},
        {"index with junk", head + "o 0\nf 1a 2 3\n", "is not an index"},
        {"quad", head + "v 1 1 0\no 0\nf 1 2 4 3\n", "must be triangles, got 4"},
        {"truncated face", head + "o 0\nf 1 2\n", "must be triangles, got 2"},
        {"corner cut short", head + "o 0\nf 1/ 2/1 3/1\n", "is incomplete"},
        {"corner without normal after slash", head + "o 0\nf 1/1/ 2/1/1 3/1/1\n", "is incomplete"},
        {"corner with four parts", head + "o 0\nf 1/1/1/1 2 3\n", "too many parts"},
        {"object without a name", head + "o\nf 1 2 3\n", "without a name"},
        {"unknown statement", head + "o 0\nf 1 2 3\ncurv 0 1\n", "unsupported statement 'curv'"},
        {"NUL byte", std::string("v 0 0 0\n", 8) + std::string(1, '\0') + "\n", "control character"},
        {"more positions than the limit", manyPositions, "too many 'v' entries"},
        {"line number", head + "o 0\nf 1 2 3\nv 1 2\n", "line 10:"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<UI3DVertex> v(3);
        std::string error;
        EXPECT_FALSE(Load(c.text, v, error));
        EXPECT_NE(error.find(c.reason), std::string::npos) << "message: " << error;
        EXPECT_TRUE(v.empty()) << "a refusal leaves nothing behind";
    }
}

TEST(UI3DElementReader, WithoutAnErrorStringTheReasonIsPrinted) {
    std::vector<UI3DVertex> v;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(UI3DElementReader::LoadFromASCIIToVertexArray(nullptr, 5, v));
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "UI3DElementReader::LoadFromASCIIToVertexArray(): line 0: no data\n");
}
