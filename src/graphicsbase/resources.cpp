#include <graphicsbase/resources.h>

#include <map>
#include <tuple>

namespace {
using Key = std::tuple<std::string, std::string, std::string>;
std::map<Key, ResourceData>& registry() {
    static std::map<Key, ResourceData> table;
    return table;
}
} // namespace

namespace GraphicsBase {
void RegisterResource(const char* module, const char* name, const char* type, const unsigned char* data,
                      std::size_t size) {
    registry()[Key(module, name, type)] = ResourceData{data, size};
}
} // namespace GraphicsBase

ResourceData LoadFromResource(const std::string& module, const std::string& name, const std::string& type) {
    auto it = registry().find(Key(module, name, type));
    return it == registry().end() ? ResourceData{} : it->second;
}

ResourceData FindResource(const std::string& name, const std::string& type) {
    for (const auto& entry : registry())
        if (std::get<1>(entry.first) == name && std::get<2>(entry.first) == type)
            return entry.second;
    return {};
}
