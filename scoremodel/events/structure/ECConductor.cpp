#include <scoremodel/events/structure/ECConductor.h>

#include <scoremodel/events/media/ECWaveTrack.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/platform/CArchive.h>

IMPLEMENT_SERIAL(ECConductor, ECWithChild, VERSIONABLE_SCHEMA | 2)

ECConductor::ECConductor() = default;

ECConductor::~ECConductor() = default;

ECConductor &ECConductor::operator=(const ECConductor &other)
{
    if (this != &other)
        ECWithChild::operator=(other);
    return *this;
}

CObject *ECConductor::Copy(CObject *src)
{
    if (src && src->IsKindOf(RUNTIME_CLASS(ECConductor)))
        *this = *static_cast<ECConductor *>(src);
    return this;
}

int ECConductor::GetEventId() const
{
    return EVENT_ID_CONDUCTOR;
}

int ECConductor::GetParentTypes(CArray<int, int> &types)
{
    types.Add(EVENT_ID_PERFORMANCE);
    return 1;
}

int ECConductor::AddChild(ECBase *child, int sorted)
{
    return ECWithChild::AddChild(child, sorted);
}

void ECConductor::Serialize(CArchive &ar)
{
    ECWithChild::Serialize(ar);
}

int ECConductor::GetMaxTrackNumber(int) { return 0; }
int ECConductor::GetTrackNumber(int, ECTrack *) { return 0; }
ECTrack *ECConductor::GetTrack(int, int, int) { return nullptr; }
void ECConductor::OrderTracks(int) {}
int ECConductor::GetMaxMeasureNumber() { return 0; }
MCTime ECConductor::GetMaxMeasureEndTime() { return MCTime::TimeZero(); }
int ECConductor::GetMeasureNumberAtTime(MCTime &) { return 0; }
int ECConductor::GetMeasureNumberBeforeTime(MCTime &) { return 0; }
ECMeasure *ECConductor::GetMeasure(int, MCTime, int, int) { return nullptr; }
ECMeasure *ECConductor::GetMeasure(int, int) { return nullptr; }
int ECConductor::GetMeasures(int, MCTime, MCTime, EventList &) { return 0; }
int ECConductor::GetMeasures(int, int, int, EventList &) { return 0; }
ECTempo *ECConductor::GetTempoAtTime(MCTime &) { return nullptr; }
ECTempo *ECConductor::GetTempoBeforeTime(MCTime &) { return nullptr; }
ECMeter *ECConductor::GetMeterAtTime(MCTime &) { return nullptr; }
ECMeter *ECConductor::GetMeterBeforeTime(MCTime &) { return nullptr; }
void ECConductor::GetMeterScope(ECMeter *, MCTime &start, MCTime &end) { start = end = MCTime::TimeNull(); }
ECMeter *ECConductor::GetDocMeter() { return nullptr; }
ECMeter *ECConductor::GetMeterByPickupRole(BYTE) { return nullptr; }
ECPerformance *ECConductor::GetPerformance() { return nullptr; }
ECConductorStaff *ECConductor::GetConductorStaff() { return m_pConductorStaff; }
ECStaff *ECConductor::GetChordStaff() { return m_pChordStaff; }
int ECConductor::InsertTrack(ECTrack *, int) { return -1; }
void ECConductor::RemoveTrack(ECTrack *) {}
int ECConductor::GetWaveTrackNumber(ECWaveTrack *) { return -1; }
ECWaveTrack *ECConductor::GetWaveTrack(int, int) { return nullptr; }
int ECConductor::InsertWaveTrack(ECWaveTrack *, int) { return -1; }
void ECConductor::RemoveWaveTrack(ECWaveTrack *) {}
void ECConductor::BuildWaveTrackArray() {}
