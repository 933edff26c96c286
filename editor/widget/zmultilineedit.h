// The text field of the phone: several rows, wrapped, with a cursor, a selection, and a memory of every change.
#pragma once

#include "platform/tyxexport.h"
#include "platform/values/qcstring.h"
#include "platform/values/qregexp.h"

#include <QAbstractScrollArea>
#include <memory>

class QValidator;
class ZMultiLineData;
class ZMultiLineEditCommand;

// Rows are what the reader sees: a paragraph that is too long for one goes on in the next. Rows and columns count from
// 0; columns and lengths count UTF-16 units; a line break counts as one, the place where a row wraps as none. Positions
// outside of the text mean the nearest one inside.
//
// Everything that changes the text can be undone, except setText() and the cutting done by the setters of limits, after
// which there is nothing to undo. Signals are emitted when the operation is complete: whoever receives one may call
// anything, and destroy the editor.
//
// An editor tells the GUI server of itself when it is made, by ZApplication::registerEditor(); without a ZApplication
// it is an editor for its process only. Input methods write into it as into any widget.
class TYX_EXPORT ZMultiLineEdit : public QAbstractScrollArea { // name fixed
    Q_OBJECT
    Q_PROPERTY(int numLines READ numLines)
    Q_PROPERTY(bool atBeginning READ atBeginning)
    Q_PROPERTY(bool atEnd READ atEnd)
    Q_PROPERTY(int maxLineWidth READ maxLineWidth)
    Q_PROPERTY(Qt::Alignment alignment READ alignment WRITE setAlignment)
    Q_PROPERTY(bool edited READ edited WRITE setEdited)
    Q_PROPERTY(EchoMode echoMode READ echoMode WRITE setEchoMode)
    Q_PROPERTY(int maxLength READ maxLength WRITE setMaxLength)
    Q_PROPERTY(int maxLines READ maxLines WRITE setMaxLines)
    Q_PROPERTY(int hMargin READ hMargin WRITE setHMargin)
    Q_PROPERTY(WordWrap wordWrap READ wordWrap WRITE setWordWrap)
    Q_PROPERTY(int wrapColumnOrWidth READ wrapColumnOrWidth WRITE setWrapColumnOrWidth)
    Q_PROPERTY(WrapPolicy wrapPolicy READ wrapPolicy WRITE setWrapPolicy)
    Q_PROPERTY(bool autoUpdate READ autoUpdate WRITE setAutoUpdate DESIGNABLE false)
    Q_PROPERTY(bool undoEnabled READ isUndoEnabled WRITE setUndoEnabled)
    Q_PROPERTY(int undoDepth READ undoDepth WRITE setUndoDepth)
    Q_PROPERTY(bool readOnly READ isReadOnly WRITE setReadOnly)
    Q_PROPERTY(bool overWriteMode READ isOverwriteMode WRITE setOverwriteMode)
    Q_PROPERTY(int length READ length)

public:
    // What is seen of the text. It stays what it is: text() answers it in every mode.
    enum EchoMode {
        Normal,
        NoEcho, // nothing, as if it were empty
        Password // a star for each UTF-16 unit
    };
    Q_ENUM(EchoMode)
    // Where a row has to end.
    enum WordWrap {
        NoWrap, // at line breaks alone
        WidgetWidth, // at the edge of the widget, wherever that is
        FixedPixelWidth, // after wrapColumnOrWidth() pixels
        FixedColumnWidth // after wrapColumnOrWidth() characters
    };
    Q_ENUM(WordWrap)
    // Where a row may end that does not end its paragraph.
    enum WrapPolicy {
        AtWhiteSpace, // behind a word; a word that is longer than a row is broken
        Anywhere // also within words, so that rows are as full as can be
    };
    Q_ENUM(WrapPolicy)

    // What row() answers; empty for a row that there is not.
    struct ZMultiLineEditRow { // name fixed
        QString s; // its text, in every echo mode
        int w = 0; // pixels
        bool newline = false; // the row ends a paragraph: a line break follows, or the text ends
    };

    // Takes the room that its layout has. `name` is the object's name; null: none.
    explicit ZMultiLineEdit(QWidget *parent = nullptr, const char *name = nullptr);
    // In field mode the editor is one field of a form, which sees the keys that leave the field. The number has no
    // meaning.
    ZMultiLineEdit(QWidget *parent, bool fieldMode, int reserved, const char *name = nullptr);
    ~ZMultiLineEdit() override;

    // The text, whole and by its rows.
    [[nodiscard]] QString text() const; // with U+000A between paragraphs
    [[nodiscard]] QString textLine(int row) const; // null when there is no such row
    [[nodiscard]] QString getRowString(int row) const { return textLine(row); } // the same
    [[nodiscard]] ZMultiLineEditRow row(int row) const;
    [[nodiscard]] bool isEndOfParagraph(int row) const; // false when there is no such row
    [[nodiscard]] int numLines() const; // rows; at least 1
    [[nodiscard]] int length() const; // of all of it, with its line breaks
    [[nodiscard]] int maxLineWidth() const; // pixels of the widest row
    [[nodiscard]] bool edited() const; // by anything, since setText() or setEdited(false)
    void setEdited(bool on); // for edited() alone

    // Without the cursor being there. With `mark` the new text is marked.
    virtual void insertAt(const QString &s, int line, int col, bool mark = false);
    virtual void insertLine(const QString &s, int line = -1); // as a paragraph before that row; -1: at the end
    virtual void removeLine(int line);

    // Cursor and marked text. Pointers may be null.
    void cursorPosition(int *line, int *col) const;
    void getCursorPosition(int *line, int *col) const { cursorPosition(line, col); } // the same
    virtual void setCursorPosition(int line, int col, bool mark = false); // with `mark` the marked text ends there
    [[nodiscard]] QPoint cursorPoint() const; // the lower end of the cursor, in the viewport
    [[nodiscard]] QRect globalRect(int line1, int col1, int line2, int col2) const; // on the screen
    [[nodiscard]] bool atBeginning() const; // the cursor, of the text
    [[nodiscard]] bool atEnd() const; // likewise
    [[nodiscard]] QString markedText() const; // null: none
    [[nodiscard]] bool hasMarkedText() const;
    bool getMarkedRegion(int *line1, int *col1, int *line2, int *col2) const; // false and -1: nothing is marked
    void setSelection(int rowFrom, int colFrom, int rowTo, int colTo); // the cursor goes to the second place

    // Typing, as the keys do it: nothing in an editor that can only be read. Each is one step to undo, or joins the
    // last.
    void insert(const QString &s, bool mark);
    virtual void insertChar(QChar c);
    virtual void newLine();
    virtual void backspace();
    virtual void del();
    virtual void killLine(); // what follows in the row; at its end, the line break

    // Moving the cursor. With `mark` the marked text grows or shrinks.
    virtual void cursorLeft(bool mark = false);
    virtual void cursorRight(bool mark = false);
    virtual void cursorUp(bool mark = false);
    virtual void cursorDown(bool mark = false);
    virtual void cursorWordForward(bool mark = false);
    virtual void cursorWordBackward(bool mark = false);
    virtual void home(bool mark = false);
    virtual void end(bool mark = false);
    virtual void pageUp(bool mark = false);
    virtual void pageDown(bool mark = false);

    // Undo. The first two take ownership of the command.
    void addUndoCmd(ZMultiLineEditCommand *c);
    void addRedoCmd(ZMultiLineEditCommand *c);
    void processCmd(ZMultiLineEditCommand *c, bool undo); // plays it, and records nothing

    // What may be typed. The filter sees one character at a time; with `accept` those that match are let through, else
    // those that do not. The validator sees the whole text, and only what would make it Invalid is refused; it belongs
    // to the caller. Neither is asked by setText(), nor about what is taken away, undone or redone.
    void setFilter(const QRegExp &filter, bool accept = true);
    virtual bool isValidChar(const QChar &c) const;
    void filterString(QString &result, const QString &s) const; // what of `s` is let through; line breaks are
    void setValidator(const QValidator *validator);
    [[nodiscard]] const QValidator *validator() const;

    // Limits. -1: none. What is inserted is cut to them, and textTrancated() tells it.
    void setMaxLength(int n); // of the whole text; cuts what is there
    [[nodiscard]] int maxLength() const;
    void setMaxLineLength(int n); // of a row; cuts what is there
    [[nodiscard]] int maxLineLength() const;
    void setMaxLines(int n); // rows; 0 means -1. Up to 6 the height of the widget is fixed. Cuts nothing that is there
    [[nodiscard]] int maxLines() const;

    // How paragraphs become rows. At first they wrap at the widget's width and at white space.
    void setWordWrap(WordWrap mode);
    [[nodiscard]] WordWrap wordWrap() const;
    void setWrapColumnOrWidth(int n); // characters or pixels, as WordWrap says; without a meaning in its other modes
    [[nodiscard]] int wrapColumnOrWidth() const;
    void setWrapPolicy(WrapPolicy policy);
    [[nodiscard]] WrapPolicy wrapPolicy() const;
    void setDefaultTabStop(int pixels); // 0 or less, as at first: eight spaces
    [[nodiscard]] int defaultTabStop() const; // pixels, also of eight spaces

    // Breaks paragraphs anew, which the editor does by itself when it has to.
    virtual void rebreakAll();
    virtual void rebreakParagraph(int row); // the one with the row
    virtual void wrapLine(int row, int removed = 0); // the paragraph with the row

    // How the text is shown.
    void setUnderline(bool on); // a line under every row, as on paper
    [[nodiscard]] bool getUnderline() const;
    void setHMargin(int pixels); // at both sides of the rows; 0 to 1000, 3 at first
    [[nodiscard]] int hMargin() const;
    void setAlignment(Qt::Alignment alignment); // across; Qt::AlignLeft is where a paragraph begins
    [[nodiscard]] Qt::Alignment alignment() const;
    void setEchoMode(EchoMode mode); // Normal at first
    [[nodiscard]] EchoMode echoMode() const;
    void setFixedVisibleLines(int lines); // 0: as the layout has it
    void setFont(const QFont &font); // as of any widget
    void setAutoUpdate(bool on); // off: what changes is not painted, until it is on again
    [[nodiscard]] bool autoUpdate() const;

    // Modes. At first text can be typed, is inserted, and can be undone.
    [[nodiscard]] bool isReadOnly() const;
    [[nodiscard]] bool isOverwriteMode() const;
    [[nodiscard]] bool fieldMode() const; // as the constructor was told
    void setUndoEnabled(bool on); // off: nothing is recorded; what is recorded is kept
    [[nodiscard]] bool isUndoEnabled() const;
    void setUndoDepth(int n); // commands that are kept, 256 at first; a longer list shrinks with the next ones
    [[nodiscard]] int undoDepth() const;

    [[nodiscard]] int editorId() const; // as the GUI server knows it; 0: it does not

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    void setupViewport(QWidget *viewport) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

public Q_SLOTS: // the order is fixed
    // The cursor goes to the beginning. CR, CR LF and U+2029 become line breaks, as in all text that comes in. Of what
    // is longer than maxLength() the end is cut. textChanged() comes only when the text is another one than before.
    virtual void setText(const QString &s);

    // On: the user changes nothing, there is no cursor, and no input widget; the program may still call setText(),
    // insertAt(), clear() and the like.
    virtual void setReadOnly(bool on);
    virtual void setOverwriteMode(bool on); // on: what is typed takes the place of the character behind the cursor

    // The text as the program changes it, also while it is read-only. Can be undone.
    void clear();
    void append(const QString &s); // as a paragraph of its own at the end; cut to the limits

    void deselect(); // the cursor stays
    void selectAll(); // the cursor goes to the end
    void smartPunctuation(); // a closing character behind "word " goes to the word, if an input method asked for it
    void paste(); // plain text; like the next, nothing while read-only
    void pasteSubType(const QCString &subType); // of "text/"; "" means "plain"
    void copyText(); // the same as copy()
    void copy(); // the marked text to the clipboard; nothing while a password is shown as stars
    void cut(); // copy() and deleteText(), also where copy() does nothing; nothing while read-only
    void deleteText(); // the marked text
    void insert(const QString &s); // in the place of the marked text, or at the cursor

    // One step back or forward: a command, or a group of them. Nothing while read-only. Where the text is not as the
    // step left it (it was changed while undo was off) the step ends, and all others are forgotten.
    void undo();
    void redo();

Q_SIGNALS: // the order is fixed
    void clicked(); // the pen came up within the editor and marked nothing
    void textTrancated(); // name fixed: text was cut to a limit
    void textChanged(); // once for an operation, as the last of its signals
    void returnPressed(); // Return or Enter, behind newLine(), which a limit may have kept from doing anything

    // There is something to undo or redo now, or no more; only when that changes.
    void undoAvailable(bool available);
    void redoAvailable(bool available);

    void copyAvailable(bool available); // text is marked, or no more; in every echo mode
    void cursorChanged(int row, int column); // also when the text before it wraps at another place
    void bufferUpdate(int length, int cursor); // after each change of the text; offsets
    void contentChanged(); // the size that the text needs is another one
    // The same for a layout: this editor, the size with its frame, the cursor as cursorPoint(), and how many rows.
    // Comes when the height is another one.
    void changeSizeHint(QWidget *editor, QSize size, QPoint cursor, int lines);

    void linesChanged(int lines, QPoint cursor); // there are more or fewer rows; the cursor as cursorPoint()
    void rightSmartPuncOccurred(); // smartPunctuation() took the space before the character

protected:
    // What belongs together in a word: characters of the same class. 0: white space.
    [[nodiscard]] virtual int charClass(char32_t c) const;

    // True: the key was for the predictive input method.
    virtual bool keyPressEvent_iWex(QKeyEvent *event);
    virtual void paintCell(QPainter *painter, int row, int col = 0);
    // The same for a row, and wrapLine() for a paragraph, with text that an input method has not confirmed.
    virtual void paintCell_iWex(QPainter *painter, int row, int col = 0);
    virtual void wrapLine_iWex(int row, int removed = 0);
    void startAutoScroll();
    void stopAutoScroll();
    // Tells the layout around the editor what it needs: changeSizeHint(), which is the item, and contentChanged().
    virtual void sendPackage(const QSize &size, const QPoint &cursor, int lines);
    virtual void sendPackageItem(const QSize &size, const QPoint &cursor, int lines);

    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private Q_SLOTS:
    void clipboardChanged();
    void blinkTimerTimeout();
    void scrollTimerTimeout();
    void dndTimeout();
    void bufferUpdate();
    void changeContentSize(int lines, QPoint cursor);

private:
    friend class ZMultiLineData;
    void init(QWidget *parent, bool fieldMode, int reserved, const char *name);
    void deleteNextChar();

    std::unique_ptr<ZMultiLineData> d;
};
