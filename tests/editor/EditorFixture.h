// A editor on a fake window, a fixed-width measuring surface, a scripted
// random source and a manual preview timer; the track being edited is the
// one playing unless a test says otherwise.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <string>

#include "config/cSettings.h"
#include "editor/cEditor.h"
#include "fakes/FakeEditorView.h"
#include "fakes/FakeMeasureSurface.h"
#include "fakes/FakeRandom.h"
#include "fakes/FakeTimer.h"
#include "lyric/cLyric.h"
#include "lyric/cLyricLine.h"
#include "lyric/cMusic.h"
#include "lyric/cTime.h"

namespace toval::test {

// Language texts: the key itself in brackets, so a test sees which key was used.
inline std::u16string KeyText(std::u16string_view key) {
    return u"{" + std::u16string(key) + u"}";
}

class EditorTest : public ::testing::Test {
  protected:
    EditorTest() : random(Draws()), editor(globals, random, KeyText) {
        globals.Settings.editmode_splash = false;
        music.setArtist(u"Artist");
        music.setTitle(u"Song");
        music.setID(4242);
        globals.TrackID = 4242;
        editor.setView(&view);
        editor.setAuxPictureBox(&measure);
        editor.setStreamTimer(&timer);
    }

    // Distinct draws, so that every mutation gets a new number.
    static std::vector<double> Draws() {
        std::vector<double> draws;
        for (int i = 1; i < 4000; ++i)
            draws.push_back(i / 4000.0);
        return draws;
    }

    // Opens the window and goes to the timing step with the text.
    void StartTiming(const std::u16string& text) {
        editor.Form_Load(music);
        editor.txtEdit_Change(text);
        editor.cmdNext_Click();
    }

    // The whole lyric as line records, every time in place.
    std::u16string Records() const { return editor.Lyric()->Load(); }

    // Presses a key with the player at a position.
    void Press(int32_t key, int32_t position) {
        globals.PlayPosition = position;
        editor.pb_Main_KeyDown(key, 0);
    }
    // The forward arrow at each position in turn.
    void PressRight(std::initializer_list<int32_t> positions) {
        for (const int32_t position : positions)
            Press(kKeyRight, position);
    }
    // A left click at (x, y) with the player at a position.
    void Click(int32_t position, double x, double y) {
        globals.PlayPosition = position;
        editor.pb_Main_MouseDown(kButtonLeft, 0, x, y);
    }

    cGlobals globals;
    FakeRandom random;
    FakeMeasureSurface measure{10, 16};
    FakeTimer timer;
    FakeEditorView view;
    cMusic music;
    cEditor editor;
};

}  // namespace toval::test
