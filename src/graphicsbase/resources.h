#pragma once
// Named binary resources embedded into libraries at build time.

#include <graphicsbase/graphicsbase_export.h>

#include <cstddef>
#include <string>

namespace GraphicsBase {

/// Adds an embedded resource. The bytes must outlive the process (static data).
GRAPHICSBASE_EXPORT void RegisterResource(const char* module, const char* name, const char* type,
                                          const unsigned char* data, std::size_t size);

/// A view of an embedded resource's bytes; empty (data null) when not found.
struct ResourceData {
    const unsigned char* data = nullptr;
    std::size_t size = 0;
    explicit operator bool() const { return data != nullptr; }
};

/// Looks a resource up by module, name and type (e.g. "TrelvoGUI", "UIATLAS", "PNG"). A module
/// given by its Windows file name ("TrelvoGUI.dll") is also found under its bare name.
/// Returns an empty result for unknown names; never throws.
GRAPHICSBASE_EXPORT ResourceData LoadFromResource(const std::string& module, const std::string& name,
                                                  const std::string& type);
/// Looks a resource up by name and type in any module (first registered wins).
GRAPHICSBASE_EXPORT ResourceData FindResource(const std::string& name, const std::string& type);

} // namespace GraphicsBase
