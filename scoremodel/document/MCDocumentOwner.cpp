#include <scoremodel/document/MCDocumentOwner.h>

#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECPerformance.h>

MCDocumentOwner MCDocumentOwner::Make()
{
    auto *performance = new ECPerformance;
    performance->Ref();
    MCDocumentOwner owner(performance);
    performance->AddChild(new ECConductor, 0);
    return owner;
}

MCDocumentOwner &MCDocumentOwner::operator=(MCDocumentOwner &&other) noexcept
{
    if (this != &other)
    {
        Close();
        m_p = other.m_p;
        other.m_p = nullptr;
    }
    return *this;
}

void MCDocumentOwner::Close() noexcept
{
    ECPerformance *performance = m_p;
    if (!performance)
        return;
    m_p = nullptr;
    performance->RemoveCommandHandlers();
    performance->RemoveStateHandlers();
    performance->RemoveChildren(1);
    if (ECPerformance::GetActivePerformance() == performance)
        ECPerformance::SetActivePerformance(nullptr);
    performance->Unref(1);
    MCCommandMgr::OnIdle();
}

ECPerformance *MCDocumentOwner::Release() noexcept
{
    ECPerformance *performance = m_p;
    m_p = nullptr;
    return performance;
}
