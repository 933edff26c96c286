// The main window of an application that is typed into: its content stays visible above the input widget.
#pragma once

#include "platform/tyxexport.h"

#include <QWidget>
#include <memory>

class ZMainWidgetData;

// A window with a title, which the phone shows in its status bar, and one content widget:
//
//     ZMainWidget window(QStringLiteral("Letter"));
//     window.setContentWidget(form);
//     app.setMainWidget(&window);
//     window.show();
//
// The content fills the editor rectangle: the window, less what the input widget covers of it. It is made smaller down
// to its minimum size; from there on it scrolls. While the input widget is shown, the editor with the focus is scrolled
// into view: all of it, or the line with its cursor when it is higher than the rectangle. While it is the active window
// of a ZApplication all this happens by itself, when the messages about the input widget arrive.
class TYX_EXPORT ZMainWidget : public QWidget {
    Q_OBJECT

public:
    // A window of its own, also with a parent. The title is windowTitle(), which may be changed at any time.
    explicit ZMainWidget(const QString &title = {}, QWidget *parent = nullptr);
    ~ZMainWidget() override;

    // Takes ownership; what was the content before is destroyed.
    void setContentWidget(QWidget *content);
    [[nodiscard]] QWidget *contentWidget() const; // null when there is none

    // Where the content is, in the coordinates of this widget.
    [[nodiscard]] QRect editorRect() const;

    // Works out the editor rectangle anew and answers it. `shown` tells whether the input widget is shown; it then
    // covers `height` pixels at the bottom of the screen (any number: it is cut to the screen). `editor` is the
    // identifier of the editor that is typed into; when it is not in this window, the widget with the focus is.
    QRect getEditorRect(int editor, int height, bool shown); // name fixed

Q_SIGNALS:
    // The content has another place, in the coordinates of this widget.
    void editorRectChanged(const QRect &rect);

protected:
    void resizeEvent(QResizeEvent *event) override;
    void moveEvent(QMoveEvent *event) override;

private:
    std::unique_ptr<ZMainWidgetData> d;
};
