// Any bytes as key records, on a phone that is suspended and in a call now and then.
#include "input/logic/keypadlogic.h"
#include "tests/fuzz/require.h"

#include <Qt>
#include <cstdint>

namespace {

struct AnyPhone : keypad::Phone {
    unsigned bits = 0;

    bool isSuspended() const override { return bits & 1; }
    bool isInCall() const override { return bits & 2; }
    bool hasWindowServer() const override { return bits & 4; }
    bool takesHeadsetAnswer() const override { return bits & 8; }
};

}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    AnyPhone phone;
    keypad::KeypadLogic logic;
    for (size_t i = 0; i + 2 < size; i += 3) {
        phone.bits = data[i];
        std::vector<keypad::Action> actions;
        logic.feed(quint16(data[i + 1] | data[i + 2] << 8), phone, actions);
        for (const keypad::Action &action : actions) {
            const bool isKey = action.kind >= keypad::Action::Press;
            require(!isKey || !phone.isSuspended());
            require(action.kind != keypad::Action::Click || logic.flip() == 0);
            require(!(isKey && action.key == Qt::Key_F8 && logic.flip() == 1));
        }
        require(logic.held().size() <= 15);
        require(logic.flip() >= -1 && logic.flip() <= 1);
    }
    return 0;
}
