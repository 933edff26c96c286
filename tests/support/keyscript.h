// Plays keys into a method for the twelve keys, by a clock of its own.
#pragma once

#include "textinput/twelvekeys/twelvekeymethod.h"

#include <Qt>
#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

// Digits, * and # press and release a key, other signs are:
//   , 0.4 s pass    . 1 s passes    ! the key before is held    < Backspace    > right    ^ up    / Return
// What is typed comes out, keys by the same signs, what is not confirmed at the end in brackets.
class Script {
public:
    explicit Script(TwelveKeyMethod &method) : m_method(method) { }

    QString play(const QString &signs)
    {
        for (qsizetype i = 0; i < signs.size(); ++i)
            step(signs.at(i), i + 1 < signs.size() && signs.at(i + 1) == u'!');
        const QString pending = m_method.unconfirmed();
        return pending.isEmpty() ? m_out : m_out + u'[' + pending + u']';
    }

private:
    static int keyOf(QChar sign)
    {
        switch (sign.unicode()) {
        case u'<':
            return Qt::Key_Backspace;
        case u'>':
            return Qt::Key_Right;
        case u'^':
            return Qt::Key_Up;
        case u'/':
            return Qt::Key_Return;
        default:
            return sign.unicode();
        }
    }
    void take(const TwelveKeyMethod::Typing &typing)
    {
        m_out += typing.text;
        for (const QChar sign : u"<>^/"_s) {
            if (typing.key == keyOf(sign))
                m_out += sign;
        }
    }
    void pass(TwelveKeyMethod::Time time)
    {
        m_now += time;
        if (const auto due = m_method.deadline(); due && *due <= m_now)
            take(m_method.expire(m_now));
    }
    void step(QChar sign, bool isHeld)
    {
        if (sign == u',' || sign == u'.')
            return pass(sign == u',' ? 400ms : 1000ms);
        if (sign == u'!')
            return;
        const int key = keyOf(sign);
        take(m_method.press(key, m_now));
        if (isHeld)
            pass(TwelveKeyMethod::kHold);
        take(m_method.release(key, m_now));
    }

    TwelveKeyMethod &m_method;
    TwelveKeyMethod::Time m_now{12345};
    QString m_out;
};
