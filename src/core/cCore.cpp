#include "core/cCore.h"

#include <algorithm>
#include <stdexcept>

#include "base/cErrorLog.h"
#include "base/mNumber.h"
#include "core/cEventStream.h"
#include "core/cPlugin.h"
#include "display/cDisplay.h"
#include "lyric/cLyric.h"
#include "lyric/cMusic.h"
#include "platform/Random.h"
#include "platform/Shell.h"
#include "platform/Timer.h"

namespace toval {

cCore::cCore(cGlobals& globals, Shell& shell, Random& random, std::shared_ptr<iLyricSource> loader,
             std::function<std::u16string(std::u16string_view key)> texts)
    : globals_(globals),
      shell_(shell),
      random_(random),
      loader_(std::move(loader)),
      texts_(std::move(texts)) {
    if (loader_)
        loader_->onLoaded = [this](int32_t requestId, int32_t status) {
            clf_Lyric_Loaded(requestId, status);
        };
}

cCore::~cCore() {
    if (loader_) loader_->onLoaded = nullptr;
    if (timer_) timer_->onTimer = nullptr;
    DropStream();
}

void cCore::setTimer(Timer* timer) {
    if (timer_) timer_->onTimer = nullptr;
    timer_ = timer;
    if (!timer_) return;
    timer_->onTimer = [this] { tmr_Timer_Timer(); };
    // A forecasting link answers at once: its first tick need not wait a poll.
    timer_->setInterval(forecast_ ? kSoonMs : globals_.Settings.timer_TrackPosRefresh);
    timer_->setEnabled(true);
    timerBound_ = true;
}

void cCore::TimerOn(bool on) {
    if (timer_) timer_->setEnabled(on);
}

void cCore::setInterval(int32_t ms) {
    if (timer_) timer_->setInterval(ms);
}

int32_t cCore::Interval() const {
    return timer_ ? timer_->Interval() : 0;
}

void cCore::ForgetTrack() {
    globals_.PlaylistPosition = kUnset;
    globals_.TrackID = kUnset;
}

void cCore::DropStream() {
    if (stream_) stream_->onLoadEvent = nullptr;
    stream_.reset();
}

void cCore::ClearTray() {
    if (tray_) tray_->Clear();
}

void cCore::preClose() {
    TimerOn(false);
    pluginAlive_ = false;
}

void cCore::Reset() {
    if (pluginAlive_ && lyricActive_) PluginEvent(kEventNewTrack);
}

void cCore::ClearCache() {
    Guarded("cCore.ClearCache", [&] {
        if (loader_) loader_->ClearCache();
    });
}

void cCore::PluginEvent(int32_t code) {
    Guarded("cCore.PluginEvent", [&] { PluginEventBody(code); });
}

void cCore::PluginEventBody(int32_t code) {
    const cSettings& s = globals_.Settings;
    switch (code) {
        case kEventSlowDown: {
            // Repeated notices slow the polling step by step down to the slow interval.
            const int32_t interval = Interval();
            if (interval < s.timer_PlayerStateRefresh) {
                if (interval <= s.timer_TrackPosRefresh && tray_) tray_->ReajustWindow();
                const int64_t slower = int64_t{interval} + s.timer_TrackPosRefresh;
                if (slower > kNoNext || slower < kUnset) throw std::overflow_error("Overflow");
                setInterval(static_cast<int32_t>(slower));
            }
            break;
        }
        case kEventStopped:
            TimerOn(false);
            ForgetTrack();
            lyricActive_ = false;
            ClearTray();
            DropStream();
            if (globals_.lastUpdateVersion >= kFirstNoticeVersion &&
                globals_.lastUpdateVersion != s.version_LastShow)
                ShowUpdateNotice();
            TimerOn(true);
            break;
        case kEventNewTrack:
            TimerOn(false);
            ClearTray();
            lyricActive_ = false;
            globals_.PlaylistPosition = plugin_ ? plugin_->PlaylistPosisition() : kUnset;
            globals_.TrackID = plugin_ && plugin_->Music() ? plugin_->Music()->ID() : kUnset;
            loadPending_ = true;
            // A forecasting link told of the track itself: look it up at once.
            setInterval(forecast_ ? kSoonMs : s.timer_TrackPosRefresh);
            TimerOn(true);
            break;
        case kEventForget:
            ForgetTrack();
            break;
        case kEventPlayerClosed:
        case kEventLinkClosed:
        case kEventLinkClosed2:
            // The timer stays off: the program does not wake the plug-in again by itself.
            TimerOn(false);
            ForgetTrack();
            lyricActive_ = false;
            pluginAlive_ = false;
            waking_ = false;
            ClearTray();
            DropStream();
            setInterval(s.timer_PlayerStateRefresh);
            break;
        case kEventAwake:
            pluginAlive_ = true;
            waking_ = false;
            setInterval(s.timer_TrackPosRefresh);
            TimerOn(false);
            TimerOn(true);
            break;
        default:
            break;
    }
}

void cCore::tmr_Timer_Timer() {
    Guarded("cCore.tmr_Timer_Timer", [&] {
        // The tick asked for at once is done: back to the regular pace.
        if (forecast_ && Interval() == kSoonMs)
            setInterval(globals_.Settings.timer_TrackPosRefresh);
        if (!pluginAlive_) {
            if (waking_ || !plugin_) return;
            setInterval(globals_.Settings.timer_PlayerStateRefresh);
            waking_ = true;
            plugin_->Wakeup();
            // A forecasting link wakes at once and has the track already: the
            // first lookup need not wait for the next tick.
            if (!forecast_ || !pluginAlive_) return;
        }
        const int32_t position = plugin_ ? plugin_->Update() : globals_.PlayPosition;
        if (lyricActive_) {
            if (const auto stream = stream_) stream->UpdateTimeEvent(position);
            PlanSleep();
        } else if (loadPending_) {
            loadPending_ = false;
            // A forecasting link is not polled while the lookup runs: its answer
            // turns the timer on again.
            if (forecast_) TimerOn(false);
            if (loader_) loader_->Load(globals_.PlaylistPosition);
        } else if (forecast_) {
            // No lyric and none coming (stopped): the link tells of the next track itself.
            TimerOn(false);
        }
    });
}

void cCore::PlanSleep() {
    if (!forecast_ || !lyricActive_ || !stream_) return;
    const int32_t next = stream_->NextTime();
    const int64_t wait = next == kNoNext ? -1 : forecast_(next);
    if (wait < 0) {
        // Paused, or past the last event: nothing is due until the player moves.
        TimerOn(false);
        return;
    }
    // One millisecond more, so that the position has reached the event's time.
    const int64_t sleep = std::clamp<int64_t>(wait + 1, 1, kMaxSleepMs);
    setInterval(static_cast<int32_t>(sleep));
    TimerOn(true);
}

void cCore::Wake() {
    Guarded("cCore.Wake", [&] {
        if (forecast_ && pluginAlive_ && lyricActive_) tmr_Timer_Timer();
    });
}

void cCore::clf_Lyric_Loaded(int32_t requestId, int32_t status) {
    Guarded("cCore.clf_Lyric_Loaded", [&] {
        if (!plugin_ || !loader_) return;
        // The user may have moved on while the lookup ran.
        if (plugin_->PlaylistPosisition() != requestId) {
            PluginEvent(kEventNewTrack);
            return;
        }
        TimerOn(false);
        shell_.DoEvents();
        // The messages just run may have ended the program and released the link.
        if (!plugin_) return;

        auto lyric = std::make_shared<cLyric>(&random_);
        lyric->setAuxPictureBox(auxPictureBox_);
        lyric->setLoad(loader_->Lyric());
        lyric_ = lyric;
        const std::shared_ptr<cMusic> music = plugin_->Music();
        if (tray_) {
            tray_->setLyric(lyric);
            tray_->setMusic(music);
        }

        DropStream();
        stream_ = std::make_shared<cEventStream>();
        stream_->onLoadEvent = [this](int32_t& line, int32_t& word) {
            ces_Stream_LoadEvent(line, word);
        };
        stream_->Load(lyric);

        // Fit a lyric timed on a longer recording of the track. A plug-in that
        // counts in seconds gives the length to the second only.
        if (lyric->TrackLength() != kUnset && music && music->MiliDuration() != kUnset) {
            const int32_t trackLength = plugin_->MiliTrackLength()
                                            ? music->MiliDuration()
                                            : WrapMul(music->Duration(), 1000);
            stream_->TimeMix(lyric->TrackLength(), trackLength);
        }

        lyricActive_ = true;
        // A forecasting link knows the position now: the first line shows at
        // once, not a poll later.
        if (forecast_) setInterval(kSoonMs);
        TimerOn(true);

        if (status == kLyricLocal) loader_->LoadFrom(kSourceService, requestId, lyric->Mutation());
    });
}

void cCore::ces_Stream_LoadEvent(int32_t& line, int32_t& word) {
    Guarded("cCore.ces_Stream_LoadEvent", [&] {
        if (lyricActive_ && tray_) tray_->ChooseText(line, word);
    });
}

void cCore::ShowUpdateNotice() {
    Guarded("cCore.ShowUpdateNotice", [&] {
        auto notice = std::make_shared<cLyric>(&random_);
        notice->setAuxPictureBox(auxPictureBox_);
        notice->setLoad(texts_ ? texts_(u"TovalNewVersion") : std::u16string());
        if (downloadUrl_.empty()) {
            std::u16string url = kDownloadTemplate;
            const size_t at = url.find(u"$S");
            if (at != std::u16string::npos) url.replace(at, 2, globals_.Settings.conn_Server);
            downloadUrl_ = url;
        }
        notice->setURL(downloadUrl_);
        if (tray_) tray_->setLyric(notice);
    });
}

void cCore::LinkOpened(const std::u16string& url) {
    Guarded("cCore.LinkOpened", [&] {
        if (downloadUrl_.empty() || url != downloadUrl_) return;
        // The notice of one version shows until it has been followed once.
        globals_.Settings.version_LastShow = globals_.lastUpdateVersion;
        if (onSaveLastShow) onSaveLastShow(globals_.lastUpdateVersion);
        ClearTray();
    });
}

}  // namespace toval
