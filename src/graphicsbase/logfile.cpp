#include <graphicsbase/logfile.h>

#include <cstdarg>
#include <vector>

namespace GraphicsBase {

LogFile& LogFile::Instance() {
    static LogFile instance;
    return instance;
}

LogFile::~LogFile() {
    Close();
}

void LogFile::AddLine(int level, const char* format, ...) {
    char stackBuffer[512];
    va_list args;
    va_start(args, format);
    va_list copy;
    va_copy(copy, args);
    int n = std::vsnprintf(stackBuffer, sizeof stackBuffer, format, args);
    va_end(args);
    std::string line;
    if (n < 0) {
        line = format;
    } else if (static_cast<size_t>(n) < sizeof stackBuffer) {
        line.assign(stackBuffer, static_cast<size_t>(n));
    } else {
        std::vector<char> big(static_cast<size_t>(n) + 1);
        std::vsnprintf(big.data(), big.size(), format, copy);
        line.assign(big.data(), static_cast<size_t>(n));
    }
    va_end(copy);

    if (enabled_ && file_) {
        std::fputs(line.c_str(), file_);
        std::fflush(file_);
    }
    if (echo_) {
        std::fputs(line.c_str(), stdout);
        std::fflush(stdout);
    }
    // Copy first: an observer may remove itself while being called.
    auto observers = observers_;
    for (auto& entry : observers)
        entry.second(level, line);
}

bool LogFile::Open(const std::string& path) {
    Close();
    file_ = std::fopen(path.c_str(), "a");
    return file_ != nullptr;
}

void LogFile::Close() {
    if (file_)
        std::fclose(file_);
    file_ = nullptr;
}

int LogFile::AddObserver(Observer observer) {
    int handle = nextObserver_++;
    observers_.emplace(handle, std::move(observer));
    return handle;
}

void LogFile::RemoveObserver(int handle) {
    observers_.erase(handle);
}

} // namespace GraphicsBase
