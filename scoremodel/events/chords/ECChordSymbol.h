// ECChordSymbol: a harmony label over the staff, such as C minor seventh
// over B flat.
//
// It keeps a duration of its own, TimeZero for a new symbol, which its
// record does not hold.
//
// Archive record: that of ECWithTime.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/core/MCTime.h>
#include <scoremodel/events/base/ECWithTime.h>

class SCOREMODEL_API ECChordSymbol : public ECWithTime
{
    DECLARE_SERIAL(ECChordSymbol)

public:
    CObject *Copy(CObject *src) override;
    // 13.
    int GetEventId() const override;
    // ECMeasure.
    int GetParentTypes(CArray<int, int> &types) override;

    MCTime *GetDuration() override { return &m_duration; }
    // Takes a copy of `*duration`; nothing for null.
    void SetDuration(MCTime *duration) override;

    // Copies the duration and the base part.
    ECChordSymbol &operator=(const ECChordSymbol &other);
    int operator==(const ECChordSymbol &other) const;
    int operator!=(const ECChordSymbol &other) const { return !(*this == other); }

protected:
    ~ECChordSymbol() override;

    MCTime m_duration = MCTime::TimeZero();
};
