#include "lyric/cMusic.h"

#include <filesystem>
#include <system_error>

#include "base/cErrorLog.h"
#include "base/mCodePage.h"
#include "base/mString.h"

namespace toval {

int32_t cMusic::Duration() const {
    int32_t seconds = 0;
    // Every 32-bit count of milliseconds fits once divided by 1000.
    ToInt32(RoundHalfEven(static_cast<double>(miliDuration_) / 1000.0), seconds);
    return seconds;
}

void cMusic::setDuration(int32_t seconds) {
    // Wraps on overflow on purpose: Reset relies on kUnset * 1000 giving 0.
    miliDuration_ = WrapMul(seconds, 1000);
}

void cMusic::setFileAddress(const std::u16string& path) {
    Guarded("cMusic.FileAddress [Let]", [&] {
        if (path != fileAddress_) {
            fileAddress_ = path;
            id_ = ComputeID(path);
        }
        // The file is measured on every write, even of the same path. A file
        // that cannot be measured in 32 bits keeps the old size.
        std::error_code ec;
        const std::uintmax_t size = std::filesystem::file_size(std::filesystem::path(path), ec);
        if (!ec && size <= static_cast<std::uintmax_t>(INT32_MAX)) {
            fileSize_ = static_cast<int32_t>(size);
        }
    });
}

void cMusic::Reset() {
    title_.clear();
    artist_.clear();
    album_.clear();
    setDuration(kUnset);
    id_ = kUnset;
}

std::u16string cMusic::MusicTitle() const {
    return Guarded("cMusic.MusicTitle [Get]", std::u16string(), [&] {
        if (IsValidArtist() && IsValidTitle()) return artist_ + u" - " + title_;
        if (IsValidArtist()) return artist_;
        if (IsValidTitle()) return title_;
        return fileAddress_;
    });
}

std::string cMusic::Info() const {
    return Guarded("cMusic.Info [Get]", std::string(), [&] {
        const cStrings& strings = Strings();
        return strings.wstringTOutf8(artist_) + ' ' + strings.wstringTOutf8(album_) + ' ' +
               strings.wstringTOutf8(title_) + ' ' + DecimalBytes(Duration());
    });
}

std::u16string cMusic::InfoW() const {
    return Guarded("cMusic.InfoW [Get]", std::u16string(), [&] {
        return artist_ + u" - " + album_ + u" - " + title_ + u" - " + DecimalText(Duration());
    });
}

std::u16string cMusic::IDTag() const {
    return Guarded("cMusic.IDTag [Get]", std::u16string(), [&] {
        std::u16string tag;
        if (!album_.empty()) tag += u"[al:" + album_ + u"]\r\n";
        if (!artist_.empty()) tag += u"[ar:" + artist_ + u"]\r\n";
        if (!title_.empty()) tag += u"[ti:" + title_ + u"]\r\n";
        tag += u"[re:Toval]\r\n[ve:1.3.1]\r\n";
        return tag;
    });
}

int32_t cMusic::ComputeID(const std::u16string& path) {
    return Guarded("cMusic.ComputeID", kUnset, [&] {
        // One code-page byte per character of the path.
        std::string bytes = wstringTOansi(path);
        if (bytes.size() != path.size()) {
            bytes.clear();
            for (char16_t c : path) {
                const std::string one = wstringTOansi(std::u16string(1, c));
                bytes.push_back(one.empty() ? '?' : one.front());
            }
        }
        int32_t id = kUnset;
        for (size_t i = bytes.size(); i >= 1; --i) {
            // The product is kept to 16 bits: long paths wrap to negative terms.
            const uint32_t product =
                static_cast<uint32_t>(static_cast<unsigned char>(bytes[i - 1])) *
                static_cast<uint32_t>(i);
            const int16_t term = static_cast<int16_t>(static_cast<uint16_t>(product & 0xFFFFu));
            id = WrapAdd(id, term);
        }
        return id;
    });
}

}  // namespace toval
