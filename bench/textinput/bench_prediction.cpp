// Words by the twelve keys: how long a dictionary takes to open, how long a key takes, what it holds of memory, and how
// many keystrokes a character costs beside the letters by pressing again and again. The arguments are a dictionary and
// texts that it was not made of; their first 1000 words are typed. Run it with bench/run-textinput.
#include "textinput/predictive/wordprediction.h"

#include <QFile>
#include <QRegularExpression>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <malloc.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr qsizetype kWords = 1000;

double since(Clock::time_point begin)
{
    return std::chrono::duration<double, std::micro>(Clock::now() - begin).count();
}

QStringList wordsOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    static const QRegularExpression word(QStringLiteral("(?<![\\w`/.-])\\p{L}+(?:'\\p{L}+)?(?![\\w`/-])"));
    QStringList words;
    for (auto match = word.globalMatch(QString::fromUtf8(file.readAll())); match.hasNext() && words.size() < kWords;)
        words.append(match.next().captured());
    return words;
}

// How much of a file's mapping is in memory, in KiB.
int resident(const QString &path)
{
    QFile maps(QStringLiteral("/proc/self/smaps"));
    if (!maps.open(QIODevice::ReadOnly))
        return -1;
    bool isIt = false;
    int sum = 0;
    for (QByteArray line = maps.readLine(); !line.isEmpty(); line = maps.readLine()) {
        if (line.contains('-') && line.contains(" r"))
            isIt = line.trimmed().endsWith(path.toLocal8Bit());
        else if (isIt && line.startsWith("Rss:"))
            sum += line.mid(4).trimmed().split(' ').first().toInt();
    }
    return sum;
}

// With the space behind it: a letter costs its place on its key, and one more to go on behind one of the same key.
int byLetters(const KeyLetters &keys, const QString &word)
{
    int strokes = 1;
    char before = 0;
    for (const QChar letter : word) {
        const char digit = letter == u'\'' ? '1' : keyletters::digitOf(keys, letter);
        const QString &on = keys.letters.at(std::size_t(std::max(digit - '0', 0)));
        strokes += int(std::max<qsizetype>(on.indexOf(letter.toLower()), 0)) + 1 + (digit == before ? 1 : 0);
        before = digit;
    }
    return strokes;
}

struct Typist {
    WordPrediction &method;
    Predictor &predictor;
    std::vector<double> times; // of the keys, in microseconds
    int found = 0;

    // The keystrokes of a word that is chosen as soon as that is cheapest. An unknown one is taken back, and typed by
    // letters.
    int type(const QString &word)
    {
        const QByteArray keys = keyletters::digitsOf(predictor.letters(), word);
        int least = -1;
        for (qsizetype i = 0; i < keys.size(); ++i) {
            const auto begin = Clock::now();
            method.press(Qt::Key_0 + (keys.at(i) - '0'), {});
            method.release(Qt::Key_0 + (keys.at(i) - '0'), {});
            times.push_back(since(begin));
            const int offer = indexOf(word);
            const int cost = int(i) + 1 + offer + 1;
            if (offer >= 0 && (least < 0 || cost < least))
                least = cost;
        }
        const int offer = indexOf(word);
        if (offer >= 0) {
            method.choose(offer);
            ++found;
            return least;
        }
        method.drop();
        if (least >= 0)
            return least;
        predictor.user().learn({}, word.toLower());
        return 2 * int(keys.size()) + 2 + byLetters(predictor.letters(), word);
    }

    [[nodiscard]] int indexOf(const QString &word) const
    {
        const QStringList offers = method.offers();
        for (int i = 0; i < offers.size(); ++i) {
            if (offers.at(i).compare(word, Qt::CaseInsensitive) == 0)
                return i;
        }
        return -1;
    }
};

void measure(const QString &dictionary, const QString &language, const QString &text)
{
    const QStringList words = wordsOf(text);
    Predictor predictor(keyletters::of(language), Dictionary::open(dictionary));
    WordPrediction method;
    method.setLanguage(language);
    method.setPredictor(&predictor);
    Typist typist{method, predictor, {}, 0};
    int characters = 0;
    int letters = 0;
    int strokes = 0;
    for (const QString &word : words) {
        if (keyletters::digitsOf(predictor.letters(), word).isEmpty())
            continue;
        characters += int(word.size()) + 1;
        letters += byLetters(predictor.letters(), word);
        strokes += typist.type(word);
    }
    if (characters == 0)
        return;
    std::ranges::sort(typist.times);
    const auto at = [&](double share) { return typist.times.at(std::size_t(share * double(typist.times.size() - 1))); };
    std::printf("  %s: %d words, %d of them found; keystrokes a character %.2f, by letters %.2f; a key takes %.0f us, "
                "99%% under %.0f us, at most %.0f us\n",
        qUtf8Printable(text.section(u'/', -1)), int(words.size()), typist.found, double(strokes) / characters,
        double(letters) / characters, at(0.5), at(0.99), at(1));
}

}

int main(int argc, char **argv)
{
    if (argc < 3) {
        std::fputs("bench_prediction DICTIONARY TEXT...\n", stderr);
        return 2;
    }
    const QString file = QString::fromLocal8Bit(argv[1]);
    const QString language = file.section(u'/', -1).section(u'.', 0, 0);
    const auto heap = mallinfo2().uordblks;
    const auto begin = Clock::now();
    const auto dictionary = Dictionary::open(file);
    const double opened = since(begin);
    if (!dictionary) {
        std::fprintf(stderr, "%s: no dictionary\n", argv[1]);
        return 3;
    }
    std::printf("%s: opens in %.2f ms, %d KiB of it in memory, %zu KiB of heap\n", qUtf8Printable(language),
        opened / 1000, resident(file), (mallinfo2().uordblks - heap) / 1024);
    for (int i = 2; i < argc; ++i)
        measure(file, language, QString::fromLocal8Bit(argv[i]));
    return 0;
}
