// MCDrumMap: the drum map, one MapItem per MIDI key, read from the
// "DrumMap" section of a file "Mapping.ini".
//
//     MCDrumMap map;
//     map.LoadDefault();                       // <data folder>/Mapping.ini
//     if (const MapItem *item = map.GetItem(42))
//         ... item->GetName() is "Closed Hi-Hat", item->GetHead() HeadCross
//
// The file is UTF-8 INI (as the language files). Each key of the section is
// a MIDI key, each text the name and, optionally, the display key, the note
// head (MapItem::Head) and the play key, separated by ";":
//
//     [DrumMap]
//     36=Bass Drum 1;65
//     42=Closed Hi-Hat;79;1
//
// Missing fields default to the key itself and a normal head. A line with a
// key or a field that is not a number in range is skipped, as is a key
// given twice (the later wins, as in every INI file of the library).
//
// Archive record: the number of items (2 bytes), then each item's record in
// key order. More than 128 items, or a key met twice, is a corrupt record.
//
// Not thread-safe: one owner, or a lock around it.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/pitch/MapItem.h>
#include <scoremodel/platform/CString.h>

class CArchive;

class SCOREMODEL_API MCDrumMap
{
public:
    // The file name and its section.
    static const wchar_t *const kFileName;   // L"Mapping.ini"
    static const char *const kSection;       // "DrumMap"

    MCDrumMap();

    // Replaces the map with the file's; 1 when the file was read (even if it
    // held no item), 0 when it could not be read, leaving the map empty.
    int Load(const CString &path);
    // Load of the shipped file in the data folder (CommonPaths.h).
    int LoadDefault();
    // Replaces the map with the items of INI text.
    void LoadText(const CStringA &text);

    // The item of a key; null when the key has none or lies outside 0..127.
    const MapItem *GetItem(int note) const;
    // Enters or replaces the item of its key.
    void SetItem(const MapItem &item);
    void RemoveItem(int note);
    void RemoveAll();
    int GetCount() const { return m_nCount; }

    void Serialize(CArchive &ar);

    bool operator==(const MCDrumMap &other) const;
    bool operator!=(const MCDrumMap &other) const { return !(*this == other); }

private:
    MapItem m_items[128];
    bool m_used[128];
    int m_nCount = 0;
};
