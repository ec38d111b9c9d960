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

std::u16string mLanguage::GetValue(std::u16string_view section, std::u16string_view key) {
    return Guarded("mLanguage.GetValue", std::u16string(), [&] {
        return ansiTOwstring(
            ini_.ReadString(globals_.LanguageFile, wstringTOansi(std::u16string(section)),
                            wstringTOansi(std::u16string(key)), "", cIni::kBufferSize));
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
