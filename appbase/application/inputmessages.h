// Messages about editors, the input widget and windows, by the names that both ends use. Not inline: the sanitizers'
// compiler holds it possible that such an object has no address, and then refuses it in a constant table.
#pragma once

namespace messages {

// To "TYX/QtServer".
constexpr char kRegisterEditor[] = "registerEditor(QCString,int,int)";
constexpr char kUnregisterEditor[] = "unRegisterEditor(int)";
constexpr char kShowInputWidget[] = "showInputWidget(int,int,QUuid,int)"; // carries one int more
constexpr char kOrderWindows[] = "manipulateAppWindows(int,QString)";
constexpr char kFocusLatestWindow[] = "setFocusToLatestWindow(int)";

// To "TYX/Application/" + program name.
constexpr char kObeyWindowOrder[] = "manipulateAppWindows(int,QValueList)";
constexpr char kInputWidgetShown[] = "inputWidgetShown(int,int,int,QUuid,int)";
constexpr char kHideInputWidget[] = "hideInputWidget(int,int,int)";
constexpr char kAutoHideInputWidget[] = "autoHideInputWidget(int,int,int)";
constexpr char kKeyEvent[] = "sendKeyEventEx(IM_KeyEvent_Ex)";
constexpr char kUnconfirmedText[] = "unconfirmedText(QString)";
constexpr char kTextToContact[] = "sendTextToContact(QString)";

// To both.
constexpr char kUpdateEditorState[] = "updateEditorState(int,int,int)";

}
