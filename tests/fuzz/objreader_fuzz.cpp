// Feeds arbitrary bytes to the OBJ reader: it must refuse or accept without crashing, reading out of
// bounds or allocating without bound, and what it accepts must be well formed.
#include <graphicsbase/ui3delementreader.h>

#include <cstdlib>
#include <string>
#include <vector>

using namespace GraphicsBase;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    std::vector<UI3DVertex> vertices;
    std::string error;
    const bool ok = UI3DElementReader::LoadFromASCIIToVertexArray(data, size, vertices, &error);
    if (ok && (vertices.empty() || vertices.size() % 3 != 0 || !error.empty()))
        std::abort();
    if (!ok && (!vertices.empty() || error.empty()))
        std::abort();
    return 0;
}
