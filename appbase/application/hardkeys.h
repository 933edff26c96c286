// The keys that mean the same in every application: the phone's programs are told, no widget is.
#pragma once

class QKeyEvent;

enum class KeyEdge { Press, Release };
enum class CallState { Quiet, ComesIn };

struct HardKeyMessage {
    const char *channel;
    const char *message;
};

// True for a key that belongs to the phone, whether or not it sends anything now.
bool isHardKey(int key);

// What is to be sent; null for nothing.
const HardKeyMessage *hardKeyMessage(int key, KeyEdge edge, CallState call);

// Sends for one key after the other, with the key code (Qt::Key) as the message's one argument. One object a process.
class HardKeys {
public:
    bool filter(const QKeyEvent &event); // true swallows it

private:
    void send(int key, KeyEdge edge, CallState call);

    CallState m_atPress = CallState::Quiet; // a key that answered a call tells nothing when it comes up
};
