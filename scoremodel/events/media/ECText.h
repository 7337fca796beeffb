// ECText: a text on a staff or on the conductor staff, and the base of
// lyrics.
//
// A text holds its characters and a text type, a number the views give
// meaning to (a title, an expression, a rehearsal mark). Types 21 and 22 are
// mirror texts: they repeat, at another place, the text of the event they
// stand for, and IsMirrorText tells them apart. Like a clef, key, meter or
// tempo, a text keeps the list of its ECMirror images (not owned; each
// points back), which a command that removes the text discards when the
// text is of a mirror type. A new text is empty, of type 0. operator= copies
// the text and the type, never the mirrors.
//
// Archive record (schema 3): that of ECWithTime, then the text (CString)
// and the type (4 bytes). Records of schema 2 end after the ECWithTime part;
// the text then stays empty and the type 0.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/platform/CString.h>

class ECMirror;

class SCOREMODEL_API ECText : public ECWithTime
{
    DECLARE_SERIAL(ECText)

public:
    // The text types that mirror another event's text.
    static constexpr int kMirrorTextFirst = 21;
    static constexpr int kMirrorTextSecond = 22;

    void Serialize(CArchive &ar) override;
    CObject *Copy(CObject *src) override;
    // 59.
    int GetEventId() const override;
    // ECStaff, ECConductorStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    const CString &GetText() const { return m_text; }
    void SetText(const CString &text) { m_text = text; }
    int GetTextType() const { return m_nTextType; }
    // A negative type changes nothing.
    void SetTextType(int type);
    // 1 for the types 21 and 22.
    int IsMirrorText() const;

    // ---- Mirrors ----

    // Appends `mirror` and points it at this text; null is ignored.
    void AddMirror(ECMirror *mirror);
    // Unlinks and drops `mirror` when listed.
    void RemoveMirror(ECMirror *mirror);
    void RemoveMirrors();
    EventList *GetMirrors() { return &m_mirrors; }

    ECText &operator=(const ECText &other);
    int operator==(const ECText &other) const;
    int operator!=(const ECText &other) const { return !(*this == other); }

protected:
    ~ECText() override;

    CString m_text;
    int m_nTextType = 0;
    EventList m_mirrors;
};
