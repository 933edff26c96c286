#include "textinput/predictive/wordprediction.h"

#include <Qt>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype kLongestWord = UserDictionary::kLongestWord;
constexpr qsizetype kRemembered = 200; // characters before the cursor
constexpr QChar kUnknown = u'…'; // stands for what may be before them

bool isWordCharacter(QChar c) { return c.isLetter() || c == u'\'' || c == u'-'; }

// The word before the cursor, without what stands between; empty at the start of a sentence.
QString lastWord(const QString &text)
{
    qsizetype end = text.size();
    while (end > 0 && text.at(end - 1).isSpace())
        --end;
    qsizetype begin = end;
    while (begin > 0 && isWordCharacter(text.at(begin - 1)))
        --begin;
    return text.sliced(begin, end - begin);
}

bool beginsSentence(const QString &text)
{
    const QString before = text.trimmed();
    const bool isApart = text.isEmpty() || text.back().isSpace();
    return !text.isNull() && isApart && (before.isEmpty() || u".!?"_s.contains(before.back()));
}

QString spaced(const QString &word) { return word + u' '; }

bool isLetterKey(int key) { return key >= Qt::Key_2 && key <= Qt::Key_9; }

}

void WordPrediction::setPredictor(Predictor *predictor)
{
    m_predictor = predictor;
    drop();
}

void WordPrediction::setSecret(bool secret)
{
    if (std::exchange(m_secret, secret) != secret)
        drop();
}

// The editor tells it late: of what was typed here it may not know the last characters yet.
void WordPrediction::setTextBefore(const QString &text)
{
    for (int missing = 0; missing <= m_untold; ++missing) {
        QString known = m_before.chopped(missing);
        const bool beginsAnywhere = known.startsWith(kUnknown);
        known.remove(kUnknown);
        const bool isFromBefore = known.isEmpty() ? beginsAnywhere || text.isEmpty() : text.endsWith(known);
        if (missing > 0 && isFromBefore) {
            m_untold = missing;
            return;
        }
        if (isFromBefore)
            break;
    }
    m_untold = 0;
    m_before = u""_s + text.last(std::min(text.size(), kRemembered));
    if (!grows())
        shiftForSentence();
}

bool WordPrediction::hasWords() const { return !m_secret && m_predictor && m_predictor->knowsWords(); }

bool WordPrediction::takesWords() const
{
    return !m_byLetter && hasWords() && m_letters.shift() != MultiTap::Shift::Digits;
}

// Keys.

WordPrediction::Typing WordPrediction::press(int key, Time now)
{
    m_down = 0;
    const bool isSign = key == Qt::Key_Asterisk || key == Qt::Key_NumberSign || key == Qt::Key_0;
    const bool togglesWords = key == Qt::Key_NumberSign && hasWords();
    if (!takesWords() && !togglesWords) {
        const QString grown = accept(); // the title strip's shift may have gone on to digits
        const Typing typing = m_letters.press(key, now);
        return out({grown + typing.text, typing.key});
    }
    if (isLetterKey(key) || isSign) {
        m_down = key;
        m_downSince = now;
    }
    if (isSign)
        return {}; // what they mean shows when they come up
    if (key >= Qt::Key_1 && key <= Qt::Key_9)
        return pressDigit(key - Qt::Key_0, now);
    if (grows())
        return pressInWord(key);
    m_offered.clear();
    return out(m_letters.press(key, now));
}

WordPrediction::Typing WordPrediction::pressDigit(int digit, Time now)
{
    const QByteArray keys = m_keys + char('0' + digit);
    const bool mayEnd = digit == 1 || m_keys.endsWith('1');
    const bool goesOn = !mayEnd || (grows() && m_predictor->begins(keys));
    const bool wasOffered = grows() && m_keys.isEmpty();
    Typing typing;
    if (wasOffered && digit != 1)
        typing.text = spaced(accept());
    else if (!goesOn)
        typing.text = accept();
    if (digit == 1 && !goesOn) {
        typing.text += m_letters.press(Qt::Key_1, now).text;
        m_offered.clear();
        return out(typing);
    }
    typing.text += m_letters.typed({}).text;
    typing = out(typing);
    if (m_keys.size() < kLongestWord)
        m_keys += char('0' + digit);
    look();
    return typing;
}

WordPrediction::Typing WordPrediction::pressInWord(int key)
{
    switch (key) {
    case Qt::Key_Backspace:
        m_keys.chop(1);
        look();
        return {};
    case Qt::Key_Down:
    case Qt::Key_Up: {
        const int step = key == Qt::Key_Down ? 1 : int(m_offered.size()) - 1;
        m_chosen = (m_chosen + step) % int(m_offered.size());
        return {};
    }
    case Qt::Key_Right:
        return out({accept()});
    default:
        return out({accept(), key});
    }
}

WordPrediction::Typing WordPrediction::release(int key, Time now)
{
    if (m_down == 0)
        return out(m_letters.release(key, now));
    if (m_down != key)
        return {};
    if (now >= m_downSince + kHold) // the clock was late
        return hold();
    m_down = 0;
    return isLetterKey(key) ? Typing{} : releaseSign(key);
}

WordPrediction::Typing WordPrediction::releaseSign(int key)
{
    if (key == Qt::Key_0)
        return out({grows() ? spaced(accept()) : m_letters.typed(u" "_s).text});
    if (key == Qt::Key_Asterisk) {
        if (grows())
            return pressInWord(Qt::Key_Down);
        if (!m_offered.isEmpty())
            m_chosen = 0;
        else
            nextShift();
        return {};
    }
    if (grows() && m_isKnown)
        return out({accept()});
    const bool wasPending = !m_letters.unconfirmed().isEmpty();
    const QString text = m_letters.typed({}).text;
    if (!wasPending)
        m_byLetter = !m_byLetter;
    endWord();
    return out({text});
}

// The digit of a key that is held takes the place of what its press did.
WordPrediction::Typing WordPrediction::hold()
{
    const int key = std::exchange(m_down, 0);
    if (isLetterKey(key)) {
        m_keys.chop(1);
        look();
    }
    return out({(grows() ? accept() : QString()) + m_letters.typed(QString(QChar(key))).text});
}

WordPrediction::Typing WordPrediction::typed(const QString &text)
{
    m_down = 0;
    return out({accept() + m_letters.typed(text).text});
}

WordPrediction::Typing WordPrediction::expire(Time now)
{
    if (m_down != 0)
        return now >= m_downSince + kHold ? hold() : Typing{};
    return out(m_letters.expire(now));
}

std::optional<WordPrediction::Time> WordPrediction::deadline() const
{
    return m_down != 0 ? m_downSince + kHold : m_letters.deadline();
}

// Words.

void WordPrediction::look()
{
    const QString grown = unconfirmed();
    m_offered.clear();
    m_chosen = -1;
    if (m_keys.isEmpty())
        return endWord();
    auto [exact, longer] = m_predictor->candidates(m_keys, lastWord(m_before));
    m_isKnown = !exact.isEmpty() || !longer.isEmpty();
    m_offered = exact;
    if (exact.isEmpty() && m_keys.endsWith('1')) // more often the end of a sentence than an apostrophe
        m_offered.append(grown.first(std::min(grown.size(), m_keys.size() - 1)) + u'.');
    if (exact.isEmpty() && !longer.isEmpty())
        m_offered.append(longer.first().first(m_keys.size()));
    if (!m_isKnown) // its letters as they come
        m_offered.append(grown.first(std::min(grown.size(), m_keys.size() - 1))
            + m_predictor->letters().letters.at(std::size_t(m_keys.back() - '0')).front());
    if (m_options.completion)
        m_offered += longer;
    m_chosen = 0;
}

QString WordPrediction::accept()
{
    if (!grows())
        return {};
    QString text = unconfirmed();
    const QString word = m_offered.at(m_chosen);
    const bool isUnknown = !m_isKnown;
    endWord();
    if (m_letters.shift() == MultiTap::Shift::Once)
        m_letters.setShift(MultiTap::Shift::Small);
    if (m_options.learning && !m_secret && !isUnknown && m_predictor)
        m_predictor->user().learn(lastWord(m_before), word);
    return text;
}

void WordPrediction::endWord()
{
    m_keys.clear();
    m_offered.clear();
    m_chosen = -1;
    m_isKnown = true;
}

// A word that was typed letter by letter is learnt when it has ended.
void WordPrediction::learn()
{
    const bool mayLearn = m_options.learning && !m_secret && m_predictor;
    if (!mayLearn || takesWords())
        return;
    const QString word = lastWord(m_before);
    if (word.size() > 1)
        m_predictor->user().learn(lastWord(m_before.chopped(word.size())), word);
}

WordPrediction::Typing WordPrediction::out(const Typing &typing)
{
    for (const QChar c : typing.text) {
        if (!isWordCharacter(c) && !m_before.isEmpty() && isWordCharacter(m_before.back()))
            learn();
        if (m_before.isNull())
            m_before = kUnknown;
        m_before = QString(m_before + c).last(std::min(m_before.size() + 1, kRemembered));
        ++m_untold;
    }
    if (typing.key == Qt::Key_Backspace) {
        m_before.chop(1);
        m_untold = std::max(0, m_untold - 1);
    } else if (typing.key != 0) {
        forgetBefore(); // until the editor tells
    }
    if (typing.text.isEmpty() && typing.key == 0)
        return typing;
    if (!grows()) {
        m_offered.clear();
        if (m_options.following && takesWords() && m_before.endsWith(u' '))
            m_offered = m_predictor->following(lastWord(m_before));
        shiftForSentence();
    }
    return typing;
}

// Only its own capital is taken back: what the user chose stays.
void WordPrediction::shiftForSentence()
{
    const bool begins = !m_secret && beginsSentence(m_before);
    if (begins && m_letters.shift() == MultiTap::Shift::Small) {
        m_letters.setShift(MultiTap::Shift::Once);
        m_capital = true;
    } else if (!begins && std::exchange(m_capital, false) && m_letters.shift() == MultiTap::Shift::Once) {
        m_letters.setShift(MultiTap::Shift::Small);
    }
}

void WordPrediction::drop()
{
    m_letters.drop();
    endWord();
    m_down = 0;
    forgetBefore();
}

void WordPrediction::forgetBefore()
{
    m_before = QString();
    m_untold = 0;
}

QString WordPrediction::shifted(const QString &word) const
{
    QString text = word;
    const bool all = m_letters.shift() == MultiTap::Shift::Capitals;
    if (all || m_letters.shift() == MultiTap::Shift::Once) {
        text.clear();
        for (const QChar c : word)
            text += all || text.isEmpty() ? keyletters::upper(c) : QString(c);
    }
    return text;
}

QString WordPrediction::unconfirmed() const
{
    return grows() ? shifted(m_offered.at(m_chosen)) : m_letters.unconfirmed();
}

QStringList WordPrediction::offers() const
{
    QStringList offered = m_letters.offers();
    if (!offered.isEmpty())
        return offered;
    for (const QString &word : m_offered)
        offered.append(shifted(word));
    return offered;
}

int WordPrediction::chosen() const { return m_letters.offers().isEmpty() ? m_chosen : m_letters.chosen(); }

WordPrediction::Typing WordPrediction::choose(int offer)
{
    if (!m_letters.offers().isEmpty())
        return out(m_letters.choose(offer));
    if (offer < 0 || offer >= m_offered.size())
        return {};
    m_chosen = offer;
    m_down = 0;
    return out({spaced(accept())});
}

// State.

QString WordPrediction::mode() const { return takesWords() ? m_letters.mode() + u'+' : m_letters.mode(); }

void WordPrediction::setLanguage(const QString &language)
{
    m_letters.setLanguage(language);
    drop();
}

void WordPrediction::setNumbers(bool numbers)
{
    drop();
    m_letters.setNumbers(numbers);
}

void WordPrediction::nextShift()
{
    m_capital = false;
    m_letters.nextShift();
}
