// ZMultiLineEdit beside QPlainTextEdit and QTextEdit: the same size, font and text, rows wrapped, kerning and ligatures
// off. Medians; "rows known" means that the exact number of rows was asked for.
#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextEdit>
#include <QUndoStack>
#include <ZMultiLineEdit>
#include <ZMultiLineEditCommand>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <malloc.h>
#include <memory>
#include <string>

namespace {

constexpr int kMegabyteLines = (1 << 20) / 81;

QString lines(int count)
{
    QString text;
    text.reserve(count * 81);
    quint32 dice = 1;
    for (int i = 0; i < count; ++i) {
        for (int column = 0; column < 80; ++column) {
            dice = dice * 1664525 + 1013904223;
            text += (dice >> 24) % 6 == 0 ? QChar(u' ') : QChar(u'a' + (dice >> 16) % 26);
        }
        text += u'\n';
    }
    text.chop(1);
    return text;
}

int rowsOf(ZMultiLineEdit &editor) { return editor.numLines(); }

int rowsOf(QPlainTextEdit &editor)
{
    int rows = 0;
    const auto *layout = editor.document()->documentLayout();
    for (QTextBlock block = editor.document()->begin(); block.isValid(); block = block.next()) {
        layout->blockBoundingRect(block); // lays it out
        rows += block.layout()->lineCount();
    }
    return rows;
}

int rowsOf(QTextEdit &editor)
{
    int rows = 0;
    editor.document()->size(); // lays out everything
    for (QTextBlock block = editor.document()->begin(); block.isValid(); block = block.next())
        rows += block.layout()->lineCount();
    return rows;
}

void setText(ZMultiLineEdit &editor, const QString &text) { editor.setText(text); }
void setText(QPlainTextEdit &editor, const QString &text) { editor.setPlainText(text); }
void setText(QTextEdit &editor, const QString &text) { editor.setPlainText(text); }

template <typename Editor> void placeCursor(Editor &editor, int position)
{
    QTextCursor cursor = editor.textCursor();
    cursor.setPosition(position);
    editor.setTextCursor(cursor);
}

// Every line has 81 characters; its first row is the place.
void placeCursor(ZMultiLineEdit &editor, int position)
{
    const int line = position / 81;
    int row = 0;
    int low = 0;
    for (int high = editor.numLines(); low < high;) { // the rows are the same for all: count paragraphs by bisection
        row = (low + high) / 2;
        editor.setCursorPosition(row, 0);
        if (editor.inputMethodQuery(Qt::ImAbsolutePosition).toInt() < line * 81)
            low = row + 1;
        else
            high = row;
    }
    editor.setCursorPosition(low, position % 81);
}

template <typename Editor> std::unique_ptr<Editor> make()
{
    auto editor = std::make_unique<Editor>();
    QFont font(QStringLiteral("DejaVu Sans"), 9);
    font.setKerning(false);
    font.setStyleStrategy(QFont::PreferNoShaping);
    editor->setFont(font);
    editor->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // or its coming would count as a resize
    editor->resize(240, 320);
    editor->show();
    QCoreApplication::processEvents();
    return editor;
}

// In microseconds, the shortest first.
QList<double> times(int repetitions, const std::function<void()> &prepare, const std::function<void()> &measured)
{
    QList<double> times;
    for (int i = 0; i < repetitions; ++i) {
        prepare();
        QElapsedTimer timer;
        timer.start();
        measured();
        times << double(timer.nsecsElapsed()) / 1000;
    }
    std::sort(times.begin(), times.end());
    return times;
}

double median(int repetitions, const std::function<void()> &prepare, const std::function<void()> &measured)
{
    return times(repetitions, prepare, measured)[repetitions / 2];
}

template <typename Editor> void type(Editor &editor, char16_t letter)
{
    QKeyEvent press(QEvent::KeyPress, letter - u'a' + Qt::Key_A, Qt::NoModifier, QString(QChar(letter)));
    QCoreApplication::sendEvent(&editor, &press);
}

struct Scrolling {
    double median, slow, inTime; // 99 of 100 are no slower; percent, of 60 frames a second
};

// Through the middle of the text, painted after each step; `pages` or else by as little as the editor scrolls.
template <typename Editor> Scrolling scroll(int lineCount, bool pages)
{
    constexpr int kFrames = 600;
    constexpr double kFrame = 1e6 / 60; // us
    auto editor = make<Editor>();
    setText(*editor, lines(lineCount));
    rowsOf(*editor);
    QScrollBar &bar = *editor->verticalScrollBar();
    const int step = pages ? bar.pageStep() : 1;
    bar.setValue(std::max(0, bar.maximum() / 2 - kFrames / 2 * step));
    QCoreApplication::processEvents();
    const QList<double> frames = times(
        kFrames, [] {}, [&] { bar.setValue(bar.value() + step), QCoreApplication::processEvents(); });
    const auto inTime = std::upper_bound(frames.begin(), frames.end(), kFrame) - frames.begin();
    return {frames[kFrames / 2], frames[kFrames * 99 / 100], 100.0 * double(inTime) / kFrames};
}

struct Figures {
    double key, paintedKey, keyAlone, shapedKey, setText, resize, undo, redo, memory;
};

template <typename Editor> double keyTime(int lineCount, bool painted)
{
    constexpr int kKeys = 50;
    auto editor = make<Editor>();
    setText(*editor, lines(lineCount));
    rowsOf(*editor);
    placeCursor(*editor, lineCount / 2 * 81 + 40);
    QCoreApplication::processEvents();
    int letter = 0;
    return median(
               11, [] { QCoreApplication::processEvents(); },
               [&] {
                   for (int i = 0; i < kKeys; ++i) {
                       type(*editor, char16_t(u'a' + letter++ % 26));
                       if (painted)
                           QCoreApplication::processEvents();
                   }
               })
        / kKeys;
}

// A megabyte without a break, which no table of widths can lay out.
template <typename Editor> double shapedKeyTime()
{
    const QString text = QStringLiteral("nai\u0308ve de\u0301ja\u0300 ").repeated(1 << 16);
    auto editor = make<Editor>();
    setText(*editor, text);
    rowsOf(*editor);
    placeCursor(*editor, int(text.size()) / 2);
    QCoreApplication::processEvents();
    return median(
        5, [] { QCoreApplication::processEvents(); }, [&] { type(*editor, u'a'); });
}

template <typename Editor> std::pair<double, double> undoTimes()
{
    constexpr int kSteps = 10000;
    auto editor = make<Editor>();
    editor->setUpdatesEnabled(false);
    if constexpr (std::is_same_v<Editor, ZMultiLineEdit>)
        editor->setUndoDepth(kSteps + 1);
    constexpr int kLines = 750;
    setText(*editor, lines(kLines));
    quint32 dice = 1;
    for (int i = 0; i < kSteps; ++i) {
        dice = dice * 1664525 + 1013904223;
        if constexpr (std::is_same_v<Editor, ZMultiLineEdit>) {
            editor->setCursorPosition(int(dice >> 8) % editor->numLines(), 3);
            editor->insert(QStringLiteral("x"));
        } else {
            placeCursor(*editor, int(dice >> 8) % (kLines * 80));
            editor->textCursor().insertText(QStringLiteral("x"));
        }
    }
    const auto undo = [&] {
        for (int i = 0; i < kSteps; ++i)
            editor->undo();
    };
    const auto redo = [&] {
        for (int i = 0; i < kSteps; ++i)
            editor->redo();
    };
    const auto nothing = [] {};
    const double back = median(1, nothing, undo);
    const double forth = median(1, nothing, redo);
    return {back / kSteps, forth / kSteps};
}

template <typename Editor> Figures measure(const QString &megabyte)
{
    Figures figures{};
    figures.key = keyTime<Editor>(100000, false);
    figures.paintedKey = keyTime<Editor>(100000, true);
    figures.keyAlone = keyTime<Editor>(1, false);
    figures.shapedKey = shapedKeyTime<Editor>();
    auto editor = make<Editor>();
    const auto clear = [&] { setText(*editor, QString()), rowsOf(*editor); };
    int rows = 0;
    figures.setText = median(7, clear, [&] { setText(*editor, megabyte), rows = rowsOf(*editor); });
    figures.resize = median(
        7, [&] { editor->resize(240, 320), rowsOf(*editor); },
        [&] { editor->resize(200, 320), rows = rowsOf(*editor); });
    std::tie(figures.undo, figures.redo) = undoTimes<Editor>();
    editor = make<Editor>();
    malloc_trim(0);
    const auto before = mallinfo2();
    setText(*editor, megabyte);
    rowsOf(*editor);
    const auto after = mallinfo2();
    figures.memory = double(after.uordblks + after.hblkhd) - double(before.uordblks + before.hblkhd);
    return figures;
}

// What painting costs however little is painted: one row of an empty view.
double emptyPaint()
{
    class Empty : public QAbstractScrollArea {
        void paintEvent(QPaintEvent *) override { }
    };
    auto view = make<Empty>();
    return median(
        501, [] { QCoreApplication::processEvents(); },
        [&] { view->viewport()->update(0, 30, view->viewport()->width(), 15), QCoreApplication::processEvents(); });
}

class Recorder : public ZMultiLineEdit {
public:
    using ZMultiLineEdit::addUndoCmd;
};

class Insertion : public QUndoCommand {
public:
    Insertion(int offset, const QString &s) : m_offset(offset), m_text(s) { }
    void redo() override { }
    int id() const override { return 3; }
    bool mergeWith(const QUndoCommand *other) override
    {
        const auto *next = static_cast<const Insertion *>(other);
        if (next->m_offset != m_offset + m_text.size())
            return false;
        m_text += next->m_text;
        return true;
    }

private:
    int m_offset;
    QString m_text;
};

void row(const char *what, double ours, double plain, double rich)
{
    std::printf("%-52s %11.2f %11.2f %11.2f %8.1fx %8.1fx\n", what, ours, plain, rich, plain / ours, rich / ours);
    std::fflush(stdout);
}

void measureScrolling(const char *what, int lineCount, bool pages)
{
    const Scrolling all[] = {scroll<ZMultiLineEdit>(lineCount, pages), scroll<QPlainTextEdit>(lineCount, pages),
        scroll<QTextEdit>(lineCount, pages)};
    const std::string name(what);
    row((name + ", median (us)").c_str(), all[0].median, all[1].median, all[2].median);
    row((name + ", 99 % (us)").c_str(), all[0].slow, all[1].slow, all[2].slow);
    std::printf("%-52s %11.1f %11.1f %11.1f\n", (name + ", in 16.7 ms (%)").c_str(), all[0].inTime, all[1].inTime,
        all[2].inTime);
}

void measureRecording()
{
    constexpr int kCommands = 20000;
    const QString letter = QStringLiteral("a");
    for (const int step : {1, 7}) { // merged; each for itself
        Recorder recorder;
        QUndoStack stack;
        stack.setUndoLimit(256);
        const double ours = median(
            9, [] {},
            [&] {
                for (int i = 0; i < kCommands; ++i)
                    recorder.addUndoCmd(new UTIL_InsTextCmd(i * step, letter));
            });
        const double theirs = median(
            9, [] {},
            [&] {
                for (int i = 0; i < kCommands; ++i)
                    stack.push(new Insertion(i * step, letter));
            });
        row(step == 1 ? "record and merge a command; QUndoStack (us)" : "record a command; QUndoStack (us)",
            ours / kCommands, theirs / kCommands, theirs / kCommands);
    }
}

}

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    if (app.arguments().contains(QStringLiteral("--key"))) { // for a profiler
        std::printf("%.2f us\n", keyTime<ZMultiLineEdit>(100000, true));
        return 0;
    }
    const QString megabyte = lines(kMegabyteLines);
    std::printf("%-52s %11s %11s %11s %9s %9s\n", "", "ours", "plain", "rich", "plain", "rich");
    measureRecording();
    measureScrolling("a page on in 1 MB", kMegabyteLines, true);
    measureScrolling("the least step on in 1 MB", kMegabyteLines, false);
    measureScrolling("a page on in 100 000 lines", 100000, true);
    measureScrolling("the least step on in 100 000 lines", 100000, false);
    if (app.arguments().contains(QStringLiteral("--scroll")))
        return 0;
    const Figures ours = measure<ZMultiLineEdit>(megabyte);
    const Figures plain = measure<QPlainTextEdit>(megabyte);
    const Figures rich = measure<QTextEdit>(megabyte);
    row("a key in the middle of 100 000 lines (us)", ours.key, plain.key, rich.key);
    row("the same, painted (us)", ours.paintedKey, plain.paintedKey, rich.paintedKey);
    const double floor = emptyPaint();
    row("painting a row of an empty view, for comparison (us)", floor, floor, floor);
    row("the same key in a text of that one line (us)", ours.keyAlone, plain.keyAlone, rich.keyAlone);
    row("a key in a paragraph of 1 MB that is shaped (us)", ours.shapedKey, plain.shapedKey, rich.shapedKey);
    row("setText() of 1 MB, rows known (us)", ours.setText, plain.setText, rich.setText);
    row("resize of it from 240 to 200, rows known (us)", ours.resize, plain.resize, rich.resize);
    row("undo one of 10 000 steps over 60 KB (us)", ours.undo, plain.undo, rich.undo);
    row("redo one of them (us)", ours.redo, plain.redo, rich.redo);
    row("memory of 1 MB of text (KiB)", ours.memory / 1024, plain.memory / 1024, rich.memory / 1024);
    return 0;
}
