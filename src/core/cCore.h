// The controller: polls the plug-in on a timer, turns the plug-in's events into
// a small state machine (absent, waking, idle, pending, loading, playing),
// starts the lyric lookup for each new track, builds the event stream of the
// loaded lyric and hands lyric, track and highlight changes to the display.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "config/cSettings.h"
#include "core/iLyricSource.h"

namespace toval {

class Timer;
class MeasureSurface;
class Random;
class Shell;
class cDisplay;
class cEventStream;
class cLyric;
class cPlugin;

// Plug-in event codes (PluginEvent).
enum PluginEventCode : int32_t {
    kEventSlowDown = 0,  // plug-in notice 2
    kEventStopped = 1,   // plug-in notice 1
    kEventNewTrack = 2,  // a tag arrived (or Reset, or a stale lyric)
    kEventForget = 4,    // forget the current track
    kEventPlayerClosed = 8,
    kEventAwake = 16,
    kEventLinkClosed = 32,
    kEventLinkClosed2 = 64,
};

// The longest sleep of a forecast poll: a safety net should a signal be lost.
inline constexpr int32_t kMaxSleepMs = 5000;
// A forecasting link's tick asked for at once: after the start and a new track.
inline constexpr int32_t kSoonMs = 1;

// The first version number for which an update notice is shown.
inline constexpr int32_t kFirstNoticeVersion = 1030002;
inline constexpr char16_t kDownloadTemplate[] = u"http://$S/?page=download";

class cCore {
  public:
    // texts: the language text of a message key.
    cCore(cGlobals& globals, Shell& shell, Random& random, std::shared_ptr<iLyricSource> loader,
          std::function<std::u16string(std::u16string_view key)> texts);
    virtual ~cCore();
    cCore(const cCore&) = delete;
    cCore& operator=(const cCore&) = delete;

    // The polling timer: interval timer_TrackPosRefresh, enabled, bound.
    void setTimer(Timer* timer);
    void setTray(cDisplay* display) { tray_ = display; }
    void setAuxPictureBox(MeasureSurface* surface) { auxPictureBox_ = surface; }
    // The plug-in link (not owned); nullptr once it is released.
    void setPlugin(cPlugin* plugin) { plugin_ = plugin; }

    // How long, in ms, until the player reaches a play position (-1: it never
    // will, it is paused). A player link that knows this lets the polling
    // sleep until the next highlight is due instead of waking every
    // timer_TrackPosRefresh; without it (the Windows plug-in) the polling
    // keeps its fixed pace.
    using Forecast = std::function<int64_t(int32_t positionMs)>;
    void setForecast(Forecast forecast) { forecast_ = std::move(forecast); }
    // The play position may have moved other than forecast (a reading, a
    // seek, play, pause, a new rate): look now and plan the next sleep.
    void Wake();

    cDisplay* Tray() const { return tray_; }
    MeasureSurface* AuxPictureBox() const { return auxPictureBox_; }

    // The single entry of every plug-in event (codes above; 65 or more ignored).
    void PluginEvent(int32_t code);
    // Stops the timer and forgets the plug-in; first step of the teardown.
    void preClose();
    // Looks the current track up again (after a settings change).
    void Reset();
    void ClearCache();

    void tmr_Timer_Timer();
    void clf_Lyric_Loaded(int32_t requestId, int32_t status);
    void ces_Stream_LoadEvent(int32_t& line, int32_t& word);

    // Shows "TovalNewVersion" as a lyric that links to the download page.
    void ShowUpdateNotice();
    // A lyric's link was opened; following the download link retires the notice.
    void LinkOpened(const std::u16string& url);
    std::u16string DownloadUrl() const { return downloadUrl_; }
    void setDownloadUrl(const std::u16string& url) { downloadUrl_ = url; }
    // Stores version_LastShow (the configuration's own property, saved at once).
    std::function<void(int32_t version)> onSaveLastShow;

    // State, for the windows and the editor.
    bool PluginAlive() const { return pluginAlive_; }
    bool Waking() const { return waking_; }
    bool LyricActive() const { return lyricActive_; }
    bool LoadPending() const { return loadPending_; }
    bool TimerBound() const { return timerBound_; }
    int32_t PlayPosition() const { return globals_.PlayPosition; }
    int32_t TrackID() const { return globals_.TrackID; }
    std::shared_ptr<cEventStream> Stream() const { return stream_; }
    std::shared_ptr<cLyric> Lyric() const { return lyric_; }
    std::shared_ptr<iLyricSource> Loader() const { return loader_; }

  private:
    void PluginEventBody(int32_t code);
    void TimerOn(bool on);
    void setInterval(int32_t ms);
    int32_t Interval() const;
    void ForgetTrack();
    void DropStream();
    void ClearTray();
    // After a tick of a forecast poll: sleeps until the next event is due.
    void PlanSleep();

    cGlobals& globals_;
    Shell& shell_;
    Random& random_;
    std::shared_ptr<iLyricSource> loader_;
    std::function<std::u16string(std::u16string_view)> texts_;
    Timer* timer_ = nullptr;
    cDisplay* tray_ = nullptr;
    MeasureSurface* auxPictureBox_ = nullptr;
    cPlugin* plugin_ = nullptr;
    Forecast forecast_;
    std::shared_ptr<cEventStream> stream_;
    std::shared_ptr<cLyric> lyric_;
    std::u16string downloadUrl_;

    bool pluginAlive_ = false;
    bool waking_ = false;
    bool lyricActive_ = false;
    bool loadPending_ = false;
    bool timerBound_ = false;
};

}  // namespace toval
