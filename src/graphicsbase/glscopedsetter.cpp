#include <graphicsbase/glscopedsetter.h>

#include <graphicsbase/glerror.h>
#include <graphicsbase/logfile.h>

#include <GL/glew.h>

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

GLScopedSetter::~GLScopedSetter() {
    while (count_ > 0) {
        const Record& r = records_[--count_];
        if (r.kind == Kind::Capability) {
            if (r.wasEnabled)
                glEnable(r.capability);
            else
                glDisable(r.capability);
        } else {
            glBlendFuncSeparate(static_cast<GLenum>(r.blend[0]), static_cast<GLenum>(r.blend[1]),
                                static_cast<GLenum>(r.blend[2]), static_cast<GLenum>(r.blend[3]));
        }
        GB_CHECK_GL("glscopedsetter");
    }
}

} // namespace GL
