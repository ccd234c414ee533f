// GLSLProgram (shader lookup, failures, ownership) and GLVertexBuffer (layout, modes, indices).
#include "support/glfixture.h"
#include "support/shaderdir.h"

#include <graphicsbase/glslprogram.h>
#include <graphicsbase/glvertexbuffer.h>

#include <GL/glew.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <utility>

using namespace GraphicsBase;

using trelvo::test::GLTest;
using trelvo::test::ShaderDir;

namespace {

const char* kPassVertex = R"(#version 330 core
layout(location = 0) in vec2 position;
layout(location = 1) in vec4 color;
out vec4 vColor;
void main() { gl_Position = vec4(position, 0.0, 1.0); vColor = color; }
)";
const char* kPassFragment = R"(#version 330 core
in vec4 vColor;
layout(location = 0) out vec4 fragColor;
void main() { fragColor = vColor; }
)";

GLint Location(const GLSLProgram& program, const char* name) {
    return glGetUniformLocation(program.getProgram(), name);
}

} // namespace

TEST_F(GLTest, ProgramLoadsEmbeddedShadersAndPathOverridesThem) {
    {
        GLSLProgram embedded;
        ASSERT_TRUE(embedded.addShader("UILineShader.vert"));
        ASSERT_TRUE(embedded.addShader("UILineShader.frag"));
        ASSERT_TRUE(embedded.linkProgram());
        EXPECT_TRUE(embedded.isLinked());
        EXPECT_NE(Location(embedded, "pid"), -1);
        EXPECT_EQ(Location(embedded, "overrideMarker"), -1);
    }
    ShaderDir dir;
    dir.Write("UILineShader.frag", R"(#version 330 core
uniform vec4 overrideMarker;
layout(location = 0) out vec4 fragColor;
void main() { fragColor = overrideMarker; }
)");
    GLSLProgram overridden;
    ASSERT_TRUE(overridden.addShader("UILineShader.vert"))
        << "names missing on disk still come from the library";
    ASSERT_TRUE(overridden.addShader("UILineShader.frag"));
    ASSERT_TRUE(overridden.linkProgram());
    EXPECT_NE(Location(overridden, "overrideMarker"), -1) << "the file on the path wins";
    EXPECT_EQ(Location(overridden, "pid"), -1);
}

TEST_F(GLTest, ProgramFailuresNameTheFileAndLeaveItUnlinked) {
    ShaderDir dir;
    dir.Write("Broken.frag", "#version 330 core\nvoid main() { this is not glsl; }\n");
    dir.Write("Pass.vert", kPassVertex);
    dir.Write("IncludesMissing.frag", "#version 330 core\n#include \"Missing.glsl\"\nvoid main() {}\n");
    // Compiles, but the declared function is defined nowhere: only the link can find that out.
    dir.Write("NeedsHelper.frag", R"(#version 330 core
vec4 Helper();
layout(location = 0) out vec4 fragColor;
void main() { fragColor = Helper(); }
)");

    struct Case {
        const char* what;
        const char* vertex;   // null: none added
        const char* fragment; // null: none added
        bool addsSucceed;
        const char* expectedInOutput;
    };
    const Case cases[] = {
        {"unknown name", "NoSuchShader.vert", nullptr, false, "NoSuchShader.vert"},
        {"unknown stage", "UILineShader.glsl", nullptr, false, "UILineShader.glsl"},
        {"compile error", "Pass.vert", "Broken.frag", false, "Broken.frag"},
        {"missing include", "Pass.vert", "IncludesMissing.frag", false, "Missing.glsl"},
        {"missing stage", "NoSuchShader.vert", "Broken.frag", false, "NoSuchShader.vert"},
        {"link error", "Pass.vert", "NeedsHelper.frag", true, "NeedsHelper.frag"},
        {"nothing added", nullptr, nullptr, true, "no shaders"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        GLSLProgram program;
        testing::internal::CaptureStdout();
        bool added = true;
        if (c.vertex)
            added = program.addShader(c.vertex) && added;
        if (c.fragment)
            added = program.addShader(c.fragment) && added;
        bool linked = program.linkProgram();
        std::string output = testing::internal::GetCapturedStdout();
        EXPECT_EQ(added, c.addsSucceed);
        EXPECT_FALSE(linked);
        EXPECT_FALSE(program.isLinked());
        EXPECT_NE(output.find(c.expectedInOutput), std::string::npos) << output;
        program.begin(); // an unlinked program must not be made current
        GLint current = -1;
        glGetIntegerv(GL_CURRENT_PROGRAM, &current);
        EXPECT_EQ(current, 0);
    }
}

TEST_F(GLTest, ProgramCompileFailurePrintsTheDriverLog) {
    ShaderDir dir;
    dir.Write("Broken.frag", "#version 330 core\nvoid main() { undeclaredThing = 1.0; }\n");
    GLSLProgram program;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(program.addShader("Broken.frag"));
    std::string output = testing::internal::GetCapturedStdout();
    EXPECT_NE(output.find("undeclaredThing"), std::string::npos) << output;
}

TEST_F(GLTest, ProgramIncludesSharedTextAndKeepsTheIncludingFilesLineNumbers) {
    ShaderDir dir;
    dir.Write("Pass.vert", kPassVertex);
    dir.Write("Shared.glsl", "// shared declarations\nuniform vec4 sharedMarker;\n");
    const std::string head =
        "#version 330 core\n#include \"Shared.glsl\"\nlayout(location = 0) out vec4 fragColor;\n";
    dir.Write("User.frag", head + "void main() { fragColor = sharedMarker; }\n");
    dir.Write("UserBroken.frag", head + "void main() { fragColor = undeclaredThing; }\n");

    GLSLProgram program;
    ASSERT_TRUE(program.addShader("Pass.vert"));
    ASSERT_TRUE(program.addShader("User.frag"));
    ASSERT_TRUE(program.linkProgram());
    EXPECT_NE(Location(program, "sharedMarker"), -1);

    GLSLProgram broken;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(broken.addShader("UserBroken.frag"));
    std::string output = testing::internal::GetCapturedStdout();
    // The error is on line 4 of the file as written, whatever the included text's length.
    EXPECT_NE(output.find(":4("), std::string::npos) << output;
}

TEST_F(GLTest, ProgramIsMoveOnlyAndDeletesItsObjects) {
    GLuint name = 0;
    {
        GLSLProgram first;
        ASSERT_TRUE(first.addShader("UILineShader.vert"));
        ASSERT_TRUE(first.addShader("UILineShader.frag"));
        ASSERT_TRUE(first.linkProgram());
        name = first.getProgram();
        GLSLProgram second(std::move(first));
        EXPECT_EQ(first.getProgram(), 0u);
        EXPECT_FALSE(first.isLinked());
        EXPECT_EQ(second.getProgram(), name);
        GLSLProgram third;
        third = std::move(second);
        EXPECT_EQ(second.getProgram(), 0u);
        EXPECT_TRUE(third.isLinked());
        EXPECT_TRUE(glIsProgram(name));
    }
    EXPECT_FALSE(glIsProgram(name));
}

namespace {

struct Vertex {
    float x, y;
    uint8_t rgba[4];
};

class VertexBufferTest : public GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        dir = std::make_unique<ShaderDir>();
        dir->Write("Pass.vert", kPassVertex);
        dir->Write("Pass.frag", kPassFragment);
        ASSERT_TRUE(program.addShader("Pass.vert"));
        ASSERT_TRUE(program.addShader("Pass.frag"));
        ASSERT_TRUE(program.linkProgram());
        ASSERT_TRUE(buffer.addAttribute(2, GL_FLOAT));
        ASSERT_TRUE(buffer.addAttribute(4, GL_UNSIGNED_BYTE, true));
        ASSERT_TRUE(buffer.finishLayout());
        glClearColor(0.f, 0.f, 0.f, 1.f);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    void TearDown() override {
        dir.reset();
        GLTest::TearDown();
    }

    std::unique_ptr<ShaderDir> dir;
    GLSLProgram program;
    GLVertexBuffer buffer;
};

} // namespace

TEST_F(VertexBufferTest, IndexedTrianglesWithInterleavedNormalisedColour) {
    EXPECT_EQ(buffer.stride(), 12);
    const Vertex quad[] = {{-1.f, -1.f, {255, 0, 0, 255}},
                           {0.f, -1.f, {255, 0, 0, 255}},
                           {0.f, 0.f, {255, 0, 0, 255}},
                           {-1.f, 0.f, {255, 0, 0, 255}}};
    const GLuint indices[] = {0, 1, 2, 0, 2, 3};
    ASSERT_TRUE(buffer.upload(quad, 4, indices, 6));
    program.begin();
    EXPECT_TRUE(buffer.draw(GLVertexBuffer::Triangles));
    program.end();
    EXPECT_EQ(ReadColor(10, 10), (std::array<uint8_t, 4>{255, 0, 0, 255}));
    EXPECT_EQ(ReadColor(120, 120), (std::array<uint8_t, 4>{255, 0, 0, 255}));
    EXPECT_EQ(ReadColor(140, 10), (std::array<uint8_t, 4>{0, 0, 0, 255}));
    EXPECT_EQ(ReadColor(10, 140), (std::array<uint8_t, 4>{0, 0, 0, 255}));
}

TEST_F(VertexBufferTest, LineLoopClosesTheOutlineAndLineStripDoesNot) {
    // Three corners of a square; only a loop draws the closing segment back to the first.
    const Vertex corners[] = {
        {-0.5f, -0.5f, {0, 255, 0, 255}}, {0.5f, -0.5f, {0, 255, 0, 255}}, {0.5f, 0.5f, {0, 255, 0, 255}}};
    ASSERT_TRUE(buffer.upload(corners, 3, nullptr, 0, GLVertexBuffer::Usage::Dynamic));
    auto litOnDiagonal = [this] {
        int lit = 0;
        for (int i = 80; i < 176; i += 8)
            for (int d = -1; d <= 1; ++d)
                lit += ReadColor(i + d, i)[1] == 255;
        return lit;
    };
    program.begin();
    EXPECT_TRUE(buffer.draw(GLVertexBuffer::LineStrip));
    EXPECT_EQ(litOnDiagonal(), 0);
    EXPECT_TRUE(buffer.draw(GLVertexBuffer::LineLoop));
    EXPECT_GE(litOnDiagonal(), 12);
    program.end();
}

TEST_F(VertexBufferTest, RejectsMisuseWithoutGLErrors) {
    EXPECT_FALSE(buffer.addAttribute(2)) << "the layout is finished";
    EXPECT_FALSE(buffer.finishLayout()) << "only once";
    const Vertex one[] = {{0.f, 0.f, {0, 0, 0, 0}}};
    ASSERT_TRUE(buffer.upload(one, 1));
    for (int mode : {4, 8, -1})
        EXPECT_FALSE(buffer.draw(mode)) << mode;
    EXPECT_FALSE(buffer.draw(GLVertexBuffer::Points, 0, 2)) << "past the uploaded vertices";
    EXPECT_FALSE(buffer.upload(nullptr, 3));

    GLVertexBuffer fresh;
    EXPECT_FALSE(fresh.addAttribute(5));
    EXPECT_FALSE(fresh.addAttribute(2, GL_FLOAT, false, true)) << "integer input needs an integer type";
    EXPECT_FALSE(fresh.upload(one, 1)) << "no layout yet";
    EXPECT_FALSE(fresh.draw(GLVertexBuffer::Points));

    GLuint vao = buffer.vertexArray();
    GLVertexBuffer moved(std::move(buffer));
    EXPECT_EQ(buffer.vertexArray(), 0u);
    EXPECT_EQ(moved.vertexArray(), vao);
    EXPECT_EQ(moved.vertexCount(), 1);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}
