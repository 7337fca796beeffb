// ECSlur: a slur over notes, hung under the staff.
//
// It keeps no child once its last note goes.
//
// Archive record: that of ECGroup; the repeat mark is in no record.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/notes/ECGroup.h>

class SCOREMODEL_API ECSlur : public ECGroup
{
    DECLARE_SERIAL(ECSlur)

public:
    CObject *Copy(CObject *src) override;
    // 54.
    int GetEventId() const override;
    // ECStaff.
    int GetParentTypes(CArray<int, int> &types) override;

    // The group's removal; when no note is left, the other children go too.
    int RemoveChild(ECBase *child, int deep) override;

    // A slur that continues from before a repeat sign.
    void SetRepeatSlur(int repeat) { m_repeat = repeat; }
    int IsRepeatSlur() const { return m_repeat; }

    ECSlur &operator=(const ECSlur &other)
    {
        ECGroup::operator=(other);
        m_repeat = other.m_repeat;
        return *this;
    }
    int operator==(const ECSlur &other) const { return ECGroup::operator==(other); }
    int operator!=(const ECSlur &other) const { return !(*this == other); }

protected:
    ~ECSlur() override;

private:
    int m_repeat = 0;
};
