#pragma once
// The scene's directional light as the host describes it.

#include <graphicsbase/graphicsbase_export.h>
#include <graphicsbase/tgeom.h>

namespace GraphicsBase {

/// Ambient, diffuse and specular RGBA colours and a position; the light shines from the position
/// towards the origin.
struct GRAPHICSBASE_EXPORT DirectionalLight {
    tgeom::vec4 ambient{0.2f, 0.2f, 0.2f, 1.f};
    tgeom::vec4 diffuse{0.8f, 0.8f, 0.8f, 1.f};
    tgeom::vec4 specular{1.f, 1.f, 1.f, 1.f};
    tgeom::vec position{1.f, 1.f, 1.f};

    /// Unit vector from the origin towards the light.
    tgeom::vec Direction() const;
};

} // namespace GraphicsBase
