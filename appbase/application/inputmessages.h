// Messages about editors, the input widget and windows, by the names that both ends use.
#pragma once

namespace messages {

// To "TYX/QtServer".
inline constexpr char kRegisterEditor[] = "registerEditor(QCString,int,int)";
inline constexpr char kUnregisterEditor[] = "unRegisterEditor(int)";
inline constexpr char kShowInputWidget[] = "showInputWidget(int,int,QUuid,int)"; // carries one int more
inline constexpr char kOrderWindows[] = "manipulateAppWindows(int,QString)";
inline constexpr char kFocusLatestWindow[] = "setFocusToLatestWindow(int)";

// To "TYX/Application/" + program name.
inline constexpr char kObeyWindowOrder[] = "manipulateAppWindows(int,QValueList)";
inline constexpr char kInputWidgetShown[] = "inputWidgetShown(int,int,int,QUuid,int)";
inline constexpr char kHideInputWidget[] = "hideInputWidget(int,int,int)";
inline constexpr char kAutoHideInputWidget[] = "autoHideInputWidget(int,int,int)";
inline constexpr char kKeyEvent[] = "sendKeyEventEx(IM_KeyEvent_Ex)";
inline constexpr char kUnconfirmedText[] = "unconfirmedText(QString)";

// To both.
inline constexpr char kUpdateEditorState[] = "updateEditorState(int,int,int)";

}
