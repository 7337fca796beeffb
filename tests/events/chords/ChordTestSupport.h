// The chord symbol tests' surroundings: a fresh preference file (so the
// note-name pattern is the test's own) and the shipped language texts.
#pragma once

#include "platform/CommonTestFolders.h"

#include <scoremodel/events/chords/ECChordSymbol.h>
#include <scoremodel/platform/Preferences.h>

#include <gtest/gtest.h>

#include <vector>

// Every typed token of the flavour table, direct tokens first, then the
// aliases (which keep the user's spelling), in the reader's order.
struct ChordToken
{
    const wchar_t *text;
    int flavour;
    bool alias;
};
inline const ChordToken kChordTokens[] = {
    {L"m", 1, false},       {L"6", 20, false},      {L"69", 24, false},       {L"7", 8, false},
    {L"7#11", 14, false},   {L"7#5", 18, false},    {L"7#9", 17, false},      {L"7b9", 16, false},
    {L"7sus", 27, false},   {L"9", 21, false},      {L"add9", 22, false},     {L"maj7", 4, false},
    {L"maj7#4", 7, false},  {L"maj7#5", 13, false}, {L"maj7add9", 23, false}, {L"m6", 19, false},
    {L"m6add9", 26, false}, {L"m7add9", 25, false}, {L"mb6", 9, false},       {L"mmaj7", 12, false},
    {L"m7", 5, false},      {L"m7b5", 10, false},   {L"sus", 11, false},      {L"sus2", 28, false},
    {L"susb9", 6, false},   {L"+", 3, false},       {L"\u00B0", 2, false},    {L"M", 0, true},
    {L"major", 0, true},    {L"maj", 0, true},      {L"ma", 0, true},         {L"-", 1, true},
    {L"min", 1, true},      {L"Minor", 1, true},    {L"mi", 1, true},         {L"m-5", 2, true},
    {L"+5", 3, true},       {L"M7", 4, true},       {L"?", 4, true},          {L"-7", 5, true},
    {L"sus4", 11, true},    {L"dim7", 2, true},     {L"maj11", 14, true},     {L"m11", 14, true},
    {L"7+5", 18, true},     {L"m7-5", 10, true},    {L"\u00D8", 10, true},    {L"\u00F8", 10, true},
    {L"\u00F87", 10, true}, {L"\u00D87", 10, true}, {L"min7-5", 10, true},    {L"min7b5", 10, true},
    {L"-add9", 25, true},   {L"madd9", 25, true},   {L"minadd9", 25, true},
};

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
