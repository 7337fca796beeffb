#include <scoremodel/commands/CCAddNoteModifier.h>

#include <scoremodel/events/notes/ECAccent.h>

#include <vector>

IMPLEMENT_DYNCREATE(CCAddNoteModifier, CCAdd)

CCAddNoteModifier::CCAddNoteModifier() = default;

CCAddNoteModifier::CCAddNoteModifier(ECBase *child, ECBase *parent)
{
    FCMidi none = FCMidi::MidiNull();
    Add(child, parent, none);
}

CCAddNoteModifier::~CCAddNoteModifier()
{
    if (m_pReplacedFinger)
        m_pReplacedFinger->Unref(1);
    if (m_pReplacedFingerNote)
        m_pReplacedFingerNote->Unref(1);
}

int CCAddNoteModifier::GetCommandId()
{
    return COMMAND_ID_ADD_NOTE_MODIFIER;
}

CCAddItem *CCAddNoteModifier::Add(ECBase *child, ECBase *parent, FCMidi &)
{
    FCMidi none = FCMidi::MidiNull();
    if (!child)
        return nullptr;
    switch (child->GetEventId())
    {
    case EVENT_ID_ACCENT:
    case EVENT_ID_TREMOLO:
        break;
    case EVENT_ID_ACCIDENTAL:
    case EVENT_ID_ARPEGGIO:
    case EVENT_ID_MORDENT:
    case EVENT_ID_ORNAMENT:
    case EVENT_ID_TRILL:
    case EVENT_ID_TURN:
        return CCAdd::Add(child, parent, none);
    default:
        return nullptr;
    }

    if (parent && parent->GetEventId() == EVENT_ID_CHORD)
    {
        std::vector<ECBase *> notes;
        for (POSITION pos = parent->GetChildren()->GetHeadPosition(); pos;)
            if (ECBase *note = parent->GetChildren()->GetNext(pos); note && note->GetEventId() == EVENT_ID_NOTE)
                notes.push_back(note);
        CCAddItem *last = nullptr;
        for (ECBase *note : notes)
        {
            auto *copy = static_cast<ECBase *>(child->GetRuntimeClass()->CreateObject());
            copy->Copy(child);
            last = CCAdd::Add(copy, note, none);
        }
        child->Unref(1);
        return last;
    }

    if (child->GetEventId() == EVENT_ID_ACCENT && parent && parent->GetChildren())
    {
        auto *accent = static_cast<ECAccent *>(child);
        if (accent->IsFingerType())
            for (POSITION pos = parent->GetChildren()->GetHeadPosition(); pos;)
            {
                ECBase *old = parent->GetChildren()->GetNext(pos);
                if (old && old != child && old->GetEventId() == EVENT_ID_ACCENT &&
                    static_cast<ECAccent *>(old)->IsFingerType() &&
                    static_cast<ECAccent *>(old)->IsReplaceableFinger(accent->GetAccentType()))
                {
                    old->Ref();
                    parent->Ref();
                    if (m_pReplacedFinger)
                        m_pReplacedFinger->Unref(1);
                    if (m_pReplacedFingerNote)
                        m_pReplacedFingerNote->Unref(1);
                    m_pReplacedFinger = old;
                    m_pReplacedFingerNote = parent;
                    break;
                }
            }
    }
    return CCAdd::Add(child, parent, none);
}

int CCAddNoteModifier::Process()
{
    if (m_pReplacedFinger)
    {
        m_pReplacedFingerNote->RemoveChild(m_pReplacedFinger, 0);
        m_pReplacedFinger->Unref(1);
        m_pReplacedFingerNote->Unref(1);
        m_pReplacedFinger = m_pReplacedFingerNote = nullptr;
    }
    return CCAdd::Process();
}
