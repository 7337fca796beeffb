// Fault injection for the instrument file's writer: makes the next Persist
// calls fail at one step, so tests can check that a failed save leaves the
// previous file as it was. Not part of the library's interface.
#pragma once

enum class InstrumentPersistFault
{
    None,
    CreateTemporary, // the temporary file cannot be made
    WriteHalf,       // the disk fills after the first half of the document
    Sync,            // flushing or syncing the temporary file fails
    Rename           // the temporary file cannot replace the target
};

// Sets the fault of every following Persist until set back to None.
void SetInstrumentPersistFault(InstrumentPersistFault fault);
