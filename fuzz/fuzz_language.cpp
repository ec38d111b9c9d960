// The language module on arbitrary language files: messages with any markers
// and fill texts, and labelling a small form.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "config/cIniEngine.h"
#include "config/mLanguage.h"

namespace {

// The language file, held in memory.
struct MemoryIni : toval::IniFile {
    std::string content;
    std::string ReadString(const std::u16string&, const std::string& section,
                           const std::string& key, const std::string& def,
                           size_t bufferSize) override {
        return toval::cIniEngine::Lookup(content, section, key, def, bufferSize);
    }
    bool WriteString(const std::u16string&, const std::string&, const std::string&,
                     const std::string&) override {
        return false;
    }
};

struct Control : toval::iLanguageTarget {
    std::u16string name, caption = u"c", tag;
    std::optional<int32_t> left, width, container, alignment;
    std::vector<Control*> children;
    std::u16string Name() const override { return name; }
    std::optional<std::u16string> Caption() const override { return caption; }
    void setCaption(const std::u16string& v) override { caption = v; }
    std::u16string Tag() const override { return tag; }
    void setTag(const std::u16string& v) override { tag = v; }
    std::optional<int32_t> Left() const override { return left; }
    void setLeft(int32_t v) override { left = v; }
    std::optional<int32_t> Width() const override { return width; }
    std::optional<int32_t> ContainerWidth() const override { return container; }
    std::optional<int32_t> Alignment() const override { return alignment; }
    void setAlignment(int32_t v) override { alignment = v; }
    std::vector<toval::iLanguageTarget*> Children() override {
        return {children.begin(), children.end()};
    }
};

std::u16string Widen(std::string_view bytes) {
    std::u16string text;
    for (unsigned char c : bytes)
        text.push_back(c);
    return text;
}

int32_t Number(std::string_view bytes) {
    uint32_t n = 0;
    for (unsigned char c : bytes.substr(0, 4))
        n = (n << 8) | c;
    return static_cast<int32_t>(n);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Layout: key \x01 fill texts separated by \x02 \x01 language file.
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const size_t first = input.find('\x01');
    const std::string_view key = input.substr(0, first);
    std::string_view fills, file;
    if (first != std::string_view::npos) {
        const std::string_view rest = input.substr(first + 1);
        const size_t second = rest.find('\x01');
        fills = rest.substr(0, second);
        if (second != std::string_view::npos) file = rest.substr(second + 1);
    }
    std::vector<std::u16string> fill;
    while (!fills.empty() && fill.size() < 64) {
        const size_t cut = fills.find('\x02');
        fill.push_back(Widen(fills.substr(0, cut)));
        if (cut == std::string_view::npos) break;
        fills.remove_prefix(cut + 1);
    }

    MemoryIni ini;
    ini.content = std::string(file);
    toval::cGlobals globals;
    toval::mLanguage language(ini, globals);
    const std::u16string message = language.MessageText(Widen(key), fill);
    // Each "\n" grows by nothing; each marker takes at most one text.
    size_t limit = 1023;
    for (const std::u16string& text : fill)
        limit += text.size();
    if (message.size() > limit) std::abort();
    language.ReadDirection();

    Control form, a, b;
    form.name = u"fMain";
    a.name = Widen(key.substr(0, 8));
    a.tag = size % 2 ? u"LTR" : u"RTL";
    a.left = Number(input);
    a.width = Number(input.substr(size / 2));
    a.container = Number(file);
    a.alignment = static_cast<int32_t>(size % 3);
    b.name = u"cmdSave";
    form.children = {&a, &b};
    a.children = {&b};
    language.ApplyLanguage(form, u"");
    return 0;
}
