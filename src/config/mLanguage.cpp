#include "config/mLanguage.h"

#include "base/cErrorLog.h"
#include "base/mCodePage.h"
#include "base/mNumber.h"
#include "config/cIni.h"

namespace toval {
namespace {

// Forms nest controls only a few levels deep; the bound keeps a tree that
// refers back to itself from recursing without end.
constexpr int kMaxDepth = 64;

void Mirror(iLanguageTarget& object) {
    const auto left = object.Left();
    const auto width = object.Width();
    const auto container = object.ContainerWidth();
    if (left && width && container) {
        object.setLeft(WrapSub(*container, WrapAdd(*left, *width)));
    }
    if (const auto alignment = object.Alignment()) {
        if (*alignment == kAlignLeft) {
            object.setAlignment(kAlignRight);
        } else if (*alignment == kAlignRight) {
            object.setAlignment(kAlignLeft);
        }
    }
}

void Apply(mLanguage& language, iLanguageTarget& object, const std::u16string& prefix,
           bool rightToLeft, int depth) {
    // Only controls the designer tagged take part in mirroring.
    const std::u16string tag = object.Tag();
    if (tag == u"RTL" && !rightToLeft) {
        object.setTag(u"LTR");
        Mirror(object);
    } else if (tag == u"LTR" && rightToLeft) {
        object.setTag(u"RTL");
        Mirror(object);
    }

    const std::u16string path = prefix + u"." + object.Name();
    const std::u16string caption = language.GetValue(u"objects", path + u".caption");
    if (!caption.empty() && object.Caption()) object.setCaption(caption);
    const std::u16string tip = language.GetValue(u"objects", path + u".tooltiptext");
    if (!tip.empty() && object.ToolTipText()) object.setToolTipText(tip);

    if (depth >= kMaxDepth) return;
    for (iLanguageTarget* child : object.Children()) {
        if (child != nullptr) Apply(language, *child, path, rightToLeft, depth + 1);
    }
}

}  // namespace

mLanguage::mLanguage(IniFile& ini, cGlobals& globals) : ini_(ini), globals_(globals) {}

namespace {

// True when bytes hold UTF-8 with at least one character beyond ASCII: text in
// an 8-bit code page almost never forms valid UTF-8 sequences.
bool LooksUtf8(const std::string& bytes) {
    bool wide = false;
    for (size_t i = 0; i < bytes.size();) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        size_t extra = 0;
        if (b < 0x80) {
            ++i;
            continue;
        }
        if (b >= 0xC2 && b <= 0xDF)
            extra = 1;
        else if (b >= 0xE0 && b <= 0xEF)
            extra = 2;
        else if (b >= 0xF0 && b <= 0xF4)
            extra = 3;
        else
            return false;
        if (extra >= bytes.size() - i) return false;  // cut short
        for (size_t k = 1; k <= extra; ++k)
            if ((static_cast<unsigned char>(bytes[i + k]) & 0xC0) != 0x80) return false;
        wide = true;
        i += extra + 1;
    }
    return wide;
}

}  // namespace

std::u16string mLanguage::GetValue(std::u16string_view section, std::u16string_view key) {
    return Guarded("mLanguage.GetValue", std::u16string(), [&] {
        const std::string bytes =
            ini_.ReadString(globals_.LanguageFile, wstringTOansi(std::u16string(section)),
                            wstringTOansi(std::u16string(key)), "", cIni::kBufferSize);
        // The file's code page, as a Windows of its language would read it: a
        // right-to-left language file is Hebrew (Windows-1255), any other
        // western (Windows-1252); a file written in UTF-8 is read as such.
        const int32_t codePage = LooksUtf8(bytes)       ? kCodePageUtf8
                                 : globals_.RightToLeft ? kCodePageHebrew
                                                        : kCodePageWestern;
        return codepageTOwstring(bytes, codePage);
    });
}

void mLanguage::ReadDirection() {
    globals_.RightToLeft = GetValue(u"info", u"alignment") == u"1";
}

std::u16string mLanguage::MessageText(std::u16string_view key,
                                      const std::vector<std::u16string>& fill) {
    return Guarded("mLanguage.MessageText", std::u16string(), [&] {
        const std::u16string raw = GetValue(u"msg", key);
        std::u16string text;
        text.reserve(raw.size() + 8);
        for (size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] == u'\\' && i + 1 < raw.size() && raw[i + 1] == u'n') {
                text += u"\r\n";
                ++i;
            } else {
                text.push_back(raw[i]);
            }
        }
        return FillMessage(std::move(text), fill);
    });
}

std::u16string mLanguage::FillMessage(std::u16string text,
                                      const std::vector<std::u16string>& fill) {
    return Guarded("mLanguage.FillMessage", std::u16string(), [&] {
        // Each element takes the first marker left in the text, searched from
        // the start; elements beyond the markers are dropped.
        for (const std::u16string& element : fill) {
            const size_t at = text.find(u"%%");
            if (at == std::u16string::npos) break;
            text.replace(at, 2, element);
        }
        return std::move(text);
    });
}

void mLanguage::ApplyLanguage(iLanguageTarget& object, const std::u16string& prefix) {
    Guarded("mLanguage.ApplyLanguage",
            [&] { Apply(*this, object, prefix, globals_.RightToLeft, 0); });
}

}  // namespace toval
