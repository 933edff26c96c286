// Two handles at the ends of text that was marked with the pen, and a glass over the place that one is dragged to.
#pragma once

#include <QPoint>
#include <QPointer>
#include <memory>
#include <utility>

class ZMultiLineData;

// Of one editor. The handles are there from begin() until nothing is marked any more, or end(). They mark as the pen
// does that is drawn over text, but for always leaving something marked; the focus stays where it is.
class TouchSelection {
public:
    explicit TouchSelection(ZMultiLineData &editor);
    ~TouchSelection();
    TouchSelection(const TouchSelection &) = delete;
    TouchSelection &operator=(const TouchSelection &) = delete;

    void begin(); // with what is marked now
    void end();
    void follow(); // after anything moved
    [[nodiscard]] bool isHeld() const; // by one of its handles

private:
    class Handle;
    class Glass;

    void take(const Handle &handle); // the other one stays where it is
    void drag(QPoint place); // in the viewport
    void letGo();
    void put(Handle &handle, int offset);
    void showGlass();

    ZMultiLineData &m_editor;
    bool m_active = false;
    // The viewport's children, which an application may replace.
    QPointer<Handle> m_fixed; // at the anchor
    QPointer<Handle> m_moving; // at the end that is dragged
    std::unique_ptr<Glass> m_glass;
};
