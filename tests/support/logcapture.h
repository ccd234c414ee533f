#pragma once
// Captures what the library writes to the log while a test runs.

#include <graphicsbase/logfile.h>

#include <string>
#include <vector>

namespace trelvo::test {

/// Records every log line from construction to destruction.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    const std::vector<std::string>& Lines() const { return lines_; }
    /// Number of lines exactly equal to `line`.
    int Count(const std::string& line) const;
    /// Whether any line contains `fragment`.
    bool Contains(const std::string& fragment) const;
    void Clear() { lines_.clear(); }

private:
    int handle_;
    std::vector<std::string> lines_;
};

} // namespace trelvo::test
