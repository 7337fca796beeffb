// SCBase: a state record, the document's message to its host.
//
// A record carries a numeric code and the data of its class; the host's
// views learn of every change this way. It travels through MCStateMgr:
//
//     SCStatus *status = new SCStatus(code);
//     status->SetMessage(text);
//     status->Apply(doc);          // posted; SetSynchronous(1) to send
//
// After delivery the record deletes itself unless auto delete was turned
// off, in which case whoever made it frees it. A record applied without a
// document goes to the main window of the delivering thread instead of to a
// document's handlers.
//
// Codes: 500, 501 and 502 are the command records (SCCommand), 1600 the
// preferences record (SCPrefs). Others are the host's to choose.
#pragma once

#include <scoremodel/Export.h>

#include <scoremodel/platform/Types.h>

class ECPerformance;

class SCOREMODEL_API SCBase
{
public:
    explicit SCBase(unsigned int code = 0) : m_bAutoDelete(1), m_bSynchronous(0), m_nCode(code & 0xFFFFFF) {}
    virtual ~SCBase() = default;
    SCBase(const SCBase &) = delete;
    SCBase &operator=(const SCBase &) = delete;

    // Deliver by send (before Apply returns) instead of by post. Default 0.
    virtual int IsSynchronous() { return m_bSynchronous; }
    virtual void SetSynchronous(int on) { m_bSynchronous = on ? 1 : 0; }
    // Delete the record after delivery. Default 1.
    virtual int IsAutoDelete() { return m_bAutoDelete; }
    virtual void SetAutoDelete(int on) { m_bAutoDelete = on ? 1 : 0; }
    // MCStateMgr::ApplyState(this, document). The record may be gone when
    // this returns.
    virtual void Apply(ECPerformance *document);
    // Runs first on delivery, on the state thread. Nothing here.
    virtual void DoState() {}

    // The state code: 24 bits.
    unsigned int GetCode() const { return m_nCode; }
    void SetCode(unsigned int code) { m_nCode = code & 0xFFFFFF; }
    // The document, set by ApplyState.
    ECPerformance *GetTarget() const { return m_pTarget; }
    void SetTarget(ECPerformance *target) { m_pTarget = target; }
    int GetPage() const { return m_nPage; }
    void SetPage(int page) { m_nPage = page; }

private:
    unsigned int m_bAutoDelete : 1;
    unsigned int m_bSynchronous : 1;
    unsigned int : 6; // reserved bits between the flags and the code
    unsigned int m_nCode : 24;
    ECPerformance *m_pTarget = nullptr;
    int m_nPage = 0;
};
