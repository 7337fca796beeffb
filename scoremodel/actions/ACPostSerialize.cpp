#include <scoremodel/actions/ACPostSerialize.h>

#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/MCDataArray.h>

ACPostSerialize::ACPostSerialize(CArchive &ar) : m_pArchive(&ar)
{
}

ACPostSerialize::~ACPostSerialize() = default;

int ACPostSerialize::DoAction(ECBase *e)
{
    if (!e)
        return ResultFailed;
    e->PostSerialize(*m_pArchive);
    if (MCDataArray *data = e->GetData())
    {
        // The size is read at each step: a record may, in principle, grow the array.
        for (int slot = 0; slot < data->GetSize(); ++slot)
            if (DCBase *attachment = data->GetAt(slot))
                attachment->PostSerialize(*m_pArchive);
    }
    switch (e->GetEventId())
    {
    case EVENT_ID_BEAM:
    case EVENT_ID_SLUR:
    case EVENT_ID_TIE:
        return ResultSkip;
    default:
        return ResultContinue;
    }
}
