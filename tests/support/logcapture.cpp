#include "support/logcapture.h"

#include <algorithm>

using namespace GraphicsBase;

namespace trelvo::test {

LogCapture::LogCapture() {
    handle_ =
        LogFile::Instance().AddObserver([this](int, const std::string& line) { lines_.push_back(line); });
}

LogCapture::~LogCapture() {
    LogFile::Instance().RemoveObserver(handle_);
}

int LogCapture::Count(const std::string& line) const {
    return static_cast<int>(std::count(lines_.begin(), lines_.end(), line));
}

bool LogCapture::Contains(const std::string& fragment) const {
    return std::any_of(lines_.begin(), lines_.end(),
                       [&](const std::string& l) { return l.find(fragment) != std::string::npos; });
}

} // namespace trelvo::test
