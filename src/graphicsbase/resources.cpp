#include <graphicsbase/resources.h>

#include <map>
#include <tuple>

namespace GraphicsBase {

namespace {
using Key = std::tuple<std::string, std::string, std::string>;
std::map<Key, ResourceData>& registry() {
    static std::map<Key, ResourceData> table;
    return table;
}
} // namespace

void RegisterResource(const char* module, const char* name, const char* type, const unsigned char* data,
                      std::size_t size) {
    registry()[Key(module, name, type)] = ResourceData{data, size};
}

ResourceData LoadFromResource(const std::string& module, const std::string& name, const std::string& type) {
    auto it = registry().find(Key(module, name, type));
    if (it != registry().end())
        return it->second;
    // Code written against the module's Windows file name ("TrelvoGUI.dll") finds the same embedded
    // data, which is registered under the bare module name.
    const std::string suffix = ".dll";
    if (module.size() > suffix.size() &&
        module.compare(module.size() - suffix.size(), suffix.size(), suffix) == 0)
        return LoadFromResource(module.substr(0, module.size() - suffix.size()), name, type);
    return {};
}

ResourceData FindResource(const std::string& name, const std::string& type) {
    for (const auto& entry : registry())
        if (std::get<1>(entry.first) == name && std::get<2>(entry.first) == type)
            return entry.second;
    return {};
}

} // namespace GraphicsBase
