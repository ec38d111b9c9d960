#include "config/cIniEngine.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "base/cErrorLog.h"

namespace toval {
namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f' || c == '\x1a';
}

std::string_view Trim(std::string_view s) {
    while (!s.empty() && IsBlank(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && IsBlank(s.back()))
        s.remove_suffix(1);
    return s;
}

// The names and values of the calls are C strings: they end at the first zero.
std::string_view CString(std::string_view s) {
    const size_t zero = s.find('\0');
    return zero == std::string_view::npos ? s : s.substr(0, zero);
}

char Lower(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (Lower(a[i]) != Lower(b[i])) return false;
    }
    return true;
}

// One line of the file as the engine sees it.
struct Line {
    enum Kind { kOther, kSection, kKey } kind = kOther;
    size_t begin = 0;        // offset of the line in the content
    size_t end = 0;          // offset just past its line break (or the end of the content)
    bool blank = true;       // nothing but blanks
    std::string_view name;   // section or key name, trimmed
    std::string_view value;  // value of a key, trimmed
};

// The line that starts at pos (pos < content.size()).
Line LineAt(std::string_view content, size_t pos) {
    size_t next = content.find('\n', pos);
    next = next == std::string_view::npos ? content.size() : next + 1;
    Line line;
    line.begin = pos;
    line.end = next;
    const std::string_view text = Trim(content.substr(pos, next - pos));
    line.blank = text.empty();
    if (text.empty()) return line;
    const size_t close = text.find(']');
    if (text.front() == '[' && close != std::string_view::npos) {
        line.kind = Line::kSection;
        line.name = Trim(text.substr(1, close - 1));
        return line;
    }
    // Lines without "=" (and "[" lines without "]") hold no key.
    const size_t eq = text.find('=');
    if (text.front() != ';' && eq != std::string_view::npos) {
        line.kind = Line::kKey;
        line.name = Trim(text.substr(0, eq));
        line.value = Trim(text.substr(eq + 1));
    }
    return line;
}

// Where key stands in the first section named section; a later section of the
// same name is not looked at. The file is scanned line by line, so a file of
// any size costs no more memory than its content.
struct Place {
    bool section = false;  // the section is there
    bool key = false;      // and holds the key: keyLine
    Line keyLine;
    size_t sectionEnd = 0;  // just past the section's last line that is not blank
};

Place Find(std::string_view content, std::string_view section, std::string_view key) {
    Place place;
    size_t pos = 0;
    while (pos < content.size()) {
        const Line line = LineAt(content, pos);
        pos = line.end;
        if (line.kind == Line::kSection && SameName(line.name, section)) {
            place.section = true;
            place.sectionEnd = line.end;
            break;
        }
    }
    if (!place.section) return place;
    while (pos < content.size()) {
        const Line line = LineAt(content, pos);
        pos = line.end;
        if (line.kind == Line::kSection) break;
        if (line.kind == Line::kKey && SameName(line.name, key)) {
            place.key = true;
            place.keyLine = line;
            break;
        }
        if (!line.blank) place.sectionEnd = line.end;
    }
    return place;
}

std::string Cut(std::string_view text, size_t bufferSize) {
    if (bufferSize == 0) return {};
    return std::string(text.substr(0, bufferSize - 1));
}

// The whole file; found is false when it cannot be opened or read (a folder
// in its place included).
std::string ReadWholeFile(const std::filesystem::path& path, bool& found) {
    std::ifstream in(path, std::ios::binary);
    std::string content;
    char chunk[16384];
    while (in.read(chunk, sizeof chunk) || in.gcount() > 0) {
        content.append(chunk, static_cast<size_t>(in.gcount()));
    }
    found = in.is_open() && !in.bad();
    if (!found) content.clear();
    return content;
}

}  // namespace

std::string cIniEngine::Lookup(std::string_view content, std::string_view section,
                               std::string_view key, const std::string& def, size_t bufferSize) {
    const Place place = Find(content, Trim(CString(section)), Trim(CString(key)));
    if (!place.key) {
        // Like the system call, the default loses its trailing blanks.
        std::string_view d = CString(def);
        while (!d.empty() && d.back() == ' ')
            d.remove_suffix(1);
        return Cut(d, bufferSize);
    }
    std::string_view value = place.keyLine.value;
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front()) {
        value = value.substr(1, value.size() - 2);
    }
    return Cut(value, bufferSize);
}

std::string cIniEngine::Update(std::string_view content, std::string_view section,
                               std::string_view key, std::string_view value) {
    section = Trim(CString(section));
    key = Trim(CString(key));
    // A value is one line of the file.
    value = CString(value);
    value = value.substr(0, value.find_first_of("\r\n"));
    std::string entry;
    entry.reserve(key.size() + value.size() + 3);
    entry.append(key).append("=").append(value).append("\r\n");

    const Place place = Find(content, section, key);
    std::string out;
    out.reserve(content.size() + entry.size() + section.size() + 8);
    if (place.key) {
        // The line keeps the key's spelling as the file has it.
        const Line& line = place.keyLine;
        out.append(content.substr(0, line.begin))
            .append(line.name)
            .append("=")
            .append(value)
            .append("\r\n")
            .append(content.substr(line.end));
        return out;
    }
    if (place.section) {
        // A new key goes behind the last line of the section that is not blank.
        out.append(content.substr(0, place.sectionEnd));
        if (!out.empty() && out.back() != '\n') out.append("\r\n");
        out.append(entry).append(content.substr(place.sectionEnd));
        return out;
    }
    out.append(content);
    if (!out.empty() && out.back() != '\n') out.append("\r\n");
    out.append("[").append(section).append("]\r\n").append(entry);
    return out;
}

std::string cIniEngine::ReadString(const std::u16string& file, const std::string& section,
                                   const std::string& key, const std::string& def,
                                   size_t bufferSize) {
    // A read that fails (the file too large to hold, say) gives the default,
    // as a missing file does.
    return Guarded("cIniEngine.ReadString", Lookup({}, section, key, def, bufferSize), [&] {
        bool found = false;
        const std::string content = ReadWholeFile(std::filesystem::path(file), found);
        return Lookup(content, section, key, def, bufferSize);
    });
}

bool cIniEngine::WriteString(const std::u16string& file, const std::string& section,
                             const std::string& key, const std::string& value) {
    return Guarded("cIniEngine.WriteString", false, [&] {
        const std::filesystem::path path(file);
        bool found = false;
        const std::string content = ReadWholeFile(path, found);
        std::error_code ec;
        if (!found && std::filesystem::exists(path, ec)) return false;  // there but unreadable
        const std::string updated = Update(content, section, key, value);

        // Write beside the file and swap it in, so that a failed write never
        // leaves the settings half written.
        std::filesystem::path temp = path;
        temp += ".tmp";
        {
            std::ofstream out(temp, std::ios::binary | std::ios::trunc);
            if (!out) return false;
            out.write(updated.data(), static_cast<std::streamsize>(updated.size()));
            out.close();
            if (!out) {
                std::filesystem::remove(temp, ec);
                return false;
            }
        }
        std::filesystem::rename(temp, path, ec);
        if (ec) {
            std::filesystem::remove(temp, ec);
            return false;
        }
        return true;
    });
}

}  // namespace toval
