// The chord symbol tests' surroundings: a fresh preference file (so the
// note-name pattern is the test's own) and the shipped language texts.
#pragma once

#include "platform/CommonTestFolders.h"

#include <scoremodel/events/chords/ECChordSymbol.h>
#include <scoremodel/platform/Preferences.h>

#include <gtest/gtest.h>

class ChordSymbolFixture : public testing::Test
{
protected:
    void SetPattern(int pattern) { ASSERT_TRUE(SaveIntPreference(L"Settings\\Notation", L"NoteNamePattern", pattern)); }

    // A new symbol that the fixture releases.
    ECChordSymbol *Make()
    {
        auto *chord = new ECChordSymbol();
        chord->Ref();
        m_made.push_back(chord);
        return chord;
    }

    ~ChordSymbolFixture() override
    {
        for (ECChordSymbol *chord : m_made)
            chord->Unref(1);
    }

    CommonTestFolders m_folders;
    std::vector<ECChordSymbol *> m_made;
};
