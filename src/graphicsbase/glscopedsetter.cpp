#include <graphicsbase/glscopedsetter.h>

#include <graphicsbase/glerror.h>
#include <graphicsbase/logfile.h>

#include <GL/glew.h>

namespace GraphicsBase {

namespace GL {

GLScopedSetter::Record* GLScopedSetter::push() {
    if (count_ == kMaxEntries) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "GLScopedSetter: more than %zu entries, state not saved\n", kMaxEntries);
        return nullptr;
    }
    return &records_[count_++];
}

void GLScopedSetter::setCapability(GLenum capability, bool on) {
    Record* r = push();
    if (r) {
        r->kind = Kind::Capability;
        r->capability = capability;
        r->wasEnabled = glIsEnabled(capability);
        GB_CHECK_GL("glscopedsetter");
    }
    if (on)
        glEnable(capability);
    else
        glDisable(capability);
    GB_CHECK_GL("glscopedsetter");
}

void GLScopedSetter::Apply(Enable e) {
    setCapability(e.capability, true);
}
void GLScopedSetter::Apply(Disable d) {
    setCapability(d.capability, false);
}

void GLScopedSetter::Apply(BlendFunc b) {
    Apply(BlendFuncSeparate{b.source, b.destination, b.source, b.destination});
}

void GLScopedSetter::Apply(BlendFuncSeparate b) {
    Record* r = push();
    if (r) {
        r->kind = Kind::Blend;
        glGetIntegerv(GL_BLEND_SRC_RGB, &r->blend[0]);
        glGetIntegerv(GL_BLEND_DST_RGB, &r->blend[1]);
        glGetIntegerv(GL_BLEND_SRC_ALPHA, &r->blend[2]);
        glGetIntegerv(GL_BLEND_DST_ALPHA, &r->blend[3]);
        GB_CHECK_GL("glscopedsetter");
    }
    glBlendFuncSeparate(b.sourceRgb, b.destinationRgb, b.sourceAlpha, b.destinationAlpha);
    GB_CHECK_GL("glscopedsetter");
}

void GLScopedSetter::Apply(ColorMask m) {
    Record* r = push();
    if (r) {
        r->kind = Kind::ColorMask;
        GLboolean mask[4] = {GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE};
        glGetBooleanv(GL_COLOR_WRITEMASK, mask);
        GB_CHECK_GL("glscopedsetter");
        for (int i = 0; i < 4; ++i)
            r->blend[i] = mask[i];
    }
    glColorMask(m.red, m.green, m.blue, m.alpha);
    GB_CHECK_GL("glscopedsetter");
}

namespace {
void bindOnUnit(GLenum unit, GLuint texture) {
    GLint active = GL_TEXTURE0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
    glActiveTexture(GL_TEXTURE0 + unit);
    glBindTexture(GL_TEXTURE_2D, texture);
    glActiveTexture(static_cast<GLenum>(active));
    GB_CHECK_GL("glscopedsetter");
}
} // namespace

void GLScopedSetter::Apply(BindTexture2D t) {
    Record* r = push();
    if (r) {
        r->kind = Kind::Texture;
        GLint active = GL_TEXTURE0;
        glGetIntegerv(GL_ACTIVE_TEXTURE, &active);
        glActiveTexture(GL_TEXTURE0 + t.unit);
        r->blend[0] = static_cast<int>(t.unit);
        glGetIntegerv(GL_TEXTURE_BINDING_2D, &r->blend[1]);
        glActiveTexture(static_cast<GLenum>(active));
        GB_CHECK_GL("glscopedsetter");
    }
    bindOnUnit(t.unit, t.texture);
}

GLScopedSetter::~GLScopedSetter() {
    while (count_ > 0) {
        const Record& r = records_[--count_];
        if (r.kind == Kind::Capability) {
            if (r.wasEnabled)
                glEnable(r.capability);
            else
                glDisable(r.capability);
        } else if (r.kind == Kind::ColorMask) {
            glColorMask(r.blend[0] != 0, r.blend[1] != 0, r.blend[2] != 0, r.blend[3] != 0);
        } else if (r.kind == Kind::Texture) {
            bindOnUnit(static_cast<GLenum>(r.blend[0]), static_cast<GLuint>(r.blend[1]));
        } else {
            glBlendFuncSeparate(static_cast<GLenum>(r.blend[0]), static_cast<GLenum>(r.blend[1]),
                                static_cast<GLenum>(r.blend[2]), static_cast<GLenum>(r.blend[3]));
        }
        GB_CHECK_GL("glscopedsetter");
    }
}

} // namespace GL

} // namespace GraphicsBase
