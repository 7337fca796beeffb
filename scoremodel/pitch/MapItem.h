// MapItem: one key of a drum map: the MIDI key a drum sound is played on,
// its name, where the notation puts it and with which note head.
//
// A drum staff shows a sound not at the pitch of its key but on the line
// its kit convention gives it (a bass drum in the bottom space), with a note
// head of its own (a cross for cymbals). The item holds both, and the key it
// is played on, which may differ from the key it was entered on when a kit
// lays its sounds out differently.
//
// Archive record: key, display key, note head, play key (1 byte each), then
// the name (CString). Keys above 127 read as the item's key; a head above
// HeadLast reads as HeadNormal.
//
// A plain value: copy freely, no lock.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/Types.h>

class CArchive;

class SCOREMODEL_API MapItem
{
public:
    enum Head : int
    {
        HeadNormal = 0,
        HeadCross = 1,
        HeadDiamond = 2,
        HeadTriangle = 3,
        HeadSlash = 4,
        HeadLast = HeadSlash
    };

    // Key 0, shown and played on key 0, normal head, no name.
    MapItem() = default;
    // Shown and played on `note`, normal head. A key above 127 is taken as 0.
    MapItem(int note, const CString &name);

    int GetNote() const { return m_nNote; }
    const CString &GetName() const { return m_name; }
    void SetName(const CString &name) { m_name = name; }
    // The key whose staff position shows the sound.
    int GetDisplayNote() const { return m_nDisplayNote; }
    int GetHead() const { return m_nHead; }
    // The key the sound is played on.
    int GetPlayNote() const { return m_nPlayNote; }

    // Setters given a key outside 0..127 or an unknown head do nothing.
    void SetNote(int note);
    void SetDisplayNote(int note);
    void SetHead(int head);
    void SetPlayNote(int note);

    void Serialize(CArchive &ar);

    bool operator==(const MapItem &other) const;
    bool operator!=(const MapItem &other) const { return !(*this == other); }

private:
    BYTE m_nNote = 0;
    BYTE m_nDisplayNote = 0;
    BYTE m_nHead = HeadNormal;
    BYTE m_nPlayNote = 0;
    CString m_name;
};
