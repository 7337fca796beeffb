// ECTie: a tie between notes, hung under the staff.
//
// It keeps no child once its last note goes.
//
// Archive record: that of ECGroup; the repeat mark is in no record.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/notes/ECGroup.h>

class SCOREMODEL_API ECTie : public ECGroup
{
    DECLARE_SERIAL(ECTie)

public:
    CObject *Copy(CObject *src) override;
    // 60.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    // The group's removal; when no note is left, the other children go too.
    int RemoveChild(ECBase *child, int deep) override;

    // A tie that continues from before a repeat sign.
    void SetRepeatTie(int repeat) { m_repeat = repeat; }
    int IsRepeatTie() const { return m_repeat; }

    ECTie &operator=(const ECTie &other)
    {
        ECGroup::operator=(other);
        m_repeat = other.m_repeat;
        return *this;
    }
    int operator==(const ECTie &other) const { return ECGroup::operator==(other); }
    int operator!=(const ECTie &other) const { return !(*this == other); }

protected:
    ~ECTie() override;

private:
    int m_repeat = 0;
};
