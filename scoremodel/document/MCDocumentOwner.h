// MCDocumentOwner: the host's hold on one document, which takes the document
// down in the one order that frees it.
//
// A document and its tree hold each other (children hold their parents), the
// command and state handlers point into the host, and closed undo steps wait
// in a process-wide trash list. Closing therefore goes: handlers removed (no
// call reaches a host object that is going away), children removed (the tree
// lets go of the document), the host's last reference given back, the active
// performance cleared if it is this one, and the idle trash emptied. The
// owner does that on Close or when it is destroyed.
//
//     MCDocumentOwner doc = MCDocumentOwner::Make();   // with its conductor
//     doc->AddStateHandler(OnDocumentState, view);
//     ...
//     MCDocumentOwner copy(MCDocumentFile::Load("song.smd"));
//
// Close on the thread that runs the document's commands, after its posted
// commands have run (pump first): a command still queued holds the document,
// which then lives on until it has run.
#pragma once

#include <scoremodel/Export.h>

class ECPerformance;

class SCOREMODEL_API MCDocumentOwner
{
public:
    // A new document with its conductor, held once by the owner.
    static MCDocumentOwner Make();

    // Nothing owned.
    MCDocumentOwner() = default;
    // Takes over a document held once for the caller, as MCDocumentFile's
    // Load and Read return it. Null owns nothing.
    explicit MCDocumentOwner(ECPerformance *held) : m_p(held) {}
    ~MCDocumentOwner() { Close(); }

    MCDocumentOwner(MCDocumentOwner &&other) noexcept : m_p(other.m_p) { other.m_p = nullptr; }
    // Closes what this owned before taking over the other's.
    MCDocumentOwner &operator=(MCDocumentOwner &&other) noexcept;
    MCDocumentOwner(const MCDocumentOwner &) = delete;
    MCDocumentOwner &operator=(const MCDocumentOwner &) = delete;

    // Takes the document down as described above; then nothing is owned.
    // Closing an empty owner does nothing.
    void Close() noexcept;
    // Gives up the document without closing it: the caller holds it now.
    ECPerformance *Release() noexcept;

    ECPerformance *Get() const { return m_p; }
    ECPerformance *operator->() const { return m_p; }
    explicit operator bool() const { return m_p != nullptr; }

private:
    ECPerformance *m_p = nullptr;
};
