// Feeds arbitrary bytes to the PNG decoder: corrupt or truncated images must fail cleanly.
#include <graphicsbase/pngreader.h>

#include <cstdlib>

using namespace GraphicsBase;

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    PNGReader reader;
    if (reader.loadFromMemory(data, size)) {
        const std::size_t bytes = static_cast<std::size_t>(reader.width()) * reader.height() *
                                  static_cast<std::size_t>(reader.channels());
        if (reader.width() <= 0 || reader.height() <= 0 || reader.data() == nullptr ||
            reader.rgba().size() != static_cast<std::size_t>(reader.width()) * reader.height() * 4 ||
            bytes == 0)
            std::abort();
    } else if (reader.width() != 0 || reader.height() != 0 || reader.data() != nullptr) {
        std::abort();
    }
    return 0;
}
