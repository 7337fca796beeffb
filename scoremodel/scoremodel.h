// The whole public interface of scoremodel in one include.
#pragma once

#if !defined(__cplusplus) || __cplusplus < 202002L
#error "scoremodel needs C++20 or later (-std=c++20)"
#endif

#include <scoremodel/Export.h>
#include <scoremodel/version.h>

// The floor: stand-ins for the platform interfaces and the common services.
#include <scoremodel/platform/CArchive.h>
#include <scoremodel/platform/CArray.h>
#include <scoremodel/platform/CCriticalSection.h>
#include <scoremodel/platform/CFile.h>
#include <scoremodel/platform/CGeometry.h>
#include <scoremodel/platform/CMap.h>
#include <scoremodel/platform/CObject.h>
#include <scoremodel/platform/CString.h>
#include <scoremodel/platform/CTypedPtrList.h>
#include <scoremodel/platform/CWnd.h>
#include <scoremodel/platform/CommonPaths.h>
#include <scoremodel/platform/Exceptions.h>
#include <scoremodel/platform/MCLanguageManager.h>
#include <scoremodel/platform/MCMessageLoop.h>
#include <scoremodel/platform/MessageBox.h>
#include <scoremodel/platform/Preferences.h>
#include <scoremodel/platform/Types.h>
#include <scoremodel/platform/Window.h>

// Values: musical time, fractions and typed fields.
#include <scoremodel/core/FCBase.h>
#include <scoremodel/core/FCBool.h>
#include <scoremodel/core/FCByte.h>
#include <scoremodel/core/FCChar.h>
#include <scoremodel/core/FCColor.h>
#include <scoremodel/core/FCDWord.h>
#include <scoremodel/core/FCFloat.h>
#include <scoremodel/core/FCInt.h>
#include <scoremodel/core/FCLong.h>
#include <scoremodel/core/FCMidi.h>
#include <scoremodel/core/FCMidiSysEx.h>
#include <scoremodel/core/FCPoint.h>
#include <scoremodel/core/FCRect.h>
#include <scoremodel/core/FCSize.h>
#include <scoremodel/core/FCTime.h>
#include <scoremodel/core/FCWord.h>
#include <scoremodel/core/MCFraction.h>
#include <scoremodel/core/MCTime.h>

// The event bases, their lists and the registry.
#include <scoremodel/events/base/ArchiveVersion.h>
#include <scoremodel/events/base/DCBase.h>
#include <scoremodel/events/base/ECBase.h>
#include <scoremodel/events/base/ECWithChild.h>
#include <scoremodel/events/base/ECWithTime.h>
#include <scoremodel/events/base/ECWithTimeChild.h>
#include <scoremodel/events/base/EventIds.h>
#include <scoremodel/events/base/EventRegistry.h>
#include <scoremodel/events/base/LCBase.h>
#include <scoremodel/events/base/MCDataArray.h>
#include <scoremodel/events/base/MCEventList.h>
#include <scoremodel/events/base/MCEventWalk.h>
#include <scoremodel/events/base/MCFuncList.h>
#include <scoremodel/events/base/MCObList.h>
#include <scoremodel/events/base/MCPtrList.h>
#include <scoremodel/events/base/MCVoiceTrack.h>

// The structure of a score: performance, conductor, staves and measures.
#include <scoremodel/events/structure/ECConductor.h>
#include <scoremodel/events/structure/ECConductorMeasure.h>
#include <scoremodel/events/structure/ECConductorStaff.h>
#include <scoremodel/events/structure/ECMeasure.h>
#include <scoremodel/events/structure/ECPerformance.h>
#include <scoremodel/events/structure/ECStaff.h>
#include <scoremodel/events/structure/ECTrack.h>
#include <scoremodel/events/structure/MCBitArray.h>
#include <scoremodel/events/structure/MCCache.h>
#include <scoremodel/events/structure/MCGroup.h>
#include <scoremodel/events/structure/MCStaffCache.h>

// Notes, chords, rests, their modifiers, groups and tuplets.
#include <scoremodel/events/notes/ECAccent.h>
#include <scoremodel/events/notes/ECAccidental.h>
#include <scoremodel/events/notes/ECArpeggio.h>
#include <scoremodel/events/notes/ECBarline.h>
#include <scoremodel/events/notes/ECBeam.h>
#include <scoremodel/events/notes/ECBrac.h>
#include <scoremodel/events/notes/ECChord.h>
#include <scoremodel/events/notes/ECDot.h>
#include <scoremodel/events/notes/ECGlissando.h>
#include <scoremodel/events/notes/ECGraceNote.h>
#include <scoremodel/events/notes/ECGroup.h>
#include <scoremodel/events/notes/ECMirror.h>
#include <scoremodel/events/notes/ECMordent.h>
#include <scoremodel/events/notes/ECNote.h>
#include <scoremodel/events/notes/ECOrnament.h>
#include <scoremodel/events/notes/ECRepeat.h>
#include <scoremodel/events/notes/ECRest.h>
#include <scoremodel/events/notes/ECSlur.h>
#include <scoremodel/events/notes/ECTie.h>
#include <scoremodel/events/notes/ECTremolo.h>
#include <scoremodel/events/notes/ECTrill.h>
#include <scoremodel/events/notes/ECTuplet.h>
#include <scoremodel/events/notes/ECTurn.h>

// Meter, key and clef.
#include <scoremodel/events/signatures/ECClef.h>
#include <scoremodel/events/signatures/ECKey.h>
#include <scoremodel/events/signatures/ECMeter.h>
#include <scoremodel/events/signatures/ECMeterEnv.h>

// Envelopes, controller points and tempo.
#include <scoremodel/events/envelopes/ECControllerEnvelopes.h>
#include <scoremodel/events/envelopes/ECControllerPoints.h>
#include <scoremodel/events/envelopes/ECEnvPoint.h>
#include <scoremodel/events/envelopes/ECEnvelope.h>
#include <scoremodel/events/envelopes/ECTempo.h>
#include <scoremodel/events/envelopes/ECTempoEnv.h>

// Chord symbols.
#include <scoremodel/events/chords/ECChordSymbol.h>

// Performance marks.
#include <scoremodel/events/marks/ECCompress.h>
#include <scoremodel/events/marks/ECDynamic.h>
#include <scoremodel/events/marks/ECFlowControl.h>
#include <scoremodel/events/marks/ECPedal.h>
#include <scoremodel/events/marks/ECSystemMessage.h>
#include <scoremodel/events/marks/ECTranspose.h>

// Text and media.
#include <scoremodel/events/media/ECDrawing.h>
#include <scoremodel/events/media/ECFrame.h>
#include <scoremodel/events/media/ECLyric.h>
#include <scoremodel/events/media/ECLyricBlock.h>
#include <scoremodel/events/media/ECText.h>
#include <scoremodel/events/media/ECVideo.h>
#include <scoremodel/events/media/ECWave.h>
#include <scoremodel/events/media/ECWaveTrack.h>
#include <scoremodel/events/media/MCMediaFile.h>
#include <scoremodel/events/media/RTFExtractor.h>

// Commands and the undo history.
#include <scoremodel/commands/CCAdd.h>
#include <scoremodel/commands/CCAddNoteModifier.h>
#include <scoremodel/commands/CCAddRemoveItems.h>
#include <scoremodel/commands/CCAddTrack.h>
#include <scoremodel/commands/CCAddTuplet.h>
#include <scoremodel/commands/CCAdjustMeasureChildren.h>
#include <scoremodel/commands/CCBase.h>
#include <scoremodel/commands/CCCopyTracks.h>
#include <scoremodel/commands/CCGroupStaves.h>
#include <scoremodel/commands/CCMeterInfo.h>
#include <scoremodel/commands/CCAddMeter.h>
#include <scoremodel/commands/CCRemoveMeter.h>
#include <scoremodel/commands/CCAddMeasure.h>
#include <scoremodel/commands/CCRemoveMeasure.h>
#include <scoremodel/commands/CCRemove.h>
#include <scoremodel/commands/CCRemoveTrack.h>
#include <scoremodel/commands/MCCommandList.h>
#include <scoremodel/commands/MCCommandMgr.h>
#include <scoremodel/commands/MCCommandTimer.h>
#include <scoremodel/commands/MCRelationCache.h>
#include <scoremodel/commands/MCUndoItem.h>
#include <scoremodel/commands/MCOleDataIn.h>
#include <scoremodel/commands/MCOleDataInfo.h>
#include <scoremodel/commands/MCOleDataOut.h>
#include <scoremodel/commands/CCOrderTracks.h>
#include <scoremodel/commands/SelectionTracks.h>
#include <scoremodel/commands/CCAddClef.h>
#include <scoremodel/commands/CCAddEnvPoint.h>
#include <scoremodel/commands/CCAddKey.h>
#include <scoremodel/commands/CCAddTempo.h>
#include <scoremodel/commands/CCEdit.h>
#include <scoremodel/commands/CCRemoveClef.h>
#include <scoremodel/commands/CCRemoveEnvPoint.h>
#include <scoremodel/commands/CCRemoveKey.h>
#include <scoremodel/commands/ConfigureRemove.h>

// Walks over the tree.
#include <scoremodel/actions/ACBase.h>
#include <scoremodel/actions/ACCount.h>
#include <scoremodel/actions/ACDeltaTime.h>
#include <scoremodel/actions/ACEventTypes.h>
#include <scoremodel/actions/ACFindData.h>
#include <scoremodel/actions/ACFindEvents.h>
#include <scoremodel/actions/ACFindFirstEvent.h>
#include <scoremodel/actions/ACFindMirror.h>
#include <scoremodel/actions/ACFindObjects.h>
#include <scoremodel/actions/ACFindTime.h>
#include <scoremodel/actions/ACFindVoiceTrack.h>
#include <scoremodel/actions/ACGetVoiceTrack.h>
#include <scoremodel/actions/ACOffsetBase.h>
#include <scoremodel/actions/ACPostSerialize.h>
#include <scoremodel/actions/ACRelativesFirst.h>
#include <scoremodel/actions/ACSelect.h>
#include <scoremodel/actions/ACSetVoiceTrack.h>
#include <scoremodel/actions/ACSortChildren.h>
#include <scoremodel/actions/ACTimeRange.h>

// Notifications to the host.
#include <scoremodel/state/MCStateMgr.h>
#include <scoremodel/state/SCBase.h>
#include <scoremodel/state/SCCommand.h>
#include <scoremodel/state/SCEdit.h>
#include <scoremodel/state/SCFile.h>
#include <scoremodel/state/SCLayout.h>
#include <scoremodel/state/SCMode.h>
#include <scoremodel/state/SCPiano.h>
#include <scoremodel/state/SCPrefs.h>
#include <scoremodel/state/SCSelection.h>
#include <scoremodel/state/SCStatus.h>
#include <scoremodel/state/SCTime.h>

// The document file and the filter bases.
#include <scoremodel/document/MCDocumentFile.h>
#include <scoremodel/document/MCDocumentOwner.h>
#include <scoremodel/document/MCFileReader.h>
#include <scoremodel/document/MCFileWriter.h>

// Spelled pitch, intervals and notation systems.
#include <scoremodel/pitch/MCHarmonicaConverter.h>
#include <scoremodel/pitch/MCJianpu.h>
#include <scoremodel/pitch/MCPitch.h>
#include <scoremodel/pitch/MCPitchUtils.h>
#include <scoremodel/pitch/MapItem.h>
#include <scoremodel/pitch/MCDrumMap.h>

// Tablature instruments and their file.
#include <scoremodel/instruments/GeneralMidiInstrumentList.h>
#include <scoremodel/instruments/MCInstrument.h>
#include <scoremodel/instruments/MCInstrumentManager.h>
#include <scoremodel/instruments/XMLInstrumentParser.h>
#include <scoremodel/instruments/XMLParser.h>

// Plug-ins.
#include <scoremodel/plugins/CPluginData.h>
#include <scoremodel/plugins/CPlugin.h>
#include <scoremodel/plugins/CPluginFileReader.h>
#include <scoremodel/plugins/CPluginFileWriter.h>
#include <scoremodel/plugins/CPluginFilter.h>

// Display text.
#include <scoremodel/text/MCDisplayText.h>
