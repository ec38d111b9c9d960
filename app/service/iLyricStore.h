// Where the service keeps its lyrics. Every lyric sent is a new row (a new
// revision); nothing is ever overwritten. A store is used by many request
// threads at once. Failures of the database are results (nullopt, false),
// never exceptions, so that a request can answer ":SQL_ERROR".
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace toval::service {

// How a lyric is timed; the better kind wins a lookup.
enum class LyricKind : int32_t { kPlain = 0, kLines = 1, kWords = 2 };

struct cLyricRecord {
    int64_t id = 0;  // the revision, given by the store; a later lyric has a higher one
    std::string artist, album, title;           // as sent, UTF-8
    std::string artistKey, albumKey, titleKey;  // MatchKey of the three
    int32_t duration = 0;                       // seconds; 0 when unknown
    int32_t fileSize = 0;
    int32_t mutation = 0;  // the sender's revision number of the lyric
    LyricKind kind = LyricKind::kPlain;
    std::string text;  // the lyric as sent (tvl or LRC form), UTF-8
    std::string address;
    int64_t created = 0;  // seconds since 1970
};

class iLyricStore {
  public:
    virtual ~iLyricStore() = default;

    // Every lyric stored under the two keys, in revision order.
    virtual std::optional<std::vector<cLyricRecord>> Find(const std::string& artistKey,
                                                          const std::string& titleKey) = 0;
    // Stores a new lyric and sets its id; true once it is safely stored.
    virtual bool Add(cLyricRecord& record) = 0;
    // Stores many in one transaction (all or none) and sets their ids.
    virtual bool AddMany(std::vector<cLyricRecord>& records) = 0;
    virtual std::optional<int64_t> Count() = 0;
    // The database's own consistency check: empty when sound, else what is wrong.
    virtual std::string Check() = 0;
};

}  // namespace toval::service
