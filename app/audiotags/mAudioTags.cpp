#include "mAudioTags.h"

#include <taglib/audioproperties.h>
#include <taglib/fileref.h>
#include <taglib/tag.h>
#include <taglib/tbytevector.h>
#include <taglib/tbytevectorstream.h>
#include <taglib/tdebuglistener.h>
#include <taglib/tfilestream.h>
#include <taglib/tpropertymap.h>

#include <filesystem>
#include <limits>
#include <system_error>

namespace toval {

namespace {

// The widest text field the player plug-in's track record carries, so that a
// track read here gets the same cache key as the same track played.
constexpr size_t kMaxField = 1024;

// TagLib reports every oddity of a broken file on standard error; a file it
// cannot read simply gives no tags here.
class cQuietTagLib : public TagLib::DebugListener {
  public:
    void printMessage(const TagLib::String&) override {}
};

void SilenceTagLib() {
    static cQuietTagLib quiet;
    static const bool once = (TagLib::setDebugListener(&quiet), true);
    (void)once;
}

// One line of UTF-8: control characters (line breaks in a hostile tag would
// become lines of their own in an LRC header) turn into blanks, blanks at the
// ends go, and a longer value is cut at a character boundary.
std::string Field(const TagLib::String& value) {
    std::string text = value.to8Bit(true);
    for (char& c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F) c = ' ';
    }
    if (text.size() > kMaxField) {
        size_t cut = kMaxField;
        while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80)
            --cut;
        text.resize(cut);
    }
    const size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// A read-only view of a stream without its name, so that TagLib tells the
// file's form by its content alone (a file named .mp3 that holds Ogg).
class cNamelessStream : public TagLib::IOStream {
  public:
    explicit cNamelessStream(TagLib::IOStream& stream) : stream_(stream) {}
    TagLib::FileName name() const override { return ""; }
    TagLib::ByteVector readBlock(unsigned long length) override {
        return stream_.readBlock(length);
    }
    void writeBlock(const TagLib::ByteVector&) override {}
    void insert(const TagLib::ByteVector&, unsigned long, unsigned long) override {}
    void removeBlock(unsigned long, unsigned long) override {}
    bool readOnly() const override { return true; }
    bool isOpen() const override { return stream_.isOpen(); }
    void seek(long offset, Position p) override { stream_.seek(offset, p); }
    void clear() override { stream_.clear(); }
    long tell() const override { return stream_.tell(); }
    long length() override { return stream_.length(); }
    void truncate(long) override {}

  private:
    TagLib::IOStream& stream_;
};

// The tag's own field, else the same field of the file's other tags (a WAV
// file's tag is its ID3v2 tag; RIFF INFO comes only with the properties).
std::string Field(const TagLib::String& tagged, const TagLib::PropertyMap& all, const char* key) {
    if (!tagged.isEmpty()) return Field(tagged);
    const auto found = all.find(key);
    return found == all.end() ? std::string() : Field(found->second.toString());
}

cAudioTags Read(const TagLib::FileRef& file) {
    if (file.isNull()) return {};
    cAudioTags tags;
    const TagLib::PropertyMap all = file.file()->properties();
    if (const TagLib::Tag* tag = file.tag()) {
        tags.artist = Field(tag->artist(), all, "ARTIST");
        tags.album = Field(tag->album(), all, "ALBUM");
        tags.title = Field(tag->title(), all, "TITLE");
    }
    if (const TagLib::AudioProperties* audio = file.audioProperties()) {
        const int ms = audio->lengthInMilliseconds();
        if (ms > 0) tags.milliseconds = ms;
    }
    return tags;
}

cAudioTags Read(TagLib::IOStream& stream, bool named) {
    SilenceTagLib();
    try {
        // The form its name says first, as TagLib prefers; when that finds
        // nothing, the form its content says.
        cAudioTags tags = Read(TagLib::FileRef(&stream, true, TagLib::AudioProperties::Average));
        if (tags == cAudioTags() && named) {
            stream.clear();
            stream.seek(0, TagLib::IOStream::Beginning);
            cNamelessStream nameless(stream);
            tags = Read(TagLib::FileRef(&nameless, true, TagLib::AudioProperties::Average));
        }
        return tags;
    } catch (...) {
        // Memory running out on a hostile size: the file has no usable tags.
        return {};
    }
}

}  // namespace

cAudioTags ReadAudioTags(const std::string& path) {
    // Only regular files: a FIFO or a device would block or never end.
    std::error_code ec;
    if (path.empty() || !std::filesystem::is_regular_file(path, ec)) return {};
    TagLib::FileStream stream(path.c_str(), true);
    if (!stream.isOpen()) return {};
    return Read(stream, true);
}

cAudioTags ReadAudioTagsFromMemory(std::string_view bytes) {
    if (bytes.size() > std::numeric_limits<unsigned int>::max()) return {};
    const TagLib::ByteVector data(bytes.data(), static_cast<unsigned int>(bytes.size()));
    TagLib::ByteVectorStream stream(data);
    return Read(stream, false);
}

}  // namespace toval
