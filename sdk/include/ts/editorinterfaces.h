#pragma once

#include "ts/markersource.h"
#include "ts/undoredo.h"
#include "ts/unknown.h"

// Host interfaces that every editor object answers besides its window, command, editor and
// options interfaces. The host asks for them to learn what an editor can take part in; their
// operations are declared with the features that use them (markers, find and replace, preview),
// so for now each is its identity only. ITsUndoRedo has its operations in ts/undoredo.h,
// ITsMarkerSource in ts/markersource.h.
#define TS_DECLARE_EDITOR_INTERFACE(name, id) \
    struct name : IUnknown {                  \
        TS_INTERFACE_ID(id);                  \
                                              \
    protected:                                \
        ~name() = default;                    \
    }

// Export of the edited resource to other formats.
TS_DECLARE_EDITOR_INTERFACE(ITsExportSource, "{3B0438E0-190F-4CD6-9778-8B603D185A07}");
// Searching and replacing in the edited resource.
TS_DECLARE_EDITOR_INTERFACE(ITsFindReplaceSource, "{3EF22302-003A-4460-9F7F-BFA945A2218C}");
// Context help.
TS_DECLARE_EDITOR_INTERFACE(ITsHelpSource, "{6B34349E-F16E-44DF-80B8-FCAC9E0C678D}");
// The selection the host's other windows follow.
TS_DECLARE_EDITOR_INTERFACE(ITsCurrentState, "{C9A37BBB-CB28-4798-9045-57D7BB34A59C}");
// What the host's object inspector shows.
TS_DECLARE_EDITOR_INTERFACE(ITsObjectInspectorSource, "{B2FC29D0-1CB2-47DB-BBD0-752B01C2F4AF}");
// The editor's icon.
TS_DECLARE_EDITOR_INTERFACE(ITsIcon, "{9C829703-9897-4043-8901-1E9E57D21308}");
// Idle-time work.
TS_DECLARE_EDITOR_INTERFACE(ITsIdle, "{4744D392-D43C-4BB6-9888-6860ADCA30FE}");
// The find and replace window's view of the editor.
TS_DECLARE_EDITOR_INTERFACE(ITsFindReplaceWindow, "{360CE602-7CD4-48E3-8AD3-C96EA1C33AD8}");
// Comparing two versions of the resource.
TS_DECLARE_EDITOR_INTERFACE(ITsResourceDiff, "{519BB8D3-9B22-4D49-9506-1FCA00C393AD}");
// Whether the editor can open a given resource.
TS_DECLARE_EDITOR_INTERFACE(ITsEditorDetect, "{1C15D196-CF5F-45A1-A3B6-D49CFF8D1D25}");
// Batch export driven by the host.
TS_DECLARE_EDITOR_INTERFACE(ITsEditorExporter, "{BC37119E-6386-458E-9BBE-429F108302C4}");
// Previewing the resource in the game's renderer.
TS_DECLARE_EDITOR_INTERFACE(ITsPreview, "{CAA96A00-95C8-475D-BBEE-6A0BB1CABBD3}");
// Playing the resource's sounds.
TS_DECLARE_EDITOR_INTERFACE(ITsSoundPlayerSource, "{23C01A0E-9D77-4446-BF21-6FEDE1ADD00C}");
// Staging and playing one conversation line.
TS_DECLARE_EDITOR_INTERFACE(ITsConversationLinePreview, "{534BDDED-73FE-4D40-B849-BE9410AFD360}");

#undef TS_DECLARE_EDITOR_INTERFACE
