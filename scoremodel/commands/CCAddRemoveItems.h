// CCAddItem and CCRemoveItem: one event that an add places under a parent,
// or that a remove takes out of the tree.
//
// Each item holds a reference on its child and on its parent for its whole
// life, so the events an undo needs stay alive with the command; setting a
// new one gives the old one back. An add item also carries MIDI data for the
// commands that place MIDI events.
//
// A remove item finds its parent by itself: the first ancestor of one of the
// child's parent types, in the order the child lists them (a note in a chord
// of a measure finds the measure, which holds it directly). SetParent only
// fills a parent that is still missing.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCMidi.h>

class ECBase;

class SCOREMODEL_API CCAddItem
{
public:
    CCAddItem() = default;
    CCAddItem(const CCAddItem &) = delete;
    CCAddItem &operator=(const CCAddItem &) = delete;
    virtual ~CCAddItem();

    ECBase *GetChild() const { return m_pChild; }
    void SetChild(ECBase *child);
    ECBase *GetParent() const { return m_pParent; }
    void SetParent(ECBase *parent);

    virtual FCMidi &GetMidiData() { return m_midi; }
    virtual void SetMidiData(FCMidi &midi) { m_midi = midi; }
    virtual void SetMidiData(unsigned long midi) { m_midi = FCMidi(midi); }

private:
    ECBase *m_pChild = nullptr;
    ECBase *m_pParent = nullptr;
    FCMidi m_midi = FCMidi::MidiNull();
};

class SCOREMODEL_API CCRemoveItem
{
public:
    CCRemoveItem() = default;
    CCRemoveItem(const CCRemoveItem &) = delete;
    CCRemoveItem &operator=(const CCRemoveItem &) = delete;
    virtual ~CCRemoveItem();

    ECBase *GetChild() const { return m_pChild; }
    // Holds `child` and looks up its parent among its ancestors.
    void SetChild(ECBase *child);
    ECBase *GetParent() const { return m_pParent; }
    // Only while no parent is set.
    void SetParent(ECBase *parent);

private:
    ECBase *m_pChild = nullptr;
    ECBase *m_pParent = nullptr;
};
