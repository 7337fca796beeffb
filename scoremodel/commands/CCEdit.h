// CCEdit: gives events new values under undo (command id 22).
//
// The caller asks for an event's edit copy and changes the copy; Process
// assigns the copy's values to the event (through Copy, that is the event
// class's operator=: value fields only, never the time, the parents or the
// children), and Undo assigns the values the event had before. The event
// stays the same object in the same place, so nothing that points at it
// has to follow.
//
//     CCEdit *edit = new CCEdit;
//     static_cast<ECText *>(edit->EditEvent(text))->SetText(CString());
//     edit->Apply(document);
//
// What an event's owner derives from its values comes along: a clef's or
// key's staff rebuilds its cache (the hand may have changed), an envelope
// recalculates its points (a tempo's value moves the clock times after it).
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/commands/CCBase.h>

#include <vector>

class SCOREMODEL_API CCEdit : public CCBase
{
    DECLARE_DYNCREATE(CCEdit)

public:
    CCEdit();

    // The copy whose values Process gives `event`: at the first call for an
    // event a new object of its class with its values, after that the same
    // one. Null for a null event or one whose class cannot be made. The
    // command owns the copy.
    virtual ECBase *EditEvent(ECBase *event);
    // The edit copy of `event`; null when it is not edited.
    ECBase *GetEditCopy(ECBase *event) const;
    int GetEditCount() const { return static_cast<int>(m_edits.size()); }

    // 22.
    int GetCommandId() override;
    // The values before are kept at the first Process, so that a redo and
    // an undo know both sides.
    int Process() override;
    // The values before go back, last edited first.
    void Undo() override;

protected:
    ~CCEdit() override;

private:
    struct Edit
    {
        ECBase *event;
        ECBase *copy;
        ECBase *before; // null until the first Process
    };
    std::vector<Edit> m_edits;
};
