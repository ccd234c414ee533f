#include <graphicsbase/ui3delementreader.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace GraphicsBase {

namespace {

using Vec3 = std::array<float, 3>;
using Vec2 = std::array<float, 2>;

/// A refusal: the reason is formatted once, where it is detected, and carried out of the parser.
struct Failure {
    bool failed = false;
    std::string message;

    bool Set(std::size_t line, const std::string& what) {
        failed = true;
        message = "line " + std::to_string(line) + ": " + what;
        return false;
    }
};

bool IsBlank(char c) {
    return c == ' ' || c == '\t';
}

/// Splits a line at blanks; at most `max` tokens are kept, and `count` says how many there were.
template <std::size_t N>
std::size_t Tokenise(std::string_view line, std::array<std::string_view, N>& tokens) {
    std::size_t count = 0;
    std::size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && IsBlank(line[i]))
            ++i;
        if (i == line.size())
            break;
        std::size_t start = i;
        while (i < line.size() && !IsBlank(line[i]))
            ++i;
        if (count < N)
            tokens[count] = line.substr(start, i - start);
        ++count;
    }
    return count;
}

bool ParseFloat(std::string_view token, float& value) {
    // from_chars rejects the leading '+' that some exporters write; accept it, but only before a digit
    // or a point, so "+-1" still fails.
    if (token.size() > 1 && token[0] == '+' && token[1] != '-' && token[1] != '+')
        token.remove_prefix(1);
    const char* end = token.data() + token.size();
    auto [ptr, ec] = std::from_chars(token.data(), end, value, std::chars_format::general);
    return ec == std::errc() && ptr == end && std::isfinite(value);
}

bool ParseIndex(std::string_view token, long long& value) {
    const char* end = token.data() + token.size();
    auto [ptr, ec] = std::from_chars(token.data(), end, value);
    return !token.empty() && ec == std::errc() && ptr == end;
}

/// Turns a 1-based (or negative, relative) OBJ index into a 0-based one into a list of `count`.
bool Resolve(long long index, std::size_t count, std::size_t& out) {
    const long long n = static_cast<long long>(count);
    if (index > 0 && index <= n) {
        out = static_cast<std::size_t>(index - 1);
        return true;
    }
    if (index < 0 && -index <= n) {
        out = static_cast<std::size_t>(n + index);
        return true;
    }
    return false;
}

class Parser {
public:
    explicit Parser(std::vector<UI3DVertex>& out) : out_(out) {}

    bool Line(std::string_view text, std::size_t number) {
        line_ = number;
        for (char c : text)
            if ((static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F)
                return fail.Set(line_, "unexpected control character");
        std::array<std::string_view, 5> t;
        const std::size_t n = Tokenise(text, t);
        if (n == 0 || t[0][0] == '#')
            return true;
        const std::string_view key = t[0];
        if (key == "v" || key == "vn") {
            Vec3 p{};
            if (!Numbers(t, n, 3, 3, p.data(), key))
                return false;
            auto& list = key == "v" ? positions_ : normals_;
            if (list.size() >= UI3DElementReader::kMaxElements)
                return fail.Set(line_, "too many '" + std::string(key) + "' entries");
            list.push_back(p);
            return true;
        }
        if (key == "vt") {
            float uvw[3] = {0.f, 0.f, 0.f};
            if (!Numbers(t, n, 2, 3, uvw, key))
                return false;
            if (texCoords_.size() >= UI3DElementReader::kMaxElements)
                return fail.Set(line_, "too many 'vt' entries");
            texCoords_.push_back({uvw[0], uvw[1]});
            return true;
        }
        if (key == "o") {
            if (n < 2)
                return fail.Set(line_, "'o' without a name");
            if (!CloseObject())
                return false;
            ++object_;
            facesInObject_ = 0;
            return true;
        }
        if (key == "f")
            return Face(t, n);
        if (key == "s" || key == "g" || key == "usemtl" || key == "mtllib")
            return true;
        return fail.Set(line_, "unsupported statement '" + std::string(key.substr(0, 16)) + "'");
    }

    bool Finish() {
        if (!CloseObject())
            return false;
        if (out_.empty())
            return fail.Set(line_, "the model has no faces");
        return true;
    }

    Failure fail;

private:
    template <std::size_t N>
    bool Numbers(const std::array<std::string_view, N>& t, std::size_t n, std::size_t least, std::size_t most,
                 float* values, std::string_view key) {
        const std::size_t given = n - 1;
        if (given < least || given > most)
            return fail.Set(line_, "'" + std::string(key) + "' needs " + std::to_string(least) +
                                       (least == most ? "" : " or " + std::to_string(most)) +
                                       " numbers, got " + std::to_string(given));
        for (std::size_t i = 0; i < given; ++i)
            if (!ParseFloat(t[i + 1], values[i]))
                return fail.Set(line_,
                                "'" + std::string(t[i + 1].substr(0, 32)) + "' is not a finite number");
        return true;
    }

    bool CloseObject() {
        if (object_ >= 0 && facesInObject_ == 0)
            return fail.Set(line_, "object " + std::to_string(object_) + " has no faces");
        return true;
    }

    template <std::size_t N> bool Face(const std::array<std::string_view, N>& t, std::size_t n) {
        if (object_ < 0)
            return fail.Set(line_, "face before any object ('o')");
        if (n != 4)
            return fail.Set(line_, "faces must be triangles, got " + std::to_string(n - 1) + " corners");
        if (out_.size() + 3 > UI3DElementReader::kMaxElements)
            return fail.Set(line_, "too many vertices");
        UI3DVertex corners[3];
        for (int i = 0; i < 3; ++i)
            if (!Corner(t[static_cast<std::size_t>(i) + 1], corners[i]))
                return false;
        for (const UI3DVertex& c : corners)
            out_.push_back(c);
        ++facesInObject_;
        return true;
    }

    /// One "v", "v/vt", "v//vn" or "v/vt/vn" corner.
    bool Corner(std::string_view token, UI3DVertex& vertex) {
        std::string_view parts[3];
        std::size_t count = 0;
        std::size_t start = 0;
        for (std::size_t i = 0; i <= token.size(); ++i) {
            if (i == token.size() || token[i] == '/') {
                if (count == 3)
                    return fail.Set(line_,
                                    "corner '" + std::string(token.substr(0, 32)) + "' has too many parts");
                parts[count++] = token.substr(start, i - start);
                start = i + 1;
            }
        }
        // v/ and v/vt/ are cut short; only the texture coordinate may be left out in the middle.
        if (parts[0].empty() || (count == 2 && parts[1].empty()) || (count == 3 && parts[2].empty()))
            return fail.Set(line_, "corner '" + std::string(token.substr(0, 32)) + "' is incomplete");

        struct Ref {
            std::string_view text;
            std::size_t size;
            const char* what;
        };
        const Ref refs[3] = {
            {parts[0], positions_.size(), "position"},
            {count > 1 ? parts[1] : std::string_view(), texCoords_.size(), "texture coordinate"},
            {count > 2 ? parts[2] : std::string_view(), normals_.size(), "normal"}};
        std::size_t index[3] = {0, 0, 0};
        for (int k = 0; k < 3; ++k) {
            if (refs[k].text.empty())
                continue;
            long long value = 0;
            if (!ParseIndex(refs[k].text, value))
                return fail.Set(line_, "'" + std::string(refs[k].text.substr(0, 32)) + "' is not an index");
            if (!Resolve(value, refs[k].size, index[k]))
                return fail.Set(line_, std::string(refs[k].what) + " index " + std::to_string(value) +
                                           " is out of range (" + std::to_string(refs[k].size) + " defined)");
        }
        const Vec3& p = positions_[index[0]];
        std::copy(p.begin(), p.end(), vertex.position);
        if (!refs[1].text.empty()) {
            const Vec2& uv = texCoords_[index[1]];
            std::copy(uv.begin(), uv.end(), vertex.texCoord);
        }
        if (!refs[2].text.empty()) {
            const Vec3& nv = normals_[index[2]];
            std::copy(nv.begin(), nv.end(), vertex.normal);
        }
        vertex.secondaryId = object_;
        return true;
    }

    std::vector<UI3DVertex>& out_;
    std::vector<Vec3> positions_;
    std::vector<Vec2> texCoords_;
    std::vector<Vec3> normals_;
    std::size_t line_ = 0;
    int object_ = -1;
    int facesInObject_ = 0;
};

} // namespace

bool UI3DElementReader::LoadFromASCIIToVertexArray(const unsigned char* data, std::size_t size,
                                                   std::vector<UI3DVertex>& vertices, std::string* error) {
    vertices.clear();
    Parser parser(vertices);
    bool ok = data != nullptr || size == 0;
    if (!ok)
        parser.fail.Set(0, "no data");
    const std::string_view text(reinterpret_cast<const char*>(data), data ? size : 0);
    std::size_t lineNumber = 0;
    for (std::size_t start = 0; ok && start < text.size();) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos)
            end = text.size();
        std::string_view line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        ok = parser.Line(line, ++lineNumber);
        start = end + 1;
    }
    if (ok)
        ok = parser.Finish();
    if (ok)
        return true;
    vertices.clear();
    vertices.shrink_to_fit();
    if (error)
        *error = parser.fail.message;
    else
        std::printf("UI3DElementReader::LoadFromASCIIToVertexArray(): %s\n", parser.fail.message.c_str());
    return false;
}

} // namespace GraphicsBase
