// What the language module needs of a form or control to label it: its name,
// caption and tool tip, its designer tag and geometry for right-to-left
// mirroring, and its members. A property an object does not have reads as
// std::nullopt and ignores writes; such an object is passed over silently.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace toval {

// Text alignment values of a control.
inline constexpr int32_t kAlignLeft = 0;
inline constexpr int32_t kAlignRight = 1;
inline constexpr int32_t kAlignCenter = 2;

class iLanguageTarget {
  public:
    virtual ~iLanguageTarget() = default;

    virtual std::u16string Name() const = 0;

    virtual std::optional<std::u16string> Caption() const { return std::nullopt; }
    virtual void setCaption(const std::u16string&) {}
    virtual std::optional<std::u16string> ToolTipText() const { return std::nullopt; }
    virtual void setToolTipText(const std::u16string&) {}

    // The designer's tag: "RTL" or "LTR" marks a control that is mirrored when
    // the reading direction changes.
    virtual std::u16string Tag() const { return {}; }
    virtual void setTag(const std::u16string&) {}

    virtual std::optional<int32_t> Left() const { return std::nullopt; }
    virtual void setLeft(int32_t) {}
    virtual std::optional<int32_t> Width() const { return std::nullopt; }
    virtual std::optional<int32_t> Alignment() const { return std::nullopt; }
    virtual void setAlignment(int32_t) {}
    // Width of the control's container; std::nullopt when it has none.
    virtual std::optional<int32_t> ContainerWidth() const { return std::nullopt; }

    // The members (a form's controls); empty for an object without any.
    virtual std::vector<iLanguageTarget*> Children() { return {}; }
};

}  // namespace toval
