// DCBase: the base of a data attachment, the plug-in's way of hanging its own
// data on an event.
//
// A plug-in derives from DCBase, registers its class with CPluginData for a
// view code and an event type, and an event then makes one on demand through
// ECBase::GetData(type, 1). The event owns its attachments: it deletes them in
// RemoveData and in its destructor. An attachment knows its owner (set by
// SetOwner, 0 until then) but holds no reference on it.
//
// Members: a state field whose bit 0 is the dirty flag (set at construction),
// two 32-bit values for the derived class, and the owner.
//
// Archive record (schema 2): the first value (4 bytes), the second value,
// then the owner as an object reference. Documents before version 3 held 12
// bytes instead of the two values: the state field's flag word, its value and
// the first value; the second value then keeps its default.
//
// No lock: an attachment belongs to the thread that owns its event.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/FCInt.h>
#include <scoremodel/platform/CObject.h>

class ECBase;

class SCOREMODEL_API DCBase : public CObject
{
    DECLARE_SERIAL(DCBase)

public:
    // Keys of the open property interface; their meaning is the plug-in's.
    enum Property
    {
        PropertyNone = 0
    };

    DCBase();
    ~DCBase() override;

    void Serialize(CArchive &ar) override;

    // Calls this class's operator= with `src` when it is a DCBase; returns this.
    virtual CObject *Copy(CObject *src);
    // Runs in the archive's second section; nothing in the base.
    virtual void PostSerialize(CArchive &ar);
    virtual int IsDirty();
    virtual void SetDirty(int dirty);
    virtual void SetOwner(ECBase *owner);
    // The open property interface of plug-ins; nothing in the base.
    virtual void SetProperty(enum Property property, void *value);
    virtual void GetProperty(enum Property property, void *value);
    // A plug-in's degree of an owner (a scale degree, say); nothing in the base.
    virtual void GetDegree(void *degree);

    ECBase *GetOwner() const { return m_owner; }

    // Copies nothing: an attachment's values are its plug-in's business.
    DCBase &operator=(const DCBase &other);
    // Compares the state field only.
    int operator==(const DCBase &other) const;
    int operator!=(const DCBase &other) const { return !(*this == other); }

protected:
    DCBase(const DCBase &other);

    FCInt m_state;
    FCInt m_value;
    FCInt m_value2;
    ECBase *m_owner = nullptr;
};
