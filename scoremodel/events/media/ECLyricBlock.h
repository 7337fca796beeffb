// ECLyricBlock: a block of lyrics placed on the page, beside the conductor.
//
// Archive record (schema 3): that of ECLyric.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/events/media/ECLyric.h>

class SCOREMODEL_API ECLyricBlock : public ECLyric
{
    DECLARE_SERIAL(ECLyricBlock)

public:
    CObject *Copy(CObject *src) override;
    // 31.
    int GetEventId() const override;
    // ECPerformance.
    int GetParentTypes(CArray<int, int> &types) override;

    ECLyricBlock &operator=(const ECLyricBlock &other)
    {
        ECLyric::operator=(other);
        return *this;
    }
    int operator==(const ECLyricBlock &other) const { return ECLyric::operator==(other); }
    int operator!=(const ECLyricBlock &other) const { return !(*this == other); }

protected:
    ~ECLyricBlock() override;
};
