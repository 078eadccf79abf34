#pragma once

namespace dlg {

// The editor's numbers for the line fields that markers, find and replace and the change codes
// of field commands name. A marker's Field and a change code use the same number for the same
// field; numbers not listed here name fields that nothing checks.
enum LineProperty : int {
    kPropPreviousSpeaker = 1,
    kPropConditionPlot = 3,
    kPropConditionPlotFlag = 5,
    kPropText = 11,
    kPropIcon = 12,
    kPropLanguage = 13,
    kPropListener = 14,
    kPropSpeaker = 16,
    kPropActionPlot = 18,
    kPropActionPlotFlag = 20,
    kPropEndPlot = 25,
    kPropEndPlotFlag = 27,
    kPropComment = 33,
    kPropAmbient = 35,
    kPropEmotion = 51,
    kLastCheckedProperty = 51,
};

}  // namespace dlg
