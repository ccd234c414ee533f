#pragma once
// Process-wide diagnostic log: control-tree misuse, GL errors and handler notices go here.

#include <graphicsbase/graphicsbase_export.h>

#include <cstdio>
#include <functional>
#include <map>
#include <string>

namespace GraphicsBase {

/// Levels AddLine takes, as plain ints: 2 for warnings, 5 for information. Scoped rather than
/// LOG_-prefixed, because <syslog.h> defines macros of those names and hosts include both.
namespace LogLevel {
inline constexpr int Error = 1;
inline constexpr int Warning = 2;
inline constexpr int Notice = 3;
inline constexpr int Debug = 4;
inline constexpr int Info = 5;
} // namespace LogLevel

/// Singleton log. Writes to a file when enabled, echoes to standard output when echo is on, and hands
/// every line to registered observers (tests capture lines that way).
class GRAPHICSBASE_EXPORT LogFile {
public:
    using Observer = std::function<void(int level, const std::string& line)>;

    static LogFile& Instance();

    /// printf-style; the text is logged exactly as formatted (callers end lines with "\n").
    void AddLine(int level, const char* format, ...) __attribute__((format(printf, 3, 4)));

    /// Opens (appending) the file written while enabled; false if it cannot be opened.
    bool Open(const std::string& path);
    void Close();
    void SetEnabled(bool enabled) { enabled_ = enabled; }
    bool Enabled() const { return enabled_; }
    void SetEcho(bool echo) { echo_ = echo; }
    bool Echo() const { return echo_; }

    int AddObserver(Observer observer);
    void RemoveObserver(int handle);

    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

private:
    LogFile() = default;
    ~LogFile();

    std::FILE* file_ = nullptr;
    bool enabled_ = false;
    bool echo_ = true;
    int nextObserver_ = 1;
    std::map<int, Observer> observers_;
};

} // namespace GraphicsBase
