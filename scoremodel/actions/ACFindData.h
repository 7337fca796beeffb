// ACFindData: finds the events that carry a data attachment of one view code.
//
// An event without an attachment of the code is passed over (its children
// are still searched); one with it is matched against the types as by
// ACFindEvents. The lookup never creates an attachment.
//
//     ACFindData find;
//     find.SetViewCode(3);
//     find.Apply(pStaff);
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/actions/ACFindEvents.h>

class SCOREMODEL_API ACFindData : public ACFindEvents
{
public:
    // View code 0.
    ACFindData();
    explicit ACFindData(int n);
    ~ACFindData() override;

    // -1 for null; 0 when the event has no attachment of the view code;
    // otherwise ACFindEvents::DoAction.
    int DoAction(ECBase *e) override;

    void SetViewCode(int viewCode) { m_nViewCode = viewCode; }
    int GetViewCode() const { return m_nViewCode; }

protected:
    int m_nViewCode = 0;
};
